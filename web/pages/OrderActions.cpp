#include "web/pages/OrderActions.h"

#include <string>
#include <vector>

#include "datastore/StoredNumbers.h"
#include "inventory/MasterRecords.h"
#include "orders/OrderEditor.h"
#include "orders/OrderItems.h"
#include "orders/OrderReceiving.h"
#include "orders/OrderRecording.h"
#include "web/accounts/PageCheck.h"
#include "web/framework/LWebUserInterface.h"
#include "web/framework/PageTargets.h"
#include "web/pages/LTextAnswer.h"
#include "web/pages/OrderForm.h"

namespace {

constexpr char kList[] = "orderlist";

using LOrderCommand = bool (*)(LUserInterface& ui, const LProfile& profile,
                               const std::string& orderId, int seenStatus);

void RunCommand(LWebletForm& form, LOrderCommand command) {
    if (!AuthenticateAction(form)) return;
    if (!WLMayChange(form)) return WLRedirect(form, kList);
    LWebUserInterface ui(form);
    command(ui, form.Profile(), form.Parameter("id"), ParseStoredInt(form.Parameter("status")));
    ui.Finish(kList);
}

// A name must not look like the end of its field.
std::string WithoutTabs(std::string text) {
    for (char& byte : text) {
        if (byte == '\t' || byte == '\n' || byte == '\r') byte = ' ';
    }
    return text;
}

std::vector<std::string> TotalsAnswer(const LProfile& profile, const LOrderShownTotals& totals) {
    std::vector<std::string> answer;
    const auto add = [&](std::string_view kind, std::string name, const LMoney& amount) {
        answer.push_back(std::string(kind) + "\t" + WithoutTabs(std::move(name)) + "\t" +
                         profile.FormatMoney(amount));
    };
    for (const auto& [line, amount] : totals.lines) add("line", std::to_string(line), amount);
    add("row", "Subtotal", totals.subTotal);
    for (const auto& [name, amount] : totals.taxes) add("row", name, amount);
    add("row", "Total", totals.total);
    return answer;
}

}  // namespace

void WLOrderDelete(LWebletForm& form) {
    RunCommand(form, [](LUserInterface& ui, const LProfile& profile, const std::string& id, int) {
        return LOrdersDelete(ui, profile, {id});
    });
}

void WLOrderReceive(LWebletForm& form) { RunCommand(form, LOrderReceiveCommand); }

void WLOrderReturn(LWebletForm& form) { RunCommand(form, LOrderReturnCommand); }

void WLOrderRegItems(LWebletForm& form) {
    if (!AuthenticateAction(form)) return;
    if (!WLMayChange(form) || !form.IsPost()) return WLRedirect(form, kList);
    LWebUserInterface ui(form);
    const std::string id = form.Parameter("id");
    const int made = LOrderRegisterItems(form.Profile(), id);
    if (made < 0) {
        ui.Inform("Items of the order", "There is no such order any more.");
        return ui.Finish(kList);
    }
    ui.Inform("Items of the order", made == 1 ? std::string("1 item was made.")
                                              : std::to_string(made) + " items were made.");
    ui.Finish(WLMakeLink("orderprop", {{"id", id}}));
}

void VWAJAXOCBTaxSelChange(LWebletForm& form) {
    if (!AuthenticateAction(form)) return;
    const LOrderInput input = OrderInputFrom(form.Parameters(), form.Parameter("order"));
    const auto totals = LOrderEditorTotals(form.Profile(), input);
    LTextAnswer(form, totals ? TotalsAnswer(form.Profile(), *totals)
                             : std::vector<std::string>{"row\tTotal\t\u2013"})
        .Open();
}

void WLUseOldTaxRate(LWebletForm& form) { VWAJAXOCBTaxSelChange(form); }

void VWAJAXOderLocationChange(LWebletForm& form) {
    if (!AuthenticateAction(form)) return;
    LLocation location;
    std::vector<std::string> lines;
    if (LLocationList(form.Profile()).Open(location, form.Parameter("id"))) {
        lines.push_back(location.GetString("Address"));
    }
    LTextAnswer(form, lines).Open();
}
