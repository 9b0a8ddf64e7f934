#include "web/pages/ItemForm.h"

#include <algorithm>
#include <array>

#include "datastore/NumberText.h"
#include "inventory/BillOfMaterials.h"
#include "inventory/StockQuantities.h"
#include "inventory/StoredLists.h"
#include "web/pages/ItemLines.h"
#include "web/pages/MasterList.h"

namespace {

constexpr int kMaxRows = 1000;

void Put(LHashTable& fields, int control, std::string_view text) {
    fields.SetString(std::to_string(control), text);
}

std::string Trimmed(std::string text) {
    constexpr std::string_view kBlanks = " \t\r\n";
    text.erase(0, std::min(text.find_first_not_of(kBlanks), text.size()));
    text.erase(text.find_last_not_of(kBlanks) + 1);
    return text;
}

std::string NumberInput(const LProfile& profile, double value) {
    return profile.FormatNumber(value, profile.DigitsAfterDecimalPoint(), false);
}

std::string TaxIndexText(const LItem& item) { return std::to_string(item.GetInt("TaxRate", 0)); }

// Stored numbers by part of the row.
std::array<double, 3> PartsOf(const LocationAndQuantities& entry) {
    return {entry.quantity, entry.idealQuantity, entry.warnQuantity};
}

const LocationAndQuantities* FindEntry(const LStockEntries& entries, std::string_view location) {
    for (const LocationAndQuantities& entry : entries) {
        if (entry.location == location) return &entry;
    }
    return nullptr;
}

// One row of the stock table as it came back.
class LSubmittedRow {
public:
    LSubmittedRow(const LHashTable& fields, int row) : fields_(fields), row_(row) {}

    std::string Location() const { return Field(fields_, ItemRowControl(row_, kRowLocation)); }
    std::string Text(int part) const { return Trimmed(Field(fields_, ItemRowControl(row_, part))); }
    bool IsTouched(int part) const {
        return Text(part) != Trimmed(Field(fields_, ItemRowControl(row_, kRowShown + part)));
    }
    bool IsTouched() const {
        return IsTouched(kRowQuantity) || IsTouched(kRowIdeal) || IsTouched(kRowWarning);
    }
    bool IsEmpty() const {
        return Text(kRowQuantity).empty() && Text(kRowIdeal).empty() && Text(kRowWarning).empty();
    }

    // The number of a part: as typed, or as stored now when nobody touched it.
    bool Read(const LProfile& profile, const LocationAndQuantities* stored, int part, double& value,
              LTabFieldError& error) const {
        if (stored != nullptr && !IsTouched(part)) {
            value = PartsOf(*stored)[static_cast<size_t>(part)];
            return true;
        }
        const std::string text = Text(part);
        const std::optional<double> number =
            text.empty() ? std::optional(0.0) : profile.ParseNumber(text);
        if (!number) error = {ItemRowControl(row_, part), "Wrong number format!"};
        if (number && part != kRowQuantity && *number < 0) {
            error = {ItemRowControl(row_, part), "Quantity must be positive."};
        }
        value = number.value_or(0);
        return error.control == 0;
    }

private:
    const LHashTable& fields_;
    int row_;
};

}  // namespace

std::string Field(const LHashTable& fields, int control) {
    return fields.GetString(std::to_string(control));
}

LHashTable GeneralFieldsOf(const LProfile& profile, const LItem& item) {
    LHashTable fields;
    const bool isNew = !item.IsBound();
    std::string category;
    item.GetCategoryName(profile, category);
    Put(fields, kItemCode, item.GetView("Name"));
    Put(fields, kItemDescription, item.GetView("Description"));
    Put(fields, kItemCategory, category);
    Put(fields, kItemSubCategory, item.GetView("SubCategory"));
    Put(fields, kItemCost, isNew ? "" : profile.FormatMoneyInput(item.Cost()));
    Put(fields, kItemPrice, isNew ? "" : profile.FormatMoneyInput(item.Price()));
    Put(fields, kItemTax, TaxIndexText(item));
    Put(fields, kItemMeasure, item.GetView("Measure"));
    Put(fields, kItemWebSite, item.GetView("WebSite"));
    Put(fields, kItemNotes, item.GetView("Notes"));
    Put(fields, kItemCustom1, item.GetView("CustomField1"));
    Put(fields, kItemCustom2, item.GetView("CustomField2"));
    return fields;
}

