#include "orders/OrderReceiving.h"

#include "inventory/LItem.h"
#include "inventory/MovementLock.h"
#include "orders/LPOrderList.h"
#include "orders/OrderInput.h"

namespace {

enum class LDirection { kIn, kOut };

// What one booking of a whole order did.
struct LBooked {
    int lines = 0;
    bool anyItemThere = false;
};

LBooked BookLines(const LProfile& profile, const LPOrder& order, LReceipt receipt,
                  LDirection direction, std::vector<std::string>* leftOut) {
    LBooked booked;
    for (int line = 0; line < order.GetItemCount(); ++line) {
        const double quantity = order.GetItemQty(line);
        receipt.itemId = order.GetItemID(line);
        receipt.quantity = direction == LDirection::kIn ? quantity : -quantity;
        receipt.unitCost = order.GetItemUnitCost(profile, line);
        if (ReceiveItem(profile, receipt)) {
            ++booked.lines;
            continue;
        }
        booked.anyItemThere =
            booked.anyItemThere || profile.Items().TestRecordExists(receipt.itemId);
        if (leftOut == nullptr) continue;
        leftOut->push_back("Line " + std::to_string(line + 1) + ", " +
                           LOrderLineCode(profile, order, line) + ", could not be booked.");
    }
    return booked;
}

// The counts say what the status says, so that single movements later on start from the truth.
void MarkAll(LPOrder& order, LDirection direction) {
    const bool isIn = direction == LDirection::kIn;
    for (int line = 0; line < order.GetItemCount(); ++line) {
        const double received = isIn ? order.GetItemQty(line) : 0;
        if (received != order.GetItemQtyReceived(line)) order.SetItemQtyReceived(line, received);
    }
    order.SetStockReceivedStatus(isIn ? StockFullyReceived : StockNotReceived);
}

bool BookOrder(const LProfile& profile, std::string_view orderId, std::string_view storedDate,
               std::string_view note, LDirection direction, std::vector<std::string>* leftOut) {
    const LMovementLock lock(profile);
    LPOrder order;
    const std::optional<LDate> date = LDate::FromStored(storedDate);
    if (!date || !profile.Orders().Open(order, orderId)) return false;
    LReceipt receipt;
    order.GetSupplierName(profile, receipt.supplier);
    order.GetLocationName(profile, receipt.locationName);
    if (receipt.locationName.empty()) return false;
    receipt.date = *date;
    receipt.text = note;
    receipt.orderId = order.GetPrimaryKey();
    const LBooked booked = BookLines(profile, order, receipt, direction, leftOut);
    if (booked.lines == 0 && booked.anyItemThere) return false;
    MarkAll(order, direction);
    if (direction == LDirection::kIn) order.SetString("Receipt Date", storedDate);
    return order.Flush();
}

// How the two commands ask and tell.
struct LCommandWords {
    std::string_view title, question, changed, refused;
};
constexpr LCommandWords kReceiveWords{
    "Receive Stock", "Are you sure you want to receive stock for the selected order?",
    "Stock has been received or returned for this order in the meantime. Look at it again first.",
    "The stock could not be received. Check that the order and its location are still there."};
constexpr LCommandWords kReturnWords{
    "Return Stock", "Are you sure you want to return the stock of the selected order?",
    "Stock has been received or returned for this order in the meantime. Look at it again first.",
    "The stock could not be returned. Check that the order and its location are still there."};

std::string Joined(std::vector<std::string>& lines) {
    std::string text;
    for (const std::string& line : lines) text += (text.empty() ? "" : "\n") + line;
    return text;
}

bool RunCommand(LUserInterface& ui, const LProfile& profile, const std::string& orderId,
                int seenStatus, const LCommandWords& words, LDirection direction) {
    const std::string title(words.title);
    if (ui.Ask(title, words.question, {title, "Cancel"}) != title) return false;
    std::vector<std::string> leftOut;
    bool isAsSeen = true, isDone = false;
    {
        const LMovementLock lock(profile);
        LPOrder order;
        isAsSeen =
            !profile.Orders().Open(order, orderId) || order.GetStockReceivedStatus() == seenStatus;
        isDone = isAsSeen &&
                 BookOrder(profile, orderId, LDate::Today().ToStored(), "", direction, &leftOut);
    }
    if (!isDone) ui.Inform(title, isAsSeen ? words.refused : words.changed);
    if (isDone && !leftOut.empty()) ui.Inform(title, Joined(leftOut));
    return isDone;
}

// Under the movement lock of the movement that is counted.
void CountOnOrder(const LProfile& profile, std::string_view orderId, std::string_view itemId,
                  std::string_view locationName, double quantity) {
    LPOrder order;
    std::string code;
    if (orderId.empty() || !profile.Orders().Open(order, orderId)) return;
    GetItemCode(profile, itemId, code);
    order.MarkStockReceived(profile, code, locationName, quantity);
    order.Flush();
}

}  // namespace

bool ReceiveOrder(const LProfile& profile, std::string_view orderId, std::string_view storedDate,
                  std::string_view note, std::vector<std::string>* leftOut) {
    return BookOrder(profile, orderId, storedDate, note, LDirection::kIn, leftOut);
}

bool ReturnOrder(const LProfile& profile, std::string_view orderId, std::string_view storedDate,
                 std::string_view note, std::vector<std::string>* leftOut) {
    return BookOrder(profile, orderId, storedDate, note, LDirection::kOut, leftOut);
}

bool LOrderReceiveCommand(LUserInterface& ui, const LProfile& profile, const std::string& orderId,
                          int seenStatus) {
    return RunCommand(ui, profile, orderId, seenStatus, kReceiveWords, LDirection::kIn);
}

bool LOrderReturnCommand(LUserInterface& ui, const LProfile& profile, const std::string& orderId,
                         int seenStatus) {
    return RunCommand(ui, profile, orderId, seenStatus, kReturnWords, LDirection::kOut);
}

bool LOrderReceiveItem(const LProfile& profile, const LReceipt& receipt) {
    const LMovementLock lock(profile);
    if (!ReceiveItem(profile, receipt)) return false;
    CountOnOrder(profile, receipt.orderId, receipt.itemId, receipt.locationName, receipt.quantity);
    return true;
}

LReturnError LOrderReturnStock(const LProfile& profile, const LReturn& input, int& linesReturned) {
    return LReturnStock(profile, input, linesReturned, [&](const LReceipt& returned) {
        CountOnOrder(profile, returned.orderId, returned.itemId, returned.locationName,
                     returned.quantity);
    });
}

int LOrderDeleteReceiveRows(LUserInterface& ui, const LProfile& profile,
                            const std::vector<LHistoryRowId>& rows) {
    return LDeleteReceiveRows(ui, profile, rows, [&](const LReceiveRow& row) {
        CountOnOrder(profile, row.orderId, row.itemId, row.locationName, -row.quantity);
    });
}
