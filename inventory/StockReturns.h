// Giving stock back to a supplier.
#pragma once

#include <functional>
#include <string>
#include <vector>

#include "datastore/LDate.h"
#include "datastore/LProfile.h"
#include "inventory/StockMovements.h"
#include "platform/LUserInterface.h"

// A line as typed, numbers in the profile's format.
struct LReturnLine {
    std::string itemCode, locationName, quantity, unitCost;
};
struct LReturn {
    std::string supplier, text;
    std::string orderId;  // of the order that the stock came with; empty: none
    LDate date;
    std::vector<LReturnLine> lines;
};
enum class LReturnField { kLines, kItem, kLocation, kQuantity, kCost };
// `line` is the index of the line that was refused, -1 where the list as a whole was.
struct LReturnError : LFieldError<LReturnField> {
    int line = -1;
};

// Checks all lines first; the first complaint stops it and nothing has changed then. Within a line
// the order is item, location, quantity (more than 0), cost (0 or more, empty counts as no amount).
// Then each line is taken out of stock, below zero if need be, and written to the receiving history
// as a receipt of the negative quantity. `linesReturned` counts those for which both succeeded;
// `returned` is called for each of them, so that a purchase order can take it off its counts.
LReturnError LReturnStock(const LProfile& profile, const LReturn& input, int& linesReturned,
                          const std::function<void(const LReceipt&)>& returned = {});
