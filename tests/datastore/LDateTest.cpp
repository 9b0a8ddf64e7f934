#include "datastore/LDate.h"

#include <gtest/gtest.h>

#include <limits>

#include "tests/datastore/ProfileFormats.h"
#include "tests/support/LTempFolder.h"

namespace {

TEST(LDate, OnlyDaysThatExistAreMade) {
    for (const auto& [year, month, day, exists] :
         std::vector<std::tuple<int, int, int, bool>>{{2024, 2, 29, true},
                                                      {2023, 2, 29, false},
                                                      {1900, 2, 29, false},
                                                      {2024, 13, 1, false},
                                                      {2024, 1, 0, false},
                                                      {1900, 1, 1, true},
                                                      {1899, 12, 31, false},
                                                      {9999, 12, 31, true},
                                                      {10000, 1, 1, false},
                                                      {-1, 1, 1, false}}) {
        EXPECT_EQ(LDate::Make(year, month, day).has_value(), exists) << year << month << day;
    }
}

TEST(LDate, TheStoredFormIsStrict) {
    EXPECT_EQ(LDate::FromStored("2024-02-29"), LDate::Make(2024, 2, 29));
    EXPECT_EQ((LDate{2024, 2, 9}).ToStored(), "2024-02-09");
    for (const char* text : {"", "2024-2-9", "2024/02/09", "24-02-09", "2023-02-29", "2024-02-09 ",
                             " 2024-02-09", "2024-02-0x", "-024-02-09", "2024-+2-09"}) {
        EXPECT_EQ(LDate::FromStored(text), std::nullopt) << text;
    }
}

TEST(LDate, DaysAreAddedAcrossMonthsAndHeldToTheRange) {
    EXPECT_EQ((LDate{2024, 2, 28}).AddDays(2).ToStored(), "2024-03-01");
    EXPECT_EQ((LDate{2024, 1, 1}).AddDays(-1).ToStored(), "2023-12-31");
    EXPECT_EQ((LDate{2024, 1, 1}).AddDays(std::numeric_limits<int>::max()).ToStored(),
              "9999-12-31");
    EXPECT_EQ((LDate{2024, 1, 1}).AddDays(std::numeric_limits<int>::min()).ToStored(),
              "1900-01-01");
    EXPECT_LT((LDate{2023, 12, 31}), (LDate{2024, 1, 1}));
}

TEST(LDate, AMomentIsADayOfLocalTime) {
    const LScopedEnvironment zone("TZ", "XXX-5");                     // five hours ahead of UTC
    EXPECT_EQ(LDate::FromTime(1709235000).ToStored(), "2024-03-01");  // 19:30 the day before in UTC
    EXPECT_EQ(LDate::FromTime(std::numeric_limits<std::time_t>::max()), LDate{});
}

TEST(LDate, IsShownInTheLocalesOrder) {
    for (const auto& [locale, text] :
         std::vector<std::array<const char*, 2>>{{"en_US.UTF-8", "02/09/2024"},
                                                 {"en_IE.UTF-8", "09/02/2024"},
                                                 {"de_DE.UTF-8", "09.02.2024"},
                                                 {"sv_SE.UTF-8", "2024-02-09"},
                                                 {"C", "02/09/2024"}}) {
        const LScopedEnvironment environment("LC_ALL", locale);
        const LTestFormats formats;
        EXPECT_EQ(formats.FormatDate({2024, 2, 9}), text) << locale;
        EXPECT_EQ(formats.ParseDate(text), (LDate{2024, 2, 9})) << locale;
        EXPECT_EQ(formats.ParseDate("2024-02-09"), (LDate{2024, 2, 9})) << locale;
    }
}

TEST(LDate, IsReadAsTypedOrRefused) {
    const LScopedEnvironment environment("LC_ALL", "en_IE.UTF-8");
    const LTestFormats formats;
    for (const char* text :
         {"9/2/2024", "09-02-2024", " 9.2.2024 ", "9 2 2024", "9/2/24", "2024/2/9"}) {
        EXPECT_EQ(formats.ParseDate(text), (LDate{2024, 2, 9})) << text;
    }
    for (const char* text :
         {"", "9/2", "9/2/", "/2/2024", "30/2/2024", "2/30/2024", "9/2/2024/1", "9/2/204",
          "9//2/2024", "9/2/20245", "009/2/2024", "today", "-9/2/2024", "1899-01-01"}) {
        EXPECT_EQ(formats.ParseDate(text), std::nullopt) << text;
    }
}

}  // namespace
