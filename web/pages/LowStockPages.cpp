#include "web/pages/LowStockPages.h"

#include <algorithm>
#include <map>

#include "inventory/MovementLock.h"
#include "web/framework/LHtmlList.h"
#include "web/pages/LTextAnswer.h"
#include "web/pages/ListFilterForm.h"
#include "web/pages/NameChoices.h"

namespace {

constexpr int kMaxRows = 500;  // a form that browsers and phones still carry
constexpr int kFirstPrefix = 1000;
enum { kRowTick = 0, kRowQuantity = 1, kRowCost = 2, kRowSupplier = 3, kRowKey = 4, kRowTotal = 5 };
constexpr int Control(int index, int part) { return (kFirstPrefix + index) * 10 + part; }

constexpr LHtmlListColumn kColumns[] = {
    {"Order", 0, LCellAlign::kCenter, false},
    {"Item"},
    {"Description"},
    {"Location"},
    {"Supplier"},
    {"Order Qty", 0, LCellAlign::kRight},
    {"Unit Cost", 0, LCellAlign::kRight},
    {"Stock Qty", 0, LCellAlign::kRight},
    {"On Order", 0, LCellAlign::kRight},
    {"Ideal Qty", 0, LCellAlign::kRight},
    {"Line Total", 0, LCellAlign::kRight},
};

// What names a proposal from one request to the next.
std::string KeyOf(const LLowStockRow& row) { return row.itemId + "\t" + row.locationName; }

std::string ChooseSupplier(const LLowStockRow& row) { return "Supplier of " + row.code; }

// On a phone a row's inputs need the whole width of its card.
constexpr char kStyle[] =
    "#controltable .hltbl input.number { width: 8em; text-align: right; }"
    "@media (max-width: 700px) { #controltable .hltbl .hltd { grid-column: 1 / -1; } }";

constexpr std::string_view kScript =
    "function rowChanged(prefix, column) {\n"
    "    var quantity = document.getElementById(prefix + '1');\n"
    "    var cost = document.getElementById(prefix + '2');\n"
    "    var total = document.getElementById(prefix + '5');\n"
    "    var changed = column == 'cost' ? cost : quantity;\n"
    "    var typed = changed.value;\n"
    "    var asked = total.asked = (total.asked || 0) + 1;\n"
    "    SimpleAjaxCall('orderlowstockitems', 'column=' + column + '&quantity=' +\n"
    "        encodeURIComponent(quantity.value) + '&cost=' + encodeURIComponent(cost.value),\n"
    "        function(answer) {\n"
    // The other cell may be typed into by now, and this one again: what is typed stays.
    "            if (changed.value != typed) return;\n"
    "            var lines = answer.split('\\n');\n"
    "            var isRight = lines[0] == 'ok';\n"
    "            changed.setCustomValidity(isRight ? '' : lines[0]);\n"
    "            changed.setAttribute('aria-invalid', isRight ? 'false' : 'true');\n"
    "            if (!isRight) return changed.reportValidity();\n"
    "            changed.value = lines[column == 'cost' ? 2 : 1];\n"
    "            if (total.asked == asked) total.textContent = lines[3];\n"
    "        });\n"
    "}\n"
    "function tickAll(isTicked) {\n"
    "    document.querySelectorAll('input.tick').forEach(function(tick) {\n"
    "        tick.checked = isTicked;\n"
    "    });\n"
    "}\n";

}  // namespace

LWebOrderLowStockItemsDialog::LWebOrderLowStockItemsDialog(LWebletForm& form) : LWebDialogEA(form) {
    SetTitle("Order low stock items");
    SetOkCancelPage("orderlist", "orderlist");
    SetOkLabel("Place orders");
    for (const char* name : {"mode", "percent"}) KeepParameter(name);
    UseOneTimeToken();
}

bool LWebOrderLowStockItemsDialog::Prepare() {
    if (IsViewer()) SetWithoutOk();
    SetStyle(kStyle);
    return true;
}

LLowStockSelection LWebOrderLowStockItemsDialog::Selection() {
    if (Form().Parameter("mode") != kLowStockPercent) return LLowStockSelection::All();
    const std::string percent = Form().Parameter("percent");
    return LLowStockSelection::FromPercentText(percent.empty() ? kLowStockPercents[0] : percent);
}

