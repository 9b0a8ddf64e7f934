// What purchase orders still name, so that it is not deleted under them. Looks at the stored order
// records only: the rules of orders stand above this folder and build on what is written here.
#pragma once

#include <array>
#include <cstddef>
#include <string_view>

class LProfile;
class LRecord;

// Whether any recorded, draft or recurring order has a line for the item of that key.
bool IsItemOnAnyOrder(const LProfile& profile, std::string_view itemId);
// Whether any such order is placed with that supplier, or goes to that location (both by key).
bool IsSupplierOnAnyOrder(const LProfile& profile, std::string_view supplierId);
bool IsLocationOnAnyOrder(const LProfile& profile, std::string_view locationId);

// --- How one order record names things. ---

// No order of a small business comes near it; a mangled count must not hold up whoever walks it.
inline constexpr int kMaxOrderLines = 10000;

// The number of lines that the order says it has, held to 0 ... kMaxOrderLines.
int OrderLineCount(const LRecord& order);

// The name of a line's field: "Item3Qty" for line 3 (from 1) and "Qty". Made without allocating,
// since every line that is read needs several.
class LOrderLineField {
public:
    LOrderLineField(int lineNumber, std::string_view what);
    operator std::string_view() const { return {text_.data(), size_}; }

private:
    std::array<char, 40> text_;
    size_t size_;
};

// Whether the order has a line for the item of that key, or names the key in that field of its
// head; both ignoring case. An empty key is named by nobody.
bool OrderHasLineFor(const LRecord& order, std::string_view itemId);
bool OrderHeadNames(const LRecord& order, std::string_view field, std::string_view key);
