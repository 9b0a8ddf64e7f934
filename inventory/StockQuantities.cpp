#include "inventory/StockQuantities.h"

#include <algorithm>

#include "datastore/CsvText.h"
#include "datastore/StoredNumbers.h"
#include "inventory/LBuildableStock.h"
#include "inventory/StoredLists.h"

namespace {

void AppendEntry(std::string& out, const LocationAndQuantities& entry, int digits) {
    out += '"';
    AppendStoredText(out, entry.location);
    for (const double number : {entry.quantity, entry.warnQuantity, entry.idealQuantity}) {
        out += '/';
        AppendStoredReal(out, number, digits);
    }
    out += "\",";
}

void AddTo(LocationAndQuantities& entry, double quantity, double warn, double ideal) {
    entry.quantity += quantity;
    entry.warnQuantity += warn;
    entry.idealQuantity += ideal;
}

template <typename Entries>
std::string FormatEntries(const LProfile& profile, const Entries& entries) {
    std::string out;
    for (const LocationAndQuantities& entry : entries) {
        AppendEntry(out, entry, profile.DigitsAfterDecimalPoint());
    }
    return out;
}

double Selected(const LocationAndQuantities& entry, eItemQuantity which) {
    if (which == kItemQuantityWarn) return entry.warnQuantity;
    return which == kItemQuantityIdeal ? entry.idealQuantity : entry.quantity;
}

void SetTotal(LItem& item, std::string_view field, const LStockEntries& entries,
              double LocationAndQuantities::*number) {
    double total = 0;
    for (const LocationAndQuantities& entry : entries) total += entry.*number;
    item.DeleteField(field);  // see OverwriteField
    item.SetFloat(field, total);
}

}  // namespace

LStockEntries ParseLocationAndQuantities(std::string_view text) {
    LStockEntries entries;
    for (const std::string& element : ParseCsvRow(text)) {
        std::string_view rest = element;
        LocationAndQuantities& entry = entries.emplace_back();
        entry.location = TakePiece(rest);
        entry.quantity = ParseStoredReal(TakePiece(rest));
        entry.warnQuantity = ParseStoredReal(TakePiece(rest));
        entry.idealQuantity = ParseStoredReal(rest);
    }
    return entries;
}

std::string FormatLocationAndQuantities(const LProfile& profile, const LStockEntries& entries) {
    return FormatEntries(profile, entries);
}

void StoreLocationQuantity(ItemLocations& list, std::string_view location, double quantity,
                           double warn, double ideal) {
    if (location.empty()) return;
    const auto entry = std::find_if(list.begin(), list.end(), [&](const auto& candidate) {
        return candidate.location == location;
    });
    if (entry == list.end()) {
        list.push_front({std::string(location), quantity, warn, ideal});
        return;
    }
    AddTo(*entry, quantity, warn, ideal);
}

void GetLocationQuantityString(const LProfile& profile, const ItemLocations& list,
                               std::string& out) {
    out = FormatEntries(profile, list);
}

void LLocationsQuantities::SetQuantities(std::string_view location, double quantity, double warn,
                                         double ideal) {
    LocationAndQuantities& entry = byLocation_[std::string(location)];
    entry.location = location;
    AddTo(entry, quantity, warn, ideal);
}

const LocationAndQuantities* LLocationsQuantities::Find(std::string_view location) const {
    const auto found = byLocation_.find(location);
    return found == byLocation_.end() ? nullptr : &found->second;
}

LStockEntries GetStockEntries(const LProfile& profile, const LItem& item) {
    if (item.IsBuilt()) return LBuildableStock(profile).Of(item);
    return ParseLocationAndQuantities(item.GetView("LocationsAndQuantities"));
}

double GetQuantityInStock(const LProfile& profile, const LItem& item, std::string_view locationName,
                          eItemQuantity which) {
    const LFileStoreListBase& locations = profile.Locations();
    LRecord location;
    for (const LocationAndQuantities& entry : GetStockEntries(profile, item)) {
        if (!locations.Load(entry.location, location)) continue;
        if (location.GetView("Name") == locationName) return Selected(entry, which);
    }
    return 0;
}

double GetItemsInStock(const LProfile& profile, const LItem& item, std::string_view locationName) {
    return GetQuantityInStock(profile, item, locationName, kItemQuantityInStock);
}

void OverwriteField(LRecord& record, std::string_view name, std::string_view value) {
    record.DeleteField(name);  // setting it again then counts as a change whatever it held
    record.SetString(name, value);
}

void SetStockFields(const LProfile& profile, LItem& item, const LStockEntries& entries,
                    LStockTotals totals) {
    OverwriteField(item, "LocationsAndQuantities", FormatLocationAndQuantities(profile, entries));
    SetTotal(item, "Quantity", entries, &LocationAndQuantities::quantity);
    if (totals == LStockTotals::kQuantityOnly) return;
    SetTotal(item, "WarnQuantity", entries, &LocationAndQuantities::warnQuantity);
    SetTotal(item, "IdealQuantity", entries, &LocationAndQuantities::idealQuantity);
}
