#include "orders/OrderTotals.h"

#include <gtest/gtest.h>

#include <cmath>
#include <limits>
#include <random>
#include <vector>

#include "tests/orders/LOrderShop.h"
#include "tests/support/LScriptedUserInterface.h"

namespace {

constexpr int64_t kMax = std::numeric_limits<int64_t>::max();

// Tax 1 is 10 %, tax 2 is 20 %, tax 3 has no rate; tax 1 is the default.
class OrderTotals : public ::testing::Test {
protected:
    OrderTotals() {
        shop.Settings("Tax", {{"TaxName1", "GST"},
                              {"TaxRate1", "10"},
                              {"TaxName2", "PST"},
                              {"TaxRate2", "20"},
                              {"DefaultRate", "1"}});
    }
    LOrderShop shop;
};

TEST_F(OrderTotals, FollowLinesAndSettings) {
    struct Case {
        const char* why;
        std::vector<LTestLine> lines;
        bool isInclusive;
        int taxRate;
        LTaxRates rates;
        int64_t total;
        std::vector<std::pair<std::string, int64_t>> taxes;
    };
    constexpr LTaxRates kPresent = LTaxRates::kPresent;
    constexpr LTaxRates kStored = LTaxRates::kStored;
    const Case kCases[] = {
        {"added", {{1, 1000, "GST"}, {2, 250, "GST"}}, false, 0, kPresent, 1650, {{"GST", 150}}},
        {"within", {{1, 1000, "GST"}, {2, 250, "GST"}}, true, 0, kPresent, 1500, {{"GST", 136}}},
        {"rounded down", {{0.333, 100, "None"}}, false, 0, kPresent, 33, {}},
        {"not taxed", {{1, 1000, "GST"}, {2, 250}}, false, 1, kPresent, 1500, {{"GST", 0}}},
        {"newest first",
         {{1, 100, "PST"}, {1, 100, "GST"}},
         false,
         0,
         kPresent,
         230,
         {{"GST", 10}, {"PST", 20}}},
        {"no name is the default",
         {{1, 100}, {1, 100, "Default"}},
         false,
         0,
         kPresent,
         220,
         {{"GST", 20}}},
        {"a base of 0 counts", {{0, 100, "PST"}}, false, 0, kPresent, 0, {{"PST", 0}}},
        {"a rate of 0 counts",
         {{1, 100, "Sales Tax 3"}},
         false,
         0,
         kPresent,
         100,
         {{"Sales Tax 3", 0}}},
        {"the stored rate", {{1, 100, "GST", "7.5/"}}, false, 0, kStored, 108, {{"GST", 8}}},
        {"not the stored rate", {{1, 100, "GST", "7.5/"}}, false, 0, kPresent, 110, {{"GST", 10}}},
        {"a stored 0 is none", {{1, 100, "GST", "0/"}}, false, 0, kStored, 110, {{"GST", 10}}},
        {"the first line's rate",
         {{1, 100, "GST", "5/"}, {1, 100, "GST", "50/"}},
         false,
         0,
         kStored,
         210,
         {{"GST", 10}}},
        {"a tax that is gone", {{1, 100, "VAT", "8/"}}, false, 0, kStored, 108, {{"VAT", 8}}},
        {"and has no rate", {{1, 100, "VAT"}}, false, 0, kPresent, 110, {{"VAT", 10}}},
        {"entry 3 is tax 2", {{1, 100, "PST", "3"}}, false, 0, kStored, 120, {{"PST", 20}}},
        {"entry 1 is none", {{1, 100, "", "1"}}, false, 0, kStored, 100, {{"GST", 0}}},
        {"case counts", {{1, 100, "gst", "2/"}}, false, 0, kStored, 102, {{"gst", 2}}},
        {"goes back", {{-1, 100, "GST"}}, false, 0, kPresent, -110, {{"GST", -10}}},
    };
    for (const Case& c : kCases) {
        LPOrder order;
        for (const LTestLine& line : c.lines) AddLine(order, line);
        order.SetBool("IsTaxInclusive", c.isInclusive);
        order.SetInt("TaxRate", c.taxRate);
        ASSERT_TRUE(LOrderSumTotals(shop.profile, order, c.rates)) << c.why;
        std::vector<std::pair<std::string, int64_t>> taxes;
        for (int n = 1; n <= order.GetInt("TaxAmountCount", -1); ++n) {
            taxes.emplace_back(order.GetTaxAmountName(n), order.GetTaxAmount(n));
        }
        EXPECT_EQ(order.GetTotal(), c.total) << c.why;
        EXPECT_EQ(taxes, c.taxes) << c.why;
    }
}

TEST_F(OrderTotals, PartsAddUpToTheWholeAndStayWhenSummedAgain) {
    std::mt19937 random(20240229);
    const auto upTo = [&random](int limit) {
        return std::uniform_int_distribution<int>(0, limit)(random);
    };
    constexpr std::string_view kNames[] = {"", "None", "GST", "PST", "VAT", "Sales Tax 3"};
    for (int round = 0; round < 300; ++round) {
        LPOrder order;
        int64_t lines = 0;
        for (int count = upTo(20); count >= 0; --count) {
            const LTestLine line{upTo(100000) / 1000.0, upTo(1000000), kNames[upTo(5)],
                                 upTo(1) == 0 ? "7.25/" : "", upTo(3)};
            AddLine(order, line);
        }
        order.SetBool("IsTaxInclusive", upTo(1) == 0);
        const LTaxRates which = upTo(1) == 0 ? LTaxRates::kPresent : LTaxRates::kStored;
        ASSERT_TRUE(LOrderSumTotals(shop.profile, order, which));
        const int digits = order.GetTotalDigits(shop.profile);
        for (int i = 0; i < order.GetItemCount(); ++i) {
            ASSERT_EQ(order.GetItemUnitValueDigits(i), digits) << "one number of digits";
            lines +=
                LineAmount(order.GetItemQty(i), order.GetItemUnitCost(shop.profile, i)).minorUnits;
        }
        const int64_t whole = order.GetBool("IsTaxInclusive", false)
                                  ? order.GetTotal()
                                  : order.CalculateSubTotal(shop.profile);
        EXPECT_EQ(whole, lines);
        LPOrder again;
        again.CopyRecord(order);
        again.ClearDirty();
        ASSERT_TRUE(LOrderSumTotals(shop.profile, again, which));
        EXPECT_FALSE(again.IsDirty()) << "round " << round;
    }
}

TEST_F(OrderTotals, WhatDoesNotFitIsRefused) {
    const std::vector<LTestLine> kCases[] = {
        {{1e12, 1000000000000}},
        {{1, kMax}},
        {{1, kMax - 5, "None"}, {1, 100, "None"}},
        {{1, kMax / 2, "GST"}, {1, kMax / 2, "GST"}, {1, 1000, "GST"}},
        {{1, kMax - 5, "GST"}},
        {{1, 100, "GST", "1e300/"}},
        {{1, kMax / 10, "None", "", 2}, {1, 1, "None", "", 6}},
        {{-1e12, 1000000000000}},
    };
    for (const std::vector<LTestLine>& lines : kCases) {
        LPOrder order;
        for (const LTestLine& line : lines) AddLine(order, line);
        order.SetInt64("Total", 42);
        order.ClearDirty();
        EXPECT_FALSE(LOrderSumTotals(shop.profile, order, LTaxRates::kStored));
        EXPECT_FALSE(order.IsDirty()) << "the order is as it was";
    }
}

TEST_F(OrderTotals, OldRatesAreKeptWhenAsked) {
    const LTaxOptions options(shop.profile);
    struct Case {
        const char* why;
        LTestLine line;
        bool isInclusive, isDraft, isChanged;
    };
    const Case kCases[] = {
        {"as it was", {1, 100, "GST", "10/"}, false, false, false},
        {"near enough", {1, 100, "GST", "10.000009/"}, false, false, false},
        {"another rate", {1, 100, "GST", "10.00002/"}, false, false, true},
        {"another rate by default", {1, 100, "", "9/"}, false, false, true},
        {"no stored rate", {1, 100, "GST", ""}, false, false, false},
        {"inclusive", {1, 100, "GST", "10/"}, true, false, true},
        {"drafts are new", {1, 100, "GST", "9/"}, true, true, false},
    };
    for (const Case& c : kCases) {
        LPOrder order;
        AddLine(order, c.line);
        order.SetBool("IsTaxInclusive", c.isInclusive);
        order.SetBool("IsDraft", c.isDraft);
        EXPECT_EQ(LInvIsTaxRateChanged(options, order), c.isChanged) << c.why;
        LScriptedUserInterface ui;
        if (c.isChanged) {
            ui.ExpectAsk("Tax Rates",
                         "Tax rates or tax inclusivity has been changed. Do you want to use old "
                         "tax rates?",
                         {"Use Old", "Use New"}, "Use New");
        }
        EXPECT_EQ(LOrderAskTaxRates(ui, options, order), LTaxRates::kPresent) << c.why;
    }
    LPOrder order;
    AddLine(order, {1, 100, "GST", "9/"});
    AddLine(order, {1, 100, "PST", ""});
    LOrderStoreTaxRates(options, order, LTaxRates::kStored);
    EXPECT_EQ(order.GetString("Item1TaxRate") + order.GetString("Item2TaxRate"), "9/20/");
    LOrderStoreTaxRates(options, order, LTaxRates::kPresent);
    EXPECT_EQ(order.GetString("Item1TaxRate"), "10/");
}

TEST_F(OrderTotals, SettingsTakeRatesFromNothingToAHundred) {
    struct Case {
        const char* rate;
        bool isTaken;
    };
    constexpr Case kCases[] = {{"0", true},    {"100", true}, {" 7.5 ", true}, {"100.01", false},
                               {"-1", false},  {"-0", false}, {"", false},     {"ten", false},
                               {"1e1", false}, {"nan", false}};
    for (const Case& c : kCases) {
        LTaxInput input{{"A", "B", "C"}, {"1", c.rate, "x"}, 0, 2, true, false};
        LFieldError<LTaxField> error = LTaxSettingsSave(shop.profile, input);
        EXPECT_EQ(error.field, c.isTaken ? LTaxField::kRate3 : LTaxField::kRate2) << c.rate;
        EXPECT_EQ(error.message, "Please enter a positive number between 0 and 100.");
        EXPECT_EQ(shop.Stored("Misc", "Tax", "TaxName1"), "GST") << "nothing saved";
        input.rates[2] = "0";
        EXPECT_EQ(LTaxSettingsSave(shop.profile, input).IsNone(), c.isTaken) << c.rate;
        shop.Settings("Tax", {{"TaxName1", "GST"}});
    }
    EXPECT_EQ(shop.Stored("Misc", "Tax", "TaxRate2"), "7.500000");
    EXPECT_EQ(LTaxOptions(shop.profile).DefaultTax(), 2);
}

}  // namespace
