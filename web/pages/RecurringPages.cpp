#include "web/pages/RecurringPages.h"

#include "inventory/LNameMap.h"
#include "orders/LOrderSender.h"
#include "orders/LPOrderList.h"
#include "orders/OrderTotals.h"
#include "orders/RecurringOrders.h"
#include "web/accounts/PageCheck.h"
#include "web/framework/LHtmlList.h"
#include "web/framework/LWebUserInterface.h"
#include "web/framework/PageTargets.h"
#include "web/server/LWebletConnection.h"

namespace {

constexpr char kSchedulePage[] = "orderschedule";

enum {
    kRecurStart = 101,
    kRecurInterval = 102,
    kRecurAction = 103,
    kRecurReplace = 104,
    kRecurPrices = 105
};

constexpr LHtmlListColumn kColumns[] = {
    {"Order"},
    {"Supplier"},
    {"Repeats"},
    {"Last run"},
    {"Next due"},
    {"Total", 0, LCellAlign::kRight},
    {"Actions", 0, LCellAlign::kRight, false},
};

std::string ShownDate(const LProfile& profile, std::string_view stored) {
    const std::optional<LDate> date = LDate::FromStored(stored);
    return date ? profile.FormatDate(*date) : std::string();
}

// Entries by their index, as the schedule stores it.
template <size_t count>
std::vector<LFormControls::LOption> Indexed(const std::array<std::string_view, count>& texts) {
    std::vector<LFormControls::LOption> options;
    for (const std::string_view text : texts) {
        options.push_back({std::to_string(options.size()), std::string(text), {}});
    }
    return options;
}

// As it would be placed today; the stored template stays as it is.
std::string ShownTotal(const LProfile& profile, const LPOrder& recurring) {
    LPOrder order;
    order.CopyRecord(recurring);
    if (!LOrderSumTotals(profile, order, LTaxRates::kPresent)) return "too large";
    return profile.FormatMoney({order.GetTotal(), order.GetTotalDigits(profile)});
}

template <typename RunData>
void Run(LWebUserInterface& ui, RunData data) {
    RunRecurringOrders(ui, data);
    for (const std::string& id : data.result.orderIds) {
        ui.Inform(kRunRecurringTitle, "Order " + id + " has been placed.");
    }
    if (data.result.orderIds.empty() && data.result.failures.empty()) {
        ui.Inform(kRunRecurringTitle, "No recurring order is due.");
    }
}

}  // namespace

LWebOrderRecurringDialog::LWebOrderRecurringDialog(LWebletForm& form) : LWebDialogEA(form) {
    SetOkCancelPage(kSchedulePage, kSchedulePage);
    KeepParameter("id");
    UseOneTimeToken();
}

bool LWebOrderRecurringDialog::Prepare() {
    const std::string id = Form().Parameter("id");
    if (IsList()) {
        SetTitle("Recurring orders");
        SetWithoutOk();
        SetWithoutCancel();
        return true;
    }
    if (IsViewer()) SetWithoutOk();
    isTemplate_ = LRecurringPOrderList(Profile()).Open(order_, id);
    SetTitle((isTemplate_ ? "Recurring order " : "Repeat order ") + id);
    if (isTemplate_ || LPOrderOpen(Profile(), order_, id)) return true;
    Redirect(kSchedulePage);  // another tab was quicker
    return false;
}

void LWebOrderRecurringDialog::PrintAboveForm() {
    if (!IsList()) return;
    Out().Write("<div class=toolbar><div class=actions>");
    if (!IsViewer() && LRecurringOrderTest(Profile())) {
        Out().Write("<a class='button primary' href='runrecurringorder'>Run what is due</a> ");
    }
    Out().Write("<a class=button href='orderlist'>Purchase orders</a></div></div>");
}

void LWebOrderRecurringDialog::Generate() {
    if (IsList()) {
        GenerateList();
    } else {
        GenerateSchedule();
    }
}

void LWebOrderRecurringDialog::GenerateSchedule() {
    const LRecurringScheduleInput schedule = LRecurringScheduleOf(order_);
    if (!isTemplate_) {
        StartRow().AddStaticSmall(
            "A recurring order is made from this order. The order itself stays as it is.");
    }
    StartRow().AddStatic("First order on").AddDateInput(kRecurStart, schedule.start);
    StartRow().AddStatic("Repeats").AddPullDownListEx(kRecurInterval, Indexed(kRecurIntervals),
                                                      std::to_string(schedule.interval));
    StartRow()
        .AddStatic("When it is due")
        .AddPullDownListEx(kRecurAction, Indexed(kRecurActions), std::to_string(schedule.action));
    StartRow().AddStatic("").AddCheckBox(
        kRecurReplace, "Replace the string %period% in any description with dates",
        schedule.replaceText);
    StartRow().AddStatic("").AddCheckBox(kRecurPrices, "Use the items' costs of that day",
                                         schedule.updatePrices);
    if (!isTemplate_) return;
    const int64_t due = LRecurringOrderGetDueDate(order_);
    const std::string lastRun = ShownDate(Profile(), order_.GetView("RecurLast"));
    StartRow().AddStatic("Last run").AddStatic(lastRun.empty() ? "Never" : lastRun);
    StartRow()
        .AddStatic("Next due")
        .AddStatic(due == kNeverDue ? "Never" : Profile().FormatDate(LDate::FromTime(due)));
}

