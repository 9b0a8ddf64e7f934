#include "platform/LLocaleInfo.h"

#include <gtest/gtest.h>

#include "tests/support/LTempFolder.h"

namespace {

constexpr auto kDmy = LDateOrder::kDayMonthYear;
constexpr auto kMdy = LDateOrder::kMonthDayYear;
constexpr auto kYmd = LDateOrder::kYearMonthDay;

constexpr const char* kNarrowSpace = "\u202f";

}  // namespace

TEST(LLocaleInfo, KnowsTheCountriesOfOurCustomers) {
    struct Case {
        const char *locale, *country, *decimal, *grouping, *symbol;
        int digits;
        LDateOrder order;
        const char* separator;
        bool metric;
    };
    const Case kCases[] = {
        {"en_US.UTF-8", "US", ".", ",", "$", 2, kMdy, "/", false},
        {"en_CA.UTF-8", "CA", ".", ",", "$", 2, kMdy, "/", true},
        {"fr_CA.UTF-8", "CA", ",", "\u00a0", "$", 2, kYmd, "-", true},
        {"en_GB.UTF-8", "GB", ".", ",", "£", 2, kDmy, "/", true},
        {"de_DE.UTF-8@euro", "DE", ",", ".", "€", 2, kDmy, ".", true},
        {"de_CH.UTF-8", "CH", ".", "’", "CHF", 2, kDmy, ".", true},
        {"fr_FR.UTF-8", "FR", ",", kNarrowSpace, "€", 2, kDmy, "/", true},
        {"sv_SE.ISO-8859-1", "SE", ",", "\u00a0", "kr", 2, kYmd, "-", true},
        {"en_ZA.UTF-8", "ZA", ",", "\u00a0", "R", 2, kYmd, "/", true},
        {"ja_JP.UTF-8", "JP", ".", ",", "￥", 0, kYmd, "/", true},
        {"ar_EG.UTF-8", "EG", ".", ",", "ج.م.\u200f", 2, kDmy, "/", true},
        {"my_MM.UTF-8", "MM", ".", ",", "K", 0, kDmy, "/", false},
    };
    for (const Case& c : kCases) {
        const LLocaleInfo info = GetLocaleInfoFor(c.locale);
        EXPECT_EQ(info.country, c.country) << c.locale;
        EXPECT_EQ(info.language, std::string_view(c.locale).substr(0, 2)) << c.locale;
        EXPECT_EQ(info.decimalSeparator, c.decimal) << c.locale;
        EXPECT_EQ(info.groupingSeparator, c.grouping) << c.locale;
        EXPECT_EQ(info.currencySymbol, c.symbol) << c.locale;
        EXPECT_EQ(info.currencyDigits, c.digits) << c.locale;
        EXPECT_EQ(info.dateOrder, c.order) << c.locale;
        EXPECT_EQ(info.dateSeparator, c.separator) << c.locale;
        EXPECT_EQ(info.isMetric, c.metric) << c.locale;
    }
}

TEST(LLocaleInfo, NamesWithoutACountryCountAsTheUnitedStates) {
    const std::string endless(5000, 'x');
    for (const std::string name :
         {"", "C", "POSIX", "C.UTF-8", "de_", "_DE", "12_34", "../../x", "e", "english", "en_USA",
          "xx_ZZ", "en_U\xff", endless.c_str()}) {
        const LLocaleInfo info = GetLocaleInfoFor(name);
        EXPECT_EQ(info.country, "") << name;
        EXPECT_EQ(info.currencySymbol, "") << name;
        EXPECT_EQ(info.currencyDigits, 2) << name;
        EXPECT_EQ(info.dateOrder, kMdy) << name;
        EXPECT_FALSE(info.isMetric) << name;
    }
    EXPECT_EQ(GetLocaleInfoFor("C").decimalSeparator, ".");
    EXPECT_EQ(GetLocaleInfoFor("C").groupingSeparator, ",");
    EXPECT_EQ(GetLocaleInfoFor("de").decimalSeparator, ",") << "the language tells that much";
}

TEST(LLocaleInfo, EachCategoryHasItsOwnVariable) {
    struct Case {
        const char *all, *numeric, *monetary, *time;
        const char *grouping, *symbol, *dateSeparator;
        LDateOrder order;
    };
    const Case kCases[] = {
        {"", "", "", "", ",", "$", "/", kMdy},
        {"", "de_DE", "", "", ".", "$", "/", kMdy},
        {"", "", "", "sv_SE", ",", "$", "-", kYmd},
        {"", "de_CH", "en_GB", "nl_NL", "’", "£", "-", kDmy},
        {"de_DE", "en_US", "en_US", "en_US", ".", "€", ".", kDmy},
    };
    const LScopedEnvironment lang("LANG", "en_US.UTF-8");
    for (const Case& c : kCases) {
        const LScopedEnvironment all("LC_ALL", c.all), numeric("LC_NUMERIC", c.numeric);
        const LScopedEnvironment monetary("LC_MONETARY", c.monetary), time("LC_TIME", c.time);
        const LLocaleInfo info = GetLocaleInfo();
        const std::string label = std::string(c.numeric) + "|" + c.monetary + "|" + c.time;
        EXPECT_EQ(info.groupingSeparator, c.grouping) << label;
        EXPECT_EQ(info.currencySymbol, c.symbol) << label;
        EXPECT_EQ(info.dateSeparator, c.dateSeparator) << label;
        EXPECT_EQ(info.dateOrder, c.order) << label;
        EXPECT_EQ(info.country, *c.all != '\0' ? "DE" : "US") << label;
    }
}
