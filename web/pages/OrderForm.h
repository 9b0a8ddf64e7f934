// What the order form holds, as texts by control id, and what the order operations take.
#pragma once

#include <string>
#include <vector>

#include "datastore/LHashTable.h"
#include "orders/OrderInput.h"

// Ids of the controls, which are their fields' names.
inline constexpr int kOrderSupplier = 101;
inline constexpr int kOrderDate = 102;
inline constexpr int kOrderReceiptDate = 103;
inline constexpr int kOrderLocation = 104;
inline constexpr int kOrderShipBy = 105;
inline constexpr int kOrderTracking = 106;
inline constexpr int kOrderAddress = 107;
inline constexpr int kOrderSameAsBillTo = 108;
inline constexpr int kOrderShippingAddress = 109;
inline constexpr int kOrderNotes = 110;
inline constexpr int kOrderInternalNotes = 111;
inline constexpr int kOrderUntaxed = 112;
inline constexpr int kOrderRates = 113;  // a group of the next two, only where rates have changed
inline constexpr int kOrderUseOldRates = 114;
inline constexpr int kOrderUseNewRates = 115;
inline constexpr int kOrderRowCount = 116;
inline constexpr int kOrderSeenReceived = 117;  // "1": they know that stock has been received

// A line's ids begin with its prefix, the last digit is the part; so the page's script can make
// further lines.
inline constexpr int kOrderFirstPrefix = 1000;
inline constexpr int kOrderRowCode = 0;
inline constexpr int kOrderRowDescription = 1;
inline constexpr int kOrderRowMeasure = 2;
inline constexpr int kOrderRowQuantity = 3;
inline constexpr int kOrderRowCost = 4;
inline constexpr int kOrderRowTax = 5;
inline constexpr int kOrderRowStored = 6;
inline constexpr int kOrderRowAmount = 7;  // shown only
constexpr int OrderRowControl(int row, int part) { return (kOrderFirstPrefix + row) * 10 + part; }

// What was entered for the order of that number; empty for a new one. A mangled count of rows is
// held to what an order can have.
LOrderInput OrderInputFrom(const LHashTable& fields, std::string id);
// The control that a refusal belongs to.
int OrderControlOf(const LOrderError& error);
