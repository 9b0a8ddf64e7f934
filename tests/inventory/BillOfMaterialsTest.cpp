#include "inventory/BillOfMaterials.h"

#include <gtest/gtest.h>

#include <array>
#include <string>
#include <vector>

#include "inventory/LItem.h"
#include "inventory/StockQuantities.h"
#include "tests/inventory/LTestBusiness.h"

namespace {

TEST(BillOfMaterials, IsReadAndWrittenInItsOrder) {
    LTestBusiness shop;
    shop.SetOption("DecimalSymbol", ",");
    shop.SetOption("ThousandsSymbol", ".");
    std::vector<BOMItemQuantities> lines;
    ParseBOMItemsAndQuantities(lines, "\"Bolt, M8/2.00\",\"Nut/x\",\"Oil\",\"Rod/1.5/3\r\n\",");
    std::string read;
    for (const auto& line : lines) read += line.code + "=" + std::to_string(line.quantity) + ";";
    EXPECT_EQ(read, "Bolt, M8=2.000000;Nut=0.000000;Oil=0.000000;Rod=1.500000;");

    const std::string text = GetBOMItemQuantityString(
        shop.Profile(), {{"Bolt, M8", 1234}, {"Oil", 0.125}, {"Nut", 2.5}});
    EXPECT_EQ(text, "\"Bolt, M8/1234.00\",\"Oil/0.125\",\"Nut/2.50\",");
    ParseBOMItemsAndQuantities(lines, text);
    EXPECT_EQ(GetBOMItemQuantityString(shop.Profile(), lines), text);
}

class BuildableStock : public testing::Test {
protected:
    std::string StockOf(std::string_view code) {
        LItem item;
        if (!OpenItem(shop_.Profile(), item, code)) return "no item";
        std::string text;
        item.GetBOMLocationsAndQuantities(shop_.Profile(), text);
        return text;
    }
    void SetBill(const std::string& key, std::string_view bill) {
        LRecord record;
        ASSERT_TRUE(shop_.Profile().Items().Open(record, key));
        record.SetString("BillOfMaterials", bill);
    }

