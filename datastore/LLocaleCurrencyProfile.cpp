#include "datastore/LLocaleCurrencyProfile.h"

#include <algorithm>
#include <array>
#include <limits>

#include "datastore/CountryLocales.h"
#include "datastore/NumberText.h"
#include "datastore/SymbolText.h"

namespace {

constexpr size_t kMaxTypedDecimals = 6;

enum LCurrencyOrder { kBefore, kAfter, kBeforeWithBlank, kAfterWithBlank };

std::string JoinAmount(const LMoney& amount, const LNumberSymbols& symbols) {
    const uint64_t bits = static_cast<uint64_t>(amount.minorUnits);
    std::string digits = std::to_string(amount.minorUnits < 0 ? 0 - bits : bits);
    const size_t decimals = static_cast<size_t>(HoldDigits(amount.digits));
    if (digits.size() <= decimals) digits.insert(0, decimals + 1 - digits.size(), '0');
    const std::string_view view = digits;
    const size_t whole = view.size() - decimals;
    return JoinDigits(view.substr(0, whole), view.substr(whole), symbols);
}

// `digits` decimal digits as a signed number; nothing when it needs more than 64 bits.
std::optional<int64_t> ToMinorUnits(std::string_view digits, LSign sign) {
    int64_t value = 0;
    for (const char byte : digits) {
        // Built up on the side of its sign: the smallest number has no positive counterpart.
        const int64_t digit = sign == LSign::kMinus ? '0' - byte : byte - '0';
        if (__builtin_mul_overflow(value, int64_t{10}, &value)) return std::nullopt;
        if (__builtin_add_overflow(value, digit, &value)) return std::nullopt;
    }
    return value;
}

// A digit, a sign or the decimal symbol could not be told from the amount's own.
bool IsWritable(std::string_view currencySymbol, const LNumberSymbols& symbols) {
    return !IsConfusingSymbol(currencySymbol) && TrimBlanks(currencySymbol) != symbols.decimal;
}

// The sign may stand on either side of a symbol in front. Nothing when the symbol is not there.
std::optional<std::string_view> WithoutSymbol(std::string_view text, std::string_view symbol,
                                              LSign& sign) {
    symbol = TrimBlanks(symbol);
    if (symbol.empty()) return std::nullopt;
    if (text.starts_with(symbol)) {
        text = TrimBlanks(text.substr(symbol.size()));
        if (sign == LSign::kNone) sign = TakeSign(text);
        return text;
    }
    if (!text.ends_with(symbol)) return std::nullopt;
    return TrimBlanks(text.substr(0, text.size() - symbol.size()));
}

size_t CountDigits(std::string_view text) {
    const size_t end = text.find_first_not_of("0123456789");
    return std::min(end, text.size());
}

struct LDateNumbers {
    std::array<int, 3> value{};
    std::array<size_t, 3> length{};
};

size_t DateSeparatorLength(std::string_view text, std::string_view separator) {
    if (!separator.empty() && text.starts_with(separator)) return separator.size();
    return !text.empty() && std::string_view("/-. ").find(text[0]) != std::string_view::npos ? 1
                                                                                             : 0;
}

// Three numbers of one to four digits with one separator between.
std::optional<LDateNumbers> ReadDateNumbers(std::string_view text, std::string_view separator) {
    LDateNumbers numbers;
    for (size_t i = 0; i < 3; ++i) {
        const size_t gap = i == 0 ? 0 : DateSeparatorLength(text, separator);
        if (i > 0 && gap == 0) return std::nullopt;
        text.remove_prefix(gap);
        numbers.length[i] = CountDigits(text);
        if (numbers.length[i] < 1 || numbers.length[i] > 4) return std::nullopt;
        for (const char byte : text.substr(0, numbers.length[i])) {
            numbers.value[i] = numbers.value[i] * 10 + (byte - '0');
        }
        text.remove_prefix(numbers.length[i]);
    }
    if (!text.empty()) return std::nullopt;
    return numbers;
}

struct LDatePlaces {
    size_t year, month, day;
};

LDatePlaces PlacesOf(LDateOrder order) {
    switch (order) {
        case LDateOrder::kDayMonthYear:
            return {2, 1, 0};
        case LDateOrder::kYearMonthDay:
            return {0, 1, 2};
        case LDateOrder::kMonthDayYear:
            break;
    }
    return {2, 0, 1};
}

}  // namespace

