// The stock side of one line of a sale, receipt or return, before its history row is written.
#pragma once

#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "datastore/LProfile.h"
#include "inventory/LItem.h"

// Used under the business's movement lock. Changes are kept; Undo takes them back.
class LStockChange {
public:
    LStockChange(const LProfile& profile, std::string_view locationName)
        : profile_(profile), locationName_(locationName) {}

    // Adds `delta` (negative takes out, below zero if need be) to the item's stock at the location;
    // of a built item each component is found by its code and changed by its share. False when a
    // component is missing or a change was refused: components changed before it stay changed.
    [[nodiscard]] bool Apply(LItem& item, double delta);
    // Takes back all that was changed.
    void Undo();

private:
    bool Change(LItem& item, double delta);

    const LProfile& profile_;
    const std::string locationName_;
    std::vector<std::pair<std::string, double>> done_;  // item key, what was added
};
