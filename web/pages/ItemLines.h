// Lines of an item code and a quantity inside a dialog, as many as the person asks for: the
// components of a built item, the items of a transfer.
#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "datastore/LHashTable.h"
#include "datastore/LProfile.h"
#include "web/framework/LFormControls.h"

struct LItemLineText {
    std::string code, quantity;  // as typed
    std::string note = {};       // shown behind them
};

// The controls of a line: the code at `first` + 2 * line, the quantity behind it.
constexpr int ItemLineCode(int first, int line) { return first + 2 * line; }
constexpr int ItemLineQuantity(int first, int line) { return first + 2 * line + 1; }

// A table with the lines and some empty ones below them, and a button for more. Codes of all items
// are suggested.
void AddItemLines(LFormControls& form, LPageScript& script, const LProfile& profile, int first,
                  const std::vector<LItemLineText>& lines);
// What the controls hold, a line each; the empty ones at the end are left out.
std::vector<LItemLineText> ReadItemLines(const LHashTable& fields, int first);
void WriteItemLines(LHashTable& fields, int first, const std::vector<LItemLineText>& lines);
