// The purchase orders of the sample shop: one of each kind that a person meets.
#pragma once

#include <string>

#include "datastore/LDate.h"
#include "datastore/LProfile.h"
#include "platform/LUserInterface.h"

struct LSampleOrdersResult {
    std::string problem;             // empty when all went well, otherwise one line for the user
    int recorded = 0, receipts = 0;  // orders that were placed, and rows that came in for them
};

// Through the operations of the order editor: an order that has been received, one of which a part
// has come, one that is open, a draft with an item that nobody has yet, and a monthly template that
// is not due before `today` is over. Needs the sample shop's locations, suppliers and items.
LSampleOrdersResult AddSampleOrders(LUserInterface& ui, const LProfile& profile,
                                    const LDate& today);
