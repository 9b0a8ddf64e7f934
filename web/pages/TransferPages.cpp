#include "web/pages/TransferPages.h"

#include "inventory/LItem.h"
#include "inventory/StockQuantities.h"
#include "web/framework/LWebUserInterface.h"
#include "web/framework/PageTargets.h"
#include "web/pages/ListFilterForm.h"
#include "web/pages/MasterList.h"
#include "web/pages/NameChoices.h"
#include "web/pages/TransferDialogs.h"

namespace {

constexpr int kNoteText = 101;
constexpr size_t kItemsNamed = 3;  // in the list; more are counted

constexpr LHtmlListColumn kTransferTable[] = {
    {"Number", 9}, {"State", 10},     {"From", 14}, {"To", 14},
    {"Items", 28}, {"Requested", 10}, {"Note", 15},
};
constexpr LHtmlListColumn kLinesTable[] = {
    {"Code", 20, LCellAlign::kLeft, false},
    {"Description", 50, LCellAlign::kLeft, false},
    {"Quantity", 15, LCellAlign::kRight, false},
    {"In stock", 15, LCellAlign::kRight, false},
};

std::string LinesText(const LProfile& profile, const std::vector<LTransferLine>& lines) {
    std::string text;
    for (size_t i = 0; i < lines.size() && i < kItemsNamed; ++i) {
        text += (i == 0 ? "" : ", ") + profile.FormatQuantity(lines[i].quantity) + " " +
                lines[i].itemCode;
    }
    if (lines.size() > kItemsNamed) {
        text += " and " + std::to_string(lines.size() - kItemsNamed) + " more";
    }
    return text;
}

// Numbers with equal letters in front sort by value.
std::string NumberOrder(std::string_view id) {
    const size_t digits = id.find_first_of("0123456789");
    return std::string(digits == std::string_view::npos ? id : id.substr(digits));
}

std::string ShownDate(const LProfile& profile, std::string_view stored) {
    const std::optional<LDate> date = LDate::FromStored(stored);
    return date ? profile.FormatDate(*date) : std::string();
}

// Opens the transfer that the request names, or leads back to the list.
bool OpenTransfer(LWebletForm& form, LTransfer& transfer) {
    return LTransferList(form.Profile()).Open(transfer, form.Parameter("id"));
}

}  // namespace

void LWebTransferListPage::PrintBody() {
    const std::string state = Form().Parameter("state");
    PrintFilters(state);
    LHtmlList table;
    table.SetColumns(kTransferTable);
    table.SetSort(0, false);
    table.SetName("Transfers");
    table.SetEmptyText("There are no transfers here. Make one to move stock between locations.");
    const LNameMap locations(Profile(), "Locations");
    LTransferList(Profile()).ForEach([&](const LTransfer& transfer) {
        const std::string_view name = TransferStateName(transfer.State());
        if (!state.empty() && state != "All" && state != name) return true;
        const std::string& id = transfer.GetPrimaryKey();
        const std::string day = transfer.GetString("RequestedDate");
        LHtmlListRow row = table.MakeRow();
        row.AddCellPrintFWithOrder(NumberOrder(id), "<a href='%H'>%H</a>",
                                   WLMakeLink("transferview", {{"id", id}}), id);
        row.AddCellPrintFWithOrder(name, transfer.IsOpen() ? "<span class=badge>%H</span>" : "%H",
                                   name);
        row.AddCell(transfer.FromName(locations));
        row.AddCell(transfer.ToName(locations));
        row.AddCell(LinesText(Profile(), transfer.Lines()));
        row.AddCellWithOrder(ShownDate(Profile(), day), day);
        row.AddCell(SingleLine(transfer.GetView("Note")));
        table.AddOrdered(std::move(row));
        return true;
    });
    table.Print(Out());
}

void LWebTransferListPage::PrintFilters(std::string_view state) {
    std::vector<std::string> states;
    for (const LTransferState each : {LTransferState::kRequested, LTransferState::kSent,
                                      LTransferState::kReceived, LTransferState::kCancelled}) {
        states.emplace_back(TransferStateName(each));
    }
    LListFilterForm filters(Out(), "transferlist");
    filters.AddChoice("state", "State", WithAll(states), state);
    if (!IsViewer()) filters.AddAction("itemtransfer", "New transfer");
}

LTransferLinesTable::LTransferLinesTable(const LProfile& profile, const LTransfer& transfer) {
    const bool withStock = transfer.State() == LTransferState::kRequested;
    const std::span<const LHtmlListColumn> columns(kLinesTable);
    table_.SetColumns(withStock ? columns : columns.first(columns.size() - 1));
    table_.SetName("Items");
    table_.SetPlain();
    const std::string from = transfer.FromName(profile);
    for (const LTransferLine& line : transfer.Lines()) {
        LItem item;
        const bool isThere = profile.Items().Open(item, line.itemId);
        LHtmlListRow& row = table_.StartRow();
        if (isThere) {
            row.AddCellLink(WLMakeLink("itemprop", {{"id", line.itemId}}), item.GetView("Name"));
        } else {
            row.AddCell(line.itemCode);
        }
        row.AddCell(isThere ? SingleLine(item.GetView("Description")) : "(deleted item)");
        row.AddCell(profile.FormatQuantity(line.quantity));
        if (withStock) row.AddCell(profile.FormatQuantity(GetItemsInStock(profile, item, from)));
    }
}

