#include "web/pages/OrderDialog.h"

#include <algorithm>

#include "inventory/ItemSave.h"
#include "inventory/LItem.h"
#include "inventory/LNameMap.h"
#include "inventory/MasterRecords.h"
#include "orders/LPOrderList.h"
#include "orders/OrderItems.h"
#include "platform/LSilentProcess.h"
#include "web/framework/PageTargets.h"
#include "web/pages/LDialogUserInterface.h"
#include "web/pages/LTextAnswer.h"
#include "web/pages/NameChoices.h"
#include "web/pages/OrderForm.h"

namespace {

constexpr size_t kRowsOfANewOrder = 3;
constexpr char kRecordLabel[] = "Record";
constexpr char kSaveDraftLabel[] = "Save as draft";
constexpr char kNewRow[] = "NEWLINE";  // stands for a row's number in the template of rows

std::string RowPrefix(int row) { return std::to_string(kOrderFirstPrefix + row); }

// The person's answers as the form shows them: that stock has been received is only passed over
// where they were told of it.
class LOrderAnswers final : public LUserInterface {
public:
    explicit LOrderAnswers(bool knowsOfReceipt) : knowsOfReceipt_(knowsOfReceipt) {}

    std::string Ask(std::string_view title, std::string_view text,
                    const std::vector<std::string>& buttons) override {
        if (title == "Record order" && !knowsOfReceipt_) {
            openQuestion_ = text;
            return {};
        }
        return buttons.empty() ? std::string() : buttons.front();
    }
    void Inform(std::string_view, std::string_view) override {}
    std::optional<std::string> PickFolder(std::string_view) override { return std::nullopt; }
    std::optional<std::string> PickSaveFile(std::string_view, std::string_view) override {
        return std::nullopt;
    }
    bool RunProcess(std::string_view,
                    const std::function<bool(LProcessInterface&)>& process) override {
        LSilentProcess silent;
        return process(silent);
    }

    const std::string& OpenQuestion() const { return openQuestion_; }

private:
    bool knowsOfReceipt_;
    std::string openQuestion_;
};

}  // namespace

LWebOrderDialog::LWebOrderDialog(LWebletForm& form) : LWebDialogEA(form) {
    SetOkCancelPage("orderlist", "orderlist");
    KeepParameter("id");
    SetOkLabel(kRecordLabel);
    AddTools({kSaveDraftLabel, "orderlist?show=Draft", [this] { return SaveDraft(); }});
    AddTools({"Save as recurring", "orderlist", [this] { return SaveRecurring(); }});
    UseOneTimeToken();
}

bool LWebOrderDialog::Prepare() {
    const std::string id = Form().Parameter("id");
    SetTitle(id.empty() ? "New purchase order" : "Purchase order " + id);
    if (id.empty() || LPOrderOpen(Profile(), order_, id)) return true;
    if (IsSubmit()) {
        PopupBoxError("This order has been recorded or deleted in the meantime.");
    } else {
        Redirect("orderlist");  // another tab was quicker
    }
    return false;
}

void LWebOrderDialog::InitDialog() {
    input_ = order_.IsBound() ? LOrderInputOf(Profile(), order_) : LOrderNewInput(Profile());
    taxNames_ = GetTaxNames(Profile());
    if (!order_.IsBound()) input_.lines.resize(kRowsOfANewOrder);
}

// Where the order stands, and what can be done with it beside editing.
void LWebOrderDialog::PrintAboveForm() {
    if (!order_.IsBound()) return;
    const std::string& id = order_.GetPrimaryKey();
    const int status = order_.GetStockReceivedStatus();
    const bool isRecorded = Profile().Orders().TestRecordExists(id);
    Out().Printf("<div class=toolbar><span>%H: <b>%H</b></span>",
                 isRecorded ? "Stock received" : "Kind",
                 isRecorded ? StockReceivedLabel(status)
                            : std::string_view(LOrderIsDraft(order_) ? "Draft" : "Recurring"));
    if (!IsViewer()) {
        Out().Write("<div class=actions>");
        const std::string statusText = std::to_string(status);
        const auto link = [&](std::string_view page, std::string_view caption) {
            Out().Printf(" <a class=button href='%H'>%H</a>",
                         WLMakeLink(page, {{"id", id}, {"status", statusText}}), caption);
        };
        if (isRecorded && status != StockFullyReceived) link("orderreceive", "Receive");
        if (isRecorded && status != StockNotReceived) link("orderreturn", "Return");
        if (Profile().OrdersRecurring().TestRecordExists(id)) link("orderschedule", "Schedule");
        link("orderdelete", "Delete");
        Out().Write("</div>");
    }
    Out().Write("</div>");
    if (!IsViewer() && LOrderNamesNewItems(Profile(), order_)) PrintNewItems();
}

// A draft may wait for weeks; its new items need not.
void LWebOrderDialog::PrintNewItems() {
    Out().Printf(
        "<form class=toolbar method=post action=orderregitems><input type=hidden name=id "
        "value='%H'>"
        "<span>This order names codes that are no items yet.</span>"
        "<span class=actions><input type=submit class=button value='Make these items'></span>"
        "</form>",
        order_.GetPrimaryKey());
}

