// The order record, its lists and numbers.
#include "orders/LPOrder.h"

#include <gtest/gtest.h>

#include "inventory/OrderReferences.h"
#include "orders/LPOrderList.h"
#include "tests/orders/LOrderShop.h"

namespace {

TEST(Order, ALinesTaxIsAnEntryOfTheListOrARate) {
    struct LCase {
        const char* text;
        int index;
        double rate;
        const char* why;
    };
    constexpr double kUntouched = 99;
    constexpr LCase kCases[] = {
        {"5", 5, kUntouched, "an entry"},  {"5/", -1, 5, "a rate"},
        {"7.5/", -1, 7.5, "a rate"},       {"", -1, 0, "nothing stored"},
        {"/", -1, 0, "an empty rate"},     {"7.5/3/", -1, 7.5, "up to the first one"},
        {"x", 0, kUntouched, "no number"},
    };
    for (const LCase& c : kCases) {
        LPOrder order;
        order.SetString("Item1TaxRate", c.text);
        double rate = kUntouched;
        EXPECT_EQ(order.GetItemTaxRate(0, rate), c.index) << c.why;
        EXPECT_EQ(rate, c.rate) << c.why;
    }
    LPOrder order;
    for (const double rate : {7.5, 0.0, 19.0, 0.001, 1e200}) {
        double read = -1;
        order.SetItemTaxRate(2, rate);
        EXPECT_EQ(order.GetItemTaxRate(2, read), -1);
        EXPECT_EQ(read, rate);
    }
    order.SetItemTaxRate(2, 7.5);
    EXPECT_EQ(order.GetString("Item3TaxRate"), "7.5/");
}

TEST(Order, StatusAndWhatIsStillToComeFollowTwoFields) {
    LPOrder order;
    AddLine(order, {10, 100});
    order.SetItemQtyReceived(0, 4);
    constexpr double kToCome[] = {10, 6, 0};
    for (const int status : {1, 2, 0}) {
        order.SetStockReceivedStatus(status);
        order.SetStockReceivedStatus(3);
        order.SetStockReceivedStatus(-1);
        EXPECT_EQ(order.GetStockReceivedStatus(), status);
        EXPECT_EQ(order.GetItemQtyNotReceived(0), kToCome[status]);
        EXPECT_EQ(order.GetString("StockReceived"), status == 2 ? "1" : "0");
    }
    EXPECT_EQ(order.GetOrderType(), 2);
    EXPECT_EQ(LPOrder().GetItemUnitValueDigits(0), -1);
}

TEST(Order, MangledCountsAndAmountsEndSomewhere) {
    LPOrder order;
    order.SetString("ItemCount", "2000000000");
    order.SetString("TaxAmountCount", "2000000000");
    order.SetString("Total", "-9223372036854775808");
    order.SetString("TaxAmount1", "9223372036854775807");
    LOrderShop shop;
    EXPECT_EQ(order.GetItemCount(), kMaxOrderLines);
    EXPECT_EQ(order.CalculateSubTotal(shop.profile), INT64_MIN);
    order.MarkStockReceived(shop.profile, "BOLT", "Main", 1);
    order.SetItemCount(1);
    order.SetString("Item1Qty", "1e999");
    EXPECT_GT(order.GetItemQty(0), 1e300);
    order.SetInt("ItemCount", -5);
    EXPECT_EQ(order.GetItemCount(), 0);
}

TEST(OrderNumbers, EachListCountsForItself) {
    LOrderShop shop;
    LPOrder order;
    const auto next = [&](auto create) {
        EXPECT_TRUE(create(shop.profile, order));
        return order.GetPrimaryKey();
    };
    EXPECT_EQ(next(LOrderCreateDraft), "DFT1");
    EXPECT_EQ(next(LOrderCreateRecurring), "RCR1");
    EXPECT_EQ(next(LOrderCreateRecorded), "10000");
    EXPECT_EQ(next(LOrderCreateRecorded), "10001");
    EXPECT_TRUE(order.TestFieldExists("Location"));

    LRecord taken;
    shop.profile.OrdersDrafts().CreateNewRecord(taken, "DFT3");
    taken.SetString("Location", "1");
    taken.Invalidate();
    shop.Settings("Order", {{"DraftNumber", "3"}});
    EXPECT_EQ(next(LOrderCreateDraft), "DFT4") << "a taken number is left out";
    EXPECT_EQ(shop.Stored("Misc", "Order", "DraftNumber"), "5");
    EXPECT_TRUE(LPOrderOpen(shop.profile, order, "DFT3"));
    EXPECT_FALSE(LPOrderOpen(shop.profile, order, "DFT9"));
    EXPECT_FALSE(order.IsBound());
}

TEST(OrderNumbers, NoRecordedNumberLooksLikeADraft) {
    constexpr const char* kCases[][2] = {
        {"dft", "dft-10000"}, {"RCR", "RCR-10000"}, {"PO", "PO10000"}, {"DFTX", "DFTX10000"}};
    for (const auto& [prefix, id] : kCases) {
        LOrderShop shop;
        shop.Settings("Order", {{"NumberPrefix", prefix}});
        LPOrder order;
        ASSERT_TRUE(LOrderCreateRecorded(shop.profile, order));
        EXPECT_EQ(order.GetPrimaryKey(), id);
    }
    LOrderShop shop;
    shop.Settings("Order", {{"NumberPrefix", std::string(5000, 'x')}, {"Number", "2147483647"}});
    LPOrder first, second;
    ASSERT_TRUE(LOrderCreateRecorded(shop.profile, first) &&
                LOrderCreateRecorded(shop.profile, second));
    EXPECT_NE(first.GetPrimaryKey(), second.GetPrimaryKey());
}

TEST(OrderLists, TellWhetherAnyOrderNamesAnItemOrLocation) {
    LOrderShop shop;
    LPOrder order;
    ASSERT_TRUE(LOrderCreateDraft(shop.profile, order));
    order.SetString("Location", "Abc");
    AddLine(order, {.itemId = "bolt"});
    order.Flush();
    const LDraftPOrderList drafts(shop.profile);
    EXPECT_TRUE(drafts.IsItemExist("BOLT") && drafts.IsLocationExist("aBC"));
    EXPECT_FALSE(drafts.IsItemExist("") || drafts.IsItemExist("nut") || drafts.IsLocationExist(""));
    EXPECT_FALSE(LRecordedPOrderList(shop.profile.Store()).IsItemExist("BOLT"));
}

}  // namespace
