#include "reports/LMoneyTotal.h"

#include <algorithm>
#include <limits>

void LMoneyTotal::Add(const LMoney& amount) {
    const int digits = std::max(total_.digits, amount.digits);
    const auto left = WithDigits(total_, digits), right = WithDigits(amount, digits);
    // An amount so large that it fits in its own digits only is not worth refusing a report for.
    if (!left || !right) return;
    LMoney sum{0, digits};
    if (__builtin_add_overflow(left->minorUnits, right->minorUnits, &sum.minorUnits)) {
        using LLimits = std::numeric_limits<int64_t>;
        sum.minorUnits = left->minorUnits < 0 ? LLimits::min() : LLimits::max();
    }
    total_ = sum;
}

void LMoneyTotal::Subtract(const LMoney& amount) {
    constexpr int64_t kLowest = -std::numeric_limits<int64_t>::max();  // has a positive counterpart
    Add({-std::max(amount.minorUnits, kLowest), amount.digits});
}
