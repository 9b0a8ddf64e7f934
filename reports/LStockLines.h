// What the inventory reports are made of: a line for each item and location, read in one pass.
#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "datastore/LMoney.h"
#include "datastore/LProfile.h"

struct LStockLine {
    std::string itemId, code, description, location, category, supplier;
    bool hasPicture = false;
    double quantity = 0;
    LMoney cost, price;
};

// Which lines a report wants: names, exactly; empty or "All" for every one.
struct LStockLineChoice {
    std::string location, category, supplier;
};

enum class LStockLineDetail {
    kByLocation,  // a line for each entry of an item; an item without any has none
    kByItem       // one line for each item with all its stock, its picture looked up
};

// In the store's order. A built item has the stock that its components allow.
std::vector<LStockLine> ReadStockLines(const LProfile& profile, const LStockLineChoice& choice,
                                       LStockLineDetail detail);
