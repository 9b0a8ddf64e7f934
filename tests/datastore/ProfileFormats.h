// A profile with settings of a test's choice, without a database.
#pragma once

#include <string>

#include "datastore/LLocaleCurrencyProfile.h"
#include "datastore/NumberText.h"

struct LTestFormats : LLocaleCurrencyProfile {
    LTestFormats() : LLocaleCurrencyProfile(LDefaults::kWithoutLocale) { currencySymbol_ = "$"; }
    LTestFormats(std::string decimal, std::string thousands) : LTestFormats() {
        decimalSymbol_ = std::move(decimal);
        thousandsSymbol_ = std::move(thousands);
    }
    LTestFormats& Currency(std::string symbol, int order, int currencyDigits) {
        currencySymbol_ = std::move(symbol);
        currencyOrder_ = order;
        currencyDigits_ = currencyDigits;
        return *this;
    }
};
