#include "orders/OrderItems.h"

#include "inventory/ItemCodeCache.h"
#include "inventory/LItem.h"
#include "inventory/MovementLock.h"
#include "inventory/StoredLists.h"
#include "orders/LPOrderList.h"
#include "orders/OrderInput.h"
#include "orders/OrderTaxes.h"
#include "platform/CaseFolding.h"

namespace {

// Nothing there, a warning and an ideal quantity of 1.
std::string FirstStock(std::string_view locationId) {
    std::string text = "\"";
    AppendStoredText(text, locationId);
    return text + "/0/1/1\",";
}

void SetFields(LItem& item, const LNewOrderItem& newItem) {
    item.SetString("Name", newItem.code);
    item.SetString("Description", newItem.description);
    item.SetString("Supplier", newItem.supplierName);
    item.SetString("LocationsAndQuantities", FirstStock(newItem.locationId));
    item.SetCost(newItem.unitCost);
    item.SetPrice(newItem.unitCost);
    item.SetInt("TaxRate", newItem.taxIndex);
    item.SetFloat("Quantity", 0);
    item.SetFloat("WarnQuantity", 1);
    item.SetFloat("IdealQuantity", 1);
}

bool IsTiedToItem(const LProfile& profile, const std::string& itemId) {
    return itemId.empty() || profile.Items().TestRecordExists(itemId);
}

LNewOrderItem ItemOfLine(const LProfile& profile, const LTaxOptions& options, const LPOrder& order,
                         int line) {
    LNewOrderItem item;
    item.code = order.GetItemID(line);
    item.description = order.GetItemDescription(line);
    order.GetSupplierName(profile, item.supplierName);
    item.locationId = order.GetString("Location");
    item.unitCost = order.GetItemUnitCost(profile, line);
    item.taxIndex = ListNameToTax(options, LOrderLineTaxChoice(options, order, line));
    return item;
}

}  // namespace

void LOrderItems::ReadAll() {
    keys_.emplace();
    LItemKeysByCode byCode;
    LItem item;
    const auto iterator = profile_.Items().CreateIteratorBase(item);
    for (; item.IsBound(); iterator->Next(item)) {
        const std::string_view code = item.GetView("Name");
        keys_->emplace(FoldCase(code), item.GetPrimaryKey());
        byCode.Set(code, item.GetPrimaryKey());
    }
    RememberItemCodes(profile_, std::move(byCode));
}

std::string LOrderItems::Find(std::string_view code) {
    LItem item;
    if (OpenRememberedItem(profile_, item, code)) return item.GetPrimaryKey();
    // The usual key of an item that an order made.
    if (profile_.Items().Open(item, code) && item.GetView("Name") == code) {
        return item.GetPrimaryKey();
    }
    if (!keys_) ReadAll();
    const auto found = keys_->find(FoldCase(code));
    return found == keys_->end() ? std::string() : found->second;
}

bool LOrderItems::IsKeyFree(std::string_view code) const {
    return !profile_.Items().TestRecordExists(code);
}

std::string LOrderItems::Create(const LNewOrderItem& newItem) {
    LItem item;
    if (IsKeyFree(newItem.code)) {
        profile_.Items().CreateNewRecord(item, newItem.code);
    } else {
        profile_.Items().CreateNewRecord(item);
    }
    SetFields(item, newItem);
    item.Flush();
    const std::string key = item.GetPrimaryKey();
    if (key.empty() || !profile_.Items().TestRecordExists(key)) return {};
    RememberItemCode(profile_, newItem.code, key);
    if (keys_) keys_->emplace(FoldCase(newItem.code), key);
    return key;
}

bool LOrderNamesNewItems(const LProfile& profile, const LPOrder& order) {
    for (int line = 0; line < order.GetItemCount(); ++line) {
        if (!IsTiedToItem(profile, order.GetItemID(line))) return true;
    }
    return false;
}

int LOrderRegisterItems(const LProfile& profile, std::string_view orderId) {
    const LMovementLock lock(profile);
    LPOrder order;
    if (!LPOrderOpen(profile, order, orderId)) return -1;
    LOrderItems items(profile);
    const LTaxOptions options(profile);
    int made = 0;
    for (int line = 0; line < order.GetItemCount(); ++line) {
        const std::string code = order.GetItemID(line);
        if (IsTiedToItem(profile, code)) continue;
        std::string key = items.Find(code);
        if (key.empty()) {
            key = items.Create(ItemOfLine(profile, options, order, line));
            if (!key.empty()) ++made;
        }
        if (!key.empty()) order.SetItemID(line, key);
    }
    order.Flush();
    return made;
}