void LWebOrderRecurringDialog::GenerateList() {
    const std::span<const LHtmlListColumn> columns(kColumns);
    LHtmlList table;
    table.SetColumns(IsViewer() ? columns.first(columns.size() - 1) : columns);
    table.SetName("Recurring orders");
    table.SetEmptyText(
        "No order repeats yet. Open a purchase order and save it as a recurring one.");
    LRecurringPOrderList(Profile()).ForEach([&](const LPOrder& recurring) {
        AddRow(table, recurring);
        return true;
    });
    StartRow().AddList(table);
}

void LWebOrderRecurringDialog::AddRow(LHtmlList& table, const LPOrder& recurring) {
    const std::string& id = recurring.GetPrimaryKey();
    std::string supplier;
    recurring.GetSupplierName(Profile(), supplier);
    const LRecurringScheduleInput schedule = LRecurringScheduleOf(recurring);
    const bool hasInterval =
        schedule.interval >= 0 && static_cast<size_t>(schedule.interval) < kRecurIntervals.size();
    const int64_t due = LRecurringOrderGetDueDate(recurring);
    const std::string_view last = recurring.GetView("RecurLast");
    LHtmlListRow& row = table.StartRow();
    row.AddCellLink(WLMakeLink("orderprop", {{"id", id}}), id).AddCell(supplier);
    row.AddCell(hasInterval ? kRecurIntervals[static_cast<size_t>(schedule.interval)] : "");
    row.AddCellWithOrder(ShownDate(Profile(), last), last);
    if (due == kNeverDue) {
        row.AddCellWithOrder("Never", "9999-12-31");
    } else {
        const LDate day = LDate::FromTime(due);
        row.AddCellWithOrder(Profile().FormatDate(day), day.ToStored());
        if (IsDueAt(due, std::time(nullptr))) row.SetClass("low");
    }
    row.AddCell(ShownTotal(Profile(), recurring));
    if (IsViewer()) return;
    row.AddCellPrintF(
        "<span class=rowactions><a href='orderschedule?id=%U' aria-label='Schedule of %H'>Schedule"
        "</a> <a href='runrecurringorder?id=%U' aria-label='Run now: %H'>Run now</a> "
        "<a href='orderdelete?id=%U' aria-label='Delete %H'>Delete</a></span>",
        id, id, id, id, id, id);
}

bool LWebOrderRecurringDialog::ReadSchedule(LRecurringScheduleInput& input) {
    const std::optional<LDate> start = GetDate(kRecurStart);
    if (!start) {
        PopupControlDataInvalid(kRecurStart, "Please enter a valid date.");
        return false;
    }
    input.start = *start;
    input.interval = GetControlValueInt(kRecurInterval, kRecurIntervalDefault);
    input.action = GetControlValueInt(kRecurAction, kRecurJustRecord);
    input.replaceText = GetCheck(kRecurReplace);
    input.updatePrices = GetCheck(kRecurPrices);
    return true;
}

bool LWebOrderRecurringDialog::CmOk() {
    if (IsList()) return true;
    LRecurringScheduleInput input;
    if (!ReadSchedule(input)) return false;
    std::string newId;
    const bool isSaved = isTemplate_ ? LRecurringScheduleSave(order_, input)
                                     : LRecurringOrderMake(Profile(), order_, input, newId);
    if (!isSaved) PopupBoxError("The schedule could not be saved.");
    return isSaved;
}

void WLProcessRunRecurringOrder(LWebletForm& form) {
    if (!AuthenticateAction(form)) return;
    if (!WLMayChange(form)) return WLRedirect(form, kSchedulePage);
    const std::string id = form.Parameter("id");
    LWebUserInterface ui(form);
    const std::string question = id.empty()
                                     ? "Place all recurring orders that are due?"
                                     : "Place an order from the recurring order " + id + " now?";
    if (ui.Ask(kRunRecurringTitle, question, {"Run", "Cancel"}) == "Run") {
        LOrderSender sender = LOrderSender::OfThisSystem(&form.Connection().StopSignal());
        if (id.empty()) {
            Run(ui, LRecurringOrderRunAllData{form.Profile(), sender});
        } else {
            Run(ui, LRecurringOrderRunData{form.Profile(), sender, id});
        }
    }
    ui.Finish(kSchedulePage);
}
