// One stock-keeping unit of a business, and how it is found by the code a person types.
#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "datastore/LMoney.h"
#include "datastore/LProfile.h"
#include "datastore/LRecord.h"

// A record of the list "Items". Its key ("ID") never changes; its code is the field "Name", unique
// ignoring letter case. "Value" is the cost with "CostDigits", "Price" the selling price with
// "ValueDigits": the crossed names are the stored form.
class LItem : public LRecord {
public:
    LMoney Cost() const;
    LMoney Price() const;
    void SetCost(const LMoney& cost);
    void SetPrice(const LMoney& price);

    // Made from components ("BillOfMaterials" holds more than blanks): keeps no stock of its own.
    bool IsBuilt() const;
    // The name of the item's category; empty when there is none.
    void GetCategoryName(const LProfile& profile, std::string& out) const;
    // A built item's stock as its components allow it, in the stored form of
    // "LocationsAndQuantities". A bill that leads back to this item counts as no stock.
    void GetBOMLocationsAndQuantities(const LProfile& profile, std::string& out) const;
};

// The item's picture file: the path in "ImageFile", or where that is gone a file of the same name
// in the business's folder "Items". Empty when there is none.
std::string GetItemPictureFile(const LProfile& profile, const LItem& item);

// Finds the item whose code equals `code` exactly. Codes already met are found without a search;
// the cache behind it is shared by all threads and only ever a hint.
// False for an empty code; `item` is then unbound and empty.
[[nodiscard]] bool OpenItem(const LProfile& profile, LItem& item, std::string_view code);
// Whether any item bears `code`, ignoring case.
bool CheckItemExist(const LProfile& profile, std::string_view code);
bool CheckItemExist(const std::vector<std::string>& codes, std::string_view code);
void GetItemIndex(const LProfile& profile, std::vector<std::string>& codes);  // of all items
// The first location, in the store's order, that holds some of the item: its name in `out`, empty
// when there is none. `out` is untouched when no item has that code.
void GetFirstLocationForTheItem(const LProfile& profile, std::string_view code, std::string& out);

// Blanks, one optional sign, then digits with at most one "."; nothing behind. Lax on purpose: "/"
// passes as a digit, and so do bytes above 127 that look like one in their low seven bits.
bool CheckDouble(std::string_view text);
// A number typed with the profile's decimal and thousands symbols in the plain form that
// CheckDouble tests ("1.234,5" becomes "1234.5" where the comma is the decimal symbol); any other
// text as it is.
std::string ToPlainNumber(const LProfile& profile, std::string_view text);
