#include "orders/OrderEditor.h"

#include <algorithm>

#include "inventory/MovementLock.h"
#include "orders/LPOrderList.h"
#include "orders/OrderRecording.h"
#include "orders/OrderWriter.h"

namespace {

LOrderError General(std::string message) {
    LOrderError error;
    static_cast<LFieldError<LOrderField>&>(error) =
        LFieldError<LOrderField>::General(std::move(message));
    return error;
}

LOrderError NotSaved() { return General("The order could not be saved."); }

LOrderError Gone() { return General("This order has been recorded or deleted in the meantime."); }

// The order as it is stored now; unbound for a new one, or where it is gone.
void OpenStored(const LProfile& profile, const LOrderInput& input, LPOrder& order) {
    if (input.id.empty() || !LPOrderOpen(profile, order, input.id)) order.Invalidate();
}

// Asked at most once in one editing, before anything is locked.
LTaxRates AskTaxRates(LUserInterface& ui, const LProfile& profile, LOrderInput& input) {
    if (!input.taxRates) {
        LPOrder stored;
        OpenStored(profile, input, stored);
        const LTaxOptions options(profile);
        if (!stored.IsBound() || !LInvIsTaxRateChanged(options, stored)) return LTaxRates::kPresent;
        input.taxRates = LOrderAskTaxRates(ui, options, stored);
    }
    return *input.taxRates;
}

int StatusOf(const LProfile& profile, const LOrderInput& input) {
    LPOrder stored;
    OpenStored(profile, input, stored);
    return stored.GetStockReceivedStatus();
}

// `newIn` is the list in which the order was made just now, null when it was there before.
LOrderError Abandon(LPOrder& order, const LFileStoreListBase* newIn) {
    const std::string id = order.GetPrimaryKey();
    order.Invalidate();
    if (newIn != nullptr) newIn->Delete(id);
    return NotSaved();
}

enum class LOrderKind { kDraft, kRecurring };

// Saves into the order of that number where the list has it, else into a new one.
LOrderError SaveAs(const LProfile& profile, LOrderInput& input, const LOrderRead& read,
                   LOrderKind kind, LTaxRates rates) {
    const LMovementLock lock(profile);
    const bool isDraft = kind == LOrderKind::kDraft;
    const LFileStoreListBase& list = isDraft ? profile.OrdersDrafts() : profile.OrdersRecurring();
    LPOrder order;
    const bool isNew = input.id.empty() || !list.Open(order, input.id);
    LOrderWriter writer(profile, input, read, isNew ? LTaxRates::kPresent : rates);
    LOrderError error = writer.Check(order);
    if (!error.IsNone()) return error;
    const auto create = isDraft ? LOrderCreateDraft : LOrderCreateRecurring;
    if (isNew && !create(profile, order)) return NotSaved();
    const bool makesItems = !isDraft || !isNew;
    if (!writer.Write(order, makesItems ? LNewItems::kMake : LNewItems::kLater)) {
        return Abandon(order, isNew ? &list : nullptr);
    }
    order.SetBool("IsDraft", isDraft);
    order.Flush();
    input.id = order.GetPrimaryKey();
    return {};
}

// The stored order that is about to be recorded; a new one begins as a draft.
LOrderError OpenToRecord(const LProfile& profile, const LOrderInput& input, int seenStatus,
                         LPOrder& order) {
    OpenStored(profile, input, order);
    if (!order.IsBound() && !input.id.empty()) return Gone();
    if (order.IsBound() && order.GetStockReceivedStatus() != seenStatus) {
        return General(
            "Stock has been received for this order in the meantime. Look at it again before you "
            "record it.");
    }
    return {};
}

LOrderError Record(const LProfile& profile, LOrderInput& input, const LOrderRead& read,
                   LTaxRates rates, int seenStatus) {
    const LMovementLock lock(profile);
    LPOrder order;
    LOrderError error = OpenToRecord(profile, input, seenStatus, order);
    LOrderWriter writer(profile, input, read, rates);
    if (error.IsNone()) error = writer.Check(order);
    if (!error.IsNone()) return error;
    const bool isNew = !order.IsBound();
    if (isNew && !LOrderCreateDraft(profile, order)) return NotSaved();
    if (isNew) order.SetBool("IsDraft", true);
    if (!order.GetBool("IsDraft", false)) {
        LOrderChangeQuantity(profile, order, LOrderQuantities::kTakeBack);
    }
    if (!writer.Write(order, LNewItems::kMake)) {
        return Abandon(order, isNew ? &profile.OrdersDrafts() : nullptr);
    }
    input.id = order.GetPrimaryKey();  // a draft that could not be recorded is still there
    order.Invalidate();
    if (!LOrderRecord(profile, input.id) || !LPOrderOpen(profile, order, input.id)) {
        return NotSaved();
    }
    LOrderChangeQuantity(profile, order, LOrderQuantities::kAdd);
    order.SetBool("IsDraft", false);
    order.Flush();
    return {};
}

}  // namespace

