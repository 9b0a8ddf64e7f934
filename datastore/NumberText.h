// Decimal numbers as people write them: digits, a decimal symbol, thousands separators, a sign.
#pragma once

#include <algorithm>
#include <optional>
#include <string>
#include <string_view>

inline constexpr int kMaxShownDigits = 15;  // more decimals than a double can tell apart

// A number of decimals as it came from a file, held to what can be shown.
constexpr int HoldDigits(int digits) { return std::clamp(digits, 0, kMaxShownDigits); }

// The symbols that a number is written with. Views into the settings they were made from.
struct LNumberSymbols {
    // Symbols that would make a number unreadable give way: a decimal symbol that is empty or holds
    // a digit or a sign becomes ".", such a thousands symbol, or one equal to it, becomes none.
    LNumberSymbols(std::string_view decimalSymbol, std::string_view thousandsSymbol);
    std::string_view decimal;
    std::string_view thousands;  // empty: none
};

// Whether a symbol beside a number could be taken for a part of it: empty, or a digit or sign in
// it.
bool IsConfusingSymbol(std::string_view symbol);

struct LDecimalDigits {
    std::string whole, fraction;  // digits only; one of them may be empty
};

// Writes both parts, the whole one grouped by three when the symbols have a thousands separator.
std::string JoinDigits(std::string_view whole, std::string_view fraction,
                       const LNumberSymbols& symbols);

// Reads an unsigned number without blanks around it. Thousands separators may be left out, but
// where they stand every group after the first has three digits. Where the separator is one of the
// blanks or apostrophes that look alike, all of these are taken. Nothing for any other text.
std::optional<LDecimalDigits> ReadDigits(std::string_view text, const LNumberSymbols& symbols);

// At least `width` digits, with leading zeros.
std::string PadNumber(int value, size_t width);

// Without the blanks at both ends: ASCII white space and the no-break ones.
std::string_view TrimBlanks(std::string_view text);

enum class LSign { kNone, kPlus, kMinus };
// Removes a sign from the front of `text`.
LSign TakeSign(std::string_view& text);
