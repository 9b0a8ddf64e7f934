// How many of a built item the stock of its components allows.
#pragma once

#include <map>
#include <string>
#include <string_view>

#include "datastore/LProfile.h"
#include "inventory/LItem.h"
#include "inventory/StockQuantities.h"

// Derives what built items' components allow. Remembers what it met, so that a page that shows many
// built items derives each of them once and searches for a missing component once. One thread; made
// for one page or one question, since it does not see what changes meanwhile.
class LBuildableStock {
public:
    explicit LBuildableStock(const LProfile& profile) : profile_(profile) {}

    // Per location how many of `item` can be built; warning and ideal quantities are 0. Empty when
    // its bill leads back to itself at any depth. Lives as long as this object.
    const LStockEntries& Of(const LItem& item);

private:
    enum class LState { kInWork, kDone, kLeadsBack };
    struct Derived {
        LState state = LState::kInWork;
        LStockEntries entries;
    };
    const Derived& Derive(const LItem& item, size_t depth);
    bool LimitByComponents(const LItem& item, size_t depth, LStockEntries& entries);
    bool OpenComponent(LItem& component, std::string_view code);

    const LProfile& profile_;
    std::map<std::string, Derived> derived_;  // by key
    bool hasSearched_ = false;                // all items were walked for a missing code
};