LLocaleCurrencyProfile::LLocaleCurrencyProfile() {
    const LLocaleInfo& locale = Locale();
    currencyDigits_ = HoldDigits(locale.currencyDigits);
    if (IsEnglishLocaleInZone(locale.country, MinutesWestOfUtc())) {
        currencySymbol_ = LocaleSymbolOr(locale.currencySymbol, "$");
    }
}

std::string LLocaleCurrencyProfile::FormatMoney(const LMoney& amount) const {
    const LNumberSymbols symbols(decimalSymbol_, thousandsSymbol_);
    std::string text = JoinAmount(amount, symbols);
    if (IsWritable(currencySymbol_, symbols)) {
        const bool isAfter = currencyOrder_ == kAfter || currencyOrder_ == kAfterWithBlank;
        const bool hasBlank =
            currencyOrder_ == kBeforeWithBlank || currencyOrder_ == kAfterWithBlank;
        const std::string_view blank = hasBlank ? " " : "";
        if (isAfter) {
            text.append(blank).append(currencySymbol_);
        } else {
            text.insert(0, blank).insert(0, currencySymbol_);
        }
    }
    return amount.minorUnits < 0 ? "-" + text : text;
}

std::string LLocaleCurrencyProfile::FormatMoneyInput(const LMoney& amount) const {
    const std::string text = JoinAmount(amount, LNumberSymbols(decimalSymbol_, ""));
    return amount.minorUnits < 0 ? "-" + text : text;
}

std::optional<LMoney> LLocaleCurrencyProfile::ParseMoney(std::string_view text) const {
    const LNumberSymbols symbols(decimalSymbol_, thousandsSymbol_);
    text = TrimBlanks(text);
    LSign sign = TakeSign(text);
    auto typed = ReadDigits(text, symbols);
    if (!typed && IsWritable(currencySymbol_, symbols)) {
        const auto bare = WithoutSymbol(text, currencySymbol_, sign);
        if (bare) typed = ReadDigits(*bare, symbols);
    }
    if (!typed) return std::nullopt;

    const size_t ownDigits = static_cast<size_t>(HoldDigits(currencyDigits_));
    if (typed->fraction.size() > std::max(ownDigits, kMaxTypedDecimals)) return std::nullopt;
    const size_t digits = std::max(ownDigits, typed->fraction.size());
    typed->fraction.resize(digits, '0');
    const auto minorUnits = ToMinorUnits(typed->whole + typed->fraction, sign);
    if (!minorUnits) return std::nullopt;
    return LMoney{*minorUnits, static_cast<int>(digits)};
}

std::string LLocaleCurrencyProfile::FormatDate(const LDate& date) const {
    const LDatePlaces places = PlacesOf(DateOrder());
    std::array<std::string, 3> parts;
    parts[places.year] = PadNumber(date.year, 4);
    parts[places.month] = PadNumber(date.month, 2);
    parts[places.day] = PadNumber(date.day, 2);
    const std::string& separator = Locale().dateSeparator;
    return parts[0] + separator + parts[1] + separator + parts[2];
}

std::optional<LDate> LLocaleCurrencyProfile::ParseDate(std::string_view text) const {
    const auto numbers = ReadDateNumbers(TrimBlanks(text), Locale().dateSeparator);
    if (!numbers) return std::nullopt;
    const bool yearFirst = numbers->length[0] == 4;
    const LDatePlaces places = PlacesOf(yearFirst ? LDateOrder::kYearMonthDay : DateOrder());
    const size_t yearLength = numbers->length[places.year];
    if (yearLength != 4 && yearLength != 2) return std::nullopt;
    if (numbers->length[places.month] > 2 || numbers->length[places.day] > 2) return std::nullopt;
    const int year = numbers->value[places.year] + (yearLength == 2 ? 2000 : 0);
    return LDate::Make(year, numbers->value[places.month], numbers->value[places.day]);
}
