#include "inventory/StockChange.h"

#include "inventory/BillOfMaterials.h"
#include "inventory/StockQuantities.h"

bool LStockChange::Apply(LItem& item, double delta) {
    if (!item.IsBuilt()) return Change(item, delta);
    std::vector<BOMItemQuantities> lines;
    ParseBOMItemsAndQuantities(lines, item.GetView("BillOfMaterials"));
    for (const BOMItemQuantities& line : lines) {
        LItem component;
        if (!OpenItem(profile_, component, line.code)) return false;
        if (!Change(component, delta * line.quantity)) return false;
    }
    return true;
}

bool LStockChange::Change(LItem& item, double delta) {
    if (!LItemChangeQuantity(profile_, item, delta, locationName_, true)) return false;
    done_.emplace_back(item.GetPrimaryKey(), delta);
    return true;
}

void LStockChange::Undo() {
    for (; !done_.empty(); done_.pop_back()) {
        const auto& [key, delta] = done_.back();
        LItem item;
        if (!profile_.Items().Open(item, key)) continue;  // deleted meanwhile: nothing to put back
        // Only refused when the location has gone meanwhile, and the stock there with it.
        static_cast<void>(LItemChangeQuantity(profile_, item, -delta, locationName_, true));
    }
}
