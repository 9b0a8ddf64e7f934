#include "datastore/StoredNumbers.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <cmath>
#include <limits>

#include "datastore/NumberText.h"

namespace {

struct Signed {
    bool negative;
    std::string_view digits;
};

Signed SkipToDigits(std::string_view text) {
    const auto isVisible = [](char c) { return static_cast<unsigned char>(c) >= 33; };
    text.remove_prefix(
        static_cast<size_t>(std::find_if(text.begin(), text.end(), isVisible) - text.begin()));
    const bool negative = text.starts_with('-');
    if (negative || text.starts_with('+')) text.remove_prefix(1);
    return {negative, text};
}

bool IsDigit(char c) { return c >= '0' && c <= '9'; }

bool BeginsReal(std::string_view text) {
    if (text.starts_with('.')) text.remove_prefix(1);
    return !text.empty() && IsDigit(text.front());
}

// Beyond what a double holds: too small, or too large?
bool IsTooSmall(std::string_view number) {
    const size_t mantissaEnd = std::min(number.find_first_of("eE"), number.size());
    const std::string_view mantissa = number.substr(0, mantissaEnd);
    const size_t firstDigit = mantissa.find_first_of("123456789");
    if (firstDigit == std::string_view::npos) return true;
    const size_t point = std::min(mantissa.find('.'), mantissa.size());
    const int64_t exponent =
        mantissaEnd == number.size() ? 0 : ParseStoredInt(number.substr(mantissaEnd + 1));
    return exponent + static_cast<int64_t>(point) - static_cast<int64_t>(firstDigit) < 0;
}

}  // namespace

int64_t ParseStoredInt64(std::string_view text) {
    const Signed number = SkipToDigits(text);
    constexpr uint64_t kMax = std::numeric_limits<int64_t>::max();
    const uint64_t limit = number.negative ? kMax + 1 : kMax;
    uint64_t value = 0;
    for (const char c : number.digits) {
        if (!IsDigit(c)) break;
        const auto digit = static_cast<uint64_t>(c - '0');
        if (value > (limit - digit) / 10) {
            value = limit;
            break;
        }
        value = value * 10 + digit;
    }
    return static_cast<int64_t>(number.negative ? 0 - value : value);
}

int ParseStoredInt(std::string_view text) {
    using Limits = std::numeric_limits<int>;
    return static_cast<int>(
        std::clamp<int64_t>(ParseStoredInt64(text), Limits::min(), Limits::max()));
}

double ParseStoredReal(std::string_view text) {
    const auto [negative, digits] = SkipToDigits(text);
    if (!BeginsReal(digits)) return 0;
    double value = 0;
    const auto result = std::from_chars(digits.data(), digits.data() + digits.size(), value);
    if (result.ec == std::errc::result_out_of_range || std::isinf(value)) {
        value = IsTooSmall({digits.data(), result.ptr}) ? 0 : std::numeric_limits<double>::max();
    }
    return negative ? -value : value;
}

void AppendStoredReal(std::string& out, double value, int digits) {
    constexpr double kWholeBelow = 1e15;
    std::array<char, 400> text;  // the largest double has 309 digits before the point
    char* const end = text.data() + text.size();
    digits = HoldDigits(digits);
    if (!std::isfinite(value)) value = 0;
    const bool isWhole = std::abs(value) < kWholeBelow && value == std::trunc(value);
    if (!isWhole || (value == 0 && std::signbit(value))) {
        out.append(text.data(),
                   std::to_chars(text.data(), end, value, std::chars_format::fixed, digits).ptr);
        return;
    }
    // Most quantities are whole; so they are written at a fraction of the cost.
    out.append(text.data(), std::to_chars(text.data(), end, static_cast<int64_t>(value)).ptr);
    if (digits > 0) out.append(1, '.').append(static_cast<size_t>(digits), '0');
}

std::string FormatStoredReal(double value) {
    std::string text;
    AppendStoredReal(text, value, 6);
    return text;
}
