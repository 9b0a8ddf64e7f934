#include "web/pages/LowStockPages.h"

#include <gtest/gtest.h>

#include <chrono>
#include <future>
#include <thread>

#include "inventory/MovementLock.h"
#include "orders/LPOrderList.h"
#include "tests/support/LTestBrowser.h"
#include "web/accounts/AccountScripts.h"
#include "web/accounts/LAppWebAccount.h"
#include "web/framework/RunPage.h"
#include "web/server/LWebletScripts.h"

namespace {

class LowStockPages : public testing::Test {
protected:
    LowStockPages() {
        InstallAccountScripts();
        EXPECT_TRUE(LAppWebAccountCreate({.email = "boss@example.com",
                                          .password = "password",
                                          .displayName = "Boss",
                                          .role = LAccountRole::kAdministrator,
                                          .profileIds = {0}}));
        LWebletInstallScript("orderlowstockitems", WLWebDialogRun<LWebOrderLowStockItemsDialog>);
        LRecord supplier, item;
        profile_.List("Suppliers").CreateNewRecord(supplier);
        supplier.SetString("Name", "Bolts");
        profile_.Items().CreateNewRecord(item);
        for (const auto& [name, value] : {std::pair{"Name", "A"},
                                          {"Supplier", "Bolts"},
                                          {"LocationsAndQuantities", "\"1/4/1/10\","}}) {
            item.SetString(name, value);
        }
    }

    LTempHome home_;
    const LProfile profile_;
    LTestWeb web_;
};

// Both tabs have shown the shortage; the first one's order is stored while the second one's submit
// is on its way.
TEST_F(LowStockPages, OfTwoTabsAtTheSameInstantOneOrders) {
    LTestBrowser tab(web_);
    tab.Submit("logon", {{"101", "boss@example.com"}, {"102", "password"}});
    const auto submit = [&tab](const LTestFields& fields) {
        return tab.Submit("orderlowstockitems", fields, "Place%20orders");
    };
    const std::vector<LLowStockRow> rows = FillOrderItemsLV(profile_, LLowStockSelection::All());
    ASSERT_EQ(rows.size(), 1U);
    const LTestFields ticked{{"10000", "1"},
                             {"10001", "6"},
                             {"10002", "1"},
                             {"10004", rows[0].itemId + "\t" + rows[0].locationName}};
    std::future<LTestAnswer> answer;
    {
        const LMovementLock first(profile_);
        answer = std::async(std::launch::async, [&] { return submit(ticked); });
        std::this_thread::sleep_for(std::chrono::milliseconds(500));
        LLowStockPlaced placed;
        ASSERT_EQ(LLowStockPlaceOrders(profile_, rows, placed).message, "");
        ASSERT_EQ(placed.orderIds.size(), 1U);
    }
    const LTestAnswer second = answer.get();
    EXPECT_TRUE(second.Has("ordered or received meanwhile"));
    EXPECT_EQ(FillOrderItemsLV(profile_, LLowStockSelection::All()).size(), 0U);
    LPOrder order;
    EXPECT_FALSE(LPOrderOpen(profile_, order, "10001"));
    ASSERT_TRUE(profile_.Orders().Delete("10000"));
    EXPECT_TRUE(submit(ticked).Has("window.location = 'orderlist'")) << "alone the form orders";
    EXPECT_TRUE(LPOrderOpen(profile_, order, "10001"));
}

}  // namespace
