// A small hardware shop to try the program with.
#pragma once

#include <string>

#include "datastore/LDate.h"
#include "datastore/LProfile.h"

struct LSampleResult {
    std::string problem;  // empty when all went well, otherwise one line for the user
    int items = 0, suppliers = 0, customers = 0, receipts = 0, sales = 0, orders = 0;
};

// Fills an empty business through the same operations that people use: locations, suppliers,
// customers, items, two months of receipts and sales up to `today`, then some purchase orders. The
// same day always gives the same shop. Refuses a business that has items, so nobody's stock is
// mixed with it.
LSampleResult FillSampleShop(const LProfile& profile, const LDate& today);
