#include "orders/LowStockOrders.h"

#include <gtest/gtest.h>

#include <cerrno>
#include <vector>

#include "orders/LPOrderList.h"
#include "orders/QuantityOnOrder.h"
#include "tests/orders/LOrderShop.h"
#include "tests/support/LFailNthFileCall.h"

namespace {

class LowStock : public ::testing::Test {
protected:
    std::string AddItem(std::string_view code, std::string_view stock,
                        std::string_view supplierName = "Bolts") {
        return shop.Add("Items", {{"Name", code},
                                  {"Description", "Hex\r\nbolt"},
                                  {"LocationsAndQuantities", stock},
                                  {"Supplier", supplierName},
                                  {"Value", "250"},
                                  {"CostDigits", "2"},
                                  {"Measure", "box"}});
    }
    void AddOrder(std::string_view itemId, double quantity, eStockReceivedStatus status,
                  double received, std::string_view locationId = "1") {
        LPOrder order;
        ASSERT_TRUE(LOrderCreateRecorded(shop.profile, order));
        order.SetString("Location", locationId);
        AddLine(order, {quantity, 100, "", "", 2, itemId});
        order.SetItemQtyReceived(0, received);
        order.SetStockReceivedStatus(status);
    }
    std::vector<LLowStockRow> Proposals(std::string_view percent = "") const {
        return FillOrderItemsLV(shop.profile, LLowStockSelection::FromPercentText(percent));
    }

