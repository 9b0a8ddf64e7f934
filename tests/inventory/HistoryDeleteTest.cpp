// Rows taken out of the movement history, and their quantities put back.
#include "inventory/HistoryDelete.h"

#include <gtest/gtest.h>

#include <cerrno>

#include "inventory/MasterRecords.h"
#include "inventory/StockMovements.h"
#include "tests/inventory/LTestShop.h"
#include "tests/support/LChildProcess.h"
#include "tests/support/LFailNthFileCall.h"
#include "tests/support/LScriptedUserInterface.h"

namespace {

constexpr char kOne[] = "Are you sure you want to delete the selected records?";
constexpr char kChanged[] =
    "A selected record has been changed or deleted in the meantime. Please search again.";

std::vector<LHistoryRowId> IdsOf(const std::vector<LHistoryRow>& rows) {
    std::vector<LHistoryRowId> ids;
    for (const LHistoryRow& row : rows) ids.push_back(row.id);
    return ids;
}

class HistoryDelete : public ::testing::Test {
protected:
    HistoryDelete() {
        bolt_ = shop_.AddItem("BOLT", 100);
        shop_.AddItem("NUT", 100);
    }
    std::vector<LHistoryRowId> Sold() const { return IdsOf(shop_.SoldRows(kMonday, kWednesday)); }
    std::string Row(const char* quantity, const char* total) const {
        return std::string(quantity) + "," + bolt_ + ",$1.00,Main,Smith," + total + ",\r\n";
    }
    LTestShop shop_;
    LScriptedUserInterface ui_;
    std::string bolt_;
};

TEST_F(HistoryDelete, SeveralRowsOfSeveralDaysGoTogether) {
    shop_.Sell("BOLT", 1, kMonday, {100, 2});
    shop_.Sell("BOLT", 2, kMonday, {100, 2});
    shop_.Sell("BOLT", 3, kMonday, {100, 2});
    shop_.Sell("NUT", 4, kTuesday);
    const auto ids = Sold();
    ui_.ExpectDelete("Delete Records", "Are you sure you want to delete the selected 3 records?");
    EXPECT_EQ(LDeleteSellRows(ui_, shop_.profile, {ids[3], ids[0], ids[2]}), 3);
    EXPECT_EQ(shop_.SellFile(kMonday), Row("2.00", "$2.00"));
    EXPECT_EQ(shop_.SellFile(kTuesday), "");
    EXPECT_EQ(shop_.Stock("BOLT"), 98);
    EXPECT_EQ(shop_.Stock("NUT"), 100);
}

TEST_F(HistoryDelete, WithoutAYesNothingHappens) {
    shop_.Sell("BOLT", 1, kMonday);
    const std::string before = shop_.SellFile(kMonday);
    for (const char* answer : {"Cancel", ""}) {
        ui_.ExpectDelete("Delete Record", kOne, answer);
        EXPECT_EQ(LDeleteSellRows(ui_, shop_.profile, Sold()), 0);
    }
    EXPECT_EQ(LDeleteSellRows(ui_, shop_.profile, {}), 0) << "nothing chosen asks nothing";
    EXPECT_EQ(shop_.SellFile(kMonday), before);
    EXPECT_EQ(shop_.Stock("BOLT"), 99);
}

TEST_F(HistoryDelete, ARowIsDeletedOnce) {
    shop_.Sell("BOLT", 1, kMonday, {100, 2});
    shop_.Sell("BOLT", 1, kMonday, {100, 2});  // reads the same, but is another sale
    const auto ids = Sold();
    ui_.ExpectDelete("Delete Records", "Are you sure you want to delete the selected 2 records?");
    EXPECT_EQ(LDeleteSellRows(ui_, shop_.profile, {ids[1], ids[1]}), 1);
    ui_.ExpectDelete("Delete Record", kOne);
    EXPECT_EQ(LDeleteSellRows(ui_, shop_.profile, {ids[1]}), 0);
    EXPECT_EQ(ui_.Informed(),
              (std::vector<LScriptedUserInterface::Shown>{{"Delete Record", kChanged}}));
    EXPECT_EQ(shop_.SellFile(kMonday), Row("1.00", "$1.00"));
    EXPECT_EQ(shop_.Stock("BOLT"), 99);
}

TEST_F(HistoryDelete, AChangedFileNeverLosesAnotherRow) {
    shop_.Sell("BOLT", 1, kMonday, {100, 2});
    shop_.Sell("BOLT", 2, kMonday, {100, 2});
    const auto ids = Sold();
    const std::string second = Row("2.00", "$2.00");
    // The first row was edited by hand; the second one now begins elsewhere.
    const std::string edited = Row("10.00", "$10.00") + second;
    shop_.WriteSellFile(kMonday, edited);
    for (const LHistoryRowId& id : ids) {
        ui_.ExpectDelete("Delete Record", kOne);
        EXPECT_EQ(LDeleteSellRows(ui_, shop_.profile, {id}), 0);
    }
    LHistoryRowId inside = Sold()[1];  // a place in the middle of a row is none
    inside.position += 1;
    inside.text.erase(0, 1);
    ui_.ExpectDelete("Delete Record", kOne);
    EXPECT_EQ(LDeleteSellRows(ui_, shop_.profile, {inside}), 0);
    EXPECT_EQ(shop_.SellFile(kMonday), edited);
    EXPECT_EQ(shop_.Stock("BOLT"), 97);
    EXPECT_EQ(ui_.Informed().size(), 3u);
}

TEST_F(HistoryDelete, RowsThatCannotBePutBackStayAndTheOthersGo) {
    shop_.AddLocation("Shed");
    const std::string kept = "1.00," + bolt_ + ",$1.00,Gone,Smith,$1.00,\r\n" + "many," + bolt_ +
                             ",$1.00,Main,Smith,$1.00,\r\n";
    shop_.WriteSellFile(kMonday, kept + "2.00," + bolt_ + ",$1.00,Shed,Smith,$2.00,\r\n" +
                                     "3.00,999,$1.00,Main,Smith,$3.00,\r\n");
    ui_.ExpectDelete("Delete Records", "Are you sure you want to delete the selected 4 records?");
    EXPECT_EQ(LDeleteSellRows(ui_, shop_.profile, Sold()), 2)
        << "one of them of an item that is gone";
    EXPECT_EQ(shop_.SellFile(kMonday), kept);
    EXPECT_EQ(shop_.Stock("BOLT"), 100);
    EXPECT_EQ(shop_.Stock("BOLT", "Shed"), 2);
    EXPECT_EQ(ui_.Informed(),
              (std::vector<LScriptedUserInterface::Shown>{
                  {"Delete Records",
                   "The record of item BOLT at Gone cannot be deleted because the stock there "
                   "cannot be changed."},
                  {"Delete Records",
                   "The record of item BOLT at Main cannot be deleted because its quantity cannot "
                   "be read."}}));
}

TEST_F(HistoryDelete, ADeletedReceiptTakesItsQuantityAwayAndTellsItsOrder) {
    LReceipt receipt;
    receipt.supplier = "Hammer & Sons";
    receipt.itemId = bolt_;
    receipt.locationName = "Main";
    receipt.orderId = "10000";
    receipt.text = "note";
    receipt.quantity = 250;
    receipt.unitCost = {150, 2};
    receipt.date = kMonday;
    ASSERT_TRUE(ReceiveItem(shop_.profile, receipt));
    shop_.Sell("BOLT", 300, kMonday);

    LHistoryFilter filter;
    filter.from = filter.to = kMonday;
    LToldProcess process;
    std::vector<LHistoryRow> rows;
    LFillReceiveHistoryList(shop_.profile, filter, process,
                            [&](const LHistoryRow& row) { rows.push_back(row); });
    ui_.ExpectDelete("Delete Record", kOne);
    std::vector<LReceiveRow> told;
    EXPECT_EQ(LDeleteReceiveRows(ui_, shop_.profile, IdsOf(rows),
                                 [&](const LReceiveRow& row) { told.push_back(row); }),
              1);
    EXPECT_EQ(shop_.Stock("BOLT"), -200) << "below zero if need be";
    EXPECT_EQ(shop_.ReceiveFile(kMonday), "");
    ASSERT_EQ(told.size(), 1u);
    EXPECT_EQ(told[0].orderId, "10000");
    EXPECT_EQ(told[0].itemId, bolt_);
    EXPECT_EQ(told[0].quantity, 250);
    EXPECT_EQ(told[0].unitCost, (LMoney{150, 2}));
    EXPECT_EQ(told[0].supplier, "Hammer & Sons");
    EXPECT_EQ(told[0].date, kMonday);
}

TEST_F(HistoryDelete, ABuiltItemsComponentsComeBack) {
    shop_.AddBuiltItem("KIT", "\"BOLT/2\",\"NUT/1\",");
    shop_.Sell("KIT", 10, kMonday);
    EXPECT_EQ(shop_.Stock("BOLT"), 80);
    ui_.ExpectDelete("Delete Record", kOne);
    EXPECT_EQ(LDeleteSellRows(ui_, shop_.profile, Sold()), 1);
    EXPECT_EQ(shop_.Stock("BOLT"), 100);
    EXPECT_EQ(shop_.Stock("NUT"), 100);
}

TEST_F(HistoryDelete, ARowThatCannotBeTakenOutLeavesTheStockAsItWas) {
    shop_.Sell("BOLT", 5, kMonday, {100, 2});
    shop_.Sell("BOLT", 7, kMonday, {100, 2});
    int refusals = 0;
    for (int n = 1;; ++n) {
        const std::string before = shop_.SellFile(kMonday);
        const double stock = shop_.Stock("BOLT");
        const auto ids = Sold();
        ui_.ExpectDelete("Delete Record", kOne);
        const LFailNthFileCall fault(n, EIO);
        const int count = LDeleteSellRows(ui_, shop_.profile, {ids.front()});
        if (count == 0) {
            ++refusals;
            EXPECT_EQ(shop_.SellFile(kMonday), before) << "call " << n;
            EXPECT_EQ(shop_.Stock("BOLT"), stock) << "call " << n;
            continue;
        }
        shop_.WriteSellFile(kMonday, before);  // for the next round
        if (!fault.Fired()) break;             // every call has had its turn
    }
    EXPECT_GE(refusals, 3) << "opening, writing and cutting the file";
}

TEST_F(HistoryDelete, AnIdTravelsThroughAFormAndBack) {
    const LHistoryRowId id{kMonday, 120, "1.00,5,$1.00,\"A b\",Smith,\"x\r\ny\",\r\n"};
    EXPECT_EQ(LHistoryRowId::FromText(id.ToText()), id);
    for (const char* text :
         {"", "2024-03-04", "2024-03-04 12", "2024-02-30 1 x", "2024-03-04 -1 x", "2024-03-04 1x x",
          "2024-03-04  x", "../../etc 1 x", "2024-03-04 99999999999999999999999 x"}) {
        EXPECT_EQ(LHistoryRowId::FromText(text), std::nullopt) << text;
    }
}

TEST_F(HistoryDelete, RowsAppendedByOthersMeanwhileAreAllKept) {
    constexpr int kRows = 60;
    for (int i = 0; i < kRows; ++i) shop_.Sell("BOLT", 1, kMonday, {100, 2});
    LChildProcess seller([&] {
        const LProfile profile(shop_.profile.DatabaseFolder());
        for (int i = 0; i < kRows; ++i) {
            LSale sale;
            sale.customer = "Jones";
            sale.date = kMonday;
            sale.lines = {{"NUT", "Main", 1, {100, 2}}};
            int sold = 0;
            LSellStock(profile, sale, sold);
            if (sold != 1) return 1;
        }
        return 0;
    });
    for (int i = 0; i < kRows; ++i) {  // always the first row: all that follow move
        const auto ids = Sold();
        ui_.ExpectDelete("Delete Record", kOne);
        EXPECT_EQ(LDeleteSellRows(ui_, shop_.profile, {ids.front()}), 1);
    }
    EXPECT_EQ(seller.Wait(), 0);
    EXPECT_EQ(shop_.SoldRows(kMonday, kMonday).size(), static_cast<size_t>(kRows));
    EXPECT_EQ(shop_.Stock("BOLT") + shop_.Stock("NUT"), 200 - kRows);
}

}  // namespace
