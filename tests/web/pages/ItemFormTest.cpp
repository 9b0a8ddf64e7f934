#include "web/pages/ItemForm.h"

#include <gtest/gtest.h>

#include "inventory/MasterRecords.h"
#include "inventory/StockQuantities.h"
#include "tests/support/LTempFolder.h"

namespace {

// A business with the locations Main (1) and Store (2) and an item that is kept at Main.
class ItemForm : public testing::Test {
protected:
    void SetUp() override {
        profile_.List("Locations").CreateNewRecord(store_, "2");
        store_.SetString("Name", "Store");
        store_.Flush();
        profile_.Items().CreateNewRecord(item_);
        item_.SetString("Name", "BOLT");
        item_.SetString("LocationsAndQuantities", "\"1/10.00/3.00/20.00\",");
        item_.Flush();
    }

    static void Type(LHashTable& fields, int control, std::string_view text) {
        fields.SetString(std::to_string(control), text);
    }
    std::optional<LItemStockInput> Read(const LHashTable& fields) {
        error_ = {};
        return StockInput(profile_, fields, item_, error_);
    }

    LTempHome home_;
    LProfile profile_;
    LLocation store_;
    LItem item_;
    LTabFieldError error_;
};

TEST_F(ItemForm, WhatNobodyTouchedIsTakenFromTheStockOfNow) {
    LHashTable fields = StockFieldsOf(profile_, item_);
    Type(fields, ItemRowControl(0, kRowWarning), "4");
    item_.SetString("LocationsAndQuantities", "\"1/7.00/3.00/25.00\",");  // meanwhile
    const auto input = Read(fields);
    ASSERT_TRUE(input);
    ASSERT_EQ(input->rows.size(), 1U) << "the empty row of Store is no row";
    EXPECT_EQ(input->rows[0].locationName, "Main");
    EXPECT_EQ(input->rows[0].quantity, 7);
    EXPECT_EQ(input->rows[0].idealQuantity, 25);
    EXPECT_EQ(input->rows[0].warnQuantity, 4);
}

TEST_F(ItemForm, WhatCameToALocationMeanwhileStays) {
    const LHashTable fields = StockFieldsOf(profile_, item_);
    LLocation yard;
    profile_.List("Locations").CreateNewRecord(yard, "3");
    yard.SetString("Name", "Yard");
    yard.Flush();
    item_.SetString("LocationsAndQuantities",
                    "\"1/10.00/3.00/20.00\",\"2/5.00/1.00/2.00\",\"3/4.00/0.00/0.00\",");
    const auto input = Read(fields);
    ASSERT_TRUE(input);
    std::string rows;
    for (const LItemLocationRow& row : input->rows) {
        rows += row.locationName + "=" + std::to_string(static_cast<int>(row.quantity)) + " ";
    }
    EXPECT_EQ(rows, "Yard=4 Store=5 Main=10 ");
}

TEST_F(ItemForm, ATypedQuantityWinsOverTheStockOfNow) {
    LHashTable fields = StockFieldsOf(profile_, item_);
    Type(fields, ItemRowControl(0, kRowQuantity), " 1,012.5 ");
    item_.SetString("LocationsAndQuantities", "\"1/7.00/3.00/20.00\",");
    const auto input = Read(fields);
    ASSERT_TRUE(input);
    EXPECT_EQ(input->rows[0].quantity, 1012.5);
}

TEST_F(ItemForm, AnEmptiedRowTakesTheItemOutOfTheLocation) {
    LHashTable fields = StockFieldsOf(profile_, item_);
    for (const int part : {kRowQuantity, kRowIdeal, kRowWarning}) {
        Type(fields, ItemRowControl(0, part), "");
    }
    Type(fields, ItemRowControl(1, kRowIdeal), "5");
    const auto input = Read(fields);
    ASSERT_TRUE(input);
    ASSERT_EQ(input->rows.size(), 1U);
    EXPECT_EQ(input->rows[0].locationName, "Store");
    EXPECT_EQ(input->rows[0].quantity, 0);
}

TEST_F(ItemForm, RefusesWhatIsNoQuantityAndNamesTheControl) {
    const struct {
        int part;
        const char* text;
        const char* message;
    } kCases[] = {
        {kRowQuantity, "ten", "Wrong number format!"},
        {kRowWarning, "1.2.3", "Wrong number format!"},
        {kRowIdeal, "-1", "Quantity must be positive."},
    };
    for (const auto& [part, text, message] : kCases) {
        LHashTable fields = StockFieldsOf(profile_, item_);
        Type(fields, ItemRowControl(0, part), text);
        EXPECT_FALSE(Read(fields)) << text;
        EXPECT_EQ(error_.control, ItemRowControl(0, part)) << text;
        EXPECT_EQ(error_.message, message) << text;
    }
}

// A location that went away while the form was open must not pass for the first one.
TEST_F(ItemForm, RefusesALocationThatIsGone) {
    LHashTable fields = StockFieldsOf(profile_, item_);
    Type(fields, ItemRowControl(1, kRowQuantity), "3");
    ASSERT_TRUE(profile_.List("Locations").Delete("2"));
    EXPECT_FALSE(Read(fields));
    EXPECT_EQ(error_.control, ItemRowControl(1, kRowQuantity));
}

TEST_F(ItemForm, SurvivesARowCountThatNobodyTyped) {
    for (const char* count : {"-1", "99999999999", "x", ""}) {
        LHashTable fields;
        Type(fields, kItemRowCount, count);
        const auto input = Read(fields);
        ASSERT_TRUE(input) << count;
        EXPECT_EQ(input->rows.size(), 1U) << "what lies at Main stays: " << count;
    }
}

}  // namespace