    LOrderShop shop;
    std::string depot = shop.Add("Locations", {{"Name", "Depot"}, {"Address", "Dock 3"}});
    std::string bolts = shop.Add("Suppliers", {{"Name", "Bolts"}});
    std::string nuts = shop.Add("Suppliers", {{"Name", "Nuts"}});
};

TEST_F(LowStock, WhatIsOnOrderCountsAsStock) {
    const std::string item = AddItem("A", "\"1/4/1/10\",\"2/9/1/10\",\"77/0/0/1\",");
    EXPECT_EQ(Proposals().size(), 3U);
    AddOrder(item, 1, StockNotReceived, 7);        // at this status nothing was received
    AddOrder(item, 5, StockPartiallyReceived, 3);  // 2 to come
    AddOrder(item, 50, StockFullyReceived, 0);
    AddOrder(item, 1, StockNotReceived, 0, depot);
    AddOrder("other", 50, StockNotReceived, 0);
    {
        LPOrder draft;
        ASSERT_TRUE(LOrderCreateDraft(shop.profile, draft));
        draft.SetString("Location", "1");
        AddLine(draft, {50, 100, "", "", 2, item});
    }
    EXPECT_EQ(GetOrderedQuantity(shop.profile, item, "Main"), 3);
    EXPECT_EQ(GetOrderedQuantity(shop.profile, item, "main"), 0);

    const std::vector<LLowStockRow> rows = Proposals();
    ASSERT_EQ(rows.size(), 2U) << "the depot's shortage is on order";
    EXPECT_EQ(rows[0].orderQuantity, 3);
    EXPECT_EQ(rows[0].onOrder, 3);
    EXPECT_EQ(rows[0].inStock, 4);
    EXPECT_EQ(rows[0].ideal, 10);
    EXPECT_EQ(rows[0].description, "Hex bolt");
    EXPECT_EQ(rows[0].LineTotal(), (LMoney{750, 2}));
    EXPECT_TRUE(rows[0].isTicked);
    EXPECT_EQ(rows[1].locationName, "");
    EXPECT_EQ(Proposals("20 %").size(), 2U);
    EXPECT_EQ(Proposals("30 %").size(), 1U) << "3 of 10 is not more than 30 %";
    EXPECT_EQ(Proposals("50 %").size(), 1U);
}

TEST_F(LowStock, ADustOfDecimalsIsNoShortage) {
    AddItem("A", "\"1/0.1/0/0.8\",");
    const std::string item = shop.profile.Items().TestRecordExists("1") ? "1" : "";
    for (int i = 0; i < 7; ++i) AddOrder(item, 0.1, StockNotReceived, 0);  // 0.7999999999999999
    EXPECT_TRUE(Proposals().empty());
}

TEST_F(LowStock, CellsAreChecked) {
    constexpr LLowStockColumn kQuantity = LLowStockColumn::kOrderQuantity;
    constexpr LLowStockColumn kCost = LLowStockColumn::kUnitCost;
    struct Case {
        LLowStockColumn column;
        const char *typed, *complaint, *shown;
    };
    constexpr Case kCases[] = {
        {kQuantity, "1234.5", "", "1,234.50"},
        {kQuantity, "0", "", "0.00"},
        {kQuantity, "ten", "The entered value \"ten\" is not valid number.", "ten"},
        {kQuantity, "", "The entered value \"\" is not valid number.", ""},
        {kQuantity, "-1", "Qty must be positive.", "-1"},
        {kCost, "0", "", "0.00"},
        {kCost, "99999999999.99", "", "99,999,999,999.99"},
        {kCost, "100000000000.00", "Cost is too high.", "100000000000.00"},
        {kCost, "1e5", "The entered value \"1e5\" is not valid.", "1e5"},
        {kCost, "free", "The entered value \"free\" is not valid.", "free"},
        {kCost, "-0.01", "Cost must be positive.", "-0.01"},
        {kCost, "99999999999999999999", "Cost is too high.", "99999999999999999999"},
        {kCost, "1.2345678",
         "Enter a proper cost currency value. For description only (non charge items) enter 0.",
         "1.2345678"},
    };
    for (const Case& c : kCases) {
        LLowStockRow row;
        std::string text = c.typed;
        EXPECT_EQ(ValidateCell(shop.profile, c.column, text, row), c.complaint) << c.typed;
        const size_t digits = text.find_first_of("0123456789");
        const std::string shown = *c.complaint == 0 ? text.substr(digits) : text;
        EXPECT_EQ(shown, c.shown) << c.typed;
    }
}

TEST_F(LowStock, OneOrderForEachSupplierAndLocation) {
    shop.Settings("Tax", {{"TaxName1", "GST"}, {"TaxRate1", "10"}, {"DefaultRate", "1"}});
    shop.Settings("Company", {{"Address", "1 High St"}});
    const std::string a = AddItem("A", "\"1/0/0/2\",\"2/0/0/3\",");
    const std::string b = AddItem("B", "\"1/0/0/4\",");
    AddItem("C", "\"1/0/0/1\",", "Nuts");
    AddItem("D", "\"1/0/0/1\",", "bolts");
    AddItem("E", "\"1/0/0/1\",", "");
    std::vector<LLowStockRow> rows = Proposals();
    ASSERT_EQ(rows.size(), 6U);
    LLowStockPlaced placed;
    const LLowStockError error = LLowStockPlaceOrders(shop.profile, rows, placed);
    ASSERT_GE(error.row, 0);
    EXPECT_EQ(rows[static_cast<size_t>(error.row)].code, "E");
    EXPECT_EQ(error.message, "You must select a supplier for each item before placing an order.");
    EXPECT_TRUE(LRecordedPOrderList(shop.profile).IsEmpty()) << "nothing is created";

    for (LLowStockRow& row : rows) row.isTicked = row.code != "E" && row.code != "C";
    EXPECT_EQ(LLowStockPlaceOrders(shop.profile, rows, placed).message, "");
    EXPECT_EQ(placed.leftOut, std::vector<std::string>{
                                  "Item D was not ordered: its supplier or location is gone."});
    ASSERT_EQ(placed.orderIds.size(), 2U);
    double lines = 0;
    for (const std::string& id : placed.orderIds) {
        LPOrder order;
        ASSERT_TRUE(LPOrderOpen(shop.profile, order, id));
        const bool isDepot = order.GetString("Location") == depot;
        EXPECT_EQ(order.GetString("Supplier"), bolts);
        EXPECT_EQ(order.GetString("ShippingAddress"), isDepot ? "Dock 3" : "");
        EXPECT_EQ(order.GetString("Address"), "1 High St");
        EXPECT_EQ(order.GetString("Date"), LDate::Today().ToStored());
        EXPECT_EQ(order.GetString("Receipt Date"), order.GetString("Date"));
        EXPECT_EQ(order.GetOrderType(), 1);
        EXPECT_EQ(order.GetTotal(), isDepot ? 825 : 1650);
        for (int i = 0; i < order.GetItemCount(); ++i) lines += order.GetItemQty(i);
        EXPECT_EQ(order.GetItemMeasure(0), "box");
    }
    EXPECT_EQ(lines, 9) << "2 and 4 at Main, 3 at the depot";
    EXPECT_EQ(shop.Stored("Items", a, "LastUsed"), LDate::Today().ToStored());
    EXPECT_EQ(GetOrderedQuantity(shop.profile, b, "Main"), 4);
    EXPECT_EQ(Proposals().size(), 3U) << "what was ordered is not proposed again";
}

TEST_F(LowStock, AnOrderThatCannotBeCountedPlacesNone) {
    AddItem("A", "\"1/0/0/2\",");
    AddItem("B", "\"2/0/0/2\",");
    std::vector<LLowStockRow> rows = Proposals();
    rows[1].orderQuantity = 1e30;
    LLowStockPlaced placed;
    EXPECT_NE(LLowStockPlaceOrders(shop.profile, rows, placed).message, "");
    EXPECT_TRUE(LRecordedPOrderList(shop.profile).IsEmpty());
}

TEST_F(LowStock, AFullDiskLeavesNoOrderInPieces) {
    AddItem("A", "\"1/0/0/2\",");
    const std::vector<LLowStockRow> rows = Proposals();
    bool hasFired = true, hasFailed = false;
    for (int n = 1; hasFired && n < 200; ++n) {
        LLowStockPlaced placed;
        {
            const LFailNthFileCall fault(n, ENOSPC);
            EXPECT_EQ(LLowStockPlaceOrders(shop.profile, rows, placed).message, "");
            hasFired = fault.Fired();
        }
        EXPECT_EQ(placed.leftOut.size() + placed.orderIds.size(), 1U) << "call " << n;
        hasFailed = hasFailed || placed.orderIds.empty();
        const LRecordedPOrderList orders(shop.profile);
        EXPECT_EQ(orders.IsEmpty(), placed.orderIds.empty()) << "call " << n;
        for (const std::string& id : placed.orderIds) {
            EXPECT_EQ(shop.Stored("Orders", id, "Item1Qty"), "2.000000") << "call " << n;
            orders.Delete(id);
        }
    }
    EXPECT_TRUE(hasFailed && !hasFired);
}

}  // namespace
