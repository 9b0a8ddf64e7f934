// The counts of what has arrived of an order, line by line, and the status that follows from them.
#include <algorithm>
#include <cmath>

#include "orders/LPOrder.h"

namespace {

// Quantities that differ by less are equal, a smaller one is none.
constexpr double kNoQuantity = 0.000001;

bool IsZero(double quantity) { return std::abs(quantity) < kNoQuantity; }

// What counted before is what the status says, whatever the lines still hold.
void PrepareCounts(LPOrder& order, double quantity) {
    const eStockReceivedStatus status = order.GetStockReceivedStatus();
    const bool isTakenBack = quantity < 0 && status == StockFullyReceived;
    const bool isFirst = quantity > 0 && status == StockNotReceived;
    if (!isTakenBack && !isFirst) return;
    order.SetStockReceivedStatus(StockPartiallyReceived);
    for (int line = 0; line < order.GetItemCount(); ++line) {
        order.SetItemQtyReceived(line, isTakenBack ? order.GetItemQty(line) : 0);
    }
}

// Counts on one line what of `rest` fits there and returns what is left.
double CountOnLine(LPOrder& order, int line, double rest) {
    const double ordered = order.GetItemQty(line);
    double received = order.GetItemQtyReceived(line);
    const double take = rest > 0 ? std::min(rest, ordered - received) : std::max(rest, -received);
    if (IsZero(take)) return rest;
    received += take;
    if (IsZero(received - ordered)) received = ordered;
    if (IsZero(received)) received = 0;
    order.SetItemQtyReceived(line, received);
    return rest - take;
}

eStockReceivedStatus StatusOfCounts(const LPOrder& order) {
    bool isAllThere = true, isAnythingThere = false;
    for (int line = 0; line < order.GetItemCount(); ++line) {
        const double received = order.GetItemQtyReceived(line);
        isAllThere = isAllThere && order.GetItemQty(line) - received < kNoQuantity;
        isAnythingThere = isAnythingThere || received >= kNoQuantity;
    }
    if (isAllThere) return StockFullyReceived;
    return isAnythingThere ? StockPartiallyReceived : StockNotReceived;
}

}  // namespace

void LPOrder::MarkStockReceived(const LProfile& profile, std::string_view itemCode,
                                std::string_view, double quantity) {
    if (!std::isfinite(quantity) || IsZero(quantity)) return;
    PrepareCounts(*this, quantity);
    bool anyMatches = GetItemCount() == 0;  // nothing was ordered, so all of it is there
    std::string code;
    double rest = quantity;
    for (int line = 0; line < GetItemCount() && !IsZero(rest); ++line) {
        GetItemCode(profile, GetItemID(line), code);
        if (code != itemCode) continue;
        anyMatches = true;
        rest = CountOnLine(*this, line, rest);
    }
    if (anyMatches) SetStockReceivedStatus(StatusOfCounts(*this));
}
