#include "datastore/LMoney.h"

#include <gtest/gtest.h>

#include <cmath>
#include <limits>

namespace {

constexpr int64_t kMax = std::numeric_limits<int64_t>::max();
constexpr int64_t kMin = std::numeric_limits<int64_t>::min();

TEST(LineAmount, RoundsHalvesUp) {
    struct Case {
        double quantity;
        int64_t price, amount;
        const char* why;
    };
    constexpr Case kCases[] = {
        {1.5, 3, 5, "4.5 goes up"},
        {0.333, 100, 33, "33.3 goes down"},
        {0.35, 10, 4, "3.5 as it was typed, though a double holds a little less"},
        {-1.5, 3, -4, "-4.5 goes up too, towards zero"},
        {-0.5, 1, 0, "-0.5 goes up to 0"},
        {0, kMin, 0, "nothing of anything"},
        {1, 9007199254740993, 9007199254740993, "more digits than a double has"},
        {3, 3002399751580331, 9007199254740993, "also as a product"},
        {2, kMax, kMax, "held to the range"},
        {1e300, kMax, kMax, "far beyond"},
        {-1e300, kMax, kMin, "far beyond"},
    };
    for (const Case& c : kCases) {
        EXPECT_EQ(LineAmount(c.quantity, {c.price, 3}), (LMoney{c.amount, 3})) << c.why;
    }
    EXPECT_EQ(LineAmount(std::nan(""), {100, 2}).minorUnits, 0);
    EXPECT_EQ(LineAmount(std::numeric_limits<double>::infinity(), {100, 2}).minorUnits, 0);
}

TEST(WithDigits, KeepsTheAmountOrSaysThatItCannot) {
    struct Case {
        LMoney from;
        int digits;
        std::optional<int64_t> minorUnits;
    };
    const Case kCases[] = {
        {{150, 2}, 4, 15000},
        {{145, 2}, 1, 15},
        {{-146, 2}, 1, -15},
        {{-1, 2}, 0, 0},
        {{50, 2}, 0, 1},
        {{kMin, 2}, 0, -92233720368547758},
        {{kMax, 0}, 1, std::nullopt},
        {{7, -5}, 0, 7},
        {{7, 2000000000}, 2000000000, 7},
    };
    for (const Case& c : kCases) {
        const auto result = WithDigits(c.from, c.digits);
        EXPECT_EQ(result ? std::optional(result->minorUnits) : std::nullopt, c.minorUnits)
            << c.from.minorUnits << " in " << c.from.digits << " to " << c.digits;
    }
}

}  // namespace