LItemInput GeneralInput(const LHashTable& fields, const LItem& item) {
    LItemInput input;
    input.id = item.GetPrimaryKey();
    input.code = Field(fields, kItemCode);
    input.description = Field(fields, kItemDescription);
    input.cost = Field(fields, kItemCost);
    input.price = Field(fields, kItemPrice);
    input.taxIndex = fields.GetInt(std::to_string(kItemTax), 0);
    input.webSite = Field(fields, kItemWebSite);
    input.measure = Field(fields, kItemMeasure);
    input.notes = Field(fields, kItemNotes);
    input.category = Field(fields, kItemCategory);
    input.subCategory = Field(fields, kItemSubCategory);
    input.isBuilt = item.IsBuilt();
    input.billOfMaterials = item.GetString("BillOfMaterials");
    input.customField1 = Field(fields, kItemCustom1);
    input.customField2 = Field(fields, kItemCustom2);
    return input;
}

int GeneralControlOf(LItemField field) {
    switch (field) {
        case LItemField::kDescription:
            return kItemDescription;
        case LItemField::kCost:
            return kItemCost;
        case LItemField::kPrice:
            return kItemPrice;
        case LItemField::kCategory:
            return kItemCategory;
        case LItemField::kSubCategory:
            return kItemSubCategory;
        case LItemField::kMeasure:
            return kItemMeasure;
        default:
            return kItemCode;
    }
}

LHashTable StockFieldsOf(const LProfile& profile, const LItem& item) {
    LHashTable fields;
    Put(fields, kItemSupplier, item.GetView("Supplier"));
    Put(fields, kItemSupplierId, item.GetView("SupplierID"));
    Put(fields, kItemWarningEmail, item.GetBool("CheckWaringEmail", false) ? "1" : "");

    const LStockEntries entries =
        ParseLocationAndQuantities(item.GetView("LocationsAndQuantities"));
    int row = 0;
    const LNameMap locations(profile, "Locations");
    for (const auto& [key, name] : locations.Pairs()) {
        if (row == kMaxRows) break;
        Put(fields, ItemRowControl(row, kRowLocation), key);
        if (const LocationAndQuantities* entry = FindEntry(entries, key)) {
            for (const int part : {kRowQuantity, kRowIdeal, kRowWarning}) {
                const std::string text =
                    NumberInput(profile, PartsOf(*entry)[static_cast<size_t>(part)]);
                Put(fields, ItemRowControl(row, part), text);
                Put(fields, ItemRowControl(row, kRowShown + part), text);
            }
        }
        ++row;
    }
    Put(fields, kItemRowCount, std::to_string(row));
    return fields;
}

int StockRowCount(const LHashTable& fields) {
    return std::clamp(fields.GetInt(std::to_string(kItemRowCount), 0), 0, kMaxRows);
}

