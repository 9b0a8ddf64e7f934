#include "platform/LLocaleInfo.h"

#include <unicode/ucurr.h>
#include <unicode/udat.h>
#include <unicode/uloc.h>
#include <unicode/unistr.h>
#include <unicode/unum.h>

#include <algorithm>
#include <array>
#include <cctype>
#include <cstdlib>
#include <ctime>
#include <string_view>

namespace {

constexpr int32_t kBufferSize = 64;

struct LLocaleName {
    std::string language;
    std::string country;

    // Latin digits and the western calendar: the program writes no others.
    std::string ForIcu() const {
        const std::string base = country.empty() ? language : language + "_" + country;
        return base + "@calendar=gregorian;numbers=latn";
    }
};

bool IsLetters(std::string_view text, size_t minimum, size_t maximum) {
    return text.size() >= minimum && text.size() <= maximum &&
           std::all_of(text.begin(), text.end(),
                       [](unsigned char byte) { return std::isalpha(byte) != 0 && byte < 0x80; });
}

// The data holds odd entries for codes that are no country's; "ZZ" even has a currency.
bool IsCountry(std::string_view code) {
    for (const char* const* country = uloc_getISOCountries(); *country != nullptr; ++country) {
        if (code == *country) return true;
    }
    return false;
}

// "de_AT.UTF-8@euro"; both parts are empty for "C" and for whatever is no locale name.
LLocaleName ParsePosixName(std::string_view name) {
    name = name.substr(0, name.find_first_of(".@"));
    const size_t split = name.find_first_of("_-");
    const std::string_view language = name.substr(0, split);
    LLocaleName parsed;
    if (!IsLetters(language, 2, 3)) return parsed;
    parsed.language = language;
    const std::string_view country =
        split == std::string_view::npos ? std::string_view() : name.substr(split + 1);
    if (IsLetters(country, 2, 2)) parsed.country = country;
    for (char& byte : parsed.language) byte = static_cast<char>(std::tolower(byte));
    for (char& byte : parsed.country) byte = static_cast<char>(std::toupper(byte));
    if (!IsCountry(parsed.country)) parsed.country.clear();
    return parsed;
}

std::string ToUtf8(const UChar* text, int32_t length) {
    std::string out;
    icu::UnicodeString(text, length).toUTF8String(out);
    return out;
}

void FillSeparators(LLocaleInfo& info, const std::string& locale) {
    UErrorCode status = U_ZERO_ERROR;
    UNumberFormat* format = unum_open(UNUM_DECIMAL, nullptr, 0, locale.c_str(), nullptr, &status);
    if (U_FAILURE(status)) return;
    std::array<UChar, kBufferSize> text{};
    int32_t length =
        unum_getSymbol(format, UNUM_DECIMAL_SEPARATOR_SYMBOL, text.data(), kBufferSize, &status);
    if (U_SUCCESS(status)) info.decimalSeparator = ToUtf8(text.data(), length);
    length =
        unum_getSymbol(format, UNUM_GROUPING_SEPARATOR_SYMBOL, text.data(), kBufferSize, &status);
    if (U_SUCCESS(status)) info.groupingSeparator = ToUtf8(text.data(), length);
    unum_close(format);
}

std::string CurrencyName(const UChar* currency, const std::string& locale, UCurrNameStyle style) {
    UErrorCode status = U_ZERO_ERROR;
    int32_t length = 0;
    const UChar* name = ucurr_getName(currency, locale.c_str(), style, nullptr, &length, &status);
    return U_FAILURE(status) ? std::string() : ToUtf8(name, length);
}

void FillCurrency(LLocaleInfo& info, const LLocaleName& name) {
    if (name.country.empty()) return;
    const std::string locale = name.ForIcu();
    UErrorCode status = U_ZERO_ERROR;
    std::array<UChar, kBufferSize> currency{};
    ucurr_forLocale(locale.c_str(), currency.data(), kBufferSize, &status);
    if (U_FAILURE(status)) return;
    const std::string symbol = CurrencyName(currency.data(), locale, UCURR_SYMBOL_NAME);
    const std::string narrow = CurrencyName(currency.data(), locale, UCURR_NARROW_SYMBOL_NAME);
    // "CA$" tells it from other dollars abroad; at home it is "$".
    info.currencySymbol = symbol.ends_with(narrow) ? narrow : symbol;
    const int32_t digits = ucurr_getDefaultFractionDigits(currency.data(), &status);
    if (U_SUCCESS(status)) info.currencyDigits = digits;
}

std::string ShortDatePattern(const std::string& locale) {
    UErrorCode status = U_ZERO_ERROR;
    UDateFormat* format =
        udat_open(UDAT_NONE, UDAT_SHORT, locale.c_str(), nullptr, 0, nullptr, 0, &status);
    if (U_FAILURE(status)) return {};
    std::array<UChar, kBufferSize> pattern{};
    const int32_t length = udat_toPattern(format, 0, pattern.data(), kBufferSize, &status);
    udat_close(format);
    return U_FAILURE(status) ? std::string() : ToUtf8(pattern.data(), length);
}

void FillDate(LLocaleInfo& info, const std::string& locale) {
    const std::string pattern = ShortDatePattern(locale);
    const size_t first = pattern.find_first_of("dMy");
    if (first == std::string::npos) return;
    info.dateOrder = pattern[first] == 'd'   ? LDateOrder::kDayMonthYear
                     : pattern[first] == 'M' ? LDateOrder::kMonthDayYear
                                             : LDateOrder::kYearMonthDay;
    const size_t separator = pattern.find_first_of("/.-", first);
    if (separator != std::string::npos) info.dateSeparator = pattern[separator];
}

// All others measure paper in millimetres. The locale data's own answer for the third has changed
// from one release to the next.
bool MeasuresInInches(std::string_view country) {
    return country == "US" || country == "LR" || country == "MM";
}

// The locale names, as POSIX writes them, for each kind of information.
struct LPosixNames {
    std::string general, numeric, monetary, time;
};

LLocaleInfo InfoFor(const LPosixNames& names) {
    const LLocaleName name = ParsePosixName(names.general);
    const LLocaleName numeric = ParsePosixName(names.numeric);
    const LLocaleName time = ParsePosixName(names.time);
    LLocaleInfo info;
    info.country = name.country;
    info.language = name.language;
    info.decimalSeparator = ".";
    info.groupingSeparator = ",";
    FillCurrency(info, ParsePosixName(names.monetary));
    if (!numeric.language.empty()) FillSeparators(info, numeric.ForIcu());
    // The language alone says nothing about dates and paper.
    if (!time.country.empty()) FillDate(info, time.ForIcu());
    info.isMetric = !name.country.empty() && !MeasuresInInches(name.country);
    return info;
}

// The first of these variables that is set and not empty.
std::string FirstOf(std::initializer_list<const char*> variables) {
    for (const char* variable : variables) {
        const char* value = std::getenv(variable);
        if (value != nullptr && *value != '\0') return value;
    }
    return {};
}

}  // namespace

LLocaleInfo GetLocaleInfo() {
    const auto nameOf = [](const char* category) { return FirstOf({"LC_ALL", category, "LANG"}); };
    return InfoFor({FirstOf({"LC_ALL", "LANG"}), nameOf("LC_NUMERIC"), nameOf("LC_MONETARY"),
                    nameOf("LC_TIME")});
}

LLocaleInfo GetLocaleInfoFor(const std::string& posixName) {
    return InfoFor({posixName, posixName, posixName, posixName});
}

int MinutesWestOfUtc() {
    ::tzset();
    const std::time_t now = std::time(nullptr);
    std::tm local{};
    ::localtime_r(&now, &local);
    return static_cast<int>(-local.tm_gmtoff / 60);
}
