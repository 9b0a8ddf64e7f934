// A year of a shop through the public operations, by chance but the same in every run. At its end
// the books must agree: stock with history, status with what has come, totals with lines.
#include <gtest/gtest.h>

#include <array>
#include <cmath>
#include <map>
#include <random>
#include <vector>

#include "inventory/StockHistory.h"
#include "inventory/StockMovements.h"
#include "inventory/StockQuantities.h"
#include "inventory/Transfers.h"
#include "orders/LOrderSender.h"
#include "orders/LPOrderList.h"
#include "orders/LowStockOrders.h"
#include "orders/OrderEditor.h"
#include "orders/OrderReceiving.h"
#include "orders/OrderTotals.h"
#include "orders/RecurringOrders.h"
#include "orders/RecurringSchedule.h"
#include "platform/LSilentProcess.h"
#include "tests/orders/LOrderShop.h"
#include "tests/support/LScriptedUserInterface.h"

namespace {

constexpr LDate kFirstDay{2023, 9, 1};
constexpr LDate kLastDay{2024, 8, 31};  // 29 February lies between
constexpr std::array<const char*, 6> kCodes{"A", "B", "C", "D", "E", "F"};
constexpr std::array<const char*, 2> kPlaces{"Main", "Depot"};

class YearOfAShop : public ::testing::Test {
protected:
    YearOfAShop() {
        SetTax("10");
        for (const char* code : kCodes) {
            itemIds[code] =
                shop.Add("Items", {{"Name", code},
                                   {"Supplier", "Bolts"},
                                   {"Value", "1999"},
                                   {"CostDigits", "3"},
                                   {"LocationsAndQuantities", "\"1/0/2/8\",\"2/0/1/4\","}});
        }
    }
    void SetTax(std::string_view rate) {
        shop.Settings("Tax", {{"TaxName1", "GST"}, {"TaxRate1", rate}, {"DefaultRate", "1"}});
    }
    int UpTo(int limit) { return std::uniform_int_distribution<int>(0, limit)(random); }
    template <size_t count>
    const char* Any(const std::array<const char*, count>& texts) {
        return texts[static_cast<size_t>(UpTo(count - 1))];
    }

    std::string Order(int lines) {
        LOrderInput input;
        input.supplier = "Bolts";
        input.date = input.receiptDate = day.ToStored();
        input.locationId = std::to_string(1 + UpTo(1));
        constexpr std::array<const char*, 3> kTaxes{"Default", "None", "GST"};
        for (; lines > 0; --lines) {
            input.lines.push_back({Any(kCodes), "", "", std::to_string(1 + UpTo(9)),
                                   UpTo(1) == 0 ? "2.50" : "0.125", Any(kTaxes)});
        }
        LScriptedUserInterface ui;
        EXPECT_EQ(LOrderEditorRecord(ui, shop.profile, input).message, "");
        return input.id;
    }
    void MakeTemplate(const LDate& start, int interval) {
        LPOrder order;
        std::string id;
        ASSERT_TRUE(LPOrderOpen(shop.profile, order, Order(2)));
        ASSERT_TRUE(LRecurringOrderMake(shop.profile, order, {start, interval}, id));
    }
    // A part of what is still to come on a line, or back again.
    void ReceiveSome(const std::string& id) {
        LPOrder order;
        ASSERT_TRUE(LPOrderOpen(shop.profile, order, id));
        const int line = UpTo(order.GetItemCount() - 1);
        const double open = order.GetItemQtyNotReceived(line);
        LReceipt receipt;
        receipt.supplier = "Bolts";
        receipt.itemId = order.GetItemID(line);
        receipt.orderId = id;
        order.GetLocationName(shop.profile, receipt.locationName);
        receipt.quantity = std::ceil(open / 2);
        receipt.date = day;
        if (receipt.quantity <= 0) return;
        EXPECT_TRUE(LOrderReceiveItem(shop.profile, receipt));
    }
    void ReturnSome(const std::string& id) {
        LPOrder order;
        ASSERT_TRUE(LPOrderOpen(shop.profile, order, id));
        LReturn back{"Bolts", "", id, day, {}};
        LReturnLine line;
        GetItemCode(shop.profile, order.GetItemID(0), line.itemCode);
        order.GetLocationName(shop.profile, line.locationName);
        line.quantity = "1";
        line.unitCost = "0";
        back.lines.push_back(line);
        int returned = 0;
        if (order.GetItemQty(0) - order.GetItemQtyNotReceived(0) < 1) return;
        EXPECT_TRUE(LOrderReturnStock(shop.profile, back, returned).IsNone());
    }
    void ReceiveOrReturnWhole(const std::string& id) {
        LPOrder order;
        ASSERT_TRUE(LPOrderOpen(shop.profile, order, id));
        const std::string date = day.ToStored();
        if (order.GetStockReceivedStatus() == StockNotReceived) {
            EXPECT_TRUE(ReceiveOrder(shop.profile, id, date, ""));
        } else if (order.GetStockReceivedStatus() == StockFullyReceived) {
            EXPECT_TRUE(ReturnOrder(shop.profile, id, date, ""));
        }
    }
    void Sell() {
        int sold = 0;
        LSale sale;
        sale.customer = "Smith";
        sale.date = day;
        sale.lines = {{Any(kCodes), Any(kPlaces), 0.25 * (1 + UpTo(11)), {499, 2}}};
        EXPECT_TRUE(LSellStock(shop.profile, sale, sold).IsNone() && sold == 1);
    }
    void Transfer() {
        LTransfer transfer;
        LTransferInput input{"Main", "Depot", {{Any(kCodes), "1.5"}}, ""};
        EXPECT_TRUE(LTransferStock(shop.profile, transfer, input, {"me", day},
                                   LTransferState::kReceived, LShortage::kAllow)
                        .IsNone());
    }
    size_t RunRecurring() {
        LSilentProcess process;
        LOrderSender sender;
        LRecurringOrderRunAllData data{shop.profile, sender, StartOfLocalDay(day) + 36000};
        EXPECT_TRUE(Process(process, data));
        return data.result.orderIds.size();
    }
    void OrderLowStock() {
        LLowStockPlaced placed;
        const auto rows =
            FillOrderItemsLV(shop.profile, LLowStockSelection::FromPercentText("50 %"));
        EXPECT_EQ(LLowStockPlaceOrders(shop.profile, rows, placed).message, "");
        EXPECT_TRUE(placed.leftOut.empty());
        EXPECT_TRUE(
            FillOrderItemsLV(shop.profile, LLowStockSelection::FromPercentText("50 %")).empty())
            << day.ToStored();
    }
    void ADay() {
        Sell();
        if (UpTo(4) == 0) orders.push_back(Order(1 + UpTo(3)));
        if (UpTo(9) == 0) Transfer();
        if (day.day == 15) OrderLowStock();
        if (orders.empty()) return;
        const std::string& id =
            orders[static_cast<size_t>(UpTo(static_cast<int>(orders.size()) - 1))];
        const int choice = UpTo(5);
        if (choice < 3) ReceiveSome(id);
        if (choice == 3) ReturnSome(id);
        if (choice == 4) ReceiveOrReturnWhole(id);
    }

