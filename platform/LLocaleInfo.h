// What the user's locale says about numbers, money, dates and paper. Data from ICU, so no locale
// need be installed on the machine.
#pragma once

#include <string>

enum class LDateOrder { kDayMonthYear, kMonthDayYear, kYearMonthDay };

struct LLocaleInfo {
    std::string country;            // two capital letters; empty when the locale names none
    std::string language;           // "en"; empty when unknown
    std::string decimalSeparator;   // empty when the locale has none
    std::string groupingSeparator;  // empty when the locale has none
    std::string currencySymbol;     // as written in that country; empty when it has none
    int currencyDigits = 2;
    LDateOrder dateOrder = LDateOrder::kMonthDayYear;
    std::string dateSeparator = "/";
    bool isMetric = false;
};

// The locale of $LC_ALL, or else of $LANG. Between those two, as in POSIX, $LC_NUMERIC counts for
// the separators, $LC_MONETARY for the currency and $LC_TIME for the dates. Read anew at every
// call, so that a test can set it. "C", "POSIX" and an empty name give no country and the
// separators "." and ",". ICU's data is loaded at the first call.
LLocaleInfo GetLocaleInfo();
// The same for a named locale such as "de_AT.UTF-8".
LLocaleInfo GetLocaleInfoFor(const std::string& posixName);
// Minutes west of UTC of the machine's time zone now, daylight saving included.
int MinutesWestOfUtc();
