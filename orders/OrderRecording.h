// Turning drafts and templates into recorded orders, and deleting orders.
#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "datastore/LProfile.h"
#include "orders/LPOrder.h"
#include "platform/LUserInterface.h"

// A draft becomes a recorded order under the next number and its items learn when they were
// ordered last; of a template one order is made, due or not. An order that is recorded already is
// left as it is. `id` becomes the recorded order's. Under the movement lock and on the order as it
// is then, so that of two people who record one draft the second finds it gone. False when there is
// no such order or it could not be stored; the draft is still there then.
[[nodiscard]] bool LOrderRecord(const LProfile& profile, std::string& id);

enum class LOrderQuantities { kAdd, kTakeBack };
// Where recording an order would change the quantities on order. It does nothing, on purpose: they
// are computed from the orders themselves whenever they are shown.
void LOrderChangeQuantity(const LProfile& profile, const LPOrder& order, LOrderQuantities which);

// Removes the order from each list that has it; no quantity changes. True when one had it.
bool LOrderDelete(const LProfile& profile, std::string_view id);
// Asks, then deletes the orders of these numbers. True when at least one was deleted.
bool LOrdersDelete(LUserInterface& ui, const LProfile& profile,
                   const std::vector<std::string>& ids);
