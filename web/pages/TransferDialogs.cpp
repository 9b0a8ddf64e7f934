#include "web/pages/TransferDialogs.h"

#include "inventory/LItem.h"
#include "web/framework/PageTargets.h"
#include "web/pages/ItemLines.h"
#include "web/pages/NameChoices.h"
#include "web/pages/TransferPages.h"

namespace {

enum {
    kTransferFrom = 101,
    kTransferTo = 102,
    kTransferUntil = 103,
    kTransferShort = 104,
    kTransferNote = 105,
    kTransferDate = 106,
    kTransferLines = 1000
};

constexpr char kShortCaption[] = "Send also what is not in stock: it goes below zero";

// What is to happen at once, as values and texts of the choice.
constexpr std::string_view kMoveAll = "Received", kSendOnly = "Sent", kAskOnly = "Requested";

int ControlOf(const LTransferError& error) {
    const int line = std::max(error.line, 0);
    switch (error.field.value_or(LTransferField::kFrom)) {
        case LTransferField::kFrom:
            return kTransferFrom;
        case LTransferField::kTo:
            return kTransferTo;
        case LTransferField::kItem:
            return ItemLineCode(kTransferLines, line);
        default:
            return ItemLineQuantity(kTransferLines, line);
    }
}

LShortage ShortageOf(bool isAllowed) { return isAllowed ? LShortage::kAllow : LShortage::kRefuse; }

}  // namespace

LTransferStep WLTransferStep(LWebletForm& form) {
    LAppWebAccount account;
    return {OpenSignedInAccount(form, account) ? account.Email() : std::string(), LDate::Today()};
}

LAppWebItemTransferDialog::LAppWebItemTransferDialog(LWebletForm& form) : LWebDialogEA(form) {
    SetTitle("Move stock");
    SetOkCancelPage("transferlist", "transferlist");
    for (const char* name : {"id", "loc"}) KeepParameter(name);
    UseOneTimeToken();
}

bool LAppWebItemTransferDialog::Prepare() {
    // From the list of items and back to it.
    if (!Form().Parameter("id").empty()) SetOkCancelPage("itemlist", "itemlist");
    return true;
}

void LAppWebItemTransferDialog::Generate() {
    std::vector<std::string> locations = SortedNames(Profile(), "Locations");
    locations.insert(locations.begin(), "");
    StartRow().AddStatic("From").AddPullDownList(kTransferFrom, locations, Form().Parameter("loc"));
    StartRow().AddStatic("To").AddPullDownList(kTransferTo, locations, "");

    std::vector<LItemLineText> lines;
    LItem item;
    if (Profile().Items().Open(item, Form().Parameter("id"))) {
        lines.push_back({item.GetString("Name"), "", item.GetString("Description")});
    }
    StartGroupBox("Items");
    AddItemLines(*this, Script(), Profile(), kTransferLines, lines);
    EndGroupBox();

    const std::vector<LOption> choices{
        {std::string(kMoveAll), "Move it: it is sent and received now"},
        {std::string(kSendOnly), "Send it: it is received later"},
        {std::string(kAskOnly), "Ask for it: it is sent later"}};
    StartRow().AddStatic("What to do").AddPullDownListEx(kTransferUntil, choices, kMoveAll);
    StartRow().AddStatic("").AddCheckBox(kTransferShort, kShortCaption, false);
    StartRow().AddStatic("Note").AddEdit(kTransferNote, "", 2);
}

LTransferInput LAppWebItemTransferDialog::ReadInput() {
    LTransferInput input;
    input.from = GetText(kTransferFrom);
    input.to = GetText(kTransferTo);
    input.note = GetTextAndTrim(kTransferNote);
    for (const LItemLineText& line : ReadItemLines(Form().Parameters(), kTransferLines)) {
        input.lines.push_back({line.code, line.quantity});
    }
    return input;
}

bool LAppWebItemTransferDialog::CmOk() {
    const std::string wanted = GetText(kTransferUntil);
    const LTransferState until = wanted == kMoveAll    ? LTransferState::kReceived
                                 : wanted == kSendOnly ? LTransferState::kSent
                                                       : LTransferState::kRequested;
    LTransfer transfer;
    const LTransferError error =
        LTransferStock(Profile(), transfer, ReadInput(), WLTransferStep(Form()), until,
                       ShortageOf(GetCheck(kTransferShort)));
    return ShowFieldError(error, [&](LTransferField) { return ControlOf(error); });
}

LWebTransferSendReceiveDialog::LWebTransferSendReceiveDialog(LWebletForm& form)
    : LWebDialogEA(form), isSend_(form.PageName() == "transfersend") {
    KeepParameter("id");
    UseOneTimeToken();
}

bool LWebTransferSendReceiveDialog::Prepare() {
    const std::string id = Form().Parameter("id");
    if (!LTransferList(Profile()).Open(transfer_, id)) {
        Redirect("transferlist");
        return false;
    }
    const std::string view = WLMakeLink("transferview", {{"id", id}});
    SetOkCancelPage(view, view);
    SetTitle((isSend_ ? "Send transfer " : "Receive transfer ") + id);
    SetOkLabel(isSend_ ? "Send" : "Receive");
    const LTransferState state = isSend_ ? LTransferState::kRequested : LTransferState::kSent;
    if (IsSubmit() || transfer_.State() == state) return true;  // a submit is told what is wrong
    Redirect(view);                                             // somebody else was quicker
    return false;
}

void LWebTransferSendReceiveDialog::Generate() {
    StartRow().AddStatic("From").AddStaticBold(transfer_.FromName(Profile()));
    StartRow().AddStatic("To").AddStaticBold(transfer_.ToName(Profile()));
    LTransferLinesTable lines(Profile(), transfer_);
    StartRow().AddList(lines.Table());
    StartRow()
        .AddStatic(isSend_ ? "Sent on" : "Received on")
        .AddDateInput(kTransferDate, LDate::Today());
    if (!isSend_) return;
    const std::vector<std::string> shortages = TransferShortages(Profile(), transfer_);
    if (shortages.empty()) return;
    for (const std::string& text : shortages) {
        StartRow().AddRawHTML(FormatText("<div class=problem>%H</div>", text));
    }
    StartRow().AddStatic("").AddCheckBox(kTransferShort, kShortCaption, false);
}

bool LWebTransferSendReceiveDialog::CmOk() {
    LTransferStep step = WLTransferStep(Form());
    const std::optional<LDate> date = GetDate(kTransferDate);
    if (!date) {
        PopupControlDataInvalid(kTransferDate, "Enter the date of the day.");
        return false;
    }
    step.date = *date;
    const std::string id = transfer_.GetPrimaryKey();
    const std::string problem =
        isSend_ ? LTransferSend(Profile(), id, step, ShortageOf(GetCheck(kTransferShort)))
                : LTransferReceive(Profile(), id, step);
    if (!problem.empty()) PopupBoxError(problem);
    return problem.empty();
}
