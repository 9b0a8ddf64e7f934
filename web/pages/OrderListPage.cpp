#include "web/pages/OrderListPage.h"

#include <array>

#include "inventory/LItem.h"
#include "inventory/LNameMap.h"
#include "orders/OrderInput.h"
#include "web/framework/LHtmlList.h"
#include "web/framework/PageTargets.h"
#include "web/pages/ListFilterForm.h"

namespace {

constexpr LHtmlListColumn kColumns[] = {
    {"Order", 11},      {"Supplier", 24},
    {"Date", 10},       {"Receipt date", 10},
    {"Deliver to", 14}, {"Total", 12, LCellAlign::kRight},
    {"Status", 9},      {"Actions", 0, LCellAlign::kRight, false},
};
constexpr LHtmlListColumn kOnOrderColumns[] = {
    {"Item", 14},
    {"Description", 24},
    {"Order", 10},
    {"Supplier", 16},
    {"Deliver to", 12},
    {"Receipt date", 10},
    {"To come", 8, LCellAlign::kRight},
    {"Unit", 6},
};

// The two filters by status as one choice; the texts say what stays.
struct LReceiptChoice {
    std::string_view name;
    bool hidesReceived, hidesNotReceived;
};
constexpr std::array<LReceiptChoice, 4> kReceiptChoices{{
    {"All", false, false},
    {"Not fully received", true, false},
    {"Something received", false, true},
    {"Partly received", true, true},
}};

LHtmlListRow& AddDate(LHtmlListRow& row, const LProfile& profile, std::string_view stored) {
    const std::optional<LDate> date = LDate::FromStored(stored);
    return row.AddCellWithOrder(date ? profile.FormatDate(*date) : std::string(stored), stored);
}

void AddActions(LHtmlListRow& cells, const LOrderRow& row) {
    const std::string& id = row.order.GetPrimaryKey();
    const int status = row.order.GetStockReceivedStatus();
    const std::string statusText = std::to_string(status);
    std::string links;
    const auto add = [&](std::string_view page, std::string_view caption) {
        links += FormatText("<a href='%H' aria-label='%H order %H'>%H</a> ",
                            WLMakeLink(page, {{"id", id}, {"status", statusText}}), caption, id,
                            caption);
    };
    if (!row.isDraft && status != StockFullyReceived) add("orderreceive", "Receive");
    if (!row.isDraft && status != StockNotReceived) add("orderreturn", "Return");
    add("orderdelete", "Delete");
    cells.AddCellHtml("<span class=rowactions>" + links + "</span>");
}

void AddOrder(LHtmlList& table, const LProfile& profile, const LOrderRow& row, bool mayChange) {
    LHtmlListRow cells = table.MakeRow();
    const std::string& id = row.order.GetPrimaryKey();
    cells.AddCellLink(WLMakeLink("orderprop", {{"id", id}}), id);
    cells.AddCell(row.supplierName);
    AddDate(cells, profile, row.order.GetView("Date"));
    AddDate(cells, profile, row.order.GetView("Receipt Date"));
    cells.AddCell(row.locationName);
    cells.AddCellWithOrder(profile.FormatMoney(row.total),
                           static_cast<double>(row.total.minorUnits));
    cells.AddCell(row.status);
    if (mayChange) AddActions(cells, row);
    table.AddOrdered(std::move(cells));
}

void AddLinesToCome(LHtmlList& table, const LProfile& profile, const LOrderRow& row,
                    const LNameMap& codes, std::string_view onlyItem) {
    for (int line = 0; line < row.order.GetItemCount(); ++line) {
        const std::string itemId = row.order.GetItemID(line);
        const double toCome = row.order.GetItemQtyNotReceived(line);
        if (toCome == 0 || (!onlyItem.empty() && itemId != onlyItem)) continue;
        LHtmlListRow cells = table.MakeRow();
        const std::string_view code = codes.Name(itemId);
        if (code.empty()) {
            cells.AddCell(itemId);
        } else {
            cells.AddCellLink(WLMakeLink("itemprop", {{"id", itemId}}), code);
        }
        const std::string& id = row.order.GetPrimaryKey();
        cells.AddCell(row.order.GetItemDescription(line));
        cells.AddCellLink(WLMakeLink("orderprop", {{"id", id}}), id);
        cells.AddCell(row.supplierName);
        cells.AddCell(row.locationName);
        AddDate(cells, profile, row.order.GetView("Receipt Date"));
        cells.AddCellWithOrder(profile.FormatQuantity(toCome), toCome);
        cells.AddCell(row.order.GetItemMeasure(line));
        table.AddOrdered(std::move(cells));
    }
}

}  // namespace

LOrderListFilter LWebOrdersPage::ReadFilter() {
    LOrderListFilter filter;
    filter.shown = OrdersShownFromName(Form().Parameter("show"));
    const std::string receipts = Form().Parameter("receipts");
    for (const LReceiptChoice& choice : kReceiptChoices) {
        if (choice.name != receipts) continue;
        filter.hidesReceived = choice.hidesReceived;
        filter.hidesNotReceived = choice.hidesNotReceived;
    }
    return filter;
}

void LWebOrdersPage::PrintFilters(const LOrderListFilter& filter) {
    LListFilterForm filters(Out(), "orderlist");
    std::vector<std::string> shown, receipts;
    for (const LOrdersShown choice :
         {LOrdersShown::kRecorded, LOrdersShown::kDraft, LOrdersShown::kAll}) {
        shown.emplace_back(OrdersShownName(choice));
    }
    for (const LReceiptChoice& choice : kReceiptChoices) receipts.emplace_back(choice.name);
    filters.AddChoice("show", "Display Orders:", shown, OrdersShownName(filter.shown));
    filters.AddChoice("receipts", "Receipts", receipts, Form().Parameter("receipts"));
    filters.AddAction("itemonorderlist", "Items on order");
    if (!IsViewer()) filters.AddAction("orderprop", "New order");
}

void LWebOrdersPage::PrintBody() {
    const LOrderListFilter filter = ReadFilter();
    PrintFilters(filter);
    Out().Flush();  // something to look at while the orders are read
    const std::span<const LHtmlListColumn> columns(kColumns);
    LHtmlList table;
    table.SetColumns(IsViewer() ? columns.first(columns.size() - 1) : columns);
    table.SetSort(2, false);
    table.SetName("Orders");
    table.SetEmptyText("No order matches. Choose another filter, or write a new order.");
    LOrderSummary summary(Profile());
    const bool mayChange = !IsViewer();
    FillOrderList(Profile(), filter, [&](const LOrderRow& row) {
        AddOrder(table, Profile(), row, mayChange);
        summary.Add(row.total);
    });
    table.Print(Out());
    Out().Printf("<p class=listcount role=status>%H</p>", summary.Text());
}

void LWebItemsOnOrderPage::PrintBody() {
    const std::string itemId = Form().Parameter("item");
    LHtmlList table;
    table.SetColumns(kOnOrderColumns);
    table.SetSort(0, true);
    table.SetName("Items on order");
    table.SetEmptyText("Nothing is on order: every recorded order has been received.");
    const LNameMap codes(Profile(), "Items");
    FillOrderList(Profile(), {LOrdersShown::kRecorded, true, false}, [&](const LOrderRow& row) {
        AddLinesToCome(table, Profile(), row, codes, itemId);
    });
    table.Print(Out());
}
