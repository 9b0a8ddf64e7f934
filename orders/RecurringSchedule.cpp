#include "orders/RecurringSchedule.h"

#include "orders/LPOrderList.h"

namespace {

constexpr int kWeekSeconds = 604800;
constexpr int kQuarterHour = 900;
constexpr int kMonthEndFrom = 28;  // from this day on a run keeps to the month's end

// By interval; 0 where the step is in weeks.
constexpr std::array<int, kRecurIntervals.size()> kMonthSteps{0, 0, 1, 2, 3, 6, 12, 24};
// February never has 29: a run on that day would be one more rule for nothing.
constexpr std::array<int, 12> kMonthDays{31, 28, 31, 30, 31, 30, 31, 31, 30, 31, 30, 31};

int64_t LocalTime(const LDate& date, int hour) {
    std::tm parts{};
    parts.tm_year = date.year - 1900;
    parts.tm_mon = date.month - 1;
    parts.tm_mday = date.day;
    parts.tm_hour = hour;
    parts.tm_isdst = -1;
    return std::mktime(&parts);
}

// From noon, so that a clock change on the way does not reach another day.
LDate WeeksAfter(const LDate& last, int weeks) {
    return LDate::FromTime(LocalTime(last, 12) + weeks * kWeekSeconds);
}

std::optional<LDate> MonthsAfter(const LDate& last, int months) {
    const int month = last.month - 1 + months;
    LDate next{last.year + month / 12, month % 12 + 1, last.day};
    if (last.day >= kMonthEndFrom) next.day = kMonthDays[static_cast<size_t>(next.month - 1)];
    return LDate::Make(next.year, next.month, next.day);
}

}  // namespace

int64_t LRecurringOrderGetDueDate(const LPOrder& recurring) {
    const std::string_view lastText = recurring.GetView("RecurLast");
    std::optional<LDate> due;
    if (lastText.empty()) {
        due = LDate::FromStored(recurring.GetView("RecurStart"));
    } else if (const std::optional<LDate> last = LDate::FromStored(lastText)) {
        due = NextRecurringDay(LastServedDay(recurring).value_or(*last),
                               recurring.GetInt("RecurInterval", kRecurIntervalDefault));
    }
    return due ? StartOfLocalDay(*due) : kNeverDue;
}

std::optional<LDate> LastServedDay(const LPOrder& recurring) {
    const std::string_view note = recurring.GetView(kRecurServed);
    const size_t blank = note.find(' ');
    if (blank == std::string_view::npos) return std::nullopt;
    if (note.substr(blank + 1) != recurring.GetView("RecurLast")) return std::nullopt;
    return LDate::FromStored(note.substr(0, blank));
}

void NoteServedDay(LPOrder& recurring, const LDate& served, const LDate& today) {
    recurring.SetString(kRecurServed, served.ToStored() + " " + today.ToStored());
}

std::optional<LDate> NextRecurringDay(const LDate& last, int interval) {
    if (interval < 0 || interval >= static_cast<int>(kMonthSteps.size())) return std::nullopt;
    const int months = kMonthSteps[static_cast<size_t>(interval)];
    return months == 0 ? WeeksAfter(last, interval + 1) : MonthsAfter(last, months);
}

int64_t StartOfLocalDay(const LDate& date) {
    int64_t time = LocalTime(date, 0);
    // Where midnight does not exist the system may name a moment of the day before.
    while (LDate::FromTime(time) < date) time += kQuarterHour;
    return time;
}

LRecurringScheduleInput LRecurringScheduleOf(const LPOrder& recurring) {
    LRecurringScheduleInput input;
    input.start = LDate::FromStored(recurring.GetView("RecurStart")).value_or(LDate::Today());
    input.interval = recurring.GetInt("RecurInterval", kRecurIntervalDefault);
    input.action = recurring.GetInt("RecurAction", kRecurJustRecord);
    input.replaceText = recurring.GetBool("RecurReplaceText", false);
    input.updatePrices = recurring.GetBool("RecurUpdatePrices", false);
    return input;
}

bool LRecurringScheduleSave(LPOrder& recurring, const LRecurringScheduleInput& input) {
    recurring.SetString("RecurStart", input.start.ToStored());
    recurring.SetInt("RecurInterval", input.interval);
    recurring.SetInt("RecurAction", input.action);
    recurring.SetBool("RecurReplaceText", input.replaceText);
    recurring.SetBool("RecurUpdatePrices", input.updatePrices);
    return recurring.Flush();
}

bool LRecurringOrderMake(const LProfile& profile, const LPOrder& order,
                         const LRecurringScheduleInput& input, std::string& newId) {
    LPOrder recurring;
    if (!LOrderCreateRecurring(profile, recurring)) return false;
    newId = recurring.GetPrimaryKey();
    recurring.CopyRecord(order);
    recurring.SetBool("IsDraft", false);
    recurring.SetStockReceivedStatus(StockNotReceived);
    recurring.SetString("RecurLast", "");  // of the template that the order came from, if any
    return LRecurringScheduleSave(recurring, input);
}
