#include "inventory/StockMovements.h"

#include <algorithm>

#include "datastore/NumberText.h"
#include "inventory/LItem.h"
#include "inventory/MasterRecords.h"
#include "inventory/MovementLock.h"
#include "inventory/StockChange.h"
#include "inventory/StockHistory.h"

namespace {

bool IsBlank(const LSellLine& line) { return line.itemCode.empty() || line.locationName.empty(); }

// The customer's name as it is kept; a name that is not known yet becomes a new customer.
std::string KeepCustomer(const LProfile& profile, std::string_view name) {
    const LCustomerList customers(profile);
    LCustomer customer;
    if (!OpenCustomer(customers, customer, name)) {
        customers.CreateNewRecord(customer);
        customer.SetString("Name", name);
        customer.Flush();
    }
    return customer.GetString("Name");
}

// Changes the stock and writes the row that says so: both or, when the row fails, neither.
template <typename WriteRow>
bool Move(const LProfile& profile, LItem& item, double delta, std::string_view locationName,
          const WriteRow& writeRow) {
    LStockChange stock(profile, locationName);
    if (!stock.Apply(item, delta)) return false;
    if (writeRow()) return true;
    stock.Undo();
    return false;
}

bool SellLine(const LProfile& profile, const LSellLine& line, LSellRow row) {
    LItem item;
    if (IsBlank(line) || !OpenItem(profile, item, line.itemCode)) return false;
    row.itemId = item.GetPrimaryKey();
    row.locationName = line.locationName;
    row.quantity = line.quantity;
    return Move(profile, item, -line.quantity, line.locationName,
                [&] { return CreateNewSellRecord(profile, row); });
}

}  // namespace

LSaleError LSellStock(const LProfile& profile, const LSale& sale, int& linesSold) {
    linesSold = 0;
    const std::string customer(TrimBlanks(sale.customer));
    const bool isWriteOff = sale.isWriteOff || customer == kDamagedLost;
    if (!isWriteOff && customer.empty()) {
        return LSaleError::At(LSaleField::kCustomer,
                              "Invalid customer\nThe customer field was left blank.");
    }
    if (std::all_of(sale.lines.begin(), sale.lines.end(), IsBlank)) return LSaleError::None();

    // For the whole sale: it happens before or after another movement, never around it.
    const LMovementLock lock(profile);
    LSellRow row;
    row.customer = isWriteOff ? kDamagedLost : KeepCustomer(profile, customer);
    row.reference = sale.reference;
    row.date = sale.date;
    for (const LSellLine& line : sale.lines) {
        row.unitPrice = isWriteOff ? LMoney{0, 0} : line.unitPrice;
        if (SellLine(profile, line, row)) ++linesSold;
    }
    return LSaleError::None();
}

bool ReceiveItem(const LProfile& profile, const LReceipt& receipt) {
    const LMovementLock lock(profile);
    LItem item;
    if (!profile.Items().Open(item, receipt.itemId) || item.GetView("Name").empty()) return false;

    LReceiveRow row;
    row.itemId = receipt.itemId;
    row.locationName = receipt.locationName;
    row.supplier = receipt.supplier;
    row.orderId = receipt.orderId;
    row.text = receipt.text;
    row.date = receipt.date;
    row.quantity = receipt.quantity;
    row.unitCost = receipt.unitCost;
    return Move(profile, item, receipt.quantity, receipt.locationName,
                [&] { return CreateNewReceiveRecord(profile, row); });
}
