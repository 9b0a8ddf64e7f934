#include "inventory/ItemDelete.h"

#include <unistd.h>

#include "inventory/BillOfMaterials.h"
#include "inventory/ItemCodeCache.h"
#include "inventory/LItem.h"
#include "inventory/MovementLock.h"
#include "inventory/OrderReferences.h"
#include "inventory/StockHistory.h"
#include "inventory/StockQuantities.h"
#include "inventory/Transfers.h"

namespace {

constexpr std::string_view kTitle = "Delete Items";

// Which of the two windows asks: they differ in what holds an item and in what goes with it.
enum class LDeleteFrom { kMainWindow, kItemListWindow };

std::string ReferencedByOrders(const std::string& code) {
    return "You can not delete Item " + code + " because it may be referenced by orders";
}

bool IsInHistory(const LProfile& profile, std::string_view itemId) {
    return IsValueInCsvHistory(profile, kReceiveHistoryFolder, kHistoryItemId, itemId) ||
           IsValueInCsvHistory(profile, kSellHistoryFolder, kHistoryItemId, itemId);
}

// Only ever a picture: a record changed by hand must not make us delete another file.
void DeletePicture(const LProfile& profile, const LItem& item) {
    const std::string file = GetItemPictureFile(profile, item);
    if (file.ends_with(".bmp")) ::unlink(file.c_str());
}

// Takes the item out of the named location; true when it is left at others.
bool RemoveLocation(const LProfile& profile, LItem& item, std::string_view locationName) {
    LStockEntries entries = ParseLocationAndQuantities(item.GetView("LocationsAndQuantities"));
    const LFileStoreListBase locations = profile.List("Locations");
    LRecord location;
    std::erase_if(entries, [&](const LocationAndQuantities& entry) {
        // A location that is gone is listed without a name.
        if (!locations.Load(entry.location, location)) return locationName.empty();
        return location.GetView("Name") == locationName;
    });
    SetStockFields(profile, item, entries, LStockTotals::kAll);
    item.Flush();
    return !entries.empty();
}

constexpr char kDeletedItems[] = "DeletedItems";  // a record of "Misc"

std::string DeletedItemField(std::string_view itemId) { return "Item" + std::string(itemId); }

// The history names items by their keys alone: its reports would not know how this one was called.
void RememberDeleted(const LProfile& profile, const std::string& id, const std::string& code) {
    LRecord record;
    profile.OpenSettings(record, kDeletedItems);
    record.SetString(DeletedItemField(id), code);
    record.Flush();
}

// Each gives the words of the refusal, empty when nothing stood in the way.
std::string DeleteRecord(const LProfile& profile, LItem& item, LDeleteFrom from) {
    const std::string id = item.GetPrimaryKey(), code = item.GetString("Name");
    if (from == LDeleteFrom::kMainWindow) DeletePicture(profile, item);
    item.Invalidate();
    ForgetItemCode(profile, code);
    if (!profile.Items().Delete(id)) return "Item " + code + " could not be deleted.";
    if (from == LDeleteFrom::kItemListWindow) RememberDeleted(profile, id, code);
    return {};
}

std::string DeleteRow(const LProfile& profile, const LItemListRow& row, LDeleteFrom from) {
    const bool isMainWindow = from == LDeleteFrom::kMainWindow;
    const LMovementLock lock(profile);
    LItem item;
    if (!OpenItem(profile, item, row.code)) return {};  // somebody else was quicker
    const std::string id = item.GetPrimaryKey();
    if (isMainWindow && BOMItemQuantities::UsedInAnotherItemsBOM(profile, id)) {
        return "This item cannot be deleted because it is being used in another item's Bill of "
               "Materials.";
    }
    if (!isMainWindow && IsItemOnAnyOrder(profile, id)) return ReferencedByOrders(row.code);
    if (RemoveLocation(profile, item, row.locationName)) return {};
    if (isMainWindow && (IsItemOnAnyOrder(profile, id) || IsInHistory(profile, id) ||
                         IsItemOnOpenTransfer(profile, id))) {
        return "Item " + row.code + " cannot be deleted because it is referenced in a transaction.";
    }
    return DeleteRecord(profile, item, from);
}

bool DeleteRows(LUserInterface& ui, const LProfile& profile, const std::vector<LItemListRow>& rows,
                LDeleteFrom from) {
    if (!AskDelete(ui, kTitle, "Are you sure you want to delete the selected item(s)?")) {
        return false;
    }
    for (const LItemListRow& row : rows) {
        const std::string refusal = DeleteRow(profile, row, from);
        if (refusal.empty()) continue;
        ui.Inform(kTitle, refusal);
        return false;
    }
    return true;
}

}  // namespace

bool LItemsDelete(LUserInterface& ui, const LProfile& profile,
                  const std::vector<LItemListRow>& rows) {
    return DeleteRows(ui, profile, rows, LDeleteFrom::kMainWindow);
}

bool LItemsDeleteFromItemList(LUserInterface& ui, const LProfile& profile,
                              const std::vector<LItemListRow>& rows) {
    return DeleteRows(ui, profile, rows, LDeleteFrom::kItemListWindow);
}

std::string DeletedItemCode(const LProfile& profile, std::string_view itemId) {
    LRecord record;
    profile.OpenSettings(record, kDeletedItems);
    return record.GetString(DeletedItemField(itemId));
}
