// Deleting rows of an item list: an item goes with its last location, and only when nothing needs
// it.
#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "datastore/LProfile.h"
#include "platform/LUserInterface.h"

struct LItemListRow {
    std::string code, locationName;
};

// Asks, then removes each selected item from its row's location, and the record and its picture
// with the last one. Stops at the first item that is a component of another, or whose last location
// goes while it is on an order or in the history (it stays, without the location); it says why.
// Rows whose item is gone already are passed over. False when the question was not answered with
// "Delete" or it stopped.
bool LItemsDelete(LUserInterface& ui, const LProfile& profile,
                  const std::vector<LItemListRow>& rows);

// The same from the separate item list window: looks at the orders only, and before a location is
// removed; the picture file stays.
bool LItemsDeleteFromItemList(LUserInterface& ui, const LProfile& profile,
                              const std::vector<LItemListRow>& rows);

// The code that an item of that key had when it was deleted while the history named it or may have;
// empty when nobody knows.
std::string DeletedItemCode(const LProfile& profile, std::string_view itemId);
