// Ordering what has run low: proposals for every item and location that falls short of its ideal
// quantity, and the orders that are made of them, one for each supplier and location.
#pragma once

#include <array>
#include <string>
#include <string_view>
#include <vector>

#include "datastore/LMoney.h"
#include "datastore/LProfile.h"
#include "platform/LUserInterface.h"

// Which shortages are proposed: every one, or those of more than so many percent of the ideal
// quantity.
inline constexpr std::string_view kLowStockAll = "All items with stock below ideal quantity";
inline constexpr std::string_view kLowStockPercent =
    "Items with current stock a percentage below ideal quantity";
inline constexpr std::array<std::string_view, 5> kLowStockPercents{"10 %", "20 %", "30 %", "40 %",
                                                                   "50 %"};
inline constexpr std::string_view kLowStockNote =
    "If an item is not shown, it may already be on a pending order.  Please see the list of 'Items "
    "on Order'.";

struct LLowStockSelection {
    double percentBelow = 0;  // 0: every shortage

    static LLowStockSelection All() { return {}; }
    // The number at the beginning of an entry of kLowStockPercents; held to 0 ... 100.
    static LLowStockSelection FromPercentText(std::string_view text);
};

struct LLowStockRow {
    std::string itemId, code, description;  // the description on one line
    std::string locationName;               // empty: the item's location is gone
    std::string supplierName;               // the item's; empty when it has none
    double orderQuantity = 0, inStock = 0, onOrder = 0, ideal = 0;  // in the item's unit
    LMoney unitCost;
    bool isTicked = true;

    LMoney LineTotal() const { return LineAmount(orderQuantity, unitCost); }
};

// The proposals in the order of the item list, an item's locations in stored order. Reads orders,
// locations and items once.
std::vector<LLowStockRow> FillOrderItemsLV(const LProfile& profile,
                                           const LLowStockSelection& selection);

// Checks what was typed into a cell. Empty when it is good: `text` is then written as the list
// writes it, and `row` has the value. Otherwise the complaint, and both are as they were.
enum class LLowStockColumn { kOrderQuantity, kUnitCost };
std::string ValidateCell(const LProfile& profile, LLowStockColumn column, std::string& text,
                         LLowStockRow& row);

// A complaint about the row of that index; -1 where it is about none in particular.
struct LLowStockError {
    std::string message;  // empty: none
    int row = -1;
};
struct LLowStockPlaced {
    std::vector<std::string> orderIds;
    // Texts about ticked rows that went into no order: the item, supplier or location is gone, or
    // the order could not be stored.
    std::vector<std::string> leftOut;
};
// Records one order for each supplier and location of the ticked rows, as of today. A row whose
// supplier's or location's name matches no entry of its list by letter case goes into no order. On
// an error nothing is created.
LLowStockError LLowStockPlaceOrders(const LProfile& profile, const std::vector<LLowStockRow>& rows,
                                    LLowStockPlaced& placed);