void LWebOrderDialog::Generate() {
    PassPriviligies(Script());
    GenerateHead();
    GenerateTaxQuestion();
    GenerateLines();
    GenerateTotals();
    GenerateAddresses();
    const bool isReceived = order_.GetStockReceivedStatus() != StockNotReceived;
    AddRawHTML(FormatText("<input type=hidden id=%d name=%d value=%d>", kOrderSeenReceived,
                          kOrderSeenReceived, isReceived ? 1 : 0));
    AddScripts();
}

void LWebOrderDialog::GenerateHead() {
    LInputOptions supplier;
    supplier.hint = "A new name makes a new supplier";
    StartRow()
        .AddStatic("Supplier")
        .AddEditablePullDownList(kOrderSupplier, SortedNames(Profile(), "Suppliers"),
                                 input_.supplier, supplier);
    StartRow().AddStatic("Date").AddDateInput(kOrderDate, Profile().ParseDate(input_.date));
    StartRow()
        .AddStatic("Receipt date")
        .AddDateInput(kOrderReceiptDate, Profile().ParseDate(input_.receiptDate));
    std::vector<LOption> locations;
    for (const auto& [key, name] : LNameMap(Profile(), "Locations").Pairs()) {
        locations.push_back({key, name, {}});
    }
    LInputOptions location;
    location.onChange = "offerAddress(this.value)";
    StartRow()
        .AddStatic("Deliver to")
        .AddPullDownListEx(kOrderLocation, locations, input_.locationId, location);
}

void LWebOrderDialog::GenerateTaxQuestion() {
    if (!order_.IsBound() || !LInvIsTaxRateChanged(LTaxOptions(Profile()), order_)) return;
    StartRow()
        .AddStatic(
            "Tax rates or tax inclusivity has been changed. Do you want to use old tax rates?")
        .AddRadioButton(kOrderUseOldRates, kOrderRates, std::string(kUseOldRates), true)
        .AddRadioButton(kOrderUseNewRates, kOrderRates, std::string(kUseNewRates), false);
}

void LWebOrderDialog::GenerateLines() {
    std::vector<std::string> codes;
    GetItemIndex(Profile(), codes);
    std::sort(codes.begin(), codes.end());
    StartGroupBox("Items");
    StartRow().AddRawHTML("<datalist id=itemcodes>");
    for (const std::string& code : codes) AddRawHTML(FormatText("<option value='%H'>", code));
    AddRawHTML(
        "</datalist><table class=orderlines><thead><tr><th>Code</th><th>Description</th>"
        "<th>Unit</th><th>Quantity</th><th>Unit cost</th><th>Tax</th><th>Total</th></tr></thead>"
        "<tbody id=orderlines>");
    int row = 0;
    for (const LOrderLineInput& line : input_.lines) {
        GenerateRow(RowPrefix(row), line, row);
        ++row;
    }
    AddRawHTML("</tbody></table><template id=newline>");
    GenerateRow(kNewRow, {}, -1);
    AddRawHTML(FormatText("</template><input type=hidden id=%d name=%d value=%d>", kOrderRowCount,
                          kOrderRowCount, row));
    if (!IsViewer()) AddRawHTML("<input type=button value='Add a line' onclick='addLine()'>");
    StartRow().AddStaticSmall(
        "A code that no item has makes a new item. Empty the code, description, quantity and cost "
        "of a line to take it out.");
    EndGroupBox();
}

void LWebOrderDialog::GenerateRow(std::string_view prefix, const LOrderLineInput& line, int row) {
    const auto input = [&](int part, std::string_view label, std::string_view value,
                           std::string_view more) {
        AddRawHTML(FormatText(
            "<td data-label='%H'><input type=text id=%H%d name=%H%d value='%H' maxlength=259 "
            "autocomplete=off aria-label='%H' %s></td>",
            label, prefix, part, prefix, part, value, label, more));
    };
    AddRawHTML("<tr>");
    input(kOrderRowCode, "Code", line.code, "list=itemcodes size=12 onchange='offerItem(this)'");
    AddRawHTML(
        FormatText("<td data-label=Description><textarea id=%H%d name=%H%d rows=1 cols=24 "
                   "aria-label=Description>\n%H</textarea></td>",
                   prefix, kOrderRowDescription, prefix, kOrderRowDescription, line.description));
    input(kOrderRowMeasure, "Unit", line.measure, "size=5");
    input(kOrderRowQuantity, "Quantity", line.quantity, "size=7 inputmode=decimal class=number");
    input(kOrderRowCost, "Unit cost", line.unitCost, "size=9 inputmode=decimal class=number");
    AddRawHTML(FormatText("<td data-label=Tax><select id=%H%d name=%H%d aria-label=Tax>", prefix,
                          kOrderRowTax, prefix, kOrderRowTax));
    bool isKnown = line.taxName.empty();
    for (const std::string& name : taxNames_) {
        AddRawHTML(
            FormatText("<option%s>%H</option>", name == line.taxName ? " selected" : "", name));
        isKnown = isKnown || name == line.taxName;
    }
    // A tax that has been renamed since.
    if (!isKnown) AddRawHTML(FormatText("<option selected>%H</option>", line.taxName));
    AddRawHTML(FormatText("</select></td><td data-label=Total class=number><span id=%H%d></span>",
                          prefix, kOrderRowAmount));
    if (row >= 0 && order_.GetStockReceivedStatus() == StockPartiallyReceived) {
        AddRawHTML(FormatText(" <span class=small>%H received</span>",
                              Profile().FormatQuantity(order_.GetItemQtyReceived(row))));
    }
    AddRawHTML(FormatText("<input type=hidden name=%H%d value=%d></td></tr>", prefix,
                          kOrderRowStored, line.storedLine));
}

