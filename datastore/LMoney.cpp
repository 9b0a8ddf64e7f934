#include "datastore/LMoney.h"

#include <cmath>
#include <limits>

#include "datastore/NumberText.h"

namespace {

// Below this (2^52) a double still tells halves. Its own product is then the one to round: 0.35 at
// 10 is the 3.5 that was typed, while more bits would show the 3.4999... that is stored for it.
constexpr double kTellsHalves = 4503599627370496.0;

int64_t HoldToRange(long double value) {
    constexpr long double kLimit = 9223372036854775808.0L;
    if (value >= kLimit) return std::numeric_limits<int64_t>::max();
    if (value < -kLimit) return std::numeric_limits<int64_t>::min();
    return static_cast<int64_t>(value);
}

int64_t PowerOfTen(int exponent) {
    int64_t power = 1;
    for (; exponent > 0; --exponent) power *= 10;
    return power;
}

int64_t DivideHalfUp(int64_t value, int64_t divisor) {
    int64_t quotient = value / divisor;
    int64_t rest = value % divisor;
    if (rest < 0) {
        --quotient;
        rest += divisor;
    }
    return rest >= divisor - rest ? quotient + 1 : quotient;
}

}  // namespace

LMoney LineAmount(double quantity, const LMoney& unitPrice) {
    if (!std::isfinite(quantity)) return {0, unitPrice.digits};
    const double product = quantity * static_cast<double>(unitPrice.minorUnits);
    if (std::abs(product) < kTellsHalves) {
        return {static_cast<int64_t>(std::floor(product + 0.5)), unitPrice.digits};
    }
    const long double wide = static_cast<long double>(quantity) * unitPrice.minorUnits;
    return {HoldToRange(std::floor(wide + 0.5L)), unitPrice.digits};
}

std::optional<LMoney> WithDigits(const LMoney& amount, int digits) {
    const int from = HoldDigits(amount.digits);
    const int to = HoldDigits(digits);
    if (to <= from) {
        // A divisor of 1 must not look for a half.
        if (to == from) return LMoney{amount.minorUnits, to};
        return LMoney{DivideHalfUp(amount.minorUnits, PowerOfTen(from - to)), to};
    }
    LMoney result{0, to};
    if (__builtin_mul_overflow(amount.minorUnits, PowerOfTen(to - from), &result.minorUnits)) {
        return std::nullopt;
    }
    return result;
}