void LWebOrderLowStockItemsDialog::PrintAboveForm() {
    LListFilterForm filters(Out(), "orderlowstockitems");
    const std::vector<std::string> modes{std::string(kLowStockAll), std::string(kLowStockPercent)};
    filters.AddChoice("mode", "Propose", modes, Form().Parameter("mode"));
    if (Form().Parameter("mode") == kLowStockPercent) {
        const std::vector<std::string> percents(kLowStockPercents.begin(), kLowStockPercents.end());
        filters.AddChoice("percent", "Percent below:", percents, Form().Parameter("percent"));
    }
    filters.AddAction("itemonorderlist", "Items on order");
}

void LWebOrderLowStockItemsDialog::Generate() {
    suppliers_ = SortedNames(Profile(), "Suppliers");
    const std::vector<LLowStockRow> rows = FillOrderItemsLV(Profile(), Selection());
    const int shown = static_cast<int>(std::min<size_t>(rows.size(), kMaxRows));
    LHtmlList table;
    table.SetColumns(kColumns);
    table.SetPlain();
    table.SetName("Proposals");
    table.SetEmptyText("Nothing is short: every item has its ideal quantity, or it is on order.");
    for (int i = 0; i < shown; ++i) AddRow(table, rows[static_cast<size_t>(i)], i);
    StartRow().AddStaticSmall(kLowStockNote);
    if (shown < static_cast<int>(rows.size())) {
        StartRow().AddStaticSmall("These are the first " + std::to_string(shown) + " of " +
                                  std::to_string(rows.size()) +
                                  "; the others are proposed once these are on order.");
    }
    if (shown > 0 && !IsViewer()) {
        StartRow().AddRawHTML(
            "<input type=button value='Tick all' onclick='tickAll(true)'> "
            "<input type=button value='Tick none' onclick='tickAll(false)'>");
    }
    StartRow().AddList(table);
    Script().Add("%s", kScript);
}

void LWebOrderLowStockItemsDialog::AddRow(LHtmlList& table, const LLowStockRow& row, int index) {
    LHtmlListRow& cells = table.StartRow();
    const int tick = Control(index, kRowTick);
    cells.AddCellPrintF(
        "<input type=checkbox class=tick id=%d name=%d value=1 checked aria-label='Order %H at %H'>"
        "<input type=hidden name=%d value='%H'>",
        tick, tick, row.code, row.locationName, Control(index, kRowKey), KeyOf(row));
    cells.AddCell(row.code).AddCell(row.description).AddCell(row.locationName);
    cells.AddCellHtml(SupplierCell(row, index));
    const auto input = [&](int part, std::string_view name, std::string_view column,
                           const std::string& value) {
        const int id = Control(index, part);
        cells.AddCellPrintF(
            "<input type=text class=number inputmode=decimal maxlength=40 autocomplete=off "
            "id=%d name=%d value='%H' aria-label='%H of %H' onchange=\"rowChanged('%d', '%s')\">",
            id, id, value, name, row.code, kFirstPrefix + index, column);
    };
    input(kRowQuantity, "Order quantity", "quantity", Profile().FormatQuantity(row.orderQuantity));
    input(kRowCost, "Unit cost", "cost", Profile().FormatMoneyInput(row.unitCost));
    for (const double quantity : {row.inStock, row.onOrder, row.ideal}) {
        cells.AddCell(Profile().FormatQuantity(quantity));
    }
    cells.AddCellPrintF("<span id=%d>%H</span>", Control(index, kRowTotal),
                        Profile().FormatMoney(row.LineTotal()));
}

// A choice where the item names no supplier of the list.
std::string LWebOrderLowStockItemsDialog::SupplierCell(const LLowStockRow& row, int index) const {
    const bool isKnown =
        std::find(suppliers_.begin(), suppliers_.end(), row.supplierName) != suppliers_.end();
    if (isKnown) return FormatText("%H", row.supplierName);
    const int id = Control(index, kRowSupplier);
    std::string html =
        FormatText("<select id=%d name=%d aria-label='%H'><option value=''>Choose ...</option>", id,
                   id, ChooseSupplier(row));
    for (const std::string& name : suppliers_) html += FormatText("<option>%H</option>", name);
    return html + "</select>";
}

