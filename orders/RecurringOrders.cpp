#include "orders/RecurringOrders.h"

#include "inventory/LItem.h"
#include "inventory/MovementLock.h"
#include "orders/LPOrderList.h"
#include "orders/OrderTotals.h"
#include "orders/RecurringSchedule.h"

namespace {

constexpr std::string_view kPeriodMark = "%period%";
constexpr std::string_view kPlacing = "RecurPlacing";

std::string WithPeriod(std::string text, const std::string& period) {
    for (size_t at = text.find(kPeriodMark); at != std::string::npos;
         at = text.find(kPeriodMark, at + period.size())) {
        text.replace(at, kPeriodMark.size(), period);
    }
    return text;
}

void TakeItemCost(const LProfile& profile, LPOrder& order, int line) {
    LItem item;
    if (!profile.Items().Load(order.GetItemID(line), item)) return;
    const LMoney cost = item.Cost();
    order.SetItemUnitValue(line, cost.minorUnits);
    order.SetItemUnitValueDigits(line, cost.digits);
}

// The day from which the template's next order counts: its last run, else its start.
LDate PeriodStart(const LPOrder& recurring, const LDate& otherwise) {
    for (const char* field : {"RecurLast", "RecurStart"}) {
        if (const auto date = LDate::FromStored(recurring.GetView(field))) return *date;
    }
    return otherwise;
}

// The new order before it has a number.
bool MakeOrder(const LProfile& profile, const LPOrder& recurring, const LDate& today,
               const LRecurringPeriod& period, LPOrder& order) {
    order.CopyRecord(recurring);
    order.DeleteField(kPlacing);
    order.SetBool("IsDraft", false);
    order.SetString("Date", today.ToStored());
    order.SetString("Receipt Date", today.ToStored());
    LRecurringOrderUpdateDescriptionAndPrice(profile, order, period);
    LOrderStoreLineRates(LTaxOptions(profile), order, LTaxRates::kPresent);
    return LOrderSumTotals(profile, order, LTaxRates::kPresent);
}

// Unlike Flush also false when the file could not be written, on a full disk for example.
bool SaveToFile(LRecord& record) {
    if (!record.Flush()) return false;
    const LRecordFields& fields = record.Fields();
    for (size_t i = 0; i < fields.Count(); ++i) {
        if (fields.IsChanged(i)) return false;
    }
    return true;
}

// Before the order is stored, so that whoever comes after a kill knows it.
bool NotePlacing(LPOrder& recurring, const std::string& orderId, const LDate& due) {
    recurring.SetString(kPlacing, orderId + " " + due.ToStored());
    const bool isSaved = SaveToFile(recurring);
    recurring.ClearDirty();
    return isSaved;
}

bool NoteRun(LPOrder& recurring, const LDate& today) {
    recurring.SetString("RecurLast", today.ToStored());
    recurring.DeleteField(kPlacing);
    return SaveToFile(recurring);
}

// The number of the order that a killed run has stored for that due day; empty when there is none.
std::string PlacedUnnoted(const LProfile& profile, const LPOrder& recurring, const LDate& due) {
    const std::string_view note = recurring.GetView(kPlacing);
    const size_t blank = note.rfind(' ');
    if (blank == std::string_view::npos || note.substr(blank + 1) != due.ToStored()) return {};
    std::string id(note.substr(0, blank));
    LPOrder order;
    const bool isWhole = profile.Orders().Load(id, order) && order.TestFieldExists("Date") &&
                         order.GetItemCount() == recurring.GetItemCount();
    return isWhole ? id : std::string();
}

std::string Sentence(std::string_view start, std::string_view id, std::string_view end) {
    return std::string(start).append(id).append(end);
}

std::string NotRecorded(std::string_view templateId) {
    return Sentence("The recurring order ", templateId,
                    " could not be recorded. Please check its quantities and prices, and that the "
                    "disk is not full.");
}

// What the template wants done with a new order. Empty when that was done, else what to tell.
std::string Dispatch(const LProfile& profile, LOrderDispatch& dispatch, const LPOrder& recurring,
                     const std::string& orderId) {
    const int action = recurring.GetInt("RecurAction", kRecurJustRecord);
    if (action == kRecurJustRecord) return {};
    LPOrder order;
    LRecord supplier;
    const bool isThere = LRecordedPOrderList(profile).Open(order, orderId);
    // Without the supplier there is nobody to send to, but paper comes out all the same.
    if (!profile.List("Suppliers").Load(order.GetView("Supplier"), supplier)) supplier.Invalidate();
    constexpr std::string_view kStart = "Order ";
    switch (action) {
        case kRecurPrint:
            if (isThere && dispatch.Print(profile, order)) return {};
            return Sentence(kStart, orderId,
                            " may not have printed successfully.  Please open it manually to print "
                            "it.");
        case kRecurEmail:
            if (isThere && dispatch.Email(profile, order, supplier.GetView("Email"))) return {};
            return Sentence(kStart, orderId,
                            " may not have been emailed successfully.  Please open it manually to "
                            "send it.");
        case kRecurFax:
            if (isThere && dispatch.Fax(profile, order, supplier.GetView("Fax"))) return {};
            return Sentence(kStart, orderId,
                            " may not have been faxed successfully.  Please open it manually to "
                            "send it.");
        default:
            return {};
    }
}

// The periods of one template that are due at one moment, from the oldest.
class LCatchUp {
public:
    explicit LCatchUp(std::time_t now) : now_(now), today_(LDate::FromTime(now)) {}

