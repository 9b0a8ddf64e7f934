// Taking rows out of the movement history, and their quantities back.
#pragma once

#include <functional>
#include <vector>

#include "inventory/StockHistory.h"

// Asks, then deletes the rows and undoes what each of them did to the stock: what was sold comes
// back to its location, what was received goes out again, below zero if need be. A row of an item
// that is gone is only deleted. A row that has changed or gone meanwhile, or whose quantity cannot
// be put back, stays, and the reason is told; the others are deleted all the same. Returns how many
// rows were deleted. Beside rows that other threads and processes append this is safe.
int LDeleteSellRows(LUserInterface& ui, const LProfile& profile,
                    const std::vector<LHistoryRowId>& rows);
// `deleted` is called for each row, under the business's movement lock, once it is gone: a purchase
// order that the stock was received against no longer counts it.
int LDeleteReceiveRows(LUserInterface& ui, const LProfile& profile,
                       const std::vector<LHistoryRowId>& rows,
                       const std::function<void(const LReceiveRow&)>& deleted = {});
