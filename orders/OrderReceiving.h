// Stock that arrives for an order or goes back: into stock, into the history, and onto the order's
// counts.
#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "datastore/LDate.h"
#include "datastore/LProfile.h"
#include "inventory/HistoryDelete.h"
#include "inventory/StockMovements.h"
#include "inventory/StockReturns.h"
#include "orders/LPOrder.h"
#include "platform/LUserInterface.h"

// --- Whole orders. ---

// Both run under the movement lock on the recorded order as it is then; drafts and templates are
// not received. False, and nothing changed, when there is no such order, its location is gone, the
// date is none, or nothing at all could be booked though there are items to book. `leftOut`, when
// given, gets a text for each line that could not be booked (its item or a component of it is gone,
// its history row could not be written); the order's status follows all the same.

// Puts the whole ordered quantity of every line into stock at the order's location, also when part
// of it was received before, and marks the order received on that day. `note` goes into the
// history.
[[nodiscard]] bool ReceiveOrder(const LProfile& profile, std::string_view orderId,
                                std::string_view storedDate, std::string_view note,
                                std::vector<std::string>* leftOut = nullptr);
// Takes it all out again, below zero if need be, with history rows of negative quantity; nothing
// counts as received afterwards.
[[nodiscard]] bool ReturnOrder(const LProfile& profile, std::string_view orderId,
                               std::string_view storedDate, std::string_view note,
                               std::vector<std::string>* leftOut = nullptr);

// The commands of the order list: ask, act with today's date, tell what was left out. `seenStatus`
// is the status that the person saw: when someone else was quicker they are told so, and nothing is
// booked twice. False when nothing was booked.
bool LOrderReceiveCommand(LUserInterface& ui, const LProfile& profile, const std::string& orderId,
                          int seenStatus);
bool LOrderReturnCommand(LUserInterface& ui, const LProfile& profile, const std::string& orderId,
                         int seenStatus);

// --- Single movements that name an order (`orderId`; empty for none). ---

// Each moves the stock as the operation of inventory/ does and then counts what was moved on the
// order, when there is a recorded one of that number. Stock and count change under one movement
// lock.
[[nodiscard]] bool LOrderReceiveItem(const LProfile& profile, const LReceipt& receipt);
LReturnError LOrderReturnStock(const LProfile& profile, const LReturn& input, int& linesReturned);
int LOrderDeleteReceiveRows(LUserInterface& ui, const LProfile& profile,
                            const std::vector<LHistoryRowId>& rows);
