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

// The day from which the template's next order counts: the period caught up last, its last run,
// else its start.
LDate PeriodStart(const LPOrder& recurring, const LDate& otherwise) {
    if (const auto served = LastServedDay(recurring)) return *served;
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
    order.DeleteField(kRecurServed);
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

bool NoteRun(LPOrder& recurring, const LDate& today, const LRecurringPeriod& period) {
    recurring.SetString("RecurLast", today.ToStored());
    recurring.DeleteField(kPlacing);
    recurring.DeleteField(kRecurServed);
    if (period.isMoreDue) NoteServedDay(recurring, period.due, today);
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

enum class LStep { kRecorded, kNothingDue, kFailed };

// Places the order of the oldest period that is due. Under the movement lock, with the template as
// it is stored: also another service may have placed the one before.
LStep RecordDue(const LProfile& profile, LPOrder& recurring, std::time_t now,
                std::string& orderId) {
    const int64_t dueTime = LRecurringOrderGetDueDate(recurring);
    if (!IsDueAt(dueTime, now)) return LStep::kNothingDue;
    const LDate today = LDate::FromTime(now);
    const LDate due = LDate::FromTime(dueTime);
    const auto next =
        NextRecurringDay(due, recurring.GetInt("RecurInterval", kRecurIntervalDefault));
    const bool isMoreDue = next && IsDueAt(StartOfLocalDay(*next), now);
    // The last period reaches up to today, where the next one will begin: no day is left out.
    const LRecurringPeriod period{PeriodStart(recurring, due), isMoreDue ? due : today, due,
                                  isMoreDue};
    orderId = PlacedUnnoted(profile, recurring, due);
    const bool isRecorded =
        orderId.empty() ? LRecurringOrderRecordFor(profile, recurring, today, period, orderId)
                        : NoteRun(recurring, today, period);
    return isRecorded ? LStep::kRecorded : LStep::kFailed;
}

void RunTemplate(LProcessInterface& process, LRecurringOrderRunAllData& data,
                 const std::string& id) {
    while (!process.IsCancelled()) {
        LPOrder recurring;
        std::string orderId;
        LStep step = LStep::kNothingDue;
        {
            const LMovementLock lock(data.profile);
            if (!LRecurringPOrderList(data.profile).Open(recurring, id)) return;
            step = RecordDue(data.profile, recurring, data.now, orderId);
        }
        if (step == LStep::kNothingDue) return;
        if (step == LStep::kFailed) {
            data.result.failures.push_back(NotRecorded(id));
            return;
        }
        data.result.orderIds.push_back(orderId);
        std::string failure = Dispatch(data.profile, data.dispatch, recurring, orderId);
        if (!failure.empty()) data.result.failures.push_back(std::move(failure));
    }
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
    const std::string lastServed = recurring.GetString(kRecurServed);
    if (NotePlacing(recurring, newId, period.due) && SaveToFile(order)) {
        if (NoteRun(recurring, today, period)) return true;
        recurring.SetString("RecurLast", lastRun);
        recurring.SetString(kRecurServed, lastServed);
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