bool LWebOrderLowStockItemsDialog::SendAJAXCommands() {
    const std::string column = Form().Parameter("column");
    if (column.empty()) return false;
    LLowStockRow row;
    std::string quantity = Form().Parameter("quantity");
    std::string cost = Form().Parameter("cost");
    const std::string wrongQuantity =
        ValidateCell(Profile(), LLowStockColumn::kOrderQuantity, quantity, row);
    const std::string wrongCost = ValidateCell(Profile(), LLowStockColumn::kUnitCost, cost, row);
    const std::string& wrong = column == "cost" ? wrongCost : wrongQuantity;
    const bool isWhole = wrongQuantity.empty() && wrongCost.empty();
    const std::string total = isWhole ? Profile().FormatMoney(row.LineTotal()) : "";
    if (wrongCost.empty()) cost = Profile().FormatMoneyInput(row.unitCost);
    std::vector<std::string> lines{wrong};
    if (wrong.empty()) lines = {"ok", quantity, cost, total};
    LTextAnswer(Form(), std::move(lines)).Open();
    return true;
}

bool LWebOrderLowStockItemsDialog::ReadRow(int index, LLowStockRow& row) {
    const std::string supplier = GetTextAndTrim(Control(index, kRowSupplier));
    if (!supplier.empty()) row.supplierName = supplier;
    constexpr std::pair<LLowStockColumn, int> kCells[] = {
        {LLowStockColumn::kOrderQuantity, kRowQuantity}, {LLowStockColumn::kUnitCost, kRowCost}};
    for (const auto& [column, part] : kCells) {
        std::string text = GetTextAndTrim(Control(index, part));
        const std::string complaint = ValidateCell(Profile(), column, text, row);
        if (complaint.empty()) continue;
        PopupControlDataInvalid(Control(index, part), complaint);
        return false;
    }
    return true;
}

// The ticked rows as they are proposed now, so that nobody orders what was ordered meanwhile.
bool LWebOrderLowStockItemsDialog::ReadRows(std::vector<LLowStockRow>& rows,
                                            std::vector<int>& shownAt) {
    std::map<std::string, LLowStockRow> proposed;
    for (LLowStockRow& row : FillOrderItemsLV(Profile(), Selection())) {
        proposed.emplace(KeyOf(row), std::move(row));
    }
    for (int i = 0; i < kMaxRows; ++i) {
        if (!GetCheck(Control(i, kRowTick))) continue;
        const auto found = proposed.find(GetText(Control(i, kRowKey)));
        if (found == proposed.end()) {
            PopupBoxError(
                "Some of these items were ordered or received meanwhile. Please open this page "
                "again.");
            return false;
        }
        if (!ReadRow(i, found->second)) return false;
        rows.push_back(found->second);
        shownAt.push_back(i);
    }
    if (rows.empty()) PopupBoxError("Tick the items that you want to order.");
    return !rows.empty();
}

bool LWebOrderLowStockItemsDialog::CmOk() {
    std::vector<LLowStockRow> rows;
    std::vector<int> shownAt;
    // What is proposed now must still be so when it is placed: a second tab may be as quick.
    const LMovementLock lock(Profile());
    if (!ReadRows(rows, shownAt)) return false;
    LLowStockPlaced placed;
    const LLowStockError error = LLowStockPlaceOrders(Profile(), rows, placed);
    if (error.message.empty()) return ShowPlaced(placed);
    if (error.row < 0) {
        PopupBoxError(error.message);
    } else {
        const int index = shownAt[static_cast<size_t>(error.row)];
        PopupControlDataInvalid(Control(index, kRowSupplier), error.message);
    }
    return false;
}

// True when every ticked row is on order now.
bool LWebOrderLowStockItemsDialog::ShowPlaced(const LLowStockPlaced& placed) {
    if (placed.leftOut.empty()) return true;
    std::string text;
    for (const std::string& line : placed.leftOut) text += (text.empty() ? "" : "\n") + line;
    if (!placed.orderIds.empty()) {
        TokenStaysSpent();
        text += "\nThe other items are on order now.";
    }
    PopupBoxError(text);
    return false;
}