std::optional<LItemStockInput> StockInput(const LProfile& profile, const LHashTable& fields,
                                          const LItem& item, LTabFieldError& error) {
    LItemStockInput input;
    input.supplier = Trimmed(Field(fields, kItemSupplier));
    input.supplierId = Trimmed(Field(fields, kItemSupplierId));
    input.wantsWarningEmail = !Field(fields, kItemWarningEmail).empty();

    const LNameMap locations(profile, "Locations");
    const LStockEntries stored = ParseLocationAndQuantities(item.GetView("LocationsAndQuantities"));
    std::vector<std::string> shown;  // keys of the locations that the form has rows for
    for (int row = 0; row < StockRowCount(fields); ++row) {
        const LSubmittedRow submitted(fields, row);
        const LocationAndQuantities* entry = FindEntry(stored, submitted.Location());
        shown.push_back(submitted.Location());
        if (submitted.IsEmpty() && (entry == nullptr || submitted.IsTouched())) continue;
        LItemLocationRow line;
        line.locationName = locations.Name(submitted.Location());
        if (line.locationName.empty()) {
            error = {ItemRowControl(row, kRowQuantity),
                     "This location has been deleted in the meantime."};
            return std::nullopt;
        }
        if (!submitted.Read(profile, entry, kRowQuantity, line.quantity, error) ||
            !submitted.Read(profile, entry, kRowIdeal, line.idealQuantity, error) ||
            !submitted.Read(profile, entry, kRowWarning, line.warnQuantity, error)) {
            return std::nullopt;
        }
        input.rows.push_back(std::move(line));
    }
    // What came to a location since the form was opened stays there.
    for (const LocationAndQuantities& entry : stored) {
        const std::string_view name = locations.Name(entry.location);
        if (name.empty() || std::find(shown.begin(), shown.end(), entry.location) != shown.end()) {
            continue;
        }
        input.rows.push_back(
            {std::string(name), entry.quantity, entry.idealQuantity, entry.warnQuantity});
    }
    // Each row is stored in front of those before it: this way they are stored as they are shown.
    std::reverse(input.rows.begin(), input.rows.end());
    return input;
}

LHashTable ComponentFieldsOf(const LProfile& profile, const LItem& item) {
    LHashTable fields;
    Put(fields, kItemIsBuilt, item.IsBuilt() ? "1" : "");
    std::vector<BOMItemQuantities> components;
    ParseBOMItemsAndQuantities(components, item.GetView("BillOfMaterials"));
    std::vector<LItemLineText> lines;
    for (const BOMItemQuantities& component : components) {
        const int digits = DecimalsFor(component.quantity, profile.DigitsAfterDecimalPoint());
        lines.push_back({component.code, profile.FormatNumber(component.quantity, digits, false)});
    }
    WriteItemLines(fields, kItemComponents, lines);
    return fields;
}

bool ComponentsInput(const LProfile& profile, const LHashTable& fields, LItemInput& input,
                     LTabFieldError& error) {
    input.isBuilt = !Field(fields, kItemIsBuilt).empty();
    input.billOfMaterials.clear();
    if (!input.isBuilt) return true;
    std::vector<BOMItemQuantities> components;
    int line = -1;
    for (const LItemLineText& text : ReadItemLines(fields, kItemComponents)) {
        ++line;
        const std::string code = Trimmed(text.code);
        if (code.empty() && Trimmed(text.quantity).empty()) continue;
        LItem item;
        if (!code.empty() && !OpenItem(profile, item, code)) {
            error = {ItemLineCode(kItemComponents, line), "There is no item " + code + "."};
            return false;
        }
        const LComponentError refusal = CheckComponentLine(
            profile, {code, text.quantity, profile.FormatMoneyInput(item.Cost())},
            components.emplace_back());
        if (refusal.IsNone()) continue;
        error = {refusal.field == LComponentField::kQuantity
                     ? ItemLineQuantity(kItemComponents, line)
                     : ItemLineCode(kItemComponents, line),
                 refusal.message};
        return false;
    }
    input.billOfMaterials = GetBOMItemQuantityString(profile, components);
    return true;
}

std::string ComponentNote(const LProfile& profile, std::string_view code) {
    LItem item;
    if (TrimBlanks(code).empty()) return {};
    if (!OpenItem(profile, item, TrimBlanks(code))) return "There is no such item.";
    const std::string description = SingleLine(item.GetView("Description"));
    return (description.empty() ? "" : description + ", ") + profile.FormatMoney(item.Cost());
}
