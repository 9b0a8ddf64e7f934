#include "inventory/ItemSave.h"

#include <gtest/gtest.h>

#include <array>
#include <functional>
#include <string>
#include <vector>

#include "inventory/MasterRecords.h"
#include "inventory/StockQuantities.h"
#include "tests/inventory/LTestBusiness.h"

namespace {

LItemInput Bolt() {
    LItemInput input;
    input.code = "  Bolt ";
    input.description = "Hexagon\r\nbolt";
    input.cost = "1.25";
    input.price = "$2,000.50";
    input.taxIndex = 2;
    input.webSite = "https://bolt.example";
    input.measure = "box";
    input.notes = "n";
    input.category = "Fasteners";
    input.subCategory = "Steel";
    input.customField1 = " one ";
    return input;
}

TEST(LItemSaveGeneral, StoresANewItemWithWhatItNames) {
    LTestBusiness shop;
    LItem item;
    ASSERT_TRUE(LItemSaveGeneral(shop.Profile(), item, Bolt()).IsNone());
    const std::string category = item.GetString("Category");
    EXPECT_EQ(shop.ItemFile(item.GetPrimaryKey()),
              "Name=Bolt&Value=125&CostDigits=2&Price=200050&ValueDigits=2&TaxRate=2&Description="
              "Hexagon%0D%0Abolt&WebSite=https%3A%2F%2Fbolt.example&Measure=box&Notes=n&"
              "BillOfMaterials=&SubCategory=Steel&CustomField1=one&CustomField2=&Category=" +
                  category);
    EXPECT_EQ(shop.Stored("Categories", category, "Name"), "Fasteners");
    EXPECT_EQ(shop.Stored("Categories", category, "Subcategory"), "Steel");
    EXPECT_EQ(GetNameList(shop.Profile(), "UnitMeasure"), std::vector<std::string>{"box"});
    LItem found;
    EXPECT_TRUE(OpenItem(shop.Profile(), found, "Bolt"));
}

TEST(LItemSaveGeneral, AddsASubCategoryOnce) {
    LTestBusiness shop;
    LItem item;
    LItemInput input = Bolt();
    for (const char* name : {"Steel", "steel", "Brass", "", "Steel"}) {
        input.subCategory = name;
        ASSERT_TRUE(LItemSaveGeneral(shop.Profile(), item, input).IsNone()) << name;
        input.id = item.GetPrimaryKey();
    }
    EXPECT_EQ(shop.Stored("Categories", item.GetString("Category"), "Subcategory"),
              "Steel,steel,Brass");
    EXPECT_EQ(shop.Stored("Items", input.id, "SubCategory"), "Steel");
    input.category = "fasteners";
    ASSERT_TRUE(LItemSaveGeneral(shop.Profile(), item, input).IsNone());
    EXPECT_EQ(LNameMap(shop.Profile(), "Categories").Pairs().size(), 2U) << "letter case counts";
}

// Every fault is put into an input that already has all the later ones: the first is reported.
TEST(LItemSaveGeneral, ReportsTheFirstFaultInThisOrder) {
    LTestBusiness shop;
    shop.AddItem("BOLT", "");
    struct Fault {
        LItemField field;
        const char* message;
        std::function<void(LItemInput&)> make, mend;
    };
    const char* kCurrency =
        "Enter a proper currency value. For description only (non charge items) enter 0.";
    const char* kBound = "The item value must be positive and less than 100,000,000,000.";
    const std::vector<Fault> faults{
        {LItemField::kCode, "Enter an item code. It is usually just a few letters.",
         [](LItemInput& i) { i.code = "  "; }, [](LItemInput& i) { i.code = "bolt"; }},
        {LItemField::kCost, kCurrency, [](LItemInput& i) { i.cost = "x"; },
         [](LItemInput& i) { i.cost = "100000000000"; }},
        {LItemField::kPrice, kCurrency, [](LItemInput& i) { i.price = ""; },
         [](LItemInput& i) { i.price = "100,000,000,000.00"; }},
        {LItemField::kCategory, "Select a category for the item.",
         [](LItemInput& i) { i.category = " "; }, [](LItemInput& i) { i.category = "Things"; }},
        {LItemField::kCategory, "Select a valid category for the item.",
         [](LItemInput& i) { i.category = "All"; }, [](LItemInput& i) { i.category = "Things"; }},
        {LItemField::kSubCategory, "The subcategory cannot contain commas.",
         [](LItemInput& i) { i.subCategory = "a,b"; }, [](LItemInput& i) { i.subCategory = "a"; }},
        {LItemField::kSubCategory, "Select a valid subcategory for the item.",
         [](LItemInput& i) { i.subCategory = "All"; }, [](LItemInput& i) { i.subCategory = "a"; }},
        {LItemField::kCost, kBound, [](LItemInput&) {},
         [](LItemInput& i) { i.cost = "99,999,999,999.99"; }},
        {LItemField::kPrice, kBound, [](LItemInput&) {},
         [](LItemInput& i) { i.price = "99999999999.99"; }},
        {LItemField::kComponents, "Select items of bill-of-material item",
         [](LItemInput& i) { i.isBuilt = true; },
         [](LItemInput& i) { i.billOfMaterials = "\"bolt/1.00\","; }},
        {LItemField::kComponents, "An item cannot be a component of itself.", [](LItemInput&) {},
         [](LItemInput& i) { i.billOfMaterials = "\"BOLT/1.00\","; }},
        {LItemField::kCode, "An item with the same code already exists.", [](LItemInput&) {},
         [](LItemInput& i) { i.code = "nut"; }},
    };
    LItemInput input = Bolt();
    input.cost = input.price = "0";
    LItem item;
    for (const Fault& fault : faults) {
        fault.make(input);
        const LItemError checked = LItemCheckGeneral(shop.Profile(), input);
        const LItemError saved = LItemSaveGeneral(shop.Profile(), item, input);
        for (const LItemError& error : {checked, saved}) {
            EXPECT_EQ(error.message, fault.message);
            EXPECT_EQ(error.field, fault.field) << fault.message;
        }
        EXPECT_FALSE(item.IsBound()) << fault.message;
        fault.mend(input);
    }
    EXPECT_TRUE(LItemCheckGeneral(shop.Profile(), input).IsNone());
    EXPECT_TRUE(LNameMap(shop.Profile(), "Categories").Pairs().empty());
    EXPECT_TRUE(LItemSaveGeneral(shop.Profile(), item, input).IsNone());
}

TEST(LItemSaveGeneral, MakesTheUnitOfMeasureBeforeALaterCheckFails) {
    LTestBusiness shop;
    LItemInput input = Bolt();
    input.cost = "100000000000";
    EXPECT_FALSE(LItemCheckGeneral(shop.Profile(), input).IsNone());
    EXPECT_TRUE(GetNameList(shop.Profile(), "UnitMeasure").empty()) << "a mere check makes nothing";
    LItem item;
    EXPECT_FALSE(LItemSaveGeneral(shop.Profile(), item, input).IsNone());
    EXPECT_EQ(GetNameList(shop.Profile(), "UnitMeasure"), std::vector<std::string>{"box"});
    input.category = "";
    input.measure = "never reached";
    EXPECT_FALSE(LItemSaveGeneral(shop.Profile(), item, input).IsNone());
    EXPECT_EQ(GetNameList(shop.Profile(), "UnitMeasure").size(), 1U);
}

TEST(LItemSaveGeneral, TellsWhereTheBoundLiesInOtherCurrencies) {
    LTestBusiness shop;
    shop.SetOption("CurrencyDigits", "0");
    LItemInput input = Bolt();
    input.price = "0";
    input.cost = "10000000000000";
    EXPECT_EQ(LItemCheckGeneral(shop.Profile(), input).message,
              "The item value must be positive and less than 10,000,000,000,000.");
    shop.SetOption("CurrencyDigits", "2");
    input.cost = "50,000,000,000.1234";
    EXPECT_TRUE(LItemCheckGeneral(shop.Profile(), input).IsNone())
        << "digits beyond the currency's";
}

TEST(LItemSaveGeneral, RenamesWithinTheLettersAndSaysWhichBillsNameTheOldCode) {
    LTestBusiness shop;
    LItem item;
    ASSERT_TRUE(LItemSaveGeneral(shop.Profile(), item, Bolt()).IsNone());
    LItemInput input = Bolt();
    input.id = item.GetPrimaryKey();
    input.code = "BOLT";
    std::string notice = "old";
    EXPECT_TRUE(LItemSaveGeneral(shop.Profile(), item, input, &notice).IsNone());
    EXPECT_EQ(notice, "");
    EXPECT_EQ(shop.Stored("Items", input.id, "Name"), "BOLT");

    shop.AddBuiltItem("Kit", "\"BOLT/2.00\",");
    shop.AddBuiltItem("Box", "\"Nut/2.00\",\"BOLT/1.00\",");
    input.code = "kit";
    EXPECT_EQ(LItemSaveGeneral(shop.Profile(), item, input, &notice).message,
              "An item with the same code already exists.");
    input.code = "Screw";
    EXPECT_TRUE(LItemSaveGeneral(shop.Profile(), item, input, &notice).IsNone());
    const std::string kStart =
        "The bills of materials of these items still name the old code BOLT: ";
    EXPECT_TRUE(notice == kStart + "Kit, Box." || notice == kStart + "Box, Kit.") << notice;
    LItem found;
    EXPECT_FALSE(OpenItem(shop.Profile(), found, "BOLT"));
    EXPECT_TRUE(OpenItem(shop.Profile(), found, "Screw"));
}

TEST(LItemSaveGeneral, DoesNotBringADeletedItemBack) {
    LTestBusiness shop;
    LItemInput input = Bolt();
    input.id = shop.AddItem("Bolt", "");
    ASSERT_TRUE(shop.Profile().Items().Delete(input.id));
    LItem item;
    EXPECT_FALSE(LItemSaveGeneral(shop.Profile(), item, input).IsNone());
    EXPECT_EQ(shop.ItemFile(input.id), "no file");
}

class ItemStock : public testing::Test {
protected:
    std::string Save(const LItemStockInput& input) {
        const LItemError error = LItemSaveStock(shop_.Profile(), item_, input);
        if (error.IsNone()) return Field("LocationsAndQuantities");
        EXPECT_EQ(error.field, LItemField::kLocations);
        return error.message;
    }
    std::string Field(std::string_view name) { return shop_.Stored("Items", key_, name); }
    void SetUp() override { ASSERT_TRUE(shop_.Profile().Items().Open(item_, key_)); }

