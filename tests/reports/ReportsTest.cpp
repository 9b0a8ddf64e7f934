#include <gtest/gtest.h>

#include "inventory/LItem.h"
#include "inventory/StockHistory.h"
#include "orders/LPOrderList.h"
#include "reports/InventoryReports.h"
#include "reports/LBackorderReport.h"
#include "reports/LMoneyTotal.h"
#include "reports/LReportLowStock.h"
#include "reports/LReportSales.h"
#include "reports/ReportCsv.h"
#include "tests/support/LTempFolder.h"

namespace {

class Reports : public testing::Test {
protected:
    Reports() {
        Named("Locations", "2", "Shed");
        Named("Categories", "1", "Fasteners");
        Named("Suppliers", "1", "Ironworks");
    }
    void Named(const std::string& list, const std::string& key, const std::string& name) {
        LRecord record;
        profile_.List(list).CreateNewRecord(record, key);
        record.SetString("Name", name);
    }
    // Returns the key.
    std::string AddItem(const std::string& code, const std::string& stock, int64_t cost,
                        const std::string& category = "", const std::string& bill = "") {
        LItem item;
        profile_.Items().CreateNewRecord(item);
        item.SetString("Name", code);
        item.SetString("Description", "a " + code);
        item.SetString("LocationsAndQuantities", stock);
        item.SetString("Category", category);
        item.SetString("Supplier", category.empty() ? "" : "Ironworks");
        item.SetString("BillOfMaterials", bill);
        item.SetCost({cost, 2});
        item.SetPrice({cost * 2, 2});
        item.Flush();
        return item.GetPrimaryKey();
    }
    // The rows as text: cells joined by "|", groups "# ", subtotals "- ", totals "= " in front.
    static std::vector<std::string> Table(LReport& report) {
        constexpr std::array<const char*, 4> kMarks{"", "# ", "- ", "= "};
        report.GenerateReport();
        std::vector<std::string> lines;
        for (const LReportRow& row : report.Rows()) {
            EXPECT_EQ(row.cells.size(), report.Columns().size());
            std::string line = kMarks[static_cast<size_t>(row.kind)];
            for (const std::string& cell : row.cells) line += cell + "|";
            lines.push_back(line);
        }
        return lines;
    }
    using Lines = std::vector<std::string>;

