// Numbers and quantities as people read and type them.
#include <gtest/gtest.h>

#include <cmath>
#include <limits>

#include "tests/datastore/ProfileFormats.h"

namespace {

TEST(NumberFormats, NumbersAreWrittenWithTheProfilesSymbols) {
    struct Case {
        LTestFormats formats;
        double value;
        int digits;
        std::string text;
    };
    const Case kCases[] = {
        {{".", ","}, 1234567.5, 2, "1,234,567.50"},
        {{",", "\u202F"}, 1234567.5, 1, "1\u202F234\u202F567,5"},
        {{".", ""}, 1234.0, 0, "1234"},
        {{".", ","}, 1000, 0, "1,000"},
        {{".", ","}, -1234.5, 2, "-1,234.50"},
        {{".", ","}, -0.001, 2, "0.00"},
        {{".", ","}, std::nan(""), 2, "0.00"},
        {{".", ","}, 1.5, -7, "2"},
        {{".", ","}, 0.1, 2000000000, "0.100000000000000"},
        {{"", ""}, 1.5, 1, "1.5"},          // without a decimal symbol it would read as 15
        {{",", ","}, 1234.5, 1, "1234,5"},  // one symbol for both
        {{"5", "-"}, 1234.5, 1, "1234.5"},
    };
    for (const Case& c : kCases) {
        EXPECT_EQ(c.formats.FormatNumber(c.value, c.digits, true), c.text);
    }
    EXPECT_EQ(LTestFormats(".", ",").FormatNumber(1234567.5, 1, false), "1234567.5");
    EXPECT_EQ(LTestFormats(".", ",").FormatNumber(1e300, 0, true).size(), 301u + 100u);
}

TEST(NumberFormats, WhatIsNoNumberIsRefused) {
    const LTestFormats formats(".", ",");
    const struct {
        const char* text;
        double value;
    } kGood[] = {
        {"1,234.50", 1234.5}, {" 12 ", 12},           {"-3", -3}, {".5", 0.5}, {"5.", 5},
        {"\u00A07\t", 7},     {"1,234,567", 1234567},
    };
    for (const auto& c : kGood) EXPECT_EQ(formats.ParseNumber(c.text), c.value) << c.text;
    for (const char* text :
         {"",        " ",         "abc",        "--5",  "+-5",    "- 5",    "5-",
          "1e5",     "inf",       "nan",        "0x10", ".",      "-",      "1,2,3.4.5",
          "1,23",    "12,34,567", "1234,567",   ",123", "1,,234", "1,234,", "1.2.3",
          "1.234,5", "1 234",     "1\u00A0234", "5 5",  "5%",     "\xFF",   "\u0661"}) {
        EXPECT_EQ(formats.ParseNumber(text), std::nullopt) << text;
    }
    EXPECT_EQ(formats.ParseNumber(std::string("5\0", 2)), std::nullopt);
    EXPECT_EQ(formats.ParseNumber(std::string(400, '9')), std::nullopt) << "no double holds it";
    EXPECT_FALSE(std::signbit(*formats.ParseNumber("-0.00")));
}

TEST(NumberFormats, SeparatorsThatLookAlikeAreTaken) {
    const LTestFormats french(",", "\u202F");
    for (const char* text : {"1 234,5", "1\u00A0234,5", "1\u202F234,5", "1\u2009234,5", "1234,5"}) {
        EXPECT_EQ(french.ParseNumber(text), 1234.5) << text;
    }
    EXPECT_EQ(LTestFormats(".", "\u2019").ParseNumber("1'234.5"), 1234.5);
    EXPECT_EQ(french.ParseNumber("1'234,5"), std::nullopt);
}

}  // namespace
