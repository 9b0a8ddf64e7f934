// Finding rows of the movement history again.
#include <gtest/gtest.h>

#include <filesystem>

#include "inventory/LItem.h"
#include "inventory/StockMovements.h"
#include "tests/inventory/LTestShop.h"
#include "tests/support/LScriptedUserInterface.h"

namespace {

LHistoryFilter Within(const LDate& from, const LDate& to) {
    LHistoryFilter filter;
    filter.from = from;
    filter.to = to;
    return filter;
}

// What of each row tells it apart: its day and quantity.
std::string Summary(const std::vector<LHistoryRow>& rows) {
    std::string text;
    for (const LHistoryRow& row : rows) {
        text += row.date.ToStored().substr(8) + ":" + row.fields[kHistoryQuantity] + " ";
    }
    return text;
}

class HistorySearch : public ::testing::Test {
protected:
    HistorySearch() {
        bolt_ = shop_.AddItem("BOLT", 100);
        nut_ = shop_.AddItem("NUT", 100);
        shop_.Sell("BOLT", 3, kTuesday);
        shop_.Sell("BOLT", 1, kMonday);
        shop_.Sell("NUT", 2, kMonday);
        shop_.Sell("NUT", 4, kWednesday);
        WriteOff("BOLT", 5, kTuesday);
    }
    void WriteOff(const char* code, double quantity, const LDate& date) const {
        LSale sale;
        sale.isWriteOff = true;
        sale.date = date;
        sale.lines = {{code, "Main", quantity, {}}};
        int sold = 0;
        LSellStock(shop_.profile, sale, sold);
    }
    LTestShop shop_;
    std::string bolt_, nut_;
};

TEST_F(HistorySearch, BothDaysOfTheRangeBelongToIt) {
    const struct {
        LDate from, to;
        const char* found;
    } kCases[] = {
        {kMonday, kWednesday, "04:1.00 04:2.00 05:3.00 05:5.00 06:4.00 "},
        {kMonday, kTuesday, "04:1.00 04:2.00 05:3.00 05:5.00 "},
        {kTuesday, kTuesday, "05:3.00 05:5.00 "},
        {kWednesday.AddDays(1), kWednesday.AddDays(30), ""},
    };
    for (const auto& c : kCases) EXPECT_EQ(Summary(shop_.SoldRows(c.from, c.to)), c.found);
}

TEST_F(HistorySearch, ItemAndKindFilter) {
    const struct {
        const char *item, *kind, *found;
    } kCases[] = {
        {"", "", "04:1.00 04:2.00 05:3.00 05:5.00 06:4.00 "},
        {"All", "All", "04:1.00 04:2.00 05:3.00 05:5.00 06:4.00 "},
        {"BOLT", "All", "04:1.00 05:3.00 05:5.00 "},
        {"BOLT", "All but damaged/lost", "04:1.00 05:3.00 "},
        {"", "Damaged/lost", "05:5.00 "},
        {"NUT", "Damaged/lost", ""},
        {"bolt", "All", ""},
        {"GONE", "All", ""},
    };
    for (const auto& c : kCases) {
        LHistoryFilter filter = Within(kMonday, kWednesday);
        filter.itemCode = c.item;
        filter.kind = SellKindFromName(c.kind);
        EXPECT_EQ(Summary(shop_.SoldRows(filter)), c.found) << c.item << " " << c.kind;
    }
    EXPECT_EQ(SellKindName(LSellKind::kAllButWriteOffs), "All but damaged/lost");
}

TEST_F(HistorySearch, RowsShowTheItemAndWriteOffsAreNamedSo) {
    shop_.profile.Items().Delete(nut_);
    const auto rows = shop_.SoldRows(kMonday, kTuesday);
    ASSERT_EQ(rows.size(), 4u);
    EXPECT_EQ(rows[0].itemCode, "BOLT");
    EXPECT_EQ(rows[0].itemDescription, "A BOLT");
    EXPECT_EQ(rows[0].party, "Smith");
    EXPECT_EQ(rows[1].itemCode, "") << "the item is gone";
    EXPECT_EQ(rows[3].party, "Damaged/lost item");
    EXPECT_TRUE(rows[3].isWriteOff);
    EXPECT_EQ(rows[3].fields.size(), 8u);
}

TEST_F(HistorySearch, AnEndBeforeTheStartIsRefused) {
    LToldProcess process;
    const auto never = [](const LHistoryRow&) { ADD_FAILURE(); };
    const LHistoryFilter filter = Within(kTuesday, kMonday);
    EXPECT_EQ(LFillSellHistoryList(shop_.profile, filter, process, never),
              "End date must follow start date.");
    EXPECT_EQ(LFillReceiveHistoryList(shop_.profile, filter, process, never),
              "End date must follow start date.");
}

TEST_F(HistorySearch, ACancelledSearchKeepsWhatItHasFound) {
    LScriptedUserInterface ui;
    ui.CancelAfterStatus(1);
    int found = 0;
    ui.RunProcess("Search", [&](LProcessInterface& process) {
        return LFillSellHistoryList(shop_.profile, Within(kMonday, kWednesday), process,
                                    [&](const LHistoryRow&) { ++found; })
            .empty();
    });
    EXPECT_EQ(found, 2);
    EXPECT_EQ(ui.StatusTexts().back(), "2 records found");
}

TEST_F(HistorySearch, AReceiptFromASupplierOfThatNameIsNoWriteOff) {
    LReceipt receipt;
    receipt.supplier = kDamagedLost;
    receipt.itemId = bolt_;
    receipt.locationName = "Main";
    receipt.date = kMonday;
    ASSERT_TRUE(ReceiveItem(shop_.profile, receipt));
    LHistoryFilter filter = Within(kMonday, kMonday);
    filter.kind = LSellKind::kAllButWriteOffs;  // means nothing for receipts
    LToldProcess process;
    std::vector<LHistoryRow> rows;
    LFillReceiveHistoryList(shop_.profile, filter, process,
                            [&](const LHistoryRow& row) { rows.push_back(row); });
    ASSERT_EQ(rows.size(), 1u);
    EXPECT_FALSE(rows[0].isWriteOff);
    EXPECT_EQ(rows[0].party, kDamagedLost);
}

TEST_F(HistorySearch, MangledFilesGiveWhatCanBeReadAndNoHarm) {
    shop_.WriteSellFile(kMonday, std::string("\xEF\xBB\xBF") + "1.00," + bolt_ +
                                     ",$1\n\n,,,,,,,,,,,,\r\nx\r\n2.00,\"never closed\r\n3.00,");
    shop_.home.WriteFile("shop/Sellhistory/2024-13-01.csv", "9.00,1,$1,Main,Smith,$1,");
    shop_.home.WriteFile("shop/Sellhistory/notes.csv", "9.00,1,$1,Main,Smith,$1,");
    std::filesystem::create_directory(shop_.home.File("shop/Sellhistory/2024-03-03.csv"));
    const auto rows = shop_.SoldRows({1900, 1, 1}, kMonday);
    ASSERT_EQ(rows.size(), 4u);
    EXPECT_EQ(rows[0].fields[kHistoryQuantity], "1.00") << "a byte-order mark is no part of it";
    EXPECT_EQ(rows[0].itemCode, "BOLT");
    EXPECT_EQ(rows[3].fields[kHistoryItemId], "never closed\r\n3.00,");
}

}  // namespace
