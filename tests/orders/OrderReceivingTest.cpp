// Receiving against orders: the counts of single movements, and whole orders.
#include "orders/OrderReceiving.h"

#include <gtest/gtest.h>

#include <thread>

#include "inventory/LItem.h"
#include "inventory/StockQuantities.h"
#include "orders/LPOrderList.h"
#include "platform/FileIo.h"
#include "tests/orders/LOrderShop.h"
#include "tests/support/LScriptedUserInterface.h"

namespace {

constexpr const char* kDay = "2024-03-04";

struct LReceivingShop : LOrderShop {
    std::string bolt = Add("Items", {{"Name", "BOLT"}});
    std::string nut = Add("Items", {{"Name", "NUT"}});

    // A recorded order of these lines for Main, from "Acme".
    std::string Order(std::initializer_list<LTestLine> lines) const {
        LPOrder order;
        EXPECT_TRUE(LOrderCreateRecorded(profile, order));
        order.SetString("Location", "1");
        order.SetString("Supplier", Add("Suppliers", {{"Name", "Acme"}}));
        for (const LTestLine& line : lines) AddLine(order, line);
        return order.GetPrimaryKey();
    }
    double Stock(std::string_view itemId) const {
        LItem item;
        EXPECT_TRUE(profile.Items().Open(item, itemId));
        return GetItemsInStock(profile, item, "Main");
    }
    // The status, then what each line has received: "1 5 3".
    std::string Counts(std::string_view id) const {
        LPOrder order;
        EXPECT_TRUE(LPOrderOpen(profile, order, id));
        return Counts(order);
    }
    static std::string Counts(const LPOrder& order) {
        std::string text = std::to_string(order.GetStockReceivedStatus());
        for (int line = 0; line < order.GetItemCount(); ++line) {
            char number[32];
            snprintf(number, sizeof number, " %g", order.GetItemQtyReceived(line));
            text += number;
        }
        return text;
    }
    std::string ReceiveFile(std::string_view day) const {
        return ReadFile(profile.DatabaseFolder() + "/ReceiveHistory/" + std::string(day) + ".csv")
            .value_or("no file");
    }
    LReceipt Receipt(std::string_view itemId, double quantity, std::string_view orderId) const {
        LReceipt receipt;
        receipt.itemId = itemId;
        receipt.locationName = "Main";
        receipt.orderId = orderId;
        receipt.quantity = quantity;
        receipt.date = *LDate::FromStored(kDay);
        return receipt;
    }
};

TEST(MarkStockReceived, CountsLineByLineAndSetsTheStatus) {
    struct LCase {
        std::vector<double> ordered;
        std::vector<double> booked;
        const char* counts;
        const char* why;
    };
    const LCase kCases[] = {
        {{10}, {4}, "1 4", "a part"},
        {{10}, {4, 6}, "2 10", "and the rest"},
        {{5, 5}, {8}, "1 5 3", "the first lines first"},
        {{10}, {10, -3}, "1 7", "taken back from a received order"},
        {{5, 5}, {10, -7}, "1 0 3", "emptied from the first line on"},
        {{5, 5}, {10, -10}, "0 0 0", "all taken back"},
        {{10}, {0.0000005}, "0 0", "too little to count"},
        {{10}, {12}, "2 10", "the surplus is dropped"},
        {{0.3}, {0.1, 0.2}, "2 0.3", "sums of decimals are close enough"},
        {{10}, {std::numeric_limits<double>::quiet_NaN()}, "0 0", "no number"},
        {{10}, {1e300}, "2 10", "more than anyone orders"},
        {{}, {1}, "2", "nothing was ordered"},
    };
    const LReceivingShop shop;
    for (const LCase& c : kCases) {
        LPOrder order;
        for (const double quantity : c.ordered) {
            AddLine(order, {.quantity = quantity, .itemId = shop.bolt});
        }
        for (const double quantity : c.booked) {
            order.MarkStockReceived(shop.profile, "BOLT", "anywhere", quantity);
        }
        EXPECT_EQ(shop.Counts(order), c.counts) << c.why;
    }
}

TEST(MarkStockReceived, AnItemThatNoLineNamesOnlyOpensTheCounts) {
    const LReceivingShop shop;
    LPOrder order;
    AddLine(order, {.quantity = 10, .itemId = shop.bolt});
    order.SetItemQtyReceived(0, 7);
    order.MarkStockReceived(shop.profile, "bolt", "Main", 1);
    EXPECT_EQ(shop.Counts(order), "1 0") << "codes differ in case; counts were begun all the same";
}

TEST(ReceiveOrder, BooksEveryLineInFullAndReturnsItAgain) {
    const LReceivingShop shop;
    const std::string id =
        shop.Order({{.quantity = 10, .unitValue = 250, .itemId = shop.bolt},
                    {.quantity = 3, .unitValue = 7, .digits = -1, .itemId = shop.nut}});
    ASSERT_TRUE(LOrderReceiveItem(shop.profile, shop.Receipt(shop.bolt, 4, id)));
    EXPECT_EQ(shop.Counts(id), "1 4 0");
    ASSERT_TRUE(ReceiveOrder(shop.profile, id, kDay, "by lorry"));
    EXPECT_EQ(shop.Stock(shop.bolt), 14) << "another ten, whatever came before";
    EXPECT_EQ(shop.Counts(id), "2 10 3");
    EXPECT_EQ(shop.Stored("Orders", id, "Receipt Date"), kDay);
    ASSERT_TRUE(ReturnOrder(shop.profile, id, kDay, ""));
    EXPECT_EQ(shop.Stock(shop.bolt), 4);
    EXPECT_EQ(shop.Counts(id), "0 0 0");
    const std::string start = shop.bolt + ",$2.50,Main,Acme," + id + ",";
    EXPECT_EQ(shop.ReceiveFile(kDay),
              "4.00," + shop.bolt + ",$0.00,Main,," + id + ",$0.00,\r\n10.00," + start +
                  "$25.00,by lorry\r\n3.00," + shop.nut + ",$0.07,Main,Acme," + id +
                  ",$0.21,by lorry\r\n-10.00," + start + "-$25.00,\r\n-3.00," + shop.nut +
                  ",$0.07,Main,Acme," + id + ",-$0.21,\r\n");
}

TEST(ReceiveOrder, WhatCannotBeReceivedChangesNothing) {
    const LReceivingShop shop;
    LPOrder draft;
    ASSERT_TRUE(LOrderCreateDraft(shop.profile, draft));
    const std::string id = shop.Order({{.quantity = 1, .itemId = shop.bolt}});
    EXPECT_FALSE(ReceiveOrder(shop.profile, "77", kDay, ""));
    EXPECT_FALSE(ReceiveOrder(shop.profile, draft.GetPrimaryKey(), kDay, ""));
    EXPECT_FALSE(ReceiveOrder(shop.profile, id, "yesterday", ""));
    {
        LPOrder order;
        ASSERT_TRUE(LPOrderOpen(shop.profile, order, id));
        order.SetString("Location", "99");
    }
    EXPECT_FALSE(ReceiveOrder(shop.profile, id, kDay, ""));
    EXPECT_EQ(shop.Counts(id), "0 0");
    EXPECT_EQ(shop.Stock(shop.bolt), 0);
}

TEST(ReceiveOrder, GoesOnAfterALineWhoseItemIsGone) {
    const LReceivingShop shop;
    const std::string id =
        shop.Order({{.quantity = 2, .itemId = "gone"}, {.quantity = 3, .itemId = shop.nut}});
    std::vector<std::string> leftOut;
    ASSERT_TRUE(ReceiveOrder(shop.profile, id, kDay, "", &leftOut));
    EXPECT_EQ(leftOut, std::vector<std::string>{"Line 1, gone, could not be booked."});
    EXPECT_EQ(shop.Stock(shop.nut), 3);
    EXPECT_EQ(shop.Counts(id).front(), '2');
}

TEST(ReceiveOrder, OfTwoWhoPressTogetherOneBooks) {
    const LReceivingShop shop;
    const std::string id = shop.Order({{.quantity = 10, .itemId = shop.bolt}});
    std::array<bool, 4> done{};
    std::vector<std::thread> people;
    for (bool& isDone : done) {
        people.emplace_back([&] {
            const LProfile profile(shop.profile.DatabaseFolder());
            LScriptedUserInterface ui;
            ui.ExpectAsk("Receive Stock",
                         "Are you sure you want to receive stock for the selected order?",
                         {"Receive Stock", "Cancel"}, "Receive Stock");
            isDone = LOrderReceiveCommand(ui, profile, id, StockNotReceived);
            EXPECT_EQ(ui.Informed().size(), isDone ? 0 : 1);
        });
    }
    for (std::thread& person : people) person.join();
    EXPECT_EQ(std::count(done.begin(), done.end(), true), 1);
    EXPECT_EQ(shop.Stock(shop.bolt), 10);
}

TEST(OrderMovements, ReturnsAndDeletedRowsAreTakenOffTheOrder) {
    const LReceivingShop shop;
    const std::string id = shop.Order({{.quantity = 10, .itemId = shop.bolt}});
    ASSERT_TRUE(LOrderReceiveItem(shop.profile, shop.Receipt(shop.bolt, 10, id)));
    LReturn input;
    input.orderId = id;
    input.date = *LDate::FromStored(kDay);
    input.lines.push_back({"BOLT", "Main", "3", "1"});
    int returned = 0;
    ASSERT_TRUE(LOrderReturnStock(shop.profile, input, returned).IsNone());
    EXPECT_EQ(shop.Counts(id), "1 7");

    std::vector<LHistoryRowId> rows;
    LHistoryFilter filter;
    filter.from = filter.to = input.date;
    LScriptedUserInterface ui;
    ui.RunProcess("", [&](LProcessInterface& process) {
        return LFillReceiveHistoryList(shop.profile, filter, process,
                                       [&](const LHistoryRow& row) { rows.push_back(row.id); })
            .empty();
    });
    ASSERT_EQ(rows.size(), 2U);
    rows.resize(1);  // the receipt of ten
    ui.ExpectDelete("Delete Record", "Are you sure you want to delete the selected records?");
    EXPECT_EQ(LOrderDeleteReceiveRows(ui, shop.profile, rows), 1);
    EXPECT_EQ(shop.Counts(id), "0 0");
    EXPECT_EQ(shop.Stock(shop.bolt), -3);
}

}  // namespace