    enum class LStep { kRecorded, kNothingDue, kFailed };
    // Places the next period's order. Under the movement lock, with the template as it is stored.
    LStep Record(const LProfile& profile, LPOrder& recurring, std::string& orderId);

    // Stopped with periods still due: the template then was run last when it was served last, so
    // that the next look goes on from there. Under the movement lock, as Record.
    void KeepPlace(LPOrder& recurring);

private:
    bool FindDue(const LPOrder& recurring);

    const std::time_t now_;
    const LDate today_;
    std::optional<LDate> served_;  // the due day that was placed last
    LDate due_;                    // the one to place
};

bool LCatchUp::FindDue(const LPOrder& recurring) {
    if (!served_) {
        const int64_t due = LRecurringOrderGetDueDate(recurring);
        due_ = LDate::FromTime(due);
        return IsDueAt(due, now_);
    }
    // Somebody changed it meanwhile: what is due now is for the next look to say.
    if (recurring.GetView("RecurLast") != today_.ToStored()) return false;
    const auto next =
        NextRecurringDay(*served_, recurring.GetInt("RecurInterval", kRecurIntervalDefault));
    due_ = next.value_or(today_);
    return next && IsDueAt(StartOfLocalDay(*next), now_);
}

LCatchUp::LStep LCatchUp::Record(const LProfile& profile, LPOrder& recurring,
                                 std::string& orderId) {
    if (!FindDue(recurring)) return LStep::kNothingDue;
    orderId = PlacedUnnoted(profile, recurring, due_);
    if (!orderId.empty()) {
        if (!NoteRun(recurring, today_)) return LStep::kFailed;
        served_ = due_;
        return LStep::kRecorded;
    }
    // The last period reaches up to today, where the next one will begin: no day is left out.
    const auto next =
        NextRecurringDay(due_, recurring.GetInt("RecurInterval", kRecurIntervalDefault));
    const bool isLast = !next || !IsDueAt(StartOfLocalDay(*next), now_);
    const LRecurringPeriod period{served_.value_or(PeriodStart(recurring, due_)),
                                  isLast ? today_ : due_, due_};
    if (!LRecurringOrderRecordFor(profile, recurring, today_, period, orderId)) {
        return LStep::kFailed;
    }
    served_ = due_;
    return LStep::kRecorded;
}

void LCatchUp::KeepPlace(LPOrder& recurring) {
    if (!served_ || !FindDue(recurring)) return;
    recurring.SetString("RecurLast", served_->ToStored());
    recurring.Flush();
}

void RunTemplate(LProcessInterface& process, LRecurringOrderRunAllData& data,
                 const std::string& id) {
    LCatchUp catchUp(data.now);
    while (!process.IsCancelled()) {
        LPOrder recurring;
        std::string orderId;
        LCatchUp::LStep step = LCatchUp::LStep::kNothingDue;
        {
            const LMovementLock lock(data.profile);
            if (!LRecurringPOrderList(data.profile).Open(recurring, id)) return;
            step = catchUp.Record(data.profile, recurring, orderId);
        }
        if (step == LCatchUp::LStep::kNothingDue) return;
        if (step == LCatchUp::LStep::kFailed) {
            data.result.failures.push_back(NotRecorded(id));
            return;
        }
        data.result.orderIds.push_back(orderId);
        std::string failure = Dispatch(data.profile, data.dispatch, recurring, orderId);
        if (!failure.empty()) data.result.failures.push_back(std::move(failure));
    }
    const LMovementLock lock(data.profile);
    LPOrder recurring;
    if (LRecurringPOrderList(data.profile).Open(recurring, id)) catchUp.KeepPlace(recurring);
}

std::vector<std::string> TemplateIds(const LProfile& profile) {
    std::vector<std::string> ids;
    LRecurringPOrderList(profile).ForEach([&ids](const LPOrder& recurring) {
        ids.push_back(recurring.GetPrimaryKey());
        return true;
    });
    return ids;
}

}  // namespace

