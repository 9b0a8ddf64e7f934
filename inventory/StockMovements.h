// Selling, writing off and receiving without an order. StockReturns.h gives stock back.
#pragma once

#include <string>
#include <vector>

#include "datastore/LDate.h"
#include "datastore/LMoney.h"
#include "datastore/LProfile.h"
#include "platform/LUserInterface.h"

struct LSellLine {
    std::string itemCode, locationName;
    double quantity = 0;
    LMoney unitPrice;
};
struct LSale {
    bool isWriteOff = false;  // damaged or lost: no customer, no price
    std::string customer, reference;
    LDate date;
    std::vector<LSellLine> lines;
};
enum class LSaleField { kCustomer };
using LSaleError = LFieldError<LSaleField>;

// Takes the lines out of stock (it may go below zero) and writes one history row each. A new
// customer is kept; the customer "Damaged/lost" means a write-off too, since its rows could not be
// told apart. Lines without an item or location are left out; when no other is there, nothing
// happens at all, the customer is not kept either. The error carries the title "Invalid customer"
// as the first line of its message when the customer is missing.
//
// `linesSold` counts the lines that were sold whole. Not among them: lines whose item or location
// is unknown, which change nothing; lines of a built item with a missing component, which have no
// row although the components before it were taken out; and lines whose row could not be written,
// whose stock is put back.
LSaleError LSellStock(const LProfile& profile, const LSale& sale, int& linesSold);

// Puts one line into stock and writes its history row. False when no item has that id, when a
// component of a built item is missing (components already changed stay changed), when there is no
// such location, or when the row could not be written (stock is then as before).
struct LReceipt {
    std::string supplier, itemId, locationName, text, orderId;
    double quantity = 0;  // negative: goes back to the supplier
    LMoney unitCost;
    LDate date;
};
[[nodiscard]] bool ReceiveItem(const LProfile& profile, const LReceipt& receipt);
