// Amounts as people read and type them.
#include <gtest/gtest.h>

#include <limits>

#include "tests/datastore/ProfileFormats.h"

namespace {

constexpr int64_t kMax = std::numeric_limits<int64_t>::max();
constexpr int64_t kMin = std::numeric_limits<int64_t>::min();

TEST(MoneyFormats, TheSymbolStandsWhereTheOrderSays) {
    struct Case {
        int order;
        const char *positive, *negative;
    };
    constexpr Case kCases[] = {
        {0, "$1,234.50", "-$1,234.50"},   {1, "1,234.50$", "-1,234.50$"},
        {2, "$ 1,234.50", "-$ 1,234.50"}, {3, "1,234.50 $", "-1,234.50 $"},
        {-1, "$1,234.50", "-$1,234.50"},  {4, "$1,234.50", "-$1,234.50"},
    };
    for (const Case& c : kCases) {
        LTestFormats formats(".", ",");
        formats.Currency("$", c.order, 2);
        EXPECT_EQ(formats.FormatMoney({123450, 2}), c.positive);
        EXPECT_EQ(formats.FormatMoney({-123450, 2}), c.negative);
        EXPECT_EQ(formats.FormatMoneyInput({-123450, 2}), "-1234.50");
    }
}

TEST(MoneyFormats, AMissingOrMangledSymbolLeavesTheAmountReadable) {
    LTestFormats formats(",", ".");
    formats.Currency("", 3, 2);
    EXPECT_EQ(formats.FormatMoney({-5, 2}), "-0,05") << "without a symbol there is no blank";
    formats.Currency("5-", 0, 2);
    EXPECT_EQ(formats.FormatMoney({150, 2}), "1,50") << "the symbol would change the amount";
}

TEST(MoneyFormats, WhatIsWrittenReadsBackInEveryOrderDigitsAndSeparator) {
    const std::vector<std::array<std::string, 2>> kSeparators{
        {".", ","}, {",", "."}, {",", "\u202F"}, {".", "\u2019"}, {".", ""}, {",", ","}};
    for (const auto& [decimal, thousands] : kSeparators) {
        for (const std::string symbol : {"$", "\u20AC", "kr.", "Rs. ", "CHF", ".", ""}) {
            for (int order = 0; order < 4; ++order) {
                for (int digits = 0; digits <= 7; ++digits) {
                    LTestFormats formats(decimal, thousands);
                    formats.Currency(symbol, order, digits);
                    for (const int64_t units :
                         {int64_t{0}, int64_t{7}, int64_t{-123456789}, kMin, kMax}) {
                        const LMoney amount{units, digits};
                        const std::string text = formats.FormatMoney(amount);
                        EXPECT_EQ(formats.ParseMoney(text), amount) << text;
                        EXPECT_EQ(formats.ParseMoney(formats.FormatMoneyInput(amount)), amount);
                    }
                }
            }
        }
    }
}

TEST(MoneyFormats, TheSymbolMayStandAnywhereAsTyped) {
    for (int order = 0; order < 4; ++order) {
        LTestFormats formats(".", ",");
        formats.Currency("kr", order, 2);
        for (const char* text : {"1,234.5", "1234.50", "kr1234.5", "kr 1234.5", "1234.5kr",
                                 "1234.5 kr", " +1,234.50\u00A0kr ", "kr +1234.5", "+kr1234.5"}) {
            EXPECT_EQ(formats.ParseMoney(text), (LMoney{123450, 2})) << text;
        }
        for (const char* text : {"-5", "-kr5", "-kr 5", "kr-5", "kr -5", "-5 kr"}) {
            EXPECT_EQ(formats.ParseMoney(text), (LMoney{-500, 2})) << text;
        }
    }
}

TEST(MoneyFormats, WhatIsNoAmountIsRefused) {
    LTestFormats formats(".", ",");
    formats.Currency("$", 0, 2);
    for (const char* text :
         {"", " ", "$", "-", "-$", "abc", "--5", "-$-5", "$--5", "5-", "$5$", "$$5", "1e5", "inf",
          "1,2,3.4.5", "1,23", "1.2345678", "5 5", "$ 5 USD"}) {
        EXPECT_EQ(formats.ParseMoney(text), std::nullopt) << text;
    }
    for (const char* text : {"92233720368547758.08", "-92233720368547758.09", "\u20AC5"}) {
        EXPECT_EQ(formats.ParseMoney(text), std::nullopt) << text;
    }
    EXPECT_EQ(formats.ParseMoney("92233720368547758.07"), (LMoney{kMax, 2}));
    EXPECT_EQ(formats.ParseMoney("-92233720368547758.08"), (LMoney{kMin, 2}));
}

TEST(MoneyFormats, MoreDecimalsTypedAreKept) {
    LTestFormats formats(".", ",");
    formats.Currency("$", 0, 2);
    EXPECT_EQ(formats.ParseMoney("1"), (LMoney{100, 2}));
    EXPECT_EQ(formats.ParseMoney("1.2"), (LMoney{120, 2}));
    EXPECT_EQ(formats.ParseMoney("1.234"), (LMoney{1234, 3}));
    EXPECT_EQ(formats.ParseMoney("0.000001"), (LMoney{1, 6}));
    EXPECT_EQ(formats.ParseMoney("0.0000010"), std::nullopt);
    formats.Currency("\u00A5", 0, 0);
    EXPECT_EQ(formats.ParseMoney("\u00A51,000"), (LMoney{1000, 0}));
    EXPECT_EQ(formats.ParseMoney("1.5"), (LMoney{15, 1}));
}

}  // namespace
