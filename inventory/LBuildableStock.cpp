#include "inventory/LBuildableStock.h"

#include <algorithm>
#include <cmath>
#include <utility>
#include <vector>

#include "inventory/BillOfMaterials.h"
#include "inventory/ItemCodeCache.h"

namespace {

// How often `perUnit` goes into `quantity`, without the fraction. A quotient that misses a whole
// number only by the way computers hold decimals (0.3 / 0.1) is that number.
double WholeUnits(double quantity, double perUnit) {
    const double quotient = quantity / perUnit;
    const double nearest = std::round(quotient);
    const bool isWhole = std::abs(quotient - nearest) <= 1e-9 * std::max(1.0, std::abs(nearest));
    return (isWhole ? nearest : std::trunc(quotient)) + 0.0;  // never "-0"
}

void AddWholeUnits(LStockEntries& entries, const LStockEntries& component, double perUnit) {
    for (const LocationAndQuantities& stock : component) {
        entries.push_back({stock.location, WholeUnits(stock.quantity, perUnit), 0, 0});
    }
}

// Locations that only one of both has limit nothing.
void LowerToWholeUnits(LStockEntries& entries, const LStockEntries& component, double perUnit) {
    for (const LocationAndQuantities& stock : component) {
        for (LocationAndQuantities& entry : entries) {
            if (entry.location != stock.location) continue;
            entry.quantity = std::min(entry.quantity, WholeUnits(stock.quantity, perUnit));
        }
    }
}

}  // namespace

const LStockEntries& LBuildableStock::Of(const LItem& item) {
    // Items not stored yet all have the empty key, and no bill can name them.
    if (item.GetPrimaryKey().empty()) derived_.erase(std::string());
    return Derive(item, 0).entries;
}

const LBuildableStock::Derived& LBuildableStock::Derive(const LItem& item, size_t depth) {
    const auto [place, isNew] = derived_.try_emplace(item.GetPrimaryKey());
    Derived& derived = place->second;
    if (!isNew) return derived;
    LStockEntries entries;
    const bool isClear = depth < kMaxBillDepth && LimitByComponents(item, depth, entries);
    derived.state = isClear ? LState::kDone : LState::kLeadsBack;
    if (isClear) derived.entries = std::move(entries);
    return derived;
}

bool LBuildableStock::LimitByComponents(const LItem& item, size_t depth, LStockEntries& entries) {
    std::vector<BOMItemQuantities> lines;
    ParseBOMItemsAndQuantities(lines, item.GetView("BillOfMaterials"));
    std::erase_if(lines, [](const BOMItemQuantities& line) { return line.quantity == 0; });
    bool isFirst = true;
    for (const BOMItemQuantities& line : lines) {
        // The first line counts as first even when its item is missing: nothing can be built then.
        const auto limit = std::exchange(isFirst, false) ? AddWholeUnits : LowerToWholeUnits;
        LItem component;
        if (!OpenComponent(component, line.code)) continue;
        if (!component.IsBuilt()) {
            limit(entries, ParseLocationAndQuantities(component.GetView("LocationsAndQuantities")),
                  line.quantity);
            continue;
        }
        const Derived& derived = Derive(component, depth + 1);
        if (derived.state != LState::kDone) return false;  // in work: it is one of those above
        limit(entries, derived.entries, line.quantity);
    }
    return true;
}

bool LBuildableStock::OpenComponent(LItem& component, std::string_view code) {
    if (code.empty()) return false;
    if (OpenRememberedItem(profile_, component, code)) return true;
    // The first search has met every code; what is not remembered since is missing.
    return !std::exchange(hasSearched_, true) && OpenItem(profile_, component, code);
}