void LRecurringOrderUpdateDescriptionAndPrice(const LProfile& profile, LPOrder& order,
                                              const LRecurringPeriod& period) {
    const bool replaceText = order.GetBool("RecurReplaceText", false);
    const bool updatePrices = order.GetBool("RecurUpdatePrices", false);
    const std::string text = period.from.ToStored() + " to " + period.to.ToStored();
    for (int line = 0; line < order.GetItemCount(); ++line) {
        if (replaceText) {
            order.SetItemDescription(line, WithPeriod(order.GetItemDescription(line), text));
        }
        if (updatePrices) TakeItemCost(profile, order, line);
    }
}

bool LRecurringOrderRecordFor(const LProfile& profile, LPOrder& recurring, const LDate& today,
                              const LRecurringPeriod& period, std::string& newId) {
    LPOrder made;
    if (!MakeOrder(profile, recurring, today, period, made)) return false;
    const LMovementLock lock(profile);
    LPOrder order;
    LOrderBeginRecorded(profile, order);
    newId = order.GetPrimaryKey();
    order.CopyRecord(made);
    const std::string lastRun = recurring.GetString("RecurLast");
    if (NotePlacing(recurring, newId, period.due) && SaveToFile(order)) {
        if (NoteRun(recurring, today)) return true;
        recurring.SetString("RecurLast", lastRun);
        recurring.ClearDirty();  // it still says so in its file
    }
    // An order whose template does not know of it would be placed again, every time. A note about
    // it may stay: no order gets its number any more.
    order.ClearDirty();
    order.Invalidate();
    LRecordedPOrderList(profile).Delete(newId);
    return false;
}

bool LRecurringOrderRecord(const LProfile& profile, LPOrder& recurring, std::string& newId) {
    const LDate today = LDate::Today();
    return LRecurringOrderRecordFor(profile, recurring, today,
                                    {PeriodStart(recurring, today), today, today}, newId);
}

bool LRecurringOrderTest(const LProfile& profile, std::time_t now) {
    bool isDue = false;
    LRecurringPOrderList(profile).ForEach([&](const LPOrder& recurring) {
        isDue = IsDueAt(LRecurringOrderGetDueDate(recurring), now);
        return !isDue;
    });
    return isDue;
}

bool Process(LProcessInterface& process, LRecurringOrderRunData& data) {
    process.SetStatus("Please wait...");
    LPOrder recurring;
    std::string orderId;
    bool isRecorded = false;
    {
        const LDate today = LDate::FromTime(data.now);
        const LMovementLock lock(data.profile);
        isRecorded =
            LRecurringPOrderList(data.profile).Open(recurring, data.templateId) &&
            LRecurringOrderRecordFor(data.profile, recurring, today,
                                     {PeriodStart(recurring, today), today, today}, orderId);
    }
    if (!isRecorded) {
        data.result.failures.push_back(NotRecorded(data.templateId));
        return false;
    }
    process.SetProgress(0.5);
    data.result.orderIds.push_back(orderId);
    std::string failure = Dispatch(data.profile, data.dispatch, recurring, orderId);
    if (!failure.empty()) data.result.failures.push_back(std::move(failure));
    process.SetProgress(1);
    return data.result.failures.empty();
}

bool Process(LProcessInterface& process, LRecurringOrderRunAllData& data) {
    process.SetStatus("Please wait...");
    const std::vector<std::string> ids = TemplateIds(data.profile);
    double done = 0;
    for (const std::string& id : ids) {
        if (process.IsCancelled()) return false;
        RunTemplate(process, data, id);
        process.SetProgress(++done / static_cast<double>(ids.size()));
    }
    return !process.IsCancelled() && data.result.failures.empty();
}
