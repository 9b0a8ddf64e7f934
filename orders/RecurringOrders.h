// Placing the orders that recurring templates stand for, when they fall due.
#pragma once

#include <ctime>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "datastore/LDate.h"
#include "datastore/LProfile.h"
#include "orders/LOrderDispatch.h"
#include "orders/LPOrder.h"
#include "platform/LUserInterface.h"

// What one order of a template stands for.
struct LRecurringPeriod {
    LDate from, to;          // the days that "%period%" in a description names
    LDate due;               // the due day that it serves; another day when it is run out of turn
    bool isMoreDue = false;  // the template falls due again after `due`, not after the run
};

// Makes the recorded order of a template as of today: a copy with today's dates, its options
// applied, its totals by present tax rates; then the template was run last today, and is saved.
// False, and no order, when its totals do not fit or a file could not be written. `recurring` is
// bound to its stored record; who has to be sure that nobody else runs it at the same time holds
// the movement lock and has read it under that.
[[nodiscard]] bool LRecurringOrderRecord(const LProfile& profile, LPOrder& recurring,
                                         std::string& newId);
// The same on another day and for a period of its own, as catching up needs it.
[[nodiscard]] bool LRecurringOrderRecordFor(const LProfile& profile, LPOrder& recurring,
                                            const LDate& today, const LRecurringPeriod& period,
                                            std::string& newId);

// Applies "RecurReplaceText" and "RecurUpdatePrices" to an order that has all fields of its
// template; it is not saved.
void LRecurringOrderUpdateDescriptionAndPrice(const LProfile& profile, LPOrder& order,
                                              const LRecurringPeriod& period);

// Whether any template is due.
bool LRecurringOrderTest(const LProfile& profile, std::time_t now = std::time(nullptr));

// --- As processes. They take the movement lock for each order and dispatch it without. ---

inline constexpr char kRunRecurringTitle[] = "Run Recurring Orders";

struct LRecurringOrderRunResult {
    std::vector<std::string> orderIds;  // as placed
    std::vector<std::string> failures;  // sentences for the user
};

// Runs one template now, whether it is due or not.
struct LRecurringOrderRunData {
    const LProfile& profile;
    LOrderDispatch& dispatch;
    std::string templateId;
    std::time_t now = std::time(nullptr);
    LRecurringOrderRunResult result = {};
};
// Runs all that are due, each once for every period that it has missed. A period is placed once,
// however many services look for it at the same time: each run reads the template anew, and who
// comes second finds it served: the field "RecurServed" of the template says up to where, so that
// also who was stopped or killed between two periods goes on with the next. Also when a run was
// killed between the order and its template: the field "RecurPlacing" of the template, there only
// meanwhile, says number and due day of the order ("10000 2026-01-05"), which is then taken as this
// period's and sent out.
struct LRecurringOrderRunAllData {
    const LProfile& profile;
    LOrderDispatch& dispatch;
    std::time_t now = std::time(nullptr);
    LRecurringOrderRunResult result = {};
};
// True when all went well; false when it was cancelled or something failed.
bool Process(LProcessInterface& process, LRecurringOrderRunData& data);
bool Process(LProcessInterface& process, LRecurringOrderRunAllData& data);

// Runs one of them under its title and tells what failed.
template <typename RunData>
bool RunRecurringOrders(LUserInterface& ui, RunData& data) {
    const bool isDone = ui.RunProcess(
        kRunRecurringTitle, [&data](LProcessInterface& process) { return Process(process, data); });
    for (const std::string& failure : data.result.failures) ui.Inform(kRunRecurringTitle, failure);
    return isDone;
}