    LOrderShop shop;
    std::string depot = shop.Add("Locations", {{"Name", "Depot"}});
    std::string supplier = shop.Add("Suppliers", {{"Name", "Bolts"}});
    std::map<std::string, std::string> itemIds;
    std::vector<std::string> orders;
    LDate day = kFirstDay;
    std::mt19937 random{20240229};
};

TEST_F(YearOfAShop, EndsWithBooksThatAgree) {
    MakeTemplate({2023, 9, 1}, 0);
    MakeTemplate({2024, 1, 31}, 2);
    size_t recurred = 0;
    for (; day <= kLastDay; day = day.AddDays(1)) {
        const bool isClosed = day >= LDate{2023, 12, 24} && day < LDate{2024, 1, 8};
        if (day == LDate{2024, 3, 1}) SetTax("12.5");
        if (isClosed) continue;
        recurred += RunRecurring();
        ADay();
    }
    // 17 weeks, 2 caught up after the holidays, 33 weeks from then on; 8 ends of months.
    EXPECT_EQ(recurred, 17U + 2 + 33 + 8);

    std::map<std::pair<std::string, std::string>, double> stock, ofOrder;  // by item
    LSilentProcess quiet;
    LHistoryFilter year{kFirstDay, kLastDay, "", LSellKind::kAll};
    size_t rows = 0;
    const auto book = [&](const LHistoryRow& row, double sign) {
        const double quantity =
            ReadHistoryQuantity(shop.profile, row.fields[kHistoryQuantity]).value();
        const std::string& item = row.fields[kHistoryItemId];
        stock[{item, row.fields[kHistoryLocation]}] += sign * quantity;
        if (sign > 0) ofOrder[{item, row.fields[kReceiveOrderId]}] += quantity;
        ++rows;
    };
    LFillReceiveHistoryList(shop.profile, year, quiet,
                            [&](const LHistoryRow& row) { book(row, 1); });
    LFillSellHistoryList(shop.profile, year, quiet, [&](const LHistoryRow& row) { book(row, -1); });
    EXPECT_GT(rows, 500U);
    for (const auto& [code, id] : itemIds) {
        LItem item;
        ASSERT_TRUE(shop.profile.Items().Open(item, id));
        for (const char* place : kPlaces) {
            const double quantity = GetItemsInStock(shop.profile, item, place);
            EXPECT_EQ(quantity, (stock[{id, place}])) << code << " at " << place;
        }
    }
    std::array<int, 3> byStatus{};
    LRecordedPOrderList(shop.profile).ForEach([&](const LPOrder& order) {
        const std::string& id = order.GetPrimaryKey();
        std::map<std::string, double> ordered, counted;
        for (int i = 0; i < order.GetItemCount(); ++i) {
            ordered[order.GetItemID(i)] += order.GetItemQty(i);
            counted[order.GetItemID(i)] += order.GetItemQty(i) - order.GetItemQtyNotReceived(i);
        }
        bool isAll = true, isNone = true;
        for (const auto& [item, quantity] : ordered) {
            const double came = ofOrder[{item, id}];
            EXPECT_EQ(counted[item], came) << "order " << id << ", item " << item;
            isAll = isAll && came == quantity;
            isNone = isNone && came == 0;
        }
        EXPECT_EQ(order.GetStockReceivedStatus(), isAll ? 2 : isNone ? 0 : 1) << "order " << id;
        ++byStatus[static_cast<size_t>(order.GetStockReceivedStatus())];
        LPOrder again;
        again.CopyRecord(order);
        EXPECT_TRUE(LOrderSumTotals(shop.profile, again, LTaxRates::kStored));
        again.ClearDirty();
        EXPECT_EQ(again.GetTotal(), order.GetTotal()) << "order " << id;
        EXPECT_EQ(again.CalculateSubTotal(shop.profile), order.CalculateSubTotal(shop.profile));
        return true;
    });
    for (const int count : byStatus) EXPECT_GT(count, 5) << "every status was met";
}

}  // namespace
