// When a recurring template falls due. The schedule stands in fields of the template:
//   "RecurStart"        date of the first order
//   "RecurInterval"     index into kRecurIntervals, 2 when missing
//   "RecurAction"       index into kRecurActions, 0 when missing
//   "RecurReplaceText"  on: "%period%" in line descriptions becomes dates
//   "RecurUpdatePrices" on: the lines' unit costs are those that the items have by then
//   "RecurLast"         date of the last run; empty before the first
//   "RecurServed"       there only while missed periods are caught up: the due day served last and
//                       the day of that run ("2026-01-12 2026-02-04")
#pragma once

#include <array>
#include <cstdint>
#include <ctime>
#include <optional>
#include <string>
#include <string_view>

#include "datastore/LDate.h"
#include "datastore/LProfile.h"
#include "orders/LPOrder.h"

inline constexpr std::array<std::string_view, 8> kRecurIntervals{
    "Weekly",    "Fortnightly", "Monthly",  "Bimonthly",
    "Quarterly", "6 Monthly",   "Annually", "2 Years"};
inline constexpr int kRecurIntervalDefault = 2;

enum LRecurAction { kRecurJustRecord = 0, kRecurPrint = 1, kRecurEmail = 2, kRecurFax = 3 };
// What the schedule's form offers; sending a fax is only met in templates that ask for it already.
inline constexpr std::array<std::string_view, 3> kRecurActions{"Just record", "Print",
                                                               "Send by e-mail"};

// Seconds since the epoch of the next due time, a local midnight. It follows the last run or, in
// the middle of catching up, the due day served last.
int64_t LRecurringOrderGetDueDate(const LPOrder& recurring);
inline constexpr std::string_view kRecurServed = "RecurServed";
inline constexpr int64_t kNeverDue = 2147483647;
inline bool IsDueAt(int64_t due, std::time_t now) { return due != kNeverDue && due <= now; }

// The due day that was served last when more are to be caught up. Nothing when none are, also where
// the template was run later, or set back by hand.
std::optional<LDate> LastServedDay(const LPOrder& recurring);
// To be stored together with "RecurLast", which is then `today`.
void NoteServedDay(LPOrder& recurring, const LDate& served, const LDate& today);

// The day that follows a run on `last`: 7 or 14 days later, or so many months; from the 28th on it
// is the last day of the target month, which in February is always the 28th. Nothing for an
// interval that is none.
std::optional<LDate> NextRecurringDay(const LDate& last, int interval);
// The first moment of a local day, also where a clock change skips midnight.
int64_t StartOfLocalDay(const LDate& date);

struct LRecurringScheduleInput {
    LDate start;
    int interval = kRecurIntervalDefault;
    int action = kRecurJustRecord;
    bool replaceText = false, updatePrices = false;
};
LRecurringScheduleInput LRecurringScheduleOf(const LPOrder& recurring);
// Stores it in the template and saves. False when it could not be saved.
[[nodiscard]] bool LRecurringScheduleSave(LPOrder& recurring, const LRecurringScheduleInput& input);
// Makes a new template of a stored order, which stays as it is, with this schedule. False when it
// could not be saved.
[[nodiscard]] bool LRecurringOrderMake(const LProfile& profile, const LPOrder& order,
                                       const LRecurringScheduleInput& input, std::string& newId);
