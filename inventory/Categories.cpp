#include "inventory/Categories.h"

#include <algorithm>
#include <map>
#include <optional>
#include <set>

#include "datastore/NumberText.h"
#include "inventory/LItem.h"
#include "inventory/MasterRecordSteps.h"

namespace {

using LCategoryError = LFieldError<LCategoryField>;

std::string JoinSubCategories(const std::vector<std::string>& names) {
    std::string joined;
    for (const std::string& name : names) {
        if (!joined.empty()) joined += ',';
        joined += TrimBlanks(name);
    }
    return joined;
}

bool IsBlank(const std::string& text) { return TrimBlanks(text).empty(); }

bool IsNameTaken(const LProfile& profile, const LCategory& category, std::string_view name) {
    if (category.IsBound() && category.GetView("Name") == name) return false;
    LCategory other;
    return OpenCategory(LCategoryList(profile), other, name);
}

LCategoryError Check(const LProfile& profile, const LCategory& category,
                     const LCategoryInput& input) {
    const auto& rows = input.subCategories;
    if (std::any_of(rows.begin(), rows.end(), IsBlank)) {
        return LCategoryError::At(LCategoryField::kSubCategories, {});
    }
    const std::string_view name = TrimBlanks(input.name);
    std::string message;
    if (name.empty()) {
        message = "Please enter the Category name.";
    } else if (name == "All") {  // the list filters' word for no filter
        message = "Please enter a valid category name";
    } else if (IsNameTaken(profile, category, name)) {
        message =
            "There is another category with the same name already exists. Please use a different "
            "name.";
    }
    if (message.empty()) return LCategoryError::None();
    return LCategoryError::At(LCategoryField::kName, message);
}

// Calls `visit` for each item of the category.
template <typename Visit>
void ForEachItemOf(const LProfile& profile, const LCategory& category, const Visit& visit) {
    const std::string& key = category.GetPrimaryKey();
    if (key.empty()) return;  // not stored yet
    LItem item;
    const auto iterator = profile.Items().CreateIteratorBase(item);
    for (; item.IsBound(); iterator->Next(item)) {
        if (item.GetView("Category") == key) visit(item);
    }
}

void RenameInItems(const LProfile& profile, const LCategory& category,
                   const LCategoryInput& input) {
    std::map<std::string, std::string, std::less<>> renamed;
    for (const auto& [oldName, newName] : input.renamedSubCategories) {
        if (oldName != newName) renamed.emplace(oldName, TrimBlanks(newName));
    }
    if (renamed.empty()) return;
    ForEachItemOf(profile, category, [&](LItem& item) {
        const auto name = renamed.find(item.GetView("SubCategory"));
        if (name != renamed.end()) item.SetString("SubCategory", name->second);
    });
}

std::set<std::string> CategoriesInItems(const LProfile& profile) {
    std::set<std::string> keys;
    LItem item;
    const auto iterator = profile.Items().CreateIteratorBase(item);
    for (; item.IsBound(); iterator->Next(item)) keys.insert(item.GetString("Category"));
    return keys;
}

// Why a sub-category has to stay; empty when it may go.
std::string SubCategoryRefusal(const LCategory& category, const LCategoryInput& input,
                               const std::set<std::string>& used, const std::string& name) {
    for (const auto& [oldName, newName] : input.renamedSubCategories) {
        if (newName == name && oldName != newName) {
            return "You can not delete subcategory whose name has been changed";
        }
    }
    if (used.count(name) == 0) return {};
    return "You can not delete subcategory \"" + name + "\" of category \"" +
           category.GetString("Name") + "\" because it may be referenced by items";
}

}  // namespace

bool OpenCategory(const LCategoryList& list, LCategory& category, std::string_view name) {
    return OpenFirstNamed(list, category, [&](std::string_view other) { return other == name; });
}

std::vector<std::string> GetSubCategories(const LCategory& category) {
    std::vector<std::string> names;
    std::string_view rest = category.GetView("Subcategory");
    while (!rest.empty()) {
        const size_t end = std::min(rest.find(','), rest.size());
        if (end > 0) names.emplace_back(rest.substr(0, end));
        rest.remove_prefix(std::min(end + 1, rest.size()));
    }
    return names;
}

LCategoryError LCategorySave(const LProfile& profile, LCategory& category,
                             const LCategoryInput& input) {
    const LMovementLock lock(profile);  // two new categories must not take one name
    LCategoryError error = Check(profile, category, input);
    if (!error.IsNone()) return error;
    if (!category.IsBound()) LCategoryList(profile).CreateNewRecord(category);
    category.SetString("Name", TrimBlanks(input.name));
    category.SetString("Subcategory", JoinSubCategories(input.subCategories));
    if (!category.Flush()) return LCategoryError::General("The category could not be saved.");
    RenameInItems(profile, category, input);
    return LCategoryError::None();
}

bool LSubCategoriesDelete(LUserInterface& ui, const LProfile& profile, const LCategory& category,
                          LCategoryInput& input, const std::vector<std::string>& chosen) {
    if (chosen.empty() ||
        !AskDelete(ui, "Delete Sub-Categories",
                   "Are you sure you want to delete the selected sub-category?")) {
        return false;
    }
    std::set<std::string> used;
    ForEachItemOf(profile, category,
                  [&](const LItem& item) { used.insert(item.GetString("SubCategory")); });
    bool anyRemoved = false;
    for (const std::string& name : chosen) {
        const std::string reason = SubCategoryRefusal(category, input, used, name);
        if (reason.empty()) {
            anyRemoved = std::erase(input.subCategories, name) > 0 || anyRemoved;
        } else {
            ui.Inform("Delete Subcategories", reason);
        }
    }
    return anyRemoved;
}

bool LCategoriesDelete(LUserInterface& ui, const LProfile& profile,
                       const std::vector<std::string>& keys) {
    constexpr std::string_view kTitle = "Delete Categories";
    if (keys.empty() ||
        !AskDelete(ui, kTitle, "Are you sure you want to delete the selected category(s)?")) {
        return false;
    }
    std::optional<std::set<std::string>> used;
    return DeleteChosen(ui, profile, LCategoryList(profile), kTitle, keys,
                        [&](const LCategory& category) -> std::string {
                            if (!used) used = CategoriesInItems(profile);
                            if (used->count(category.GetPrimaryKey()) == 0) return {};
                            return "You can not delete category " + category.GetString("Name") +
                                   " because it may be referenced by items";
                        });
}
