// The short lists of texts for drop-downs: "ShipBy" (shipping methods), "UnitMeasure" (units of
// measure) and "SalesPerson" (salespeople). A record's key is the text itself.
#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "datastore/LProfile.h"
#include "platform/LUserInterface.h"

// The entries in alphabetical order, ignoring case.
std::vector<std::string> GetNameList(const LProfile& profile, std::string_view listName);
// Adds the text without blanks at its ends; an empty text or one that is there already (letter case
// counts) changes nothing.
void AddToNameList(const LProfile& profile, std::string_view listName, std::string_view text);
// Asks, then deletes the entries, whether they are in use or not. True when at least one was
// deleted.
bool LNameListDelete(LUserInterface& ui, const LProfile& profile, std::string_view listName,
                     const std::vector<std::string>& entries);
