#include "web/pages/HistoryPages.h"

#include "inventory/HistoryDelete.h"
#include "inventory/LItem.h"
#include "orders/OrderReceiving.h"
#include "platform/LSilentProcess.h"
#include "web/framework/LHtmlList.h"
#include "web/framework/LWebUserInterface.h"
#include "web/framework/PageTargets.h"
#include "web/pages/ListFilterForm.h"

namespace {

constexpr int kDaysShownAtFirst = 30;

constexpr LHtmlListColumn kReceiptTable[] = {
    {"Date", 8},
    {"Code", 10},
    {"Description", 22},
    {"Quantity", 7, LCellAlign::kRight},
    {"Cost", 8, LCellAlign::kRight},
    {"Total", 8, LCellAlign::kRight},
    {"Location", 10},
    {"Supplier", 12},
    {"Reference", 15},
    {"Delete", 0, LCellAlign::kCenter, false},
};
constexpr LHtmlListColumn kSaleTable[] = {
    {"Date", 8},
    {"Code", 10},
    {"Description", 22},
    {"Quantity", 7, LCellAlign::kRight},
    {"Price", 8, LCellAlign::kRight},
    {"Total", 8, LCellAlign::kRight},
    {"Location", 10},
    {"Customer", 12},
    {"Reference", 15},
    {"Delete", 0, LCellAlign::kCenter, false},
};

constexpr const char* kFilterFields[] = {"from", "to", "item", "kind"};

// A row's id in letters that no form and no address changes, line ends included.
std::string ToField(const LHistoryRowId& id) { return FormatText("%U", id.ToText()); }

std::optional<LHistoryRowId> FromField(const std::string& field) {
    LHashTable decoded;
    decoded.LoadHTTPString("row=" + field);
    return LHistoryRowId::FromText(decoded.GetString("row"));
}

// A button of the form behind the table, so that the list stays one that can be searched.
void AddDeleteButton(LHtmlListRow& cells, const LHistoryRow& row) {
    cells.AddCellPrintF(
        "<button type=submit class=linklike form=deleterow name=row value='%H' "
        "aria-label='Delete the record of %H'>Delete</button>",
        ToField(row.id), row.itemCode);
}

// The cells in the order of the columns; the stored columns of totals and references differ.
LHtmlListRow MakeRow(const LHtmlList& table, const LProfile& profile, const LHistoryRow& row,
                     int totalColumn, int textColumn, bool mayChange) {
    const auto field = [&](int column) -> const std::string& {
        return row.fields[static_cast<size_t>(column)];
    };
    const auto amountOrder = [&](const std::string& text) {
        const std::optional<LMoney> amount = profile.ParseMoney(text);
        return amount ? static_cast<double>(amount->minorUnits) : 0;
    };
    LHtmlListRow cells = table.MakeRow();
    cells.AddCellWithOrder(profile.FormatDate(row.date), row.date.ToStored());
    cells.AddCell(row.itemCode.empty() ? "(deleted item)" : row.itemCode);
    cells.AddCell(row.itemDescription);
    cells.AddCellWithOrder(field(kHistoryQuantity),
                           ReadHistoryQuantity(profile, field(kHistoryQuantity)).value_or(0));
    cells.AddCellWithOrder(field(kHistoryUnitAmount), amountOrder(field(kHistoryUnitAmount)));
    cells.AddCellWithOrder(field(totalColumn), amountOrder(field(totalColumn)));
    cells.AddCell(field(kHistoryLocation));
    cells.AddCell(row.party);
    cells.AddCell(field(textColumn));
    if (mayChange) AddDeleteButton(cells, row);
    return cells;
}

std::span<const LHtmlListColumn> ShownColumns(std::span<const LHtmlListColumn> columns,
                                              bool mayChange) {
    return mayChange ? columns : columns.first(columns.size() - 1);
}

}  // namespace

