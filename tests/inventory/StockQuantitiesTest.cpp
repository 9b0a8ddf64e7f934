#include "inventory/StockQuantities.h"

#include <gtest/gtest.h>

#include <array>
#include <string>

#include "tests/inventory/LTestBusiness.h"

namespace {

std::string Described(const LStockEntries& entries) {
    std::string out;
    for (const LocationAndQuantities& e : entries) {
        out += "[" + e.location + " " + std::to_string(e.quantity) + " " +
               std::to_string(e.warnQuantity) + " " + std::to_string(e.idealQuantity) + "]";
    }
    return out;
}

TEST(LocationsAndQuantities, IsReadWhateverStandsThere) {
    const std::array<std::array<const char*, 3>, 11> kCases{{
        {"\"1/12.00/5.00/20.00\",\"3/0.00/0.00/0.00\",",
         "[1 12.000000 5.000000 20.000000][3 0.000000 0.000000 0.000000]", "as it is written"},
        {"", "", "nothing stored"},
        {"1/2/3/4", "[1 2.000000 3.000000 4.000000]", "no quotes, no comma"},
        {"\"1/-2.5\",", "[1 -2.500000 0.000000 0.000000]", "missing pieces"},
        {"\"1//x/4\",", "[1 0.000000 0.000000 4.000000]", "empty and unreadable pieces"},
        {"\"1/2/3/4\r\n9\",", "[1 2.000000 3.000000 4.000000]",
         "the last piece ends with the line"},
        {"\"1/2/3/4/5\",", "[1 2.000000 3.000000 4.000000]", "a piece too many"},
        {"\"\",\"2/1\",", "[ 0.000000 0.000000 0.000000][2 1.000000 0.000000 0.000000]",
         "an empty element is an entry too"},
        {"\"1/inf/nan/1e999999\",", "[1 0.000000 0.000000 ", "no infinities"},
        {"\"1/1,5/0/0\",", "[1 1.000000 0.000000 0.000000]", "a comma ends the number"},
        {"\"1/2/3/4", "[1 2.000000 3.000000 4.000000]", "the closing quote is missing"},
    }};
    for (const auto& [text, entries, why] : kCases) {
        EXPECT_EQ(
            Described(ParseLocationAndQuantities(text)).substr(0, std::string(entries).size()),
            entries)
            << why;
    }
}

TEST(LocationsAndQuantities, IsWrittenWithTheBusinessesDecimals) {
    LTestBusiness shop;
    const LStockEntries entries{{"1", 12, 5, 20}, {"3", 0.005, -2.5, 1e15}};
    const std::array<std::array<const char*, 2>, 4> kCases{{
        {"2", "\"1/12.00/5.00/20.00\",\"3/0.01/-2.50/1000000000000000.00\","},
        {"0", "\"1/12/5/20\",\"3/0/-2/1000000000000000\","},
        {"-7", "\"1/12/5/20\",\"3/0/-2/1000000000000000\","},
        {"3", "\"1/12.000/5.000/20.000\",\"3/0.005/-2.500/1000000000000000.000\","},
    }};
    for (const auto& [digits, text] : kCases) {
        shop.SetOption("NumberOfDigitsAfterDecimalPoint", digits);
        EXPECT_EQ(FormatLocationAndQuantities(shop.Profile(), entries), text) << digits;
    }
}

TEST(LocationsAndQuantities, RowsOfOneLocationAreAddedAndNewOnesComeFirst) {
    LTestBusiness shop;
    ItemLocations list;
    StoreLocationQuantity(list, "1", 2, 1, 5);
    StoreLocationQuantity(list, "2", 7, 0, 0);
    StoreLocationQuantity(list, "", 9, 9, 9);
    StoreLocationQuantity(list, "1", 3, 1, 0.5);
    std::string text;
    GetLocationQuantityString(shop.Profile(), list, text);
    EXPECT_EQ(text, "\"2/7.00/0.00/0.00\",\"1/5.00/2.00/5.50\",");

    LLocationsQuantities totals;
    for (const LocationAndQuantities& e : list) {
        totals.SetQuantities(e.location, e.quantity, e.warnQuantity, e.idealQuantity);
    }
    totals.SetQuantities("2", 1, 2, 3);
    ASSERT_NE(totals.Find("2"), nullptr);
    EXPECT_EQ(Described({*totals.Find("2")}), "[2 8.000000 2.000000 3.000000]");
    EXPECT_EQ(totals.Find("3"), nullptr);
}

TEST(GetQuantityInStock, LooksTheLocationUpByItsExactName) {
    LTestBusiness shop;
    const std::string yard = shop.AddLocation("Yard");
    shop.AddItem("A", "\"99/8.00/0.00/0.00\",\"" + yard + "/7.00/2.00/9.00\",\"" + yard +
                          "/1.00/1.00/1.00\",");
    LItem item;
    ASSERT_TRUE(OpenItem(shop.Profile(), item, "A"));
    EXPECT_EQ(GetItemsInStock(shop.Profile(), item, "Yard"), 7) << "the first entry counts";
    EXPECT_EQ(GetQuantityInStock(shop.Profile(), item, "Yard", kItemQuantityIdeal), 9);
    EXPECT_EQ(GetQuantityInStock(shop.Profile(), item, "Yard", kItemQuantityWarn), 2);
    EXPECT_EQ(GetItemsInStock(shop.Profile(), item, "yard"), 0);
    EXPECT_EQ(GetItemsInStock(shop.Profile(), item, ""), 0)
        << "a location that is gone has no name";
}

TEST(LNameMap, KnowsTheNamesOfAList) {
    LTestBusiness shop;
    const std::string yard = shop.AddLocation("Yard");
    for (int i = 0; i < 12; ++i) shop.AddLocation("L" + std::to_string(i));
    const LNameMap names(shop.Profile(), "Locations");
    EXPECT_EQ(names.Name("1"), "Main");
    EXPECT_EQ(names.Name(yard), "Yard");
    EXPECT_EQ(names.Name("10"), "L7");
    EXPECT_EQ(names.Name("99"), "");
    EXPECT_EQ(names.Pairs().size(), 14U);
}

}  // namespace
