#include "inventory/ItemSave.h"

#include <algorithm>
#include <cmath>
#include <optional>
#include <utility>

#include "inventory/BillOfMaterials.h"
#include "inventory/ItemCodeCache.h"
#include "inventory/ItemSaveSteps.h"
#include "inventory/MasterRecords.h"
#include "inventory/MovementLock.h"
#include "platform/CaseFolding.h"

namespace {

constexpr int64_t kValueBound = 10'000'000'000'000;  // minor units
constexpr int kValueBoundDigits = 13;
constexpr std::string_view kAll = "All";  // the list filters' word for no filter

// What the checks found out on their way.
struct LCheckedInput {
    std::string code, category, subCategory, measure;
    LMoney cost, price;
    std::string oldCode;  // of an existing item
};

LItemError CheckAmount(const LProfile& profile, LItemField field, std::string_view text,
                       LMoney& amount) {
    const std::optional<LMoney> read = profile.ParseMoney(text);
    if (!read) {
        return LItemError::At(field,
                              "Enter a proper currency value. For description only (non charge "
                              "items) enter 0.");
    }
    amount = *read;
    return LItemError::None();
}

LItemError CheckCategory(const LCheckedInput& checked) {
    if (checked.category.empty()) {
        return LItemError::At(LItemField::kCategory, "Select a category for the item.");
    }
    if (checked.category == kAll) {
        return LItemError::At(LItemField::kCategory, "Select a valid category for the item.");
    }
    if (checked.subCategory.find(',') != std::string::npos) {
        return LItemError::At(LItemField::kSubCategory, "The subcategory cannot contain commas.");
    }
    if (checked.subCategory == kAll) {
        return LItemError::At(LItemField::kSubCategory, "Select a valid subcategory for the item.");
    }
    return LItemError::None();
}

LItemError CheckBound(const LProfile& profile, LItemField field, const LMoney& amount) {
    // More digits than the currency has may have been typed.
    const std::optional<LMoney> held = WithDigits(amount, profile.CurrencyDigits());
    if (held && held->minorUnits < kValueBound) return LItemError::None();
    const int digits = std::clamp(profile.CurrencyDigits(), 0, kValueBoundDigits);
    const double whole = std::floor(static_cast<double>(kValueBound) / std::pow(10, digits));
    return LItemError::At(field, "The item value must be positive and less than " +
                                     profile.FormatNumber(whole, 0, true) + ".");
}

LItemError CheckComponents(const LProfile& profile, const LItemInput& input,
                           const LCheckedInput& checked) {
    if (!input.isBuilt) return LItemError::None();
    if (TrimBlanks(input.billOfMaterials).empty()) {
        return LItemError::At(LItemField::kComponents, "Select items of bill-of-material item");
    }
    std::string reason =
        CheckBillOfMaterials(profile, checked.code, checked.oldCode, input.billOfMaterials);
    if (reason.empty()) return LItemError::None();
    return LItemError::At(LItemField::kComponents, std::move(reason));
}

// Other letters in the same code are no other code.
LItemError CheckCodeIsFree(const LProfile& profile, const LItemInput& input,
                           const LCheckedInput& checked) {
    const bool keepsCode = !input.id.empty() && EqualIgnoringCase(checked.code, checked.oldCode);
    if (keepsCode || !CheckItemExist(profile, checked.code)) return LItemError::None();
    return LItemError::At(LItemField::kCode, "An item with the same code already exists.");
}

enum class LEarlyEffects { kNone, kMake };

// The checks in the order in which a person hears of them; the unit of measure is made in between.
LItemError Check(const LProfile& profile, const LItemInput& input, LEarlyEffects effects,
                 LCheckedInput& checked) {
    LItem stored;
    const bool isGone = !input.id.empty() && !profile.Items().Open(stored, input.id);
    checked = {Trimmed(input.code),
               Trimmed(input.category),
               Trimmed(input.subCategory),
               Trimmed(input.measure),
               {},
               {},
               stored.GetString("Name")};
    if (checked.code.empty()) {
        return LItemError::At(LItemField::kCode,
                              "Enter an item code. It is usually just a few letters.");
    }
    LItemError error = CheckAmount(profile, LItemField::kCost, input.cost, checked.cost);
    if (error.IsNone()) {
        error = CheckAmount(profile, LItemField::kPrice, input.price, checked.price);
    }
    if (error.IsNone()) error = CheckCategory(checked);
    if (!error.IsNone()) return error;

    if (effects == LEarlyEffects::kMake && !checked.measure.empty()) {
        AddToNameList(profile, "UnitMeasure", checked.measure);
    }
    error = CheckBound(profile, LItemField::kCost, checked.cost);
    if (error.IsNone()) error = CheckBound(profile, LItemField::kPrice, checked.price);
    if (error.IsNone()) error = CheckComponents(profile, input, checked);
    if (error.IsNone() && isGone) error = Gone();
    if (error.IsNone()) error = CheckCodeIsFree(profile, input, checked);
    return error;
}

// Finds or makes the category and adds the sub-category to it. The category's key, empty when it
// could not be stored.
std::string StoreCategory(const LProfile& profile, const LCheckedInput& checked) {
    LCategoryList categories(profile);
    LCategory category;
    std::string names = checked.subCategory;
    if (OpenCategory(categories, category, checked.category)) {
        const std::vector<std::string> known = GetSubCategories(category);
        names = category.GetString("Subcategory");
        const bool isKnown =
            std::find(known.begin(), known.end(), checked.subCategory) != known.end();
        if (!isKnown && !checked.subCategory.empty()) {
            names += (names.empty() ? "" : ",") + checked.subCategory;
        }
    } else {
        categories.CreateNewRecord(category);
    }
    category.SetString("Subcategory", names);
    category.SetString("Name", checked.category);
    return category.Flush() ? category.GetPrimaryKey() : std::string();
}

void SetGeneralFields(LItem& item, const LItemInput& input, const LCheckedInput& checked) {
    item.SetString("Name", checked.code);
    item.SetCost(checked.cost);
    item.SetPrice(checked.price);
    item.SetInt("TaxRate", input.taxIndex);
    item.SetString("Description", input.description);
    item.SetString("WebSite", input.webSite);
    item.SetString("Measure", checked.measure);
    item.SetString("Notes", input.notes);
    if (input.isBuilt) item.SetString("LocationsAndQuantities", "");
    item.SetString("BillOfMaterials", input.isBuilt ? input.billOfMaterials : "");
    item.SetString("SubCategory", checked.subCategory);
    item.SetString("CustomField1", TrimBlanks(input.customField1));
    item.SetString("CustomField2", TrimBlanks(input.customField2));
}

// Bills name codes and are left alone by a rename; the person hears which ones are meant.
std::string RenameNotice(const LProfile& profile, const LCheckedInput& checked) {
    if (checked.oldCode.empty() || checked.oldCode == checked.code) return {};
    ForgetItemCode(profile, checked.oldCode);
    std::string names;
    for (const std::string& code : ItemsBuiltFrom(profile, checked.oldCode)) {
        names += (names.empty() ? "" : ", ") + code;
    }
    if (names.empty()) return {};
    return "The bills of materials of these items still name the old code " + checked.oldCode +
           ": " + names + ".";
}

}  // namespace

