// How numbers are written: symbols, digits, grouping.
#pragma once

#include <memory>
#include <optional>
#include <string>
#include <string_view>

#include "platform/LLocaleInfo.h"

// The locale of the process, asked for once and again only when the environment names another one.
// Any thread.
std::shared_ptr<const LLocaleInfo> ProcessLocale();

// One thread at a time.
class LLocaleNumberProfile {
public:
    LLocaleNumberProfile();  // the locale's symbols (at most 5 characters), "." and "," without one

    // With `digits` decimals (held to 0 ... 15), thousands separators on request; never "-0". What
    // is no finite number is written as 0.
    std::string FormatNumber(double value, int digits, bool withThousands) const;
    // A quantity as it is shown: the profile's digits and thousands separators.
    std::string FormatQuantity(double value) const;
    // What a person typed: the profile's symbols, blanks around it, thousands separators only where
    // they belong. Nothing for any other text, for an empty one, and for what no double can hold.
    std::optional<double> ParseNumber(std::string_view text) const;

    const std::string& DecimalSymbol() const { return decimalSymbol_; }
    const std::string& ThousandsSymbol() const { return thousandsSymbol_; }
    int DigitsAfterDecimalPoint() const { return digits_; }  // 0 ... 15

protected:
    enum class LDefaults { kWithoutLocale };
    explicit LLocaleNumberProfile(LDefaults) {}
    // Looked up when first needed: most profiles never ask.
    const LLocaleInfo& Locale() const;

    std::string decimalSymbol_ = ".", thousandsSymbol_ = ",";
    int digits_ = 2;

private:
    mutable std::shared_ptr<const LLocaleInfo> locale_;
};
