#include "datastore/NumberText.h"

#include <array>

namespace {

// Which of these a keyboard or a locale gives, nobody can see.
constexpr std::array<std::string_view, 4> kBlanks{" ", "\u00A0", "\u202F", "\u2009"};
constexpr std::array<std::string_view, 2> kApostrophes{"'", "\u2019"};

bool IsDigit(char byte) { return byte >= '0' && byte <= '9'; }

size_t CountDigits(std::string_view text) {
    size_t count = 0;
    while (count < text.size() && IsDigit(text[count])) ++count;
    return count;
}

// The length of the member of `family` that `text` begins with, when `symbol` is a member too.
template <size_t kSize>
size_t MatchFamily(std::string_view text, std::string_view symbol,
                   const std::array<std::string_view, kSize>& family) {
    if (std::find(family.begin(), family.end(), symbol) == family.end()) return 0;
    for (const std::string_view member : family) {
        if (text.starts_with(member)) return member.size();
    }
    return 0;
}

size_t MatchThousands(std::string_view text, const LNumberSymbols& symbols) {
    size_t length = MatchFamily(text, symbols.thousands, kBlanks);
    if (length == 0) length = MatchFamily(text, symbols.thousands, kApostrophes);
    if (length == 0 && text.starts_with(symbols.thousands)) length = symbols.thousands.size();
    // Where one symbol begins with the other, the longer one is meant.
    const bool isDecimal = text.starts_with(symbols.decimal) && symbols.decimal.size() >= length;
    return isDecimal ? 0 : length;
}

size_t LeadingBlank(std::string_view text) {
    if (!text.empty() && (text[0] == ' ' || (text[0] >= '\t' && text[0] <= '\r'))) return 1;
    return MatchFamily(text, " ", kBlanks);
}

size_t TrailingBlank(std::string_view text) {
    if (!text.empty() && LeadingBlank(text.substr(text.size() - 1)) == 1) return 1;
    for (const std::string_view blank : kBlanks) {
        if (text.ends_with(blank)) return blank.size();
    }
    return 0;
}

}  // namespace

bool IsConfusingSymbol(std::string_view symbol) {
    return symbol.empty() || symbol.find_first_of("0123456789+-") != std::string_view::npos;
}

LNumberSymbols::LNumberSymbols(std::string_view decimalSymbol, std::string_view thousandsSymbol)
    : decimal(IsConfusingSymbol(decimalSymbol) ? "." : decimalSymbol), thousands(thousandsSymbol) {
    if (IsConfusingSymbol(thousands) || thousands == decimal) thousands = {};
}

std::string JoinDigits(std::string_view whole, std::string_view fraction,
                       const LNumberSymbols& symbols) {
    std::string text;
    text.reserve(whole.size() + whole.size() / 3 * symbols.thousands.size() +
                 symbols.decimal.size() + fraction.size());
    for (size_t i = 0; i < whole.size(); ++i) {
        if (i > 0 && (whole.size() - i) % 3 == 0) text += symbols.thousands;
        text += whole[i];
    }
    if (!fraction.empty()) text.append(symbols.decimal).append(fraction);
    return text;
}

std::optional<LDecimalDigits> ReadDigits(std::string_view text, const LNumberSymbols& symbols) {
    LDecimalDigits digits;
    size_t pos = CountDigits(text);
    digits.whole = text.substr(0, pos);
    const bool mayBeGrouped = pos >= 1 && pos <= 3;
    while (mayBeGrouped) {
        const size_t separator = MatchThousands(text.substr(pos), symbols);
        if (separator == 0) break;
        pos += separator;
        if (CountDigits(text.substr(pos)) != 3) return std::nullopt;
        digits.whole += text.substr(pos, 3);
        pos += 3;
    }
    if (text.substr(pos).starts_with(symbols.decimal)) {
        pos += symbols.decimal.size();
        digits.fraction = text.substr(pos, CountDigits(text.substr(pos)));
        pos += digits.fraction.size();
    }
    const bool hasDigits = !digits.whole.empty() || !digits.fraction.empty();
    if (pos != text.size() || !hasDigits) return std::nullopt;
    return digits;
}

std::string PadNumber(int value, size_t width) {
    std::string text = std::to_string(value);
    if (text.size() < width) text.insert(0, width - text.size(), '0');
    return text;
}

std::string_view TrimBlanks(std::string_view text) {
    while (const size_t length = LeadingBlank(text)) text.remove_prefix(length);
    while (const size_t length = TrailingBlank(text)) text.remove_suffix(length);
    return text;
}

LSign TakeSign(std::string_view& text) {
    if (text.empty() || (text[0] != '-' && text[0] != '+')) return LSign::kNone;
    const LSign sign = text[0] == '-' ? LSign::kMinus : LSign::kPlus;
    text.remove_prefix(1);
    return sign;
}
