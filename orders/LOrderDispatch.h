// How an order leaves the house: on paper, by e-mail, by fax.
#pragma once

#include <string_view>

#include "datastore/LProfile.h"
#include "orders/LPOrder.h"

// Each returns whether the order went out, as far as can be told. Called without any lock held; may
// take as long as a printer or a mail server does.
class LOrderDispatch {
public:
    virtual ~LOrderDispatch() = default;
    virtual bool Print(const LProfile& profile, const LPOrder& order) = 0;
    virtual bool Email(const LProfile& profile, const LPOrder& order, std::string_view address) = 0;
    virtual bool Fax(const LProfile& profile, const LPOrder& order, std::string_view number) = 0;
};
