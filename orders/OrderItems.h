// The items of an order's lines: found by what was typed, made where there is none yet.
#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <unordered_map>

#include "datastore/LMoney.h"
#include "datastore/LProfile.h"
#include "orders/LPOrder.h"

// An item as an order line describes it.
struct LNewOrderItem {
    std::string code, description;
    std::string supplierName, locationId;
    LMoney unitCost;
    int taxIndex = 0;  // in the business's tax list
};

// Finds and makes items for one order. Used under the movement lock. Reads all items once, when a
// code is met that no item bears exactly.
class LOrderItems {
public:
    explicit LOrderItems(const LProfile& profile) : profile_(profile) {}

    // The key of the item of that code: the one that bears it exactly, else one that differs in
    // letter case only, since codes are unique ignoring case. Empty when there is none.
    std::string Find(std::string_view code);
    // Whether an item made of that code can have the code as its key. (An older item may have it:
    // keys are numbers, and so are some codes.)
    bool IsKeyFree(std::string_view code) const;
    // Makes one with the code as key and as code, nothing in stock and watched from 1 on at the
    // order's location. Returns its key, empty when it could not be stored.
    std::string Create(const LNewOrderItem& newItem);

private:
    void ReadAll();

    const LProfile& profile_;
    std::optional<std::unordered_map<std::string, std::string>> keys_;  // by folded code
};

// Whether a line of the order is not tied to an item: a draft keeps a code that nobody has as it
// was typed.
bool LOrderNamesNewItems(const LProfile& profile, const LPOrder& order);
// Makes the items that the lines of a stored order name and nobody has; a line whose code some item
// bears is tied to it. Under the movement lock, on the order as it is then. Returns how many were
// made, -1 when there is no such order.
int LOrderRegisterItems(const LProfile& profile, std::string_view orderId);
