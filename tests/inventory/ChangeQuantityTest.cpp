#include <gtest/gtest.h>

#include <array>
#include <limits>
#include <string>

#include "inventory/BillOfMaterials.h"
#include "inventory/StockQuantities.h"
#include "tests/inventory/LTestBusiness.h"

namespace {

// One item with `stock`, changed by `delta` at `location`; "@" in the texts stands for the key of
// the location "Yard".
struct Case {
    const char* why;
    std::string stock;
    double delta;
    const char* location;
    bool allowNegative;
    bool isDone;
    std::string after;
    const char* quantity;
};

std::string Filled(std::string text, const std::string& key) {
    for (size_t at = text.find('@'); at != std::string::npos; at = text.find('@')) {
        text.replace(at, 1, key);
    }
    return text;
}

TEST(LItemChangeQuantity, ChangesEveryMatchingEntryOrNothing) {
    LTestBusiness shop;
    const std::string yard = shop.AddLocation("Yard");
    const std::array<Case, 11> kCases{{
        {"a first stock", "", 5, "Main", true, true, "\"1/5.00/0.00/0.00\",", "5.000000"},
        {"below zero", "\"1/2/0/0\",", -3, "Main", true, true, "\"1/-1.00/0.00/0.00\",",
         "-1.000000"},
        {"more than is there", "\"1/2/0/0\",", -3, "Main", false, false, "\"1/2/0/0\",", ""},
        {"all that is there", "\"1/2/0/0\",", -2, "Main", false, true, "\"1/0.00/0.00/0.00\",",
         "0.000000"},
        {"the other entries are rewritten too", "\"1/2/1/3\",\"@/1.005/0/0\",", 1, "Main", true,
         true, "\"1/3.00/1.00/3.00\",\"@/1.00/0.00/0.00\",", "4.005000"},
        {"doubled entries all change", "\"@/1/0/0\",\"1/9/0/0\",\"@/5/0/0\",", 2, "Yard", true,
         true, "\"@/3.00/0.00/0.00\",\"1/9.00/0.00/0.00\",\"@/7.00/0.00/0.00\",", "19.000000"},
        {"one of the doubled entries refuses", "\"@/5/0/0\",\"@/1/0/0\",", -2, "Yard", false, false,
         "\"@/5/0/0\",\"@/1/0/0\",", ""},
        {"another case adds a second entry", "\"@/1/0/0\",", 2, "YARD", true, true,
         "\"@/1.00/0.00/0.00\",\"@/2.00/0.00/0.00\",", "3.000000"},
        {"not kept here and nothing to take", "\"@/1/0/0\",", -1, "Main", false, false,
         "\"@/1/0/0\",", ""},
        {"no such location", "\"@/1/0/0\",", 1, "Nowhere", true, false, "\"@/1/0/0\",", ""},
        {"a location that is gone has no name", "\"77/1/0/0\",", 1, "", true, false,
         "\"77/1/0/0\",", ""},
    }};
    for (const Case& row : kCases) {
        const std::string key = shop.AddItem("A", Filled(row.stock, yard));
        const std::string before = shop.ItemFile(key);
        {
            LItem item;
            ASSERT_TRUE(shop.Profile().Items().Open(item, key));
            EXPECT_EQ(LItemChangeQuantity(shop.Profile(), item, row.delta, row.location,
                                          row.allowNegative),
                      row.isDone)
                << row.why;
        }
        EXPECT_EQ(shop.StoredStock(key), Filled(row.after, yard)) << row.why;
        EXPECT_EQ(shop.Stored("Items", key, "Quantity"), row.quantity) << row.why;
        if (!row.isDone) {
            EXPECT_EQ(shop.ItemFile(key), before) << row.why;
        }
    }
}

TEST(LItemChangeQuantity, ReprintsWithTheDecimalsOfToday) {
    LTestBusiness shop;
    const std::string key = shop.AddItem("A", "\"1/2.50/0.00/0.00\",\"9/2.50/0.00/0.00\",");
    shop.SetOption("NumberOfDigitsAfterDecimalPoint", "0");
    EXPECT_TRUE(LItemChangeQuantityById(shop.Profile(), key, 1, "Main", true));
    EXPECT_EQ(shop.StoredStock(key), "\"1/4/0/0\",\"9/2/0/0\",");
    EXPECT_FALSE(LItemChangeQuantityById(shop.Profile(), "999", 1, "Main", true));
    EXPECT_FALSE(LItemChangeQuantityById(shop.Profile(), key,
                                         std::numeric_limits<double>::infinity(), "Main", true));
}

TEST(LItemChangeQuantity, RaisesTheWarningFlagWhereItIsWanted) {
    LTestBusiness shop;
    struct FlagCase {
        const char* why;
        const char* wanted;
        const char* stock;
        double delta;
        const char* flag;
    };
    const std::array<FlagCase, 5> kCases{{
        {"down to the warning quantity", "1", "\"1/6/5/10\",", -1, "1"},
        {"still above it", "1", "\"1/7/5/10\",", -1, "0"},
        {"not wanted", "0", "\"1/6/5/10\",", -1, "0"},
        {"unwatched entries raise it too", "1", "\"1/6/5/0\",", -1, "1"},
        {"a new entry is not tested", "1", "", -1, "0"},
    }};
    for (const FlagCase& row : kCases) {
        const std::string key = shop.Add("Items", {{"Name", "A"},
                                                   {"CheckWaringEmail", row.wanted},
                                                   {"SendWaringEmail", "0"},
                                                   {"LocationsAndQuantities", row.stock}});
        EXPECT_TRUE(LItemChangeQuantityById(shop.Profile(), key, row.delta, "Main", true));
        EXPECT_EQ(shop.Stored("Items", key, "SendWaringEmail"), row.flag) << row.why;
    }
}

// What the caller holds may be hours old; the value that it computes to may even be the one it
// holds, and must be written all the same.
TEST(LItemChangeQuantity, WorksOnWhatIsStoredAndKeepsWhatTheCallerChanged) {
    LTestBusiness shop;
    const std::string key =
        shop.Add("Items", {{"Name", "A"},
                           {"CheckWaringEmail", "1"},
                           {"SendWaringEmail", "1"},
                           {"Notes", "old"},
                           {"Quantity", "5.000000"},
                           {"LocationsAndQuantities", "\"1/5.00/3.00/9.00\","}});
    LItem stale;
    ASSERT_TRUE(shop.Profile().Items().Open(stale, key));
    stale.SetString("Notes", "mine");
    ASSERT_TRUE(LItemChangeQuantityById(shop.Profile(), key, -4, "Main", true));
    LRecord elsewhere;  // the e-mail was sent meanwhile
    ASSERT_TRUE(shop.Profile().Items().Open(elsewhere, key));
    elsewhere.SetString("SendWaringEmail", "0");
    elsewhere.SetString("WebSite", "theirs");
    elsewhere.Flush();

    EXPECT_TRUE(LItemChangeQuantity(shop.Profile(), stale, 4, "Main", true));
    EXPECT_EQ(shop.StoredStock(key), "\"1/5.00/3.00/9.00\",")
        << "1 and 4, which `stale` had before";
    EXPECT_EQ(shop.Stored("Items", key, "Quantity"), "5.000000");
    EXPECT_EQ(shop.Stored("Items", key, "Notes"), "mine");
    EXPECT_EQ(shop.Stored("Items", key, "WebSite"), "theirs");
    EXPECT_EQ(stale.GetString("WebSite"), "theirs");
    EXPECT_EQ(shop.Stored("Items", key, "SendWaringEmail"), "0") << "5 is above 3";

    EXPECT_TRUE(LItemChangeQuantity(shop.Profile(), stale, -2, "Main", true));
    EXPECT_EQ(shop.Stored("Items", key, "SendWaringEmail"), "1");
    EXPECT_FALSE(stale.IsDirty());
}

TEST(LItemChangeQuantity, DoesNotBringADeletedItemBack) {
    LTestBusiness shop;
    const std::string key = shop.AddItem("A", "\"1/5/0/0\",");
    LItem item;
    ASSERT_TRUE(shop.Profile().Items().Open(item, key));
    ASSERT_TRUE(shop.Profile().Items().Delete(key));
    EXPECT_FALSE(LItemChangeQuantity(shop.Profile(), item, 1, "Main", true));
    item.Invalidate();
    EXPECT_EQ(shop.ItemFile(key), "no file");
}

class BuiltItemChange : public testing::Test {
protected:
    bool Change(std::string_view code, double delta, bool allowNegative = true) {
        LItem item;
        return OpenItem(shop_.Profile(), item, code) &&
               LItemChangeQuantity(shop_.Profile(), item, delta, "Main", allowNegative);
    }

