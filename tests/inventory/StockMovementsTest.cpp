// Selling, writing off, receiving and returning.
#include "inventory/StockMovements.h"

#include <gtest/gtest.h>

#include <filesystem>

#include "inventory/MasterRecords.h"
#include "inventory/StockReturns.h"
#include "tests/inventory/LTestShop.h"

namespace {

LSale SaleTo(std::string customer, std::vector<LSellLine> lines) {
    LSale sale;
    sale.customer = std::move(customer);
    sale.date = kMonday;
    sale.lines = std::move(lines);
    return sale;
}

int CountCustomers(const LTestShop& shop) {
    int count = 0;
    LCustomerList(shop.profile).ForEach([&](const LCustomer&) { return ++count > 0; });
    return count;
}

TEST(SellStock, AMissingCustomerIsRefusedBeforeAnythingHappens) {
    LTestShop shop;
    shop.AddItem("BOLT", 5);
    for (const char* blank : {"", "  ", "\t"}) {
        int sold = -1;
        const LSaleError error =
            LSellStock(shop.profile, SaleTo(blank, {{"BOLT", "Main", 1, {}}}), sold);
        EXPECT_EQ(error.field, LSaleField::kCustomer);
        EXPECT_EQ(error.message, "Invalid customer\nThe customer field was left blank.");
        EXPECT_EQ(sold, 0);
    }
    EXPECT_EQ(shop.Stock("BOLT"), 5);
    EXPECT_EQ(CountCustomers(shop), 0);
}

TEST(SellStock, AWriteOffNeedsNoCustomerAndHasNoPrice) {
    LTestShop shop;
    const std::string key = shop.AddItem("BOLT", 5);
    LSale sale = SaleTo("", {{"BOLT", "Main", 2, {450, 2}}});
    sale.isWriteOff = true;
    int sold = 0;
    EXPECT_TRUE(LSellStock(shop.profile, sale, sold).IsNone());
    sale.isWriteOff = false;
    sale.customer = kDamagedLost;  // chosen by its name
    EXPECT_TRUE(LSellStock(shop.profile, sale, sold).IsNone());
    const std::string row = "2.00," + key + ",$0,Main,Damaged/lost,$0,\r\n";
    EXPECT_EQ(shop.SellFile(kMonday), row + row);
    EXPECT_EQ(shop.Stock("BOLT"), 1);
    EXPECT_EQ(CountCustomers(shop), 0);
}

TEST(SellStock, ANewCustomerIsKeptOnceWhateverTheLetterCase) {
    LTestShop shop;
    shop.AddItem("BOLT", 5);
    for (const char* name : {"M\u00fcller", "M\u00dcLLER", " M\u00fcller "}) {
        int sold = 0;
        LSellStock(shop.profile, SaleTo(name, {{"BOLT", "Main", 1, {}}}), sold);
        EXPECT_EQ(sold, 1);
    }
    EXPECT_EQ(CountCustomers(shop), 1);
    for (const LHistoryRow& row : shop.SoldRows(kMonday, kMonday)) {
        EXPECT_EQ(row.party, "M\u00fcller") << "as it was first written";
    }
}

TEST(SellStock, ASaleWithoutLinesDoesNothingAtAll) {
    LTestShop shop;
    for (const std::vector<LSellLine>& lines :
         {std::vector<LSellLine>{}, {{"", "Main", 1, {}}, {"BOLT", "", 1, {}}}}) {
        int sold = -1;
        EXPECT_TRUE(LSellStock(shop.profile, SaleTo("Smith", lines), sold).IsNone());
        EXPECT_EQ(sold, 0);
    }
    EXPECT_EQ(CountCustomers(shop), 0);
    EXPECT_FALSE(std::filesystem::exists(shop.home.File("shop/Sellhistory")));
}

TEST(SellStock, LinesThatCannotBeSoldAreLeftOutAndTheOthersSold) {
    LTestShop shop;
    const std::string bolt = shop.AddItem("BOLT", 5), nut = shop.AddItem("NUT", 5);
    int sold = 0;
    LSellStock(shop.profile,
               SaleTo("Smith", {{"BOLT", "Main", 1, {100, 2}},
                                {"", "Main", 1, {}},
                                {"bolt", "Main", 1, {}},
                                {"GONE", "Main", 1, {}},
                                {"BOLT", "Nowhere", 1, {}},
                                {"NUT", "Main", 2, {200, 2}}}),
               sold);
    EXPECT_EQ(sold, 2);
    EXPECT_EQ(shop.SellFile(kMonday), "1.00," + bolt + ",$1.00,Main,Smith,$1.00,\r\n" + "2.00," +
                                          nut + ",$2.00,Main,Smith,$4.00,\r\n");
    EXPECT_EQ(shop.Stock("BOLT"), 4);
    EXPECT_EQ(shop.Stock("NUT"), 3);
}

TEST(SellStock, AMissingComponentStopsTheLineBeforeItsRow) {
    LTestShop shop;
    shop.AddItem("A", 10);
    shop.AddItem("C", 10);
    shop.AddBuiltItem("KIT", "\"A/2\",\"GONE/1\",\"C/1\",");
    EXPECT_FALSE(shop.Sell("KIT", 3, kMonday));
    EXPECT_EQ(shop.Stock("A"), 4) << "taken out before the missing one was met";
    EXPECT_EQ(shop.Stock("C"), 10);
    EXPECT_EQ(shop.SellFile(kMonday), "");
    EXPECT_TRUE(shop.Sell("C", 1, kMonday)) << "other lines are not concerned";
}

TEST(SellStock, WithoutItsRowALineIsPutBack) {
    LTestShop shop;
    shop.AddItem("A", 10);
    shop.AddItem("B", 10);
    shop.AddBuiltItem("KIT", "\"A/2\",\"B/1\",");
    shop.home.WriteFile("shop/Sellhistory", "a file where the folder should be");
    EXPECT_FALSE(shop.Sell("A", 1, kMonday));
    EXPECT_FALSE(shop.Sell("KIT", 1, kMonday));
    EXPECT_EQ(shop.Stock("A"), 10);
    EXPECT_EQ(shop.Stock("B"), 10);
}

LReceipt ReceiptOf(const std::string& itemId, double quantity) {
    LReceipt receipt;
    receipt.supplier = "Hammer & Sons";
    receipt.itemId = itemId;
    receipt.locationName = "Main";
    receipt.quantity = quantity;
    receipt.unitCost = {250, 2};
    receipt.date = kMonday;
    return receipt;
}

TEST(ReceiveItem, PutsTheLineIntoStockAndWritesItsRow) {
    LTestShop shop;
    const std::string key = shop.AddItem("BOLT", 1);
    LReceipt receipt = ReceiptOf(key, 25);
    receipt.orderId = "10000";
    receipt.text = "note";
    ASSERT_TRUE(ReceiveItem(shop.profile, receipt));
    EXPECT_EQ(shop.Stock("BOLT"), 26);
    EXPECT_EQ(shop.ReceiveFile(kMonday),
              "25.00," + key + ",$2.50,Main,Hammer & Sons,10000,$62.50,note\r\n");
}

TEST(ReceiveItem, AMissingComponentKeepsWhatWasChangedAndWritesNoRow) {
    LTestShop shop;
    shop.AddItem("A", 1);
    const std::string kit = shop.AddBuiltItem("KIT", "\"A/2\",\"GONE/1\",");
    EXPECT_FALSE(ReceiveItem(shop.profile, ReceiptOf(kit, 3)));
    EXPECT_EQ(shop.Stock("A"), 7);
    EXPECT_EQ(shop.ReceiveFile(kMonday), "");
}

TEST(ReceiveItem, AnUnknownItemOrLocationChangesNothing) {
    LTestShop shop;
    const std::string key = shop.AddItem("BOLT", 1);
    EXPECT_FALSE(ReceiveItem(shop.profile, ReceiptOf("999", 3)));
    EXPECT_FALSE(ReceiveItem(shop.profile, ReceiptOf("", 3)));
    LReceipt nowhere = ReceiptOf(key, 3);
    nowhere.locationName = "Nowhere";
    EXPECT_FALSE(ReceiveItem(shop.profile, nowhere));
    EXPECT_EQ(shop.Stock("BOLT"), 1);
    EXPECT_EQ(shop.ReceiveFile(kMonday), "");
}

TEST(ReturnStock, TakesStockOutAndRecordsANegativeReceipt) {
    LTestShop shop;
    const std::string key = shop.AddItem("BOLT", 5);
    LReturn input;
    input.supplier = "Hammer & Sons";
    input.orderId = "10000";
    input.text = "rusty";
    input.date = kMonday;
    input.lines = {{"BOLT", "Main", "1.5", "2.50"}};
    int count = 0;
    double reported = 0;
    EXPECT_TRUE(LReturnStock(shop.profile, input, count, [&](const LReceipt& receipt) {
                    reported = receipt.quantity;
                }).IsNone());
    EXPECT_EQ(count, 1);
    EXPECT_EQ(reported, -1.5);
    EXPECT_EQ(shop.Stock("BOLT"), 3.5);
    EXPECT_EQ(shop.ReceiveFile(kMonday),
              "-1.50," + key + ",$2.50,Main,Hammer & Sons,10000,-$3.75,rusty\r\n");
}

TEST(ReturnStock, TheFirstWrongLineStopsItBeforeAnythingHappens) {
    LTestShop shop;
    shop.AddItem("BOLT", 5);
    const LReturnLine good{"BOLT", "Main", "1", "2.50"};
    const char* const kBadCost =
        "Enter a proper cost currency value. For description only (non charge items) enter 0.";
    const struct {
        LReturnLine line;
        LReturnField field;
        const char* message;
    } kCases[] = {
        {{"", "", "", ""}, LReturnField::kItem, "There are blank items in your list."},
        {{"GONE", "Main", "1", "1"}, LReturnField::kItem, "There is no item GONE."},
        {{"BOLT", " ", "x", ""},
         LReturnField::kLocation,
         "There are blank locations in your list."},
        {{"BOLT", "Nowhere", "1", "1"}, LReturnField::kLocation, "There is no location Nowhere."},
        {{"BOLT", "Main", "x", "y"},
         LReturnField::kQuantity,
         "There are invalid quantity values in your list."},
        {{"BOLT", "Main", "0", "1"},
         LReturnField::kQuantity,
         "There are invalid quantity values in your list."},
        {{"BOLT", "Main", "-1", "1"},
         LReturnField::kQuantity,
         "There are invalid quantity values in your list."},
        {{"BOLT", "Main", "1", "abc"}, LReturnField::kCost, kBadCost},
        {{"BOLT", "Main", "1", ""}, LReturnField::kCost, kBadCost},
        {{"BOLT", "Main", "1", "-0.01"}, LReturnField::kCost, "Cost must be positive."},
        {{"BOLT", "Main", "1", "100,000,000,000.00"}, LReturnField::kCost, "Cost is invalid."},
    };
    for (const auto& c : kCases) {
        LReturn input;
        input.date = kMonday;
        input.lines = {good, c.line};
        int count = -1;
        const LReturnError error = LReturnStock(shop.profile, input, count);
        EXPECT_EQ(error.message, c.message);
        EXPECT_EQ(error.field, c.field) << c.message;
        EXPECT_EQ(error.line, 1);
        EXPECT_EQ(count, 0);
    }
    int count = -1;
    EXPECT_EQ(LReturnStock(shop.profile, {}, count).message, "There are no items in your list.");
    EXPECT_EQ(shop.Stock("BOLT"), 5);
    EXPECT_EQ(shop.ReceiveFile(kMonday), "");
}

}  // namespace