LItemError LItemSaveGeneral(const LProfile& profile, LItem& item, const LItemInput& input,
                            std::string* notice) {
    const LMovementLock lock(profile);  // two new items must not take one code
    LCheckedInput checked;
    const LItemError error = Check(profile, input, LEarlyEffects::kMake, checked);
    if (!error.IsNone()) return error;
    const std::string category = StoreCategory(profile, checked);
    if (category.empty()) return NotSaved();

    if (input.id.empty()) {
        profile.Items().CreateNewRecord(item);
    } else if (!profile.Items().Open(item, input.id)) {
        return Gone();
    }
    SetGeneralFields(item, input, checked);
    item.SetString("Category", category);
    if (!item.Flush()) return NotSaved();
    std::string renamed = RenameNotice(profile, checked);
    RememberItemCode(profile, checked.code, item.GetPrimaryKey());
    if (notice != nullptr) *notice = std::move(renamed);
    return LItemError::None();
}

LItemError LItemCheckGeneral(const LProfile& profile, const LItemInput& input) {
    LCheckedInput checked;
    return Check(profile, input, LEarlyEffects::kNone, checked);
}

std::vector<std::string> GetTaxNames(const LProfile& profile) {
    LRecord tax;
    profile.OpenSettings(tax, "Tax");
    return {"Default", "None", tax.GetString("TaxName1", "Sales Tax"),
            tax.GetString("TaxName2", "Sales Tax 2"), tax.GetString("TaxName3", "Sales Tax 3")};
}