    LTestBusiness shop_;
    std::string a_ = shop_.Add("Items", {{"Name", "A"},
                                         {"CheckWaringEmail", "1"},
                                         {"LocationsAndQuantities", "\"1/10.00/9.00/9.00\","}});
    std::string b_ = shop_.AddItem("B", "\"1/10.00/0.00/0.00\",");
};

TEST_F(BuiltItemChange, ChangesItsComponentsAndNotItself) {
    const std::string kit = shop_.AddBuiltItem("Kit", "\"A/2.00\",\"B/1.00\",");
    const std::string before = shop_.ItemFile(kit);
    EXPECT_TRUE(Change("Kit", 1));
    EXPECT_EQ(shop_.StoredStock(a_), "\"1/12.00/9.00/9.00\",");
    EXPECT_EQ(shop_.StoredStock(b_), "\"1/11.00/0.00/0.00\",");
    EXPECT_EQ(shop_.ItemFile(kit), before);
}

TEST_F(BuiltItemChange, ReachesThroughBuiltComponentsAndAddsUp) {
    shop_.AddBuiltItem("Pair", "\"A/2.00\",");
    shop_.AddBuiltItem("Set", "\"Pair/1.00\",\"B/0.50\",\"Pair/1.00\",");
    EXPECT_TRUE(Change("Set", -2));
    EXPECT_EQ(shop_.StoredStock(a_), "\"1/2.00/9.00/9.00\",");
    EXPECT_EQ(shop_.StoredStock(b_), "\"1/9.00/0.00/0.00\",");
    EXPECT_EQ(shop_.Stored("Items", a_, "SendWaringEmail"), "1");
}

TEST_F(BuiltItemChange, ARefusalAnywhereChangesNothing) {
    struct RefusedCase {
        const char* why;
        const char* bill;
        double delta;
        bool allowNegative;
    };
    const std::array<RefusedCase, 7> kCases{{
        {"a missing component at the end", "\"A/2.00\",\"B/1.00\",\"C/1.00\",", 1, true},
        {"too little of the second", "\"A/1.00\",\"B/3.00\",", -4, false},
        {"too little when named twice", "\"A/1.00\",\"B/1.00\",\"A/1.00\",", -6, false},
        {"itself", "\"A/1.00\",\"Kit/1.00\",", 1, true},
        {"round about", "\"A/1.00\",\"Loop\",\"B/1.00\",", 1, true},
        {"without an amount, but missing", "\"A/1.00\",\"C/0.00\",", 1, true},
        {"more than any number", "\"A/1.00\",\"B/1e300\",", 1e300, true},
    }};
    shop_.AddBuiltItem("Loop", "\"A/1.00\",\"Kit/1.00\",");
    const std::string kit = shop_.AddBuiltItem("Kit", "\"A/1.00\",");
    const std::string beforeA = shop_.ItemFile(a_), beforeB = shop_.ItemFile(b_);
    for (const RefusedCase& row : kCases) {
        {
            LRecord record;
            ASSERT_TRUE(shop_.Profile().Items().Open(record, kit));
            record.SetString("BillOfMaterials", row.bill);
        }
        EXPECT_FALSE(Change("Kit", row.delta, row.allowNegative)) << row.why;
        EXPECT_EQ(shop_.ItemFile(a_), beforeA) << row.why;
        EXPECT_EQ(shop_.ItemFile(b_), beforeB) << row.why;
    }
}

// Each level names the next one twice: ten levels are a thousand changes, forty would never end.
TEST_F(BuiltItemChange, EndsAlsoWhereBillsUnfoldWithoutMeasure) {
    shop_.AddBuiltItem("L0", "\"A/1.00\",\"A/1.00\",");
    for (int level = 1; level <= 40; ++level) {
        const std::string below = "\"L" + std::to_string(level - 1) + "/1.00\",";
        shop_.AddBuiltItem("L" + std::to_string(level), below + below);
    }
    EXPECT_TRUE(Change("L9", 1));
    EXPECT_EQ(shop_.StoredStock(a_), "\"1/1034.00/9.00/9.00\",");
    EXPECT_FALSE(Change("L40", 1));
    EXPECT_EQ(shop_.StoredStock(a_), "\"1/1034.00/9.00/9.00\",");
}

}  // namespace
