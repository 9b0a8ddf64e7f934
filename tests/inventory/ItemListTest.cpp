#include "inventory/ItemList.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <string>
#include <vector>

#include "tests/inventory/LTestBusiness.h"

namespace {

class ItemList : public testing::Test {
protected:
    // "code@location=quantity", a "!" behind those that are low; sorted.
    std::string Rows(const LItemListFilter& filter) {
        std::vector<std::string> rows;
        FillItemList(shop_.Profile(), filter, [&](const LItemRow& row) {
            rows.push_back(row.item.GetString("Name") + "@" + std::string(row.locationName) + "=" +
                           std::to_string(static_cast<int>(row.stock.quantity)) +
                           (row.isBelowWarning ? "!" : ""));
        });
        std::sort(rows.begin(), rows.end());
        std::string text;
        for (const std::string& row : rows) text += row + " ";
        return text;
    }

    LTestBusiness shop_;
    std::string yard_ = shop_.AddLocation("Yard");  // the key "2"
    std::string metal_ = shop_.Add("Categories", {{"Name", "Metal"}, {"Subcategory", "Steel"}});
    std::string bolt_ = shop_.Add(
        "Items", {{"Name", "Bolt"},
                  {"Category", metal_},
                  {"SubCategory", "Steel"},
                  {"Description", "Größe M8\r\nHexagon"},
                  {"TaxRate", "2"},
                  {"LocationsAndQuantities", "\"1/2.00/5.00/0.00\",\"2/2.00/5.00/10.00\","}});
    std::string nut_ = shop_.Add(
        "Items", {{"Name", "Nut"},
                  {"Category", metal_},
                  {"TaxRate", "9"},
                  {"LocationsAndQuantities", "\"1/9.00/5.00/10.00\",\"2/0.00/0.00/3.00\","}});
    std::string glue_ = shop_.AddItem("Glue", "\"8/-1.00/0.00/0.00\",");
    std::string kit_ = shop_.AddBuiltItem("Kit", "\"Nut/2.00\",\"gone/1.00\",");
};

TEST_F(ItemList, ShowsARowForEveryItemAndLocation) {
    EXPECT_EQ(Rows({}),
              "Bolt@Main=2 Bolt@Yard=2! Glue@=-1 Kit@Main=4 Kit@Yard=0 Nut@Main=9 Nut@Yard=0! ");
}

TEST_F(ItemList, FiltersByEveryMeans) {
    struct Case {
        LItemListFilter filter;
        const char* rows;
        const char* why;
    };
    const LStockFilter kAll = LStockFilter::kAll;
    const std::array<Case, 15> kCases{{
        {{"Metal", "", "", kAll, ""},
         "Bolt@Main=2 Bolt@Yard=2! Nut@Main=9 Nut@Yard=0! ",
         "category"},
        {{"metal", "", "", kAll, ""}, "", "letter case counts"},
        {{"All", "Steel", "All", kAll, ""}, "Bolt@Main=2 Bolt@Yard=2! ", "sub-category"},
        {{"Metal", "All", "Yard", kAll, ""}, "Bolt@Yard=2! Nut@Yard=0! ", "location"},
        {{"", "", "Yard", kAll, ""},
         "Bolt@Yard=2! Kit@Yard=0 Nut@Yard=0! ",
         "a built item's rows too"},
        {{"", "", "", LStockFilter::kBelowWarning, ""},
         "Bolt@Yard=2! Nut@Yard=0! ",
         "without an ideal quantity nothing is low"},
        {{"", "", "", LStockFilter::kAboveWarning, ""},
         "Bolt@Main=2 Glue@=-1 Kit@Main=4 Kit@Yard=0 Nut@Main=9 ",
         "all others"},
        {{"", "", "", LStockFilter::kAboveZero, ""},
         "Bolt@Main=2 Bolt@Yard=2! Kit@Main=4 Nut@Main=9 ",
         "something there"},
        {{"", "", "", kAll, "bOL"}, "Bolt@Main=2 Bolt@Yard=2! ", "in the code"},
        {{"", "", "", kAll, "GRÖß"}, "Bolt@Main=2 Bolt@Yard=2! ", "in the description"},
        {{"", "", "", kAll, "ut"}, "Nut@Main=9 Nut@Yard=0! ", "in the middle"},
        {{"", "", "", kAll, "Metal"}, "", "the category is not searched"},
        {{"Metal", "", "Main", LStockFilter::kAboveWarning, "n"},
         "Bolt@Main=2 Nut@Main=9 ",
         "together"},
        {{"Wood", "", "", kAll, ""}, "", "no such category"},
        {{"", "", "Moon", kAll, ""}, "", "no such location"},
    }};
    for (const Case& row : kCases) EXPECT_EQ(Rows(row.filter), row.rows) << row.why;
}

TEST_F(ItemList, WhatHasNoRowCanStillBeFound) {
    shop_.AddBuiltItem("Ghost", "\"gone/1.00\",\"Nut/1.00\",");
    shop_.AddItem("Lost", "");
    const auto nowhere = [&](const LItemListFilter& filter) {
        std::vector<std::string> codes;
        FillItemList(
            shop_.Profile(), filter, [](const LItemRow&) {},
            [&](const LItem& item) { codes.push_back(item.GetString("Name")); });
        std::sort(codes.begin(), codes.end());
        return codes;
    };
    const LStockFilter kAll = LStockFilter::kAll;
    EXPECT_EQ(nowhere({}), (std::vector<std::string>{"Ghost", "Lost"}));
    EXPECT_EQ(nowhere({"", "", "All", kAll, "gho"}), std::vector<std::string>{"Ghost"});
    EXPECT_TRUE(nowhere({"", "", "Yard", kAll, ""}).empty());
    EXPECT_TRUE(nowhere({"", "", "", LStockFilter::kAboveWarning, ""}).empty());
}

TEST_F(ItemList, NamesCategoryAndTax) {
    std::string seen;
    FillItemList(shop_.Profile(), {"", "", "Main", LStockFilter::kAll, ""},
                 [&](const LItemRow& row) {
                     if (row.item.IsBuilt()) return;
                     seen += std::string(row.categoryName) + "/" + std::string(row.taxName) + " ";
                 });
    EXPECT_TRUE(seen == "Metal/Sales Tax Metal/ " || seen == "Metal/ Metal/Sales Tax ") << seen;
}

}  // namespace