    LTempHome home_;
    LScopedEnvironment locale_{"LC_ALL", "en_US.UTF-8"};
    LProfile profile_;
};

std::string Head(const LReport& report) {
    std::string text = report.Title() + ":";
    for (const LReportColumn& column : report.Columns()) {
        text += " " + std::string(column.title) + (column.isDescription ? "*" : "") +
                std::to_string(column.widthChars) + (column.alignment == kReportLeft ? "l" : "r") +
                ",";
    }
    return text;
}

TEST_F(Reports, HaveTheirTitlesAndColumns) {
    EXPECT_EQ(Head(LReportInventoryLocCat(profile_)),
              "Inventory Report by Location and Category: Item9l, Description*16l, Quantity8r, "
              "Cost Value16r, Price Value11r, Line Total20r,");
    EXPECT_EQ(Head(LReportInventoryAll(profile_)),
              "Inventory Report: Location14l, Category11l, Item9l, Description*16l, Quantity8r, "
              "Cost Value16r, Line Total20r,");
    EXPECT_EQ(Head(LReportLowStock(profile_)),
              "Low Level Stock: Item9l, Description*16l, Location14l, Quantity8r, Warn Qty10r, "
              "Ideal Qty10r,");
    EXPECT_EQ(Head(LBackorderReport(profile_)),
              "Backorder Report: Quantity8r, Item*9l, Supplier*7l, Order8l, Location*8l, "
              "Unit Value11r, Receipt Date13l, Recurring13l,");
    EXPECT_EQ(Head(LReportInventoryLocation(profile_)),
              "Inventory Report For Location: Category11l, Item9l, Description*16l, Quantity8r, "
              "Cost Value16r, Price Value11r, Line Total20r,");
    EXPECT_EQ(Head(LReportInventoryCategory(profile_)),
              "Inventory Report For Category: Location14l, Item9l, Description*16l, Quantity8r, "
              "Cost Value16r, Price Value11r, Line Total20r,");
    EXPECT_EQ(Head(LReportImageCategory(profile_)),
              "Inventory Report with Image by Category: Item9l, Description*16l, Category11l, "
              "Quantity8r, Cost Value16r, Line Total20r,");
    EXPECT_EQ(Head(LReportInventoryDefaultSupplier(profile_)),
              "Inventory Report by Default Supplier: Item9l, Description*16l, Location14l, "
              "Category11l, Quantity12r, Cost Value8r, Price Value8r, Line Total10r,");
    EXPECT_EQ(Head(LReportSales(profile_)),
              "Sales Report: Item*9l, Quantity9l, Cost Value16r, Price Value11r, Total Cost20r, "
              "Total Sales20r, Gross Profit20r,");
    const LReportSummary summary = LReportInventoryLocCat(profile_).Summaries().at(0);
    EXPECT_EQ(summary.label + ": " + summary.value, "Location: All \t Category: All");
}

TEST_F(Reports, LowStockIsSortedByCodeAndKeepsTheStoredOrder) {
    LReportLowStock report(profile_);
    EXPECT_TRUE(Table(report).empty());
    AddItem("bolt", "\"1/5/5/10\",\"2/3/1/1\",", 100);
    AddItem("Axle", "\"2/-1500/2/3\",\"1/1/2/3\",", 100);
    AddItem("calm", "\"1/5/5/0\",\"2/6/5/10\",", 100);  // not watched; above its warning
    AddItem("none", "", 100);
    AddItem("kit", "\"1/0/5/10\",", 100, "", "\"bolt/1\",");  // built: keeps no stock of its own
    EXPECT_EQ(Table(report),
              (Lines{"Axle|a Axle|Shed|-1,500.00|2.00|3.00|", "Axle|a Axle|Main|1.00|2.00|3.00|",
                     "bolt|a bolt|Main|5.00|5.00|10.00|"}));
}

TEST_F(Reports, InventoryIsGroupedAndAddedUp) {
    AddItem("bolt", "\"1/10/0/0\",\"2/2.5/0/0\",", 3, "1");
    AddItem("Axle", "\"1/-4/0/0\",", 1000, "1");
    AddItem("kit", "", 50, "", "\"bolt/2\",");
    LReportInventoryAll all(profile_);
    EXPECT_EQ(Table(all),
              (Lines{"# Main, (no category)|||||||", "Main||kit|a kit|5.00|$0.50|$2.50|",
                     "- Total Main, (no category)||||5.00||$2.50|", "# Main, Fasteners|||||||",
                     "Main|Fasteners|Axle|a Axle|-4.00|$10.00|-$40.00|",
                     "Main|Fasteners|bolt|a bolt|10.00|$0.03|$0.30|",
                     "- Total Main, Fasteners||||6.00||-$39.70|", "# Shed, (no category)|||||||",
                     "Shed||kit|a kit|1.00|$0.50|$0.50|",
                     "- Total Shed, (no category)||||1.00||$0.50|", "# Shed, Fasteners|||||||",
                     "Shed|Fasteners|bolt|a bolt|2.50|$0.03|$0.08|",  // 7.5 rounds up
                     "- Total Shed, Fasteners||||2.50||$0.08|", "= Total||||14.50||-$36.62|"}));
    LReportInventoryLocCat chosen(profile_);
    chosen.SetLocationAndCategory("Shed", "Fasteners");
    EXPECT_EQ(Table(chosen).at(1), "bolt|a bolt|2.50|$0.03|$0.06|$0.08|");
    EXPECT_EQ(chosen.Rows().size(), 4U);
    LReportInventoryLocation shed(profile_);
    shed.SetLocation("Shed");
    EXPECT_EQ(Table(shed).back(), "= Total|||3.50|||$0.58|");
    LReportInventoryCategory fasteners(profile_);
    fasteners.SetCategory("Fasteners");
    EXPECT_EQ(Table(fasteners).size(), 8U);
    LReportImageCategory pictures(profile_);
    EXPECT_EQ(Table(pictures).at(5), "bolt|a bolt|Fasteners|12.50|$0.03|$0.38|");
    LReportInventoryDefaultSupplier suppliers(profile_);
    suppliers.SetSupplier("Ironworks");
    EXPECT_EQ(Table(suppliers).at(0), "# Ironworks||||||||");
    EXPECT_EQ(Table(suppliers).size(), 6U);
    suppliers.SetSupplier("Nobody");
    EXPECT_TRUE(Table(suppliers).empty());
    EXPECT_EQ(ReportToCsv(shed).substr(0, 121),
              "Category,Item,Description,Quantity,Cost Value,Price Value,Line Total\r\n"
              ",kit,a kit,1.00,$0.50,$1.00,$0.50\r\n"
              "Total (no catego");
    EXPECT_EQ(ReportCsvName(shed), "Inventory-Report-For-Location.csv");
}

TEST_F(Reports, BackordersAreWhatHasNotComeAndAllThatRecurs) {
    const std::string bolt = AddItem("bolt", "", 100);
    const auto fill = [&](LPOrder& order, double quantity) {
        order.SetString("Supplier", "1");
        order.SetString("Location", "2");
        order.SetString("Receipt Date", "2026-12-24");
        order.SetItemCount(2);
        for (const int line : {0, 1}) {
            order.SetItemID(line, line == 0 ? bolt : "gone");
            order.SetItemDescription(line, "what it was");
            order.SetItemQty(line, quantity);
            order.SetItemUnitValue(line, 250);
            order.SetItemUnitValueDigits(line, 2);
        }
    };
    LPOrder open, partial, received, weekly;
    ASSERT_TRUE(LOrderCreateRecorded(profile_, open));  // 10000 and so on
    fill(open, 1200);
    ASSERT_TRUE(LOrderCreateRecorded(profile_, partial));
    fill(partial, 10);
    partial.SetStockReceivedStatus(StockPartiallyReceived);
    partial.SetItemQtyReceived(0, 10);
    partial.SetItemQtyReceived(1, 4);
    ASSERT_TRUE(LOrderCreateRecorded(profile_, received));
    fill(received, 10);
    received.SetStockReceivedStatus(StockFullyReceived);
    ASSERT_TRUE(LOrderCreateRecurring(profile_, weekly));
    fill(weekly, 7);
    weekly.SetInt("RecurInterval", 0);
    weekly.SetStockReceivedStatus(StockFullyReceived);  // means nothing for a template
    for (LPOrder* order : {&open, &partial, &received, &weekly}) order->Flush();
    LBackorderReport report(profile_);
    EXPECT_EQ(Table(report),
              (Lines{"1,200.00|bolt|Ironworks|10000|Shed|$2.50|12/24/2026||",
                     "1,200.00|what it was|Ironworks|10000|Shed|$2.50|12/24/2026||",
                     "6.00|what it was|Ironworks|10001|Shed|$2.50|12/24/2026||",
                     "7.00|bolt|Ironworks|RCR1|Shed|$2.50|12/24/2026|Weekly|",
                     "7.00|what it was|Ironworks|RCR1|Shed|$2.50|12/24/2026|Weekly|"}));
}

TEST_F(Reports, SalesCountCostAndProfitAndKeepLossesApart) {
    const std::string bolt = AddItem("bolt", "", 100), gone = AddItem("nut", "", 10);
    const LDate day{2026, 3, 5};
    const auto sell = [&](const std::string& id, double quantity, int64_t price, int daysLater,
                          const std::string& customer) {
        LSellRow row;
        row.itemId = id, row.locationName = "Main", row.customer = customer;
        row.date = day.AddDays(daysLater), row.quantity = quantity, row.unitPrice = {price, 2};
        ASSERT_TRUE(CreateNewSellRecord(profile_, row));
    };
    sell(bolt, 1000, 250, 0, "Ann");
    sell(bolt, -1, 250, 1, "Ann");  // came back
    sell(gone, 2, 30, 1, "Ann");
    sell(bolt, 3, 0, 1, kDamagedLost);
    sell(bolt, 5, 250, 2, "too late");
    ASSERT_TRUE(profile_.Items().Delete(gone));
    LReportSales report(profile_);
    report.SetDates(day, day.AddDays(1));
    EXPECT_EQ(Table(report),
              (Lines{"# Sold|||||||", "bolt|999.00|$1.00|$2.00|$999.00|$2,497.50|$1,498.50|",
                     "Deleted item " + gone + "|2.00|||$0.00|$0.60|$0.60|",
                     "- Total Sold|1,001.00|||$999.00|$2,498.10|$1,499.10|",
                     "# Damaged/lost|||||||", "bolt|3.00|$1.00|$2.00|$3.00|$0.00|-$3.00|",
                     "- Total Damaged/lost|3.00|||$3.00|$0.00|-$3.00|",
                     "= Total|1,004.00|||$1,002.00|$2,498.10|$1,496.10|"}));
    report.SetDates(day, day.AddDays(-1));
    EXPECT_TRUE(Table(report).empty());
    EXPECT_EQ(report.Problem(), "End date must follow start date.");
}

TEST(MoneyTotal, LosesNothingAndHoldsToItsRange) {
    LMoneyTotal total(2);
    total.Add({1, 4});
    total.Add({100, 2});
    EXPECT_EQ(total.Total(), (LMoney{10001, 4}));
    total.Add({INT64_MAX, 4});
    EXPECT_EQ(total.Total().minorUnits, INT64_MAX);
    total.Subtract({INT64_MIN, 4});
    EXPECT_EQ(total.Total().minorUnits, INT64_MAX);
}

}  // namespace
