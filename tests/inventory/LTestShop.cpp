#include "tests/inventory/LTestShop.h"

#include <gtest/gtest.h>

#include <filesystem>

#include "inventory/LItem.h"
#include "inventory/MasterRecords.h"
#include "inventory/StockMovements.h"
#include "inventory/StockQuantities.h"

namespace {

std::string MadeFolder(const std::string& path) {
    std::filesystem::create_directories(path);
    return path;
}

std::string DayFile(std::string_view folder, const LDate& date) {
    return "shop/" + std::string(folder) + "/" + date.ToStored() + ".csv";
}

}  // namespace

LTestShop::LTestShop() : profile(MadeFolder(home.File("shop"))) {}

std::string LTestShop::AddLocation(std::string_view name) {
    LLocation location;
    LLocationList(profile).CreateNewRecord(location);
    location.SetString("Name", name);
    location.Flush();
    return location.GetPrimaryKey();
}

std::string LTestShop::AddItem(std::string_view code, double quantityAtMain) {
    LItem item;
    profile.Items().CreateNewRecord(item);
    item.SetString("Name", code);
    item.SetString("Description", "A " + std::string(code));
    item.Flush();
    if (quantityAtMain != 0) {
        EXPECT_TRUE(LItemChangeQuantity(profile, item, quantityAtMain, "Main", true));
    }
    return item.GetPrimaryKey();
}

std::string LTestShop::AddBuiltItem(std::string_view code, std::string_view billOfMaterials) {
    LItem item;
    profile.Items().CreateNewRecord(item);
    item.SetString("Name", code);
    item.SetString("BillOfMaterials", billOfMaterials);
    item.Flush();
    return item.GetPrimaryKey();
}

double LTestShop::Stock(std::string_view code, std::string_view locationName) const {
    LItem item;
    EXPECT_TRUE(OpenItem(profile, item, code)) << code;
    return GetItemsInStock(profile, item, locationName);
}

bool LTestShop::Sell(std::string_view code, double quantity, const LDate& date, LMoney unitPrice,
                     std::string_view reference) const {
    LSale sale;
    sale.customer = "Smith";
    sale.reference = reference;
    sale.date = date;
    sale.lines.push_back({std::string(code), "Main", quantity, unitPrice});
    int sold = 0;
    return LSellStock(profile, sale, sold).IsNone() && sold == 1;
}

std::string LTestShop::SellFile(const LDate& date) const {
    return home.ReadFile(DayFile(kSellHistoryFolder, date));
}

std::string LTestShop::ReceiveFile(const LDate& date) const {
    return home.ReadFile(DayFile(kReceiveHistoryFolder, date));
}

void LTestShop::WriteSellFile(const LDate& date, std::string_view text) const {
    home.WriteFile(DayFile(kSellHistoryFolder, date), text);
}

std::vector<LHistoryRow> LTestShop::SoldRows(const LHistoryFilter& filter) const {
    std::vector<LHistoryRow> rows;
    LToldProcess process;
    EXPECT_EQ(LFillSellHistoryList(profile, filter, process,
                                   [&](const LHistoryRow& row) { rows.push_back(row); }),
              "");
    return rows;
}

std::vector<LHistoryRow> LTestShop::SoldRows(const LDate& from, const LDate& to) const {
    LHistoryFilter filter;
    filter.from = from;
    filter.to = to;
    return SoldRows(filter);
}