void LHistoryPage::Open() {
    if (Form().Parameter("row").empty()) return LWebPageEx::Open();
    if (!AuthenticateAction(Form())) return;
    const std::string back = WLMakeLink(Form().PageName(), {{"from", Form().Parameter("from")},
                                                            {"to", Form().Parameter("to")},
                                                            {"item", Form().Parameter("item")},
                                                            {"kind", Form().Parameter("kind")}});
    const std::optional<LHistoryRowId> row = FromField(Form().Parameter("row"));
    if (!row || !WLMayChange(Form())) return Redirect(back);
    LWebUserInterface ui(Form());
    DeleteRow(ui, *row);
    ui.Finish(back);
}

void LHistoryPage::PrintDeleteForm() {
    Out().Printf("<form id=deleterow method=post action='%H'>", Form().PageName());
    for (const char* name : kFilterFields) {
        Out().Printf("<input type=hidden name='%H' value='%H'>", name, Form().Parameter(name));
    }
    Out().Write("</form>");
}

LHistoryFilter LHistoryPage::ReadFilter() {
    LHistoryFilter filter;
    const LDate today = LDate::Today();
    filter.from =
        Profile().ParseDate(Form().Parameter("from")).value_or(today.AddDays(-kDaysShownAtFirst));
    filter.to = Profile().ParseDate(Form().Parameter("to")).value_or(today);
    filter.itemCode = Form().Parameter("item");
    filter.kind = SellKindFromName(Form().Parameter("kind"));
    return filter;
}

void LHistoryPage::PrintFilters(std::string_view page, const LHistoryFilter& filter,
                                const std::vector<std::string>& kinds) {
    std::vector<std::string> codes;
    GetItemIndex(Profile(), codes);
    LListFilterForm filters(Out(), page);
    filters.AddDate("from", "From", filter.from.ToStored());
    filters.AddDate("to", "To", filter.to.ToStored());
    filters.AddText("item", "Item code (empty for all)", codes, filter.itemCode);
    if (!kinds.empty()) filters.AddChoice("kind", "Kind", kinds, SellKindName(filter.kind));
}

void LHistoryPage::PrintProblem(const std::string& problem) {
    if (!problem.empty()) Out().Printf("<p class=problem role=alert>%H</p>", problem);
}

void LAppWebItemReceiveListPage::DeleteRow(LUserInterface& ui, const LHistoryRowId& row) {
    LOrderDeleteReceiveRows(ui, Profile(), {row});
}

void LAppWebItemReceiveListPage::PrintBody() {
    const LHistoryFilter filter = ReadFilter();
    PrintFilters("itemreceivelist", filter, {});
    LHtmlList table;
    table.SetColumns(ShownColumns(kReceiptTable, !IsViewer()));
    table.SetSort(0, false);
    table.SetName("Receipts");
    table.SetEmptyText("Nothing was received in these days.");
    LSilentProcess process;
    PrintProblem(LFillReceiveHistoryList(Profile(), filter, process, [&](const LHistoryRow& row) {
        table.AddOrdered(MakeRow(table, Profile(), row, kReceiveTotal, kReceiveText, !IsViewer()));
    }));
    table.Print(Out());
    if (!IsViewer()) PrintDeleteForm();
}

void LAppWebItemSellListPage::DeleteRow(LUserInterface& ui, const LHistoryRowId& row) {
    LDeleteSellRows(ui, Profile(), {row});
}

void LAppWebItemSellListPage::PrintBody() {
    const LHistoryFilter filter = ReadFilter();
    std::vector<std::string> kinds;
    for (const LSellKind kind :
         {LSellKind::kAll, LSellKind::kAllButWriteOffs, LSellKind::kWriteOffs}) {
        kinds.emplace_back(SellKindName(kind));
    }
    PrintFilters("itemselllist", filter, kinds);
    LHtmlList table;
    table.SetColumns(ShownColumns(kSaleTable, !IsViewer()));
    table.SetSort(0, false);
    table.SetName("Sales");
    table.SetEmptyText("Nothing was sold in these days.");
    LSilentProcess process;
    PrintProblem(LFillSellHistoryList(Profile(), filter, process, [&](const LHistoryRow& row) {
        table.AddOrdered(MakeRow(table, Profile(), row, kSellTotal, kSellReference, !IsViewer()));
    }));
    table.Print(Out());
    if (!IsViewer()) PrintDeleteForm();
}
