#include <algorithm>
#include <string>
#include <vector>

#include "inventory/ItemSave.h"
#include "inventory/ItemSaveSteps.h"
#include "inventory/MasterRecords.h"
#include "inventory/MovementLock.h"
#include "inventory/StockQuantities.h"

namespace {

// The key of the location that a row means; empty when there is none.
std::string RowLocation(const LLocationList& locations, const std::string& name) {
    LLocation location;
    if (name.empty()) {
        const auto first = locations.CreateIteratorBase(location);
        return location.GetPrimaryKey();
    }
    return OpenLocation(locations, location, name) ? location.GetPrimaryKey() : std::string();
}

LItemError CollectRows(const LProfile& profile, const std::vector<LItemLocationRow>& rows,
                       ItemLocations& entries) {
    const LLocationList locations(profile);
    for (const LItemLocationRow& row : rows) {
        const std::string name = Trimmed(row.locationName);
        const std::string key = RowLocation(locations, name);
        if (key.empty()) {
            return LItemError::At(LItemField::kLocations,
                                  name.empty() ? "There is no location to keep the item at."
                                               : "There is no location named " + name + ".");
        }
        StoreLocationQuantity(entries, key, row.quantity, row.warnQuantity, row.idealQuantity);
    }
    if (rows.empty()) StoreLocationQuantity(entries, RowLocation(locations, {}), 0, 0, 0);
    return LItemError::None();
}

void StoreSupplier(const LProfile& profile, const std::string& name) {
    const LSupplierList suppliers(profile);
    LSupplier supplier;
    if (name.empty() || OpenSupplier(suppliers, supplier, name)) return;
    suppliers.CreateNewRecord(supplier);
    supplier.SetString("Name", name);
    supplier.Flush();
}

// The rows as typed, before those of one location are added together.
bool AnyIsLow(const std::vector<LItemLocationRow>& rows) {
    return std::any_of(rows.begin(), rows.end(), [](const LItemLocationRow& row) {
        return row.warnQuantity >= row.quantity;
    });
}

}  // namespace

LItemError LItemSaveStock(const LProfile& profile, LItem& item, const LItemStockInput& input) {
    const LMovementLock lock(profile);
    LItem stored;
    if (!profile.Items().Load(item.GetPrimaryKey(), stored)) return Gone();
    const bool isBuilt = stored.IsBuilt();
    ItemLocations entries;
    if (!isBuilt) {
        const LItemError error = CollectRows(profile, input.rows, entries);
        if (!error.IsNone()) return error;
    }
    const std::string supplier = Trimmed(input.supplier);
    StoreSupplier(profile, supplier);
    OverwriteField(item, "CheckWaringEmail", input.wantsWarningEmail ? "1" : "0");
    OverwriteField(item, "Supplier", supplier);
    OverwriteField(item, "SupplierID", input.supplierId);
    if (!isBuilt && input.wantsWarningEmail && AnyIsLow(input.rows)) {
        OverwriteField(item, "SendWaringEmail", "1");
    }
    SetStockFields(profile, item, {entries.begin(), entries.end()}, LStockTotals::kAll);
    return item.Flush() ? LItemError::None() : NotSaved();
}