    LTestBusiness shop_;
    std::string yard_ = shop_.AddLocation("Yard");  // the key "2"
    std::string a_ = shop_.AddItem("A", "\"1/7.00/1.00/1.00\",\"2/4.00/1.00/1.00\",");
    std::string b_ = shop_.AddItem("B", "\"1/10.00/0.00/0.00\",\"9/5.00/0.00/0.00\",");
    std::string kit_ = shop_.AddBuiltItem("Kit", "\"A/1.00\",");
};

TEST_F(BuildableStock, IsWhatTheScarcestComponentAllows) {
    shop_.AddItem("owed", "\"1/-3.00/0.00/0.00\",");
    shop_.AddItem("tenths", "\"1/0.30/0.00/0.00\",");
    shop_.AddBuiltItem("Half", "\"A/2.00\",");
    const std::array<std::array<const char*, 3>, 12> kCases{{
        {"\"A/2.00\",\"B/3.00\",", "\"1/3.00000/0/0\",\"2/2.00000/0/0\",",
         "B limits only where it lies, and adds no location"},
        {"\"B/3.00\",\"A/2.00\",", "\"1/3.00000/0/0\",\"9/1.00000/0/0\",", "the first one leads"},
        {"\"owed/2.00\",", "\"1/-1.00000/0/0\",", "truncated toward zero"},
        {"\"owed/4.00\",", "\"1/0.00000/0/0\",", "never minus zero"},
        {"\"tenths/0.1\",", "\"1/3.00000/0/0\",", "0.3 / 0.1 is three"},
        {"\"gone/1.00\",\"A/1.00\",", "", "a first component that is gone"},
        {"\"A/1.00\",\"gone/1.00\",", "\"1/7.00000/0/0\",\"2/4.00000/0/0\",", "a later one"},
        {"\"A/0.00\",\"B/2.00\",", "\"1/5.00000/0/0\",\"9/2.00000/0/0\",", "none of it needed"},
        {"\"A/0.00\",", "", "nothing but such lines"},
        {"\"Half/1.00\",\"B/1.00\",", "\"1/3.00000/0/0\",\"2/2.00000/0/0\",", "a built component"},
        {"\"A/1.00\",\"Kit/1.00\",", "", "itself"},
        {",,", "", "no lines worth the name"},
    }};
    for (const auto& [bill, stock, why] : kCases) {
        SetBill(kit_, bill);
        EXPECT_EQ(StockOf("Kit"), stock) << why;
    }
}

TEST_F(BuildableStock, IsNothingWhereABillLeadsBack) {
    shop_.AddBuiltItem("Loop", "\"A/1.00\",\"Kit/1.00\",");
    shop_.AddBuiltItem("Above", "\"A/1.00\",\"Loop/1.00\",");
    SetBill(kit_, "\"A/1.00\",\"Loop/1.00\",");
    for (const char* code : {"Kit", "Loop", "Above"}) {
        EXPECT_EQ(StockOf(code), "") << code;
        LItem item;
        ASSERT_TRUE(OpenItem(shop_.Profile(), item, code));
        EXPECT_EQ(GetItemsInStock(shop_.Profile(), item, "Main"), 0) << code;
    }
}

TEST_F(BuildableStock, IsDerivedOnceHoweverOftenItIsNamed) {
    std::string below = "A";
    for (int level = 0; level < 60; ++level) {
        const std::string line = "\"" + below + "/1.00\",";
        below = "L" + std::to_string(level);
        shop_.AddBuiltItem(below, line + line);
    }
    EXPECT_EQ(StockOf(below), "\"1/7.00000/0/0\",\"2/4.00000/0/0\",");
}

TEST(BillOfMaterials, KnowsWhatIsBuiltFromWhat) {
    LTestBusiness shop;
    const std::string a = shop.AddItem("A", ""), ab = shop.AddItem("AB", "");
    shop.AddBuiltItem("Kit", "\"A/1.00\",");
    shop.AddBuiltItem("a", "\"ab/1.00\",");
    EXPECT_TRUE(BOMItemQuantities::ItemHasBOM(shop.Profile(), "Kit"));
    EXPECT_FALSE(BOMItemQuantities::ItemHasBOM(shop.Profile(), "A"));
    EXPECT_FALSE(BOMItemQuantities::ItemHasBOM(shop.Profile(), "gone"));
    EXPECT_TRUE(BOMItemQuantities::UsedInAnotherItemsBOM(shop.Profile(), a));
    EXPECT_FALSE(BOMItemQuantities::UsedInAnotherItemsBOM(shop.Profile(), ab))
        << "letter case counts";
    EXPECT_FALSE(BOMItemQuantities::UsedInAnotherItemsBOM(shop.Profile(), "77"));
    EXPECT_EQ(ItemsBuiltFrom(shop.Profile(), "A"), std::vector<std::string>{"Kit"});
}

TEST(ComponentLine, IsCheckedInThisOrder) {
    LTestBusiness shop;
    shop.SetOption("DecimalSymbol", ",");
    shop.SetOption("ThousandsSymbol", ".");
    const std::array<std::array<const char*, 5>, 11> kCases{{
        {"A", "1,5", "2,00", "", "the comma is the decimal symbol"},
        {"A", "0", "", "", "zero is accepted"},
        {"A", "x", "-1", "Wrong number format!", "no number"},
        {"A", "", "", "Wrong number format!", "nothing"},
        {"A", "1/2", "", "Wrong number format!", "passes the lax check and is no number"},
        {"A", "1.5", "", "Wrong number format!", "a group of one digit"},
        {"A", "-1", "-1", "Quantity must be positive.", "below zero"},
        {"A", "1", "-0,01", "The value must be positive.", "an amount below zero"},
        {"", "1", "", "Select items of bill-of-material item", "no component chosen"},
        {"A/B", "1", "",
         "Item A/B cannot be a component because its code contains \"/\" or a double quote.",
         "slash"},
        {"3\"", "1", "",
         "Item 3\" cannot be a component because its code contains \"/\" or a double quote.",
         "inch"},
    }};
    for (const auto& [code, quantity, value, message, why] : kCases) {
        BOMItemQuantities line{"untouched", -1};
        const auto error = CheckComponentLine(shop.Profile(), {code, quantity, value}, line);
        EXPECT_EQ(error.message, message) << why;
        EXPECT_EQ(error.IsNone(), std::string_view(message).empty()) << why;
        EXPECT_EQ(line.code, error.IsNone() ? code : "untouched") << why;
    }
    BOMItemQuantities line;
    EXPECT_TRUE(CheckComponentLine(shop.Profile(), {"A", "1.234,5", ""}, line).IsNone());
    EXPECT_EQ(line.quantity, 1234.5);
}

TEST(BillOfMaterials, IsRefusedWhereItLeadsBackToItsItem) {
    LTestBusiness shop;
    shop.AddItem("Plain", "");
    shop.AddBuiltItem("Old", "\"Plain/1.00\",");
    shop.AddBuiltItem("Uses old", "\"Plain/1.00\",\"Old/1.00\",");
    shop.AddBuiltItem("Far", "\"Uses old/1.00\",");
    shop.AddBuiltItem("Uses new", "\"New/1.00\",");
    shop.AddBuiltItem("Own loop", "\"Own loop/1.00\",");
    const std::string kFar =
        "Item Far cannot be a component because it is itself built from this item.";
    struct Case {
        const char *code, *oldCode, *bill;
        std::string reason;
    };
    const std::array<Case, 9> kCases{{
        {"Old", "Old", "\"Plain/1.00\",", ""},
        {"Old", "Old", "\"Plain/1.00\",\"Old/1.00\",", "An item cannot be a component of itself."},
        {"Old", "Old", "\"Plain/1.00\",\"Far/1.00\",", kFar},
        {"New", "Old", "\"Far/1.00\",", ""},  // after the rename "Old" in their bills names nothing
        {"New", "Old", "\"Uses new/1.00\",",
         "Item Uses new cannot be a component because it is itself built from this item."},
        {"New", "", "\"Far/1.00\",", ""},
        {"New", "", "\"Own loop/1.00\",\"gone/1.00\",", ""},
        {"New", "", "\"A/B/1.00\",",
         "Item A/B cannot be a component because its code contains \"/\" or a double quote."},
        {"New", "", "\"Plain\",", "Wrong number format!"},
    }};
    for (const Case& row : kCases) {
        EXPECT_EQ(CheckBillOfMaterials(shop.Profile(), row.code, row.oldCode, row.bill), row.reason)
            << row.code << ' ' << row.bill;
    }
}

}  // namespace
