// What a person may enter for an item, and the checks in their order.
#pragma once

#include <optional>
#include <string>
#include <vector>

#include "datastore/LProfile.h"
#include "inventory/LItem.h"
#include "platform/LUserInterface.h"

enum class LItemField {
    kCode,
    kDescription,
    kCost,
    kPrice,
    kCategory,
    kSubCategory,
    kMeasure,
    kComponents,
    kLocations
};
using LItemError = LFieldError<LItemField>;

// The general part of the item form, as typed.
struct LItemInput {
    std::string id;  // empty: a new item (or a copy)
    std::string code, description, cost, price;
    int taxIndex = 0;
    std::string webSite, measure, notes, category, subCategory;
    bool isBuilt = false;
    std::string billOfMaterials;  // stored form of the component list
    std::string customField1, customField2;
};

// One row of the form's stock table; numbers in the item's unit.
struct LItemLocationRow {
    std::string locationName;  // empty: the first location
    double quantity = 0, idealQuantity = 0, warnQuantity = 0;
};
struct LItemStockInput {
    bool wantsWarningEmail = false;
    std::string supplier, supplierId;
    std::vector<LItemLocationRow> rows;
};

// Checks and stores the general part; `item` is bound to the stored record afterwards. The first
// failure stops it and names the field; `item` is then as before. The unit of measure, the category
// and the sub-category are made as soon as they are reached, even when a later check fails. Blanks
// around code, category, sub-category, measure and custom fields are dropped. `notice`, when given,
// gets what the person should be told after a save that succeeded: which bills of materials still
// name the old code of a renamed item. It is empty otherwise.
LItemError LItemSaveGeneral(const LProfile& profile, LItem& item, const LItemInput& input,
                            std::string* notice = nullptr);
// Only checks, in the same order and words, and changes nothing: for a form that saves later.
LItemError LItemCheckGeneral(const LProfile& profile, const LItemInput& input);
// Stores supplier, warning flag and stock of a saved item; refuses a row whose location is unknown
// and saves nothing then. The rows say what is there from now on, whatever was stored meanwhile;
// those of one location are added together, and none at all means nothing at the first location. A
// built item keeps no stock, its rows are passed over.
LItemError LItemSaveStock(const LProfile& profile, LItem& item, const LItemStockInput& input);

// The names of the business's taxes in the order of an item's "TaxRate" index: "Default", "None"
// and the three taxes of the settings.
std::vector<std::string> GetTaxNames(const LProfile& profile);
