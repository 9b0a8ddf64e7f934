#include "orders/OrderRecording.h"

#include <set>

#include "inventory/LItem.h"
#include "inventory/MovementLock.h"
#include "orders/LPOrderList.h"
#include "orders/RecurringOrders.h"

namespace {

// Whether the order can be read back: what a full disk refused must not cost the draft.
bool IsStored(const LProfile& profile, const LPOrder& order) {
    LPOrder stored;
    return profile.Orders().Load(order.GetPrimaryKey(), stored) &&
           stored.GetItemCount() == order.GetItemCount() &&
           stored.GetView("Date") == order.GetView("Date");
}

void SetOrderDates(const LProfile& profile, const LPOrder& order) {
    std::set<std::string> done;
    for (int line = 0; line < order.GetItemCount(); ++line) {
        const std::string itemId = order.GetItemID(line);
        LItem item;
        if (!done.insert(itemId).second || !profile.Items().Open(item, itemId)) continue;
        item.SetString("OrderDate", order.GetView("Date"));
    }
}

bool RecordDraft(const LProfile& profile, std::string& id) {
    LPOrder draft, recorded;
    if (!profile.OrdersDrafts().Open(draft, id)) return false;
    LOrderBeginRecorded(profile, recorded);
    recorded.CopyRecord(draft);
    recorded.SetBool("IsDraft", false);
    recorded.Flush();
    if (!IsStored(profile, recorded)) {
        profile.Orders().Delete(recorded.GetPrimaryKey());
        return false;
    }
    profile.OrdersDrafts().Delete(id);
    id = recorded.GetPrimaryKey();
    SetOrderDates(profile, recorded);
    return true;
}

bool RecordTemplate(const LProfile& profile, std::string& id) {
    LPOrder recurring;
    std::string newId;
    if (!profile.OrdersRecurring().Open(recurring, id)) return false;
    if (!LRecurringOrderRecord(profile, recurring, newId)) return false;
    id = newId;
    return true;
}

}  // namespace

bool LOrderRecord(const LProfile& profile, std::string& id) {
    const LMovementLock lock(profile);
    if (profile.OrdersDrafts().TestRecordExists(id)) return RecordDraft(profile, id);
    if (profile.OrdersRecurring().TestRecordExists(id)) return RecordTemplate(profile, id);
    return profile.Orders().TestRecordExists(id);
}

void LOrderChangeQuantity(const LProfile&, const LPOrder&, LOrderQuantities) {}

bool LOrderDelete(const LProfile& profile, std::string_view id) {
    const LMovementLock lock(profile);
    const bool wasDraft = profile.OrdersDrafts().Delete(id);
    const bool wasTemplate = profile.OrdersRecurring().Delete(id);
    const bool wasRecorded = profile.Orders().Delete(id);
    return wasDraft || wasTemplate || wasRecorded;
}

bool LOrdersDelete(LUserInterface& ui, const LProfile& profile,
                   const std::vector<std::string>& ids) {
    if (ids.empty()) return false;
    const bool isOne = ids.size() == 1;
    const std::string which =
        isOne ? "selected order" : "selected " + std::to_string(ids.size()) + " orders";
    if (!AskDelete(ui, isOne ? "Delete Order" : "Delete Orders",
                   "Are you sure you want to delete the " + which + "?")) {
        return false;
    }
    bool anyDeleted = false;
    for (const std::string& id : ids) anyDeleted = LOrderDelete(profile, id) || anyDeleted;
    return anyDeleted;
}