LWebTransferViewDialog::LWebTransferViewDialog(LWebletForm& form) : LWebDialogEA(form) {
    SetOkCancelPage("transferlist", "transferlist");
    KeepParameter("id");
    SetOkLabel("Close");  // "Cancel" would seem to cancel the transfer
    SetWithoutCancel();
}

bool LWebTransferViewDialog::Prepare() {
    if (OpenTransfer(Form(), transfer_)) {
        SetTitle("Transfer " + transfer_.GetPrimaryKey());
        return true;
    }
    Redirect("transferlist");
    return false;
}

void LWebTransferViewDialog::PrintLink(std::string_view page, std::string_view caption,
                                       std::string_view style) {
    Out().Printf("<a class='button%s' href='%H'>%H</a> ", style,
                 WLMakeLink(page, {{"id", transfer_.GetPrimaryKey()}}), caption);
}

void LWebTransferViewDialog::PrintAboveForm() {
    if (IsViewer()) return;
    Out().Write("<div class=toolbar>");
    if (transfer_.State() == LTransferState::kRequested) {
        PrintLink("transfersend", "Send", " primary");
    } else if (transfer_.State() == LTransferState::kSent) {
        PrintLink("transferreceive", "Receive", " primary");
    }
    PrintLink("transfernote", "Edit note", "");
    if (transfer_.IsOpen()) PrintLink("transfercancel", "Cancel this transfer", "");
    Out().Write("</div>");
}

void LWebTransferViewDialog::Generate() {
    StartRow().AddStatic("State").AddStaticBold(TransferStateName(transfer_.State()));
    StartRow().AddStatic("From").AddStatic(transfer_.FromName(Profile()));
    StartRow().AddStatic("To").AddStatic(transfer_.ToName(Profile()));
    const std::string interruption = TransferInterruption(Profile(), transfer_.GetPrimaryKey());
    if (!interruption.empty()) {
        StartRow().AddRawHTML(FormatText("<div class=problem>%H</div>", interruption));
    }
    LTransferLinesTable lines(Profile(), transfer_);
    StartRow().AddList(lines.Table());
    AddStep("Requested", LTransferState::kRequested);
    AddStep("Sent", LTransferState::kSent);
    AddStep("Received", LTransferState::kReceived);
    AddStep("Cancelled", LTransferState::kCancelled);
    if (transfer_.GetView("Note").empty()) return;
    StartRow().AddStatic("Note").AddRawHTML(
        FormatText("<span style='white-space:pre-line'>%H</span>", transfer_.GetView("Note")));
}

void LWebTransferViewDialog::AddStep(std::string_view caption, LTransferState state) {
    const std::string name(TransferStateName(state));
    const std::string day = ShownDate(Profile(), transfer_.GetView(name + "Date"));
    if (day.empty()) return;
    const std::string who = transfer_.GetString(name + "By");
    StartRow().AddStatic(caption).AddStatic(who.empty() ? day : day + " by " + who);
}

LWebTransferNoteDialog::LWebTransferNoteDialog(LWebletForm& form) : LWebDialogEA(form) {
    KeepParameter("id");
}

bool LWebTransferNoteDialog::Prepare() {
    const bool isThere = OpenTransfer(Form(), transfer_);
    const std::string back =
        isThere ? WLMakeLink("transferview", {{"id", Form().Parameter("id")}}) : "transferlist";
    SetOkCancelPage(back, back);
    SetTitle("Note on transfer " + transfer_.GetPrimaryKey());
    if (!isThere) Redirect(back);
    return isThere;
}

void LWebTransferNoteDialog::Generate() {
    StartRow().AddStatic("Note").AddEdit(kNoteText, transfer_.GetString("Note"), 5);
}

bool LWebTransferNoteDialog::CmOk() {
    transfer_.SetString("Note", GetTextAndTrim(kNoteText));
    if (transfer_.Flush()) return true;
    PopupBoxError("The note could not be saved.");
    return false;
}

void WLTransferCancel(LWebletForm& form) {
    if (!AuthenticateAction(form)) return;
    LTransfer transfer;
    if (!WLMayChange(form) || !OpenTransfer(form, transfer)) {
        return WLRedirect(form, "transferlist");  // a viewer, or another tab was quicker
    }
    const std::string id = transfer.GetPrimaryKey();
    const bool isSent = transfer.State() == LTransferState::kSent;
    LWebUserInterface ui(form);
    const std::string question = "Are you sure you want to cancel transfer " + id + "?" +
                                 (isSent ? " What was sent goes back to its location." : "");
    if (ui.Ask("Cancel Transfer", question, {"Yes", "No"}) == "Yes") {
        const std::string problem = LTransferCancel(form.Profile(), id, WLTransferStep(form));
        if (!problem.empty()) ui.Inform("Cancel Transfer", problem);
    }
    ui.Finish(WLMakeLink("transferview", {{"id", id}}));
}
