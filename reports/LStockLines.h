// What the inventory reports are made of: a line for each item and location, read in one pass.
#pragma once

#include <functional>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

#include "datastore/LMoney.h"
#include "datastore/LProfile.h"

// Each name once, with a number: thousands of lines share a few locations, categories and
// suppliers.
class LNameNumbers {
public:
    size_t Add(std::string_view name);  // the number that it has, or gets
    const std::string& Name(size_t number) const { return names_[number]; }
    size_t Count() const { return names_.size(); }

private:
    struct LTextHash {
        using is_transparent = void;  // looked up without a copy of the name
        size_t operator()(std::string_view text) const {
            return std::hash<std::string_view>()(text);
        }
    };
    std::vector<std::string> names_;
    std::unordered_map<std::string, size_t, LTextHash, std::equal_to<>> numbers_;
};

struct LStockItem {
    std::string id, code, description;
    size_t category = 0, supplier = 0;  // numbers of names
    LMoney cost, price;
    bool hasPicture = false;
};
struct LStockLine {
    size_t item = 0;      // its place in `items`
    size_t location = 0;  // number of its name
    double quantity = 0;
};
// In the store's order.
struct LStockLines {
    LNameNumbers names;
    std::vector<LStockItem> items;
    std::vector<LStockLine> lines;
};

// Which lines a report wants: names, exactly; empty or "All" for every one.
struct LStockLineChoice {
    std::string location, category, supplier;
};

enum class LStockLineDetail {
    kByLocation,  // a line for each entry of an item; an item without any has none
    kByItem       // one line for each item with all its stock, its picture looked up
};

// A built item has the stock that its components allow.
LStockLines ReadStockLines(const LProfile& profile, const LStockLineChoice& choice,
                           LStockLineDetail detail);