// Filled by the script, as soon as the page is there and whenever something changes.
void LWebOrderDialog::GenerateTotals() {
    StartRow().AddRawHTML(
        "<div id=ordertotals class=ordertotals role=status aria-label=Totals></div>");
    StartRow().AddStatic("").AddCheckBox(kOrderUntaxed, "This order is not taxed",
                                         input_.isNotTaxed);
}

void LWebOrderDialog::GenerateAddresses() {
    StartRow().AddStatic("Ship by").AddEditablePullDownList(
        kOrderShipBy, GetNameList(Profile(), "ShipBy"), input_.shipBy);
    StartRow().AddStatic("Tracking reference").AddInput(kOrderTracking, input_.trackingRef);
    StartRow().AddStatic("Bill to").AddEdit(kOrderAddress, input_.address, 3);
    StartRow().AddStatic("").AddCheckBox(kOrderSameAsBillTo, "Ship to the same address",
                                         input_.isSameAsBillTo);
    StartRow().AddStatic("Ship to").AddEdit(kOrderShippingAddress, input_.shippingAddress, 3);
    StartRow().AddStatic("Notes").AddEdit(kOrderNotes, input_.notes, 3);
    StartRow().AddStatic("Internal notes").AddEdit(kOrderInternalNotes, input_.internalNotes, 3);
}

void LWebOrderDialog::AddScripts() {
    Script().Include("orders.js");
    Script().Add(
        "var orderForm = {rowCount: '%d', shipTo: '%d', sameAddress: '%d', seenReceived: '%d', "
        "newRow: '%s', firstRow: %d, record: '%J', saveDraft: '%J'};\n",
        kOrderRowCount, kOrderShippingAddress, kOrderSameAsBillTo, kOrderSeenReceived, kNewRow,
        kOrderFirstPrefix, kRecordLabel, kSaveDraftLabel);
    AddValidation("return mayRecord();");
}

bool LWebOrderDialog::SendAJAXCommands() {
    const std::string code = Form().Parameter("itemcode");
    if (code.empty()) return false;
    LItem item;
    std::vector<std::string> lines;
    if (OpenItem(Profile(), item, code)) {
        const std::vector<std::string> taxes = GetTaxNames(Profile());
        const int tax = item.GetInt("TaxRate", 0);
        const bool isTax = tax >= 0 && static_cast<size_t>(tax) < taxes.size();
        std::string description = item.GetString("Description");
        std::replace_if(
            description.begin(), description.end(), [](char c) { return c == '\r' || c == '\n'; },
            ' ');
        lines = {description, item.GetString("Measure"), Profile().FormatMoneyInput(item.Cost()),
                 taxes[isTax ? static_cast<size_t>(tax) : 0]};
    }
    LTextAnswer(Form(), lines).Open();
    return true;
}

bool LWebOrderDialog::CmOk() {
    LOrderInput input = OrderInputFrom(Form().Parameters(), order_.GetPrimaryKey());
    LOrderAnswers answers(GetCheck(kOrderSeenReceived));
    const LOrderError error = LOrderEditorRecord(answers, Profile(), input);
    if (error.IsNone()) return true;
    if (answers.OpenQuestion().empty()) return ShowError(error);
    AnswerScript("document.getElementById('%d').value = '1';\n", kOrderSeenReceived);
    PopupBoxError(answers.OpenQuestion() + " Then press " + kRecordLabel + " again.");
    return false;
}

bool LWebOrderDialog::SaveDraft() {
    LOrderInput input = OrderInputFrom(Form().Parameters(), order_.GetPrimaryKey());
    return ShowError(LOrderEditorSaveDraft(Profile(), input));
}

bool LWebOrderDialog::SaveRecurring() {
    LOrderInput input = OrderInputFrom(Form().Parameters(), order_.GetPrimaryKey());
    LDialogUserInterface ui;
    if (!ShowError(LOrderEditorSaveRecurring(ui, Profile(), input))) return false;
    // It is placed once it has a day to begin with.
    Redirect(WLMakeLink("orderschedule", {{"id", input.id}}));
    return true;
}

// True when there is none.
bool LWebOrderDialog::ShowError(const LOrderError& error) {
    LOrderError shown = error;
    if (!shown.title.empty()) shown.message = shown.title + "\n" + shown.message;
    return ShowFieldError(shown, [&](LOrderField) { return OrderControlOf(error); });
}
