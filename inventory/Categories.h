// The categories of the items, each with its sub-categories.
#pragma once

#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "datastore/LProfile.h"
#include "platform/LUserInterface.h"

// "Name"; "Subcategory": the names joined by ",". Items hold a category's key and the name of a
// sub-category.
class LCategory : public LRecord {};
class LCategoryList : public LAppDataBaseList<LCategory> {
public:
    explicit LCategoryList(const LProfile& profile)
        : LAppDataBaseList(profile.Store(), "Categories") {}
};

// The first one of that name in the store's order. Letter case counts, unlike for locations and
// suppliers: categories that differ only in case are different categories.
[[nodiscard]] bool OpenCategory(const LCategoryList& list, LCategory& category,
                                std::string_view name);
// In their stored order.
std::vector<std::string> GetSubCategories(const LCategory& category);

enum class LCategoryField { kName, kSubCategories };
struct LCategoryInput {
    std::string name;
    std::vector<std::string> subCategories;  // in the displayed order
    // Each renamed one as it is stored and as it is now. They apply at once, so that two may trade
    // names; one that was renamed twice in the same editing stands here once.
    std::vector<std::pair<std::string, std::string>> renamedSubCategories;
};
// Checks first; on an error nothing is saved. `category` is unbound for a new one and bound to its
// stored record otherwise; afterwards it is bound. Renamed sub-categories are carried into the
// category's items. An empty sub-category row refuses without a message.
LFieldError<LCategoryField> LCategorySave(const LProfile& profile, LCategory& category,
                                          const LCategoryInput& input);

// While a category is edited: asks, then takes the chosen sub-categories out of
// `input.subCategories`; nothing is stored. Those renamed in this editing and those that an item of
// the category has stay, with the reason; the others go all the same. True when at least one went.
bool LSubCategoriesDelete(LUserInterface& ui, const LProfile& profile, const LCategory& category,
                          LCategoryInput& input, const std::vector<std::string>& chosen);

// Asks, then deletes the categories of these keys; those that an item has are refused with the
// reason and the others still deleted. True when at least one was deleted.
bool LCategoriesDelete(LUserInterface& ui, const LProfile& profile,
                       const std::vector<std::string>& keys);