    LTestBusiness shop_;
    std::string yard_ = shop_.AddLocation("Yard");  // the key "2"
    std::string key_ = shop_.AddItem("A", "\"1/1.00/1.00/1.00\",");
    LItem item_;
};

TEST_F(ItemStock, StoresRowsTotalsSupplierAndFlag) {
    EXPECT_EQ(Save({true,
                    " Hill & Sons ",
                    "H-7",
                    {{"Main", 2, 9, 1}, {"yard", 3, 0, 0.5}, {"Main", 1, 0, 0}}}),
              "\"2/3.00/0.50/0.00\",\"1/3.00/1.00/9.00\",");
    EXPECT_EQ(Field("Quantity") + Field("WarnQuantity") + Field("IdealQuantity"),
              "6.0000001.5000009.000000");
    EXPECT_EQ(Field("CheckWaringEmail") + Field("SendWaringEmail"), "1") << "no row is low";
    EXPECT_EQ(Field("Supplier") + "|" + Field("SupplierID"), "Hill & Sons|H-7");
    EXPECT_EQ(LNameMap(shop_.Profile(), "Suppliers").Pairs()[0].second, "Hill & Sons");
    Save({false, "HILL & sons", "", {}});
    EXPECT_EQ(LNameMap(shop_.Profile(), "Suppliers").Pairs().size(), 1U)
        << "known in other letters";
    EXPECT_EQ(Field("Supplier") + Field("CheckWaringEmail"), "HILL & sons0");
}

TEST_F(ItemStock, TheFlagLooksAtTheRowsAsTyped) {
    Save({false, "", "", {{"Main", 1, 9, 1}}});
    EXPECT_EQ(Field("SendWaringEmail"), "") << "no e-mail wanted";
    Save({true, "", "", {{"Main", 1, 9, 1}, {"Main", 8, 0, 0}}});
    EXPECT_EQ(Field("SendWaringEmail"), "1") << "together they hold 9 and warn at 1";
}

// Which of the two is first is the folder's affair.
TEST_F(ItemStock, ARowWithoutANameAndNoRowsAtAllMeanTheFirstLocation) {
    LLocation first;
    LLocationList(shop_.Profile()).CreateIteratorBase(first);
    const std::string key = first.GetPrimaryKey();
    EXPECT_EQ(Save({true, "", "", {{"", 4, 1, 1}}}), "\"" + key + "/4.00/1.00/1.00\",");
    EXPECT_EQ(Save({true, "", "", {}}), "\"" + key + "/0.00/0.00/0.00\",");
    EXPECT_EQ(Field("Quantity") + Field("SendWaringEmail"), "0.000000") << "nothing typed is low";
}

TEST_F(ItemStock, AnUnknownLocationRefusesAll) {
    const std::string before = shop_.ItemFile(key_);
    EXPECT_EQ(Save({true, "Hill", "", {{"Main", 2, 0, 0}, {"Moon", 1, 0, 0}}}),
              "There is no location named Moon.");
    for (const char* key : {"1", "2"}) ASSERT_TRUE(shop_.Profile().List("Locations").Delete(key));
    EXPECT_EQ(Save({true, "Hill", "", {{"", 2, 0, 0}}}),
              "There is no location to keep the item at.");
    EXPECT_EQ(shop_.ItemFile(key_), before);
    EXPECT_TRUE(LNameMap(shop_.Profile(), "Suppliers").Pairs().empty());
}

TEST_F(ItemStock, WhatIsTypedHoldsWhateverWasStoredMeanwhile) {
    ASSERT_TRUE(LItemChangeQuantityById(shop_.Profile(), key_, 5, "Main", true));
    EXPECT_EQ(Save({false, "", "", {{"Main", 1, 1, 1}}}), "\"1/1.00/1.00/1.00\",");
    ASSERT_TRUE(shop_.Profile().Items().Delete(key_));
    EXPECT_FALSE(LItemSaveStock(shop_.Profile(), item_, {}).IsNone());
    item_.Invalidate();
    EXPECT_EQ(shop_.ItemFile(key_), "no file");
}

TEST_F(ItemStock, ABuiltItemKeepsNone) {
    LItemInput input = Bolt();
    input.id = key_;
    input.isBuilt = true;
    input.billOfMaterials = "\"Nut/2.00\",";
    ASSERT_TRUE(LItemSaveGeneral(shop_.Profile(), item_, input).IsNone());
    EXPECT_EQ(Field("LocationsAndQuantities"), "") << "emptied as soon as it is built";
    EXPECT_EQ(Save({true, "", "", {{"Main", 5, 5, 5}}}), "");
    EXPECT_EQ(Field("Quantity") + Field("WarnQuantity") + Field("IdealQuantity"),
              "0.0000000.0000000.000000");
    EXPECT_EQ(Field("SendWaringEmail"), "");
}

TEST(GetTaxNames, FollowsTheSettings) {
    LTestBusiness shop;
    {
        LRecord tax;
        shop.Profile().OpenSettings(tax, "Tax");
        tax.SetString("TaxName1", "VAT");
        tax.DeleteField("TaxName2");
    }
    EXPECT_EQ(GetTaxNames(shop.Profile()),
              (std::vector<std::string>{"Default", "None", "VAT", "Sales Tax 2", "Sales Tax 3"}));
}

}  // namespace
