// What an order's editor does with what was entered: keep it as a draft, record it, make it a
// recurring template, or give it up.
#pragma once

#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "datastore/LMoney.h"
#include "datastore/LProfile.h"
#include "orders/OrderInput.h"
#include "platform/LUserInterface.h"

// Each checks first and asks what is to be asked; on an error nothing is saved. Then, under the
// movement lock and on the order as it is stored at that moment, new suppliers and items are made
// and the order is saved with its totals. `input.id` is then the saved order's number. Someone who
// recorded or deleted the order meanwhile is told of; nothing is saved twice.

// Into the draft of that number; anything else becomes a new draft, and the order that it was made
// from stays. Lines whose items are not there yet only get them once the draft is saved again.
LOrderError LOrderEditorSaveDraft(const LProfile& profile, LOrderInput& input);
// Records a new order or a draft, makes an order of a template, saves a recorded one again.
LOrderError LOrderEditorRecord(LUserInterface& ui, const LProfile& profile, LOrderInput& input);
// Into the template of that number; anything else becomes a new template.
LOrderError LOrderEditorSaveRecurring(LUserInterface& ui, const LProfile& profile,
                                      LOrderInput& input);

// Asks what is to become of an order that was changed; "Save" keeps it as a draft. True when the
// editor may close. `error` says why a draft could not be saved.
bool LOrderEditorCancel(LUserInterface& ui, const LProfile& profile, LOrderInput& input,
                        LOrderError& error);

// What the order would come to as it is entered now. Nothing is stored; no question: where rates
// have changed, old ones are kept until it was asked. Nothing when a number cannot be read or an
// amount does not fit.
struct LOrderShownTotals {
    LMoney subTotal, total;
    std::vector<std::pair<std::string, LMoney>> taxes;  // sorted by name; nameless ones left out
    std::vector<std::pair<int, LMoney>> lines;          // index of the input line, what it comes to
};
std::optional<LOrderShownTotals> LOrderEditorTotals(const LProfile& profile,
                                                    const LOrderInput& input);
