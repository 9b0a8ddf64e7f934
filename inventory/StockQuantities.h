// What is in stock where, and the one operation that changes it.
#pragma once

#include <functional>
#include <list>
#include <map>
#include <string>
#include <string_view>
#include <vector>

#include "datastore/LProfile.h"
#include "inventory/LItem.h"
#include "inventory/LNameMap.h"

enum eItemQuantity { kItemQuantityInStock = 0, kItemQuantityIdeal = 1, kItemQuantityWarn = 2 };

// One entry of an item's "LocationsAndQuantities".
struct LocationAndQuantities {
    std::string location;  // the key of a record of "Locations"
    double quantity = 0;
    double warnQuantity = 0;   // at or below this the item is low here
    double idealQuantity = 0;  // 0: not watched for low stock
};
using LStockEntries = std::vector<LocationAndQuantities>;
using ItemLocations = std::list<LocationAndQuantities>;

// Reads the stored form: elements in double quotes, each followed by a comma, values separated by
// "/". Unreadable numbers are 0, missing pieces empty; every element gives an entry.
LStockEntries ParseLocationAndQuantities(std::string_view text);
// Writes it with the profile's number of decimals.
std::string FormatLocationAndQuantities(const LProfile& profile, const LStockEntries& entries);

// Adds to the entry of that location, or puts a new one at the front; an empty location is ignored.
void StoreLocationQuantity(ItemLocations& list, std::string_view location, double quantity,
                           double warn, double ideal);
void GetLocationQuantityString(const LProfile& profile, const ItemLocations& list,
                               std::string& out);

// Quantities added up by location, for totals over many items.
class LLocationsQuantities {
public:
    // Adds to the three numbers of that location, or puts them in for a new one.
    void SetQuantities(std::string_view location, double quantity, double warn, double ideal);
    const LocationAndQuantities* Find(std::string_view location) const;  // null when not there
    auto begin() const { return byLocation_.begin(); }                   // sorted by location
    auto end() const { return byLocation_.end(); }

private:
    std::map<std::string, LocationAndQuantities, std::less<>> byLocation_;
};

// The quantity of `item` at the location named `locationName` (letter case counts) that `which`
// selects, in the item's unit of measure. May be negative; 0 when the item is not kept there. A
// built item's are derived from its components.
double GetQuantityInStock(const LProfile& profile, const LItem& item, std::string_view locationName,
                          eItemQuantity which);
double GetItemsInStock(const LProfile& profile, const LItem& item, std::string_view locationName);

// What lies where: the item's own entries in stored order, or those that its components allow.
LStockEntries GetStockEntries(const LProfile& profile, const LItem& item);

// Adds `delta` (item's unit; negative takes out) to the stock of `item` at the location of that
// name and saves the item. Letter case counts in the name where the item is kept there; a first
// stock at a location finds it ignoring case. With `allowNegative` false, taking out more than is
// there is refused; so are a `locationName` that names no location, an item that was deleted
// meanwhile and a `delta` that is no finite number. A built item has no stock of its own: its
// components change, all or none; a missing component or a bill that leads back to the item refuses
// the change. Returns false when refused, and when a new item could not be saved; stored stock and
// flags are then as before. A save that finds no room on the disk counts as done, as everywhere in
// the store; one whose component cannot be read any more leaves those before it changed.
//
// The change is made on the newest stored quantities under the business's movement lock, so
// concurrent changes of one item add up exactly, however old `item` is. Other fields of `item` that
// were changed and not saved yet are kept and saved with it; unsaved stock fields are replaced. One
// thread at a time per `item`. Reads the item once more than is needed where the caller opened it
// only for this: the second form does not.
[[nodiscard]] bool LItemChangeQuantity(const LProfile& profile, LItem& item, double delta,
                                       std::string_view locationName, bool allowNegative);
// The same for the item of that key. False when there is none.
[[nodiscard]] bool LItemChangeQuantityById(const LProfile& profile, std::string_view itemId,
                                           double delta, std::string_view locationName,
                                           bool allowNegative);

// Sets a field so that the next save writes it, also when the record in memory holds that value
// already: memory may be older than the store, and the merge would keep what the store has.
void OverwriteField(LRecord& record, std::string_view name, std::string_view value);
// The fields that describe stock, from entries: the list itself and the totals over it.
enum class LStockTotals { kQuantityOnly, kAll };
void SetStockFields(const LProfile& profile, LItem& item, const LStockEntries& entries,
                    LStockTotals totals);
