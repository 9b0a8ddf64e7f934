// How money and dates are written.
#pragma once

#include <optional>
#include <string>
#include <string_view>

#include "datastore/LDate.h"
#include "datastore/LLocaleNumberProfile.h"
#include "datastore/LMoney.h"

// One thread at a time.
class LLocaleCurrencyProfile : public LLocaleNumberProfile {
public:
    LLocaleCurrencyProfile();

    // With the symbol placed by the currency order and thousands separators; a minus sign stands
    // before all of it. A symbol that would change the amount is left out: one with a digit or a
    // sign in it, or the decimal symbol.
    std::string FormatMoney(const LMoney& amount) const;
    // The same without symbol and thousands separators: what stands in an input field.
    std::string FormatMoneyInput(const LMoney& amount) const;
    // Accepts the amount with or without the symbol, on either side, whatever the currency order.
    // The digits are the profile's currency digits, or as many as were typed when that is more (at
    // most 6). Nothing when it is no amount or does not fit into 64 bits. May be negative.
    std::optional<LMoney> ParseMoney(std::string_view text) const;

    // In the locale's order of day, month and year, all digits.
    std::string FormatDate(const LDate& date) const;
    // That order with "/", "-", ".", a blank or the locale's separator between, or year, month and
    // day when the first number has four digits (YYYY-MM-DD is what date inputs of browsers send).
    // A year of two digits is one of 2000 to 2099.
    std::optional<LDate> ParseDate(std::string_view text) const;

    const std::string& CurrencySymbol() const { return currencySymbol_; }
    // 0 symbol before, 1 after, 2 before with a blank, 3 after with a blank.
    int CurrencyOrder() const { return currencyOrder_; }
    int CurrencyDigits() const { return currencyDigits_; }  // 0 ... 15
    LDateOrder DateOrder() const { return Locale().dateOrder; }

protected:
    using LLocaleNumberProfile::LDefaults;
    explicit LLocaleCurrencyProfile(LDefaults defaults) : LLocaleNumberProfile(defaults) {}

    std::string currencySymbol_;
    int currencyOrder_ = 0, currencyDigits_ = 2;
};