LOrderError LOrderEditorSaveDraft(const LProfile& profile, LOrderInput& input) {
    LOrderRead read;
    LOrderError error = LOrderReadInput(profile, input, read);
    if (!error.IsNone()) return error;
    return SaveAs(profile, input, read, LOrderKind::kDraft, LTaxRates::kPresent);
}

LOrderError LOrderEditorRecord(LUserInterface& ui, const LProfile& profile, LOrderInput& input) {
    const int seenStatus = StatusOf(profile, input);
    LOrderRead read;
    LOrderError error = LOrderValidate(ui, profile, input, read);
    if (!error.IsNone()) return error;
    const LTaxRates rates = AskTaxRates(ui, profile, input);
    return Record(profile, input, read, rates, seenStatus);
}

LOrderError LOrderEditorSaveRecurring(LUserInterface& ui, const LProfile& profile,
                                      LOrderInput& input) {
    LOrderRead read;
    LOrderError error = LOrderValidate(ui, profile, input, read);
    if (!error.IsNone()) return error;
    const LTaxRates rates = AskTaxRates(ui, profile, input);
    return SaveAs(profile, input, read, LOrderKind::kRecurring, rates);
}

bool LOrderEditorCancel(LUserInterface& ui, const LProfile& profile, LOrderInput& input,
                        LOrderError& error) {
    const std::string answer =
        ui.Ask("Purchase Order", "Do you want to save this order as a draft?",
               {"Save", "Discard", "Cancel"});
    if (answer == "Discard") return true;
    if (answer != "Save") return false;
    error = LOrderEditorSaveDraft(profile, input);
    return error.IsNone();
}

std::optional<LOrderShownTotals> LOrderEditorTotals(const LProfile& profile,
                                                    const LOrderInput& input) {
    LOrderRead read;
    if (!LOrderReadInput(profile, input, read).IsNone()) return std::nullopt;
    LPOrder stored, order;
    OpenStored(profile, input, stored);
    const LTaxRates kept =
        stored.IsBound() ? LOrderKeptTaxRates(LTaxOptions(profile), stored) : LTaxRates::kPresent;
    const LTaxRates rates = input.taxRates.value_or(kept);
    if (!LOrderWriter(profile, input, read, rates).Compute(stored, order)) return std::nullopt;

    const int digits = order.GetTotalDigits(profile);
    LOrderShownTotals shown{
        {order.CalculateSubTotal(profile), digits}, {order.GetTotal(), digits}, {}, {}};
    for (int number = 1; number <= order.GetTaxAmountCount(); ++number) {
        std::string name = order.GetTaxAmountName(number);
        if (name.empty()) continue;
        shown.taxes.emplace_back(std::move(name), LMoney{order.GetTaxAmount(number), digits});
    }
    std::sort(shown.taxes.begin(), shown.taxes.end(),
              [](const auto& left, const auto& right) { return left.first < right.first; });
    int line = 0;
    for (const LOrderReadLine& readLine : read.lines) {
        const LMoney cost = order.GetItemUnitCost(profile, line++);
        shown.lines.emplace_back(readLine.inputLine, LineAmount(readLine.quantity, cost));
    }
    return shown;
}
