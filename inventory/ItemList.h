// The rows of the item list: one per item and location, filtered.
#pragma once

#include <functional>
#include <string>

#include "datastore/LProfile.h"
#include "inventory/LItem.h"
#include "inventory/StockQuantities.h"

enum class LStockFilter { kAll, kBelowWarning, kAboveWarning, kAboveZero };

struct LItemListFilter {
    std::string category, subCategory, location;  // empty or "All": no filter
    LStockFilter stock = LStockFilter::kAll;
    std::string searchText;  // in code or description, ignoring case
};

// A row lives only during the visit.
struct LItemRow {
    const LItem& item;
    std::string_view categoryName, taxName, locationName;
    const LocationAndQuantities& stock;
    bool isBelowWarning = false;  // watched, and at or below the warning quantity
};

// Visits the rows in the store's order, reading the items' folder and each list of names once. An
// item that is kept at no location, or built from such, has no row; while neither locations nor
// stock are filtered, `nowhere` is called with it, so that it can still be found.
void FillItemList(const LProfile& profile, const LItemListFilter& filter,
                  const std::function<void(const LItemRow&)>& visit,
                  const std::function<void(const LItem&)>& nowhere = {});
// "All", "Below warning level", "Above warning level", "Quantity greater than zero".
std::string_view StockFilterName(LStockFilter filter);
LStockFilter StockFilterFromName(std::string_view name);  // kAll for any other text
