// Which item code belongs to which key, as this process met them: saves a walk through all items.
#pragma once

#include <functional>
#include <string>
#include <string_view>
#include <unordered_map>

#include "datastore/LProfile.h"
#include "inventory/LItem.h"

// Hashed: in an ordered table of ten thousand codes the search alone costs a tenth of opening the
// item.
struct LItemCodeHash {
    using is_transparent = void;
    size_t operator()(std::string_view code) const { return std::hash<std::string_view>()(code); }
};
using LItemKeysByCode =
    std::unordered_map<std::string, std::string, LItemCodeHash, std::equal_to<>>;

// Any thread may call these. What they remember is kept apart by database folder, since one service
// serves several businesses, and is only ever a hint: other processes rename and delete items too.

// Opens the item whose code equals `code` exactly when it is remembered and still bears that code.
// Otherwise false, with `item` unbound; the item may exist all the same.
[[nodiscard]] bool OpenRememberedItem(const LProfile& profile, LItem& item, std::string_view code);
void RememberItemCode(const LProfile& profile, std::string_view code, std::string_view key);
void ForgetItemCode(const LProfile& profile, std::string_view code);
// Forgets all codes of the business in favour of these.
void RememberItemCodes(const LProfile& profile, LItemKeysByCode keysByCode);
