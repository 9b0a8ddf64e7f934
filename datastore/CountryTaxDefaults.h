// What a new business starts with, by the country of the machine's locale: taxes and paper.
#pragma once

#include <array>
#include <string_view>

struct LTaxDefault {
    std::string_view name;
    double ratePercent = 0;
};

struct LCountryTaxDefaults {
    std::string_view country;  // two capital letters; empty for "any other"
    int taxSystem = 0;
    int defaultRate = 0;  // 0 no tax, 1 to 3 the tax of that number
    std::array<LTaxDefault, 3> taxes;
    bool isInclusive = false;
};

// The first two letters of `country` count; an empty one stands for "US". Names that the country
// leaves open are the general ones.
LCountryTaxDefaults TaxDefaultsOf(std::string_view country);

enum class LPaperSize { kA4 = 0, kLetter = 2 };
LPaperSize PaperSizeOf(std::string_view country);
