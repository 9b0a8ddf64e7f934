#include "datastore/LHashTable.h"

#include <gtest/gtest.h>

TEST(LHashTable, LoadingAddsAndTheLastOfANameWins) {
    LHashTable table;
    table.SetString("old", "1");
    table.SetString("a", "0");
    table.LoadHTTPString("a=1&x&=nameless&a=2+3&z=");
    EXPECT_EQ(table.SaveHTTPString(), "a=2%203&old=1&x=&z=");
    EXPECT_EQ(table.GetParm("x", "d"), "");
    EXPECT_EQ(table.GetParm("missing", "d"), "d");
    EXPECT_TRUE(table.TestExists("z"));
    table.DeleteField("z");
    EXPECT_FALSE(table.TestFieldExists("z"));
    table.DeleteField("z");
}

TEST(LHashTable, ReadsNumbersAndFlagsInItsOwnWay) {
    LHashTable table;
    table.LoadHTTPString("empty=&two=2&one=1x&n=%2042z&off=0");
    EXPECT_EQ(table.GetInt("empty", 5), 5);
    EXPECT_EQ(table.GetInt("missing", 5), 5);
    EXPECT_EQ(table.GetInt("n", 5), 42);
    EXPECT_TRUE(table.GetBool("empty", true));
    EXPECT_TRUE(table.GetBool("missing", true));
    EXPECT_FALSE(table.GetBool("two", true)) << "only what begins with 1 is on";
    EXPECT_TRUE(table.GetBool("one", false));
    EXPECT_FALSE(table.GetBool("off", true));
    table.SetString("long", std::string(300, 'x'));
    EXPECT_EQ(table.GetShortString("long").size(), 259U);
    EXPECT_EQ(table.GetString("long").size(), 300U);
}
