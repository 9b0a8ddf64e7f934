// An order as plain text, as a supplier reads it: for paper and e-mail.
#pragma once

#include <string>

#include "datastore/LProfile.h"
#include "orders/LPOrder.h"

// "Purchase Order 10001", or the title that the business has chosen instead of the words.
std::string LOrderTitle(const LProfile& profile, const LPOrder& order);
// The whole order in UTF-8, lines ended by LF. Internal notes stay inside the house.
std::string LOrderPlainText(const LProfile& profile, const LPOrder& order);
