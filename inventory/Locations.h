// The places where stock is kept.
#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "datastore/LProfile.h"
#include "platform/LUserInterface.h"

// "Name"; "Address" (several lines). Items and orders hold a location's key, the movement history
// its name.
class LLocation : public LRecord {};
class LLocationList : public LAppDataBaseList<LLocation> {
public:
    explicit LLocationList(const LProfile& profile) : LAppDataBaseList(profile.Locations()) {}

    // Whether any item has an entry at a location of exactly this name.
    static bool bExistInItems(const LProfile& profile, std::string_view name);
    // Whether any purchase order goes there.
    static bool bExistInOrders(const LProfile& profile, const LLocation& location);
};

// The first one of that name, ignoring case, in the store's order.
[[nodiscard]] bool OpenLocation(const LLocationList& list, LLocation& location,
                                std::string_view name);

enum class LLocationField { kName };
struct LLocationInput {
    std::string name, address;
};
// Checks first; on an error nothing is saved. `location` is unbound for a new one and bound to its
// stored record otherwise; afterwards it is bound. An existing one has the history brought in line
// with its name first, under a progress title; a cancelled one is undone and not saved (an error
// without a message), likewise one whose history files cannot be changed.
LFieldError<LLocationField> LLocationSave(LUserInterface& ui, const LProfile& profile,
                                          LLocation& location, const LLocationInput& input);

// Asks, then deletes the locations of these keys; those that an item or order needs are refused
// with the reason and the others still deleted. True when at least one was deleted.
bool LLocationsDelete(LUserInterface& ui, const LProfile& profile,
                      const std::vector<std::string>& keys);
