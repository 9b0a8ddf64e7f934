#include <map>
#include <memory>
#include <utility>

#include "inventory/LItem.h"
#include "inventory/Locations.h"
#include "inventory/MovementLock.h"
#include "inventory/Parties.h"
#include "orders/LPOrderList.h"
#include "orders/LowStockOrders.h"
#include "orders/OrderTotals.h"

namespace {

using LRows = std::vector<const LLowStockRow*>;
// Ticked rows by the names of their supplier and location.
using LGroups = std::map<std::pair<std::string_view, std::string_view>, LRows>;

struct LPlannedOrder {
    std::unique_ptr<LPOrder> order;  // unbound
    LRows rows;
};

class LPlacing {
public:
    LPlacing(const LProfile& profile, const std::vector<LLowStockRow>& rows,
             LLowStockPlaced& placed);

    // Makes all orders without storing any. False when an amount does not fit.
    bool Plan();
    void Record();

private:
    bool PlanOrder(const LSupplier& supplier, const LLocation& location, const LRows& rows);
    void SaveOrderDetails(LPOrder& order, const LSupplier& supplier,
                          const LLocation& location) const;
    bool AddItemToOrder(LPOrder& order, const LLowStockRow& row) const;
    void LeaveOut(const LLowStockRow& row, std::string_view reason);
    void MarkUsed(const LPlannedOrder& planned) const;
    bool IsStored(const LPOrder& order) const;

    const LProfile& profile_;
    const LTaxOptions taxes_;
    const std::string today_ = LDate::Today().ToStored();
    std::string companyAddress_;
    LGroups groups_;
    std::vector<LPlannedOrder> planned_;
    LLowStockPlaced& placed_;
};

LPlacing::LPlacing(const LProfile& profile, const std::vector<LLowStockRow>& rows,
                   LLowStockPlaced& placed)
    : profile_(profile), taxes_(profile), placed_(placed) {
    LRecord company;
    profile.OpenSettings(company, "Company");
    companyAddress_ = company.GetString("Address");
    for (const LLowStockRow& row : rows) {
        if (row.isTicked) groups_[{row.supplierName, row.locationName}].push_back(&row);
    }
}

bool LPlacing::Plan() {
    bool allFit = true;
    LSupplierList(profile_).ForEach([&](const LSupplier& supplier) {
        LLocationList(profile_).ForEach([&](const LLocation& location) {
            // Taken out: of two entries of one name the first one gets the rows.
            const auto group =
                groups_.extract({supplier.GetView("Name"), location.GetView("Name")});
            if (!group.empty()) allFit = PlanOrder(supplier, location, group.mapped()) && allFit;
            return !groups_.empty();
        });
        return !groups_.empty();
    });
    for (const auto& [names, rows] : groups_) {
        for (const LLowStockRow* row : rows) LeaveOut(*row, "its supplier or location is gone");
    }
    return allFit;
}

bool LPlacing::PlanOrder(const LSupplier& supplier, const LLocation& location, const LRows& rows) {
    LPlannedOrder planned{std::make_unique<LPOrder>(), {}};
    LPOrder& order = *planned.order;
    SaveOrderDetails(order, supplier, location);
    for (const LLowStockRow* row : rows) {
        if (AddItemToOrder(order, *row)) {
            planned.rows.push_back(row);
        } else {
            LeaveOut(*row, "the item is gone");
        }
    }
    if (planned.rows.empty()) return true;
    order.SetInt("OrderType", kOrderTypePurchase);
    order.SetBool("IsDraft", false);
    order.SetBool("IsTaxInclusive", taxes_.IsInclusive());
    // So that its total can be found again when the rates have moved on.
    LOrderStoreLineRates(taxes_, order, LTaxRates::kPresent);
    if (!LOrderSumTotals(profile_, order, LTaxRates::kPresent)) return false;
    planned_.push_back(std::move(planned));
    return true;
}

void LPlacing::SaveOrderDetails(LPOrder& order, const LSupplier& supplier,
                                const LLocation& location) const {
    order.SetString("Date", today_);
    order.SetString("Receipt Date", today_);
    order.SetString("Supplier", supplier.GetPrimaryKey());
    order.SetString("Location", location.GetPrimaryKey());
    order.SetString("ShippingAddress", location.GetView("Address"));
    order.SetString("Address", companyAddress_);
}

bool LPlacing::AddItemToOrder(LPOrder& order, const LLowStockRow& row) const {
    LItem item;
    if (!profile_.Items().Load(row.itemId, item)) return false;
    const int line = order.GetItemCount();
    order.SetItemCount(line + 1);
    order.SetItemQty(line, row.orderQuantity);
    order.SetItemDescription(line, row.description);
    order.SetItemUnitValue(line, row.unitCost.minorUnits);
    order.SetItemUnitValueDigits(line, row.unitCost.digits);
    order.SetItemID(line, row.itemId);
    order.SetItemMeasure(line, item.GetView("Measure"));
    return true;
}

void LPlacing::LeaveOut(const LLowStockRow& row, std::string_view reason) {
    placed_.leftOut.push_back(
        std::string("Item ").append(row.code).append(" was not ordered: ").append(reason) + ".");
}

void LPlacing::Record() {
    for (const LPlannedOrder& planned : planned_) {
        LPOrder order;
        LOrderBeginRecorded(profile_, order);
        order.CopyRecord(*planned.order);
        order.Flush();
        if (!IsStored(order)) {
            profile_.Orders().Delete(order.GetPrimaryKey());
            for (const LLowStockRow* row : planned.rows) {
                LeaveOut(*row, "its order could not be saved");
            }
            continue;
        }
        placed_.orderIds.push_back(order.GetPrimaryKey());
        MarkUsed(planned);
    }
}

// Whether it can be read back: a save does not tell when the disk was full.
bool LPlacing::IsStored(const LPOrder& order) const {
    LPOrder stored;
    return profile_.Orders().Load(order.GetPrimaryKey(), stored) &&
           stored.GetItemCount() == order.GetItemCount();
}

void LPlacing::MarkUsed(const LPlannedOrder& planned) const {
    for (const LLowStockRow* row : planned.rows) {
        LItem item;
        if (!profile_.Items().Open(item, row->itemId)) continue;
        item.SetString("LastUsed", today_);
        item.Flush();
    }
}

}  // namespace

LLowStockError LLowStockPlaceOrders(const LProfile& profile, const std::vector<LLowStockRow>& rows,
                                    LLowStockPlaced& placed) {
    for (size_t i = 0; i < rows.size(); ++i) {
        if (rows[i].isTicked && rows[i].supplierName.empty()) {
            return {"You must select a supplier for each item before placing an order.",
                    static_cast<int>(i)};
        }
    }
    const LMovementLock lock(profile);
    LPlacing placing(profile, rows, placed);
    if (!placing.Plan()) {
        placed = {};
        return {
            "An order comes to more than can be counted. Please check the quantities and "
            "costs."};
    }
    placing.Record();
    return {};
}
