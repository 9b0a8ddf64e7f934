#include "inventory/Locations.h"

#include <algorithm>
#include <set>

#include "datastore/NumberText.h"
#include "inventory/LItem.h"
#include "inventory/LocationRename.h"
#include "inventory/MasterRecordSteps.h"
#include "inventory/MovementLock.h"
#include "inventory/OrderReferences.h"
#include "inventory/StockQuantities.h"
#include "inventory/Transfers.h"
#include "platform/CaseFolding.h"

namespace {

using LLocationError = LFieldError<LLocationField>;

LLocationError Check(const LProfile& profile, const LLocation& location, std::string_view name) {
    if (name.empty()) {
        return LLocationError::At(LLocationField::kName, "Please enter the location name.");
    }
    // Another way of writing its own name takes no other location's.
    if (location.IsBound() && EqualIgnoringCase(location.GetView("Name"), name)) {
        return LLocationError::None();
    }
    LLocation other;
    if (!OpenLocation(LLocationList(profile), other, name)) return LLocationError::None();
    return LLocationError::At(LLocationField::kName,
                              "A location with the same name already exists.");
}

std::set<std::string> KeysOfName(const LProfile& profile, std::string_view name) {
    std::set<std::string> keys;
    LLocationList(profile).ForEach([&](const LLocation& location) {
        if (location.GetView("Name") == name) keys.insert(location.GetPrimaryKey());
        return true;
    });
    return keys;
}

bool IsKeptAtAny(const LItem& item, const std::set<std::string>& locations) {
    const LStockEntries entries =
        ParseLocationAndQuantities(item.GetView("LocationsAndQuantities"));
    return std::any_of(entries.begin(), entries.end(), [&](const LocationAndQuantities& entry) {
        return locations.count(entry.location) > 0;
    });
}

std::string DeleteRefusal(const LProfile& profile, const LLocation& location) {
    const std::string name = location.GetString("Name");
    if (!LLocationList::bExistInItems(profile, name) &&
        !LLocationList::bExistInOrders(profile, location) &&
        // What is on the way could neither arrive nor come back.
        !IsLocationOnOpenTransfer(profile, location.GetPrimaryKey())) {
        return {};
    }
    return "You can not delete location " + name +
           " because it may be referenced by items or orders";
}

}  // namespace

bool LLocationList::bExistInItems(const LProfile& profile, std::string_view name) {
    const std::set<std::string> keys = KeysOfName(profile, name);
    if (keys.empty()) return false;
    LItem item;
    const auto iterator = profile.Items().CreateIteratorBase(item);
    for (; item.IsBound(); iterator->Next(item)) {
        if (IsKeptAtAny(item, keys)) return true;
    }
    return false;
}

bool LLocationList::bExistInOrders(const LProfile& profile, const LLocation& location) {
    return IsLocationOnAnyOrder(profile, location.GetPrimaryKey());
}

bool OpenLocation(const LLocationList& list, LLocation& location, std::string_view name) {
    return OpenFirstNamed(list, location,
                          [&](std::string_view other) { return EqualIgnoringCase(other, name); });
}

LLocationError LLocationSave(LUserInterface& ui, const LProfile& profile, LLocation& location,
                             const LLocationInput& input) {
    const std::string_view name = TrimBlanks(input.name);
    // Until the new name is stored, no movement may add a row with the old one behind our back and
    // nobody else take the name.
    const LMovementLock lock(profile);
    // As it is now: the history bears the name that somebody may have given it since.
    const std::string key = location.GetPrimaryKey();
    if (!key.empty() && !LLocationList(profile).Open(location, key)) {
        return LLocationError::General("This location has been deleted in the meantime.");
    }
    LLocationError error = Check(profile, location, name);
    if (!error.IsNone()) return error;

    std::string failure;
    if (location.IsBound()) {
        const std::string oldName = location.GetString("Name");
        if (!LocationRecordsUpdateData(ui, profile, oldName, name, failure)) {
            return LLocationError::General(failure);
        }
    } else {
        LLocationList(profile).CreateNewRecord(location);
    }
    location.SetString("Name", name);
    location.SetString("Address", input.address);
    if (!location.Flush()) return LLocationError::General("The location could not be saved.");
    return LLocationError::None();
}

bool LLocationsDelete(LUserInterface& ui, const LProfile& profile,
                      const std::vector<std::string>& keys) {
    constexpr std::string_view kTitle = "Delete Locations";
    if (keys.empty() ||
        !AskDelete(ui, kTitle, "Are you sure you want to delete the selected location(s)?")) {
        return false;
    }
    return DeleteChosen(
        ui, profile, LLocationList(profile), kTitle, keys,
        [&](const LLocation& location) { return DeleteRefusal(profile, location); });
}
