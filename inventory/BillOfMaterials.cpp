#include "inventory/BillOfMaterials.h"

#include <algorithm>
#include <optional>
#include <set>

#include "datastore/CsvText.h"
#include "datastore/StoredNumbers.h"
#include "inventory/LItem.h"
#include "inventory/StoredLists.h"
#include "platform/TextLimits.h"

namespace {

template <typename Visit>
void ForEachBuiltItem(const LProfile& profile, Visit&& visit) {
    LItem item;
    std::vector<BOMItemQuantities> lines;
    const auto iterator = profile.Items().CreateIteratorBase(item);
    for (; item.IsBound(); iterator->Next(item)) {
        if (!item.IsBuilt()) continue;
        ParseBOMItemsAndQuantities(lines, item.GetView("BillOfMaterials"));
        if (!visit(item, lines)) return;
    }
}

bool Names(const std::vector<BOMItemQuantities>& lines, std::string_view code) {
    return std::any_of(lines.begin(), lines.end(),
                       [&](const BOMItemQuantities& line) { return line.code == code; });
}

bool CanBeComponent(std::string_view code) {
    return code.find_first_of("/\"") == std::string_view::npos;
}

std::string CannotBeComponent(std::string_view code) {
    return "Item " + std::string(code) +
           " cannot be a component because its code contains \"/\" or a double quote.";
}

// Why an element of a bill would not be read back as it was meant; empty when it would.
std::string CheckElement(std::string_view element) {
    const size_t slash = element.rfind('/');
    const std::string_view code = element.substr(0, slash);
    if (slash == std::string_view::npos || code.empty()) return "Wrong number format!";
    return CanBeComponent(code) ? std::string() : CannotBeComponent(code);
}

// Follows bills down from a component, looking for the item that is being saved.
class LBillSearch {
public:
    LBillSearch(const LProfile& profile, std::string_view code, std::string_view oldCode)
        : profile_(profile), code_(code), oldCode_(oldCode) {}

    bool LeadsBack(const std::vector<BOMItemQuantities>& lines, size_t depth = 0) {
        return std::any_of(lines.begin(), lines.end(), [&](const BOMItemQuantities& line) {
            return LeadsBackFrom(line.code, depth);
        });
    }
    bool LeadsBackFrom(const std::string& code, size_t depth) {
        if (code == code_ || depth >= kMaxBillDepth) return true;
        // Bills that name the old code name nothing once this item has been renamed.
        if (code == oldCode_ || !seen_.insert(code).second) return false;
        LItem item;
        if (!OpenItem(profile_, item, code) || !item.IsBuilt()) return false;
        std::vector<BOMItemQuantities> lines;
        ParseBOMItemsAndQuantities(lines, item.GetView("BillOfMaterials"));
        return LeadsBack(lines, depth + 1);
    }

private:
    const LProfile& profile_;
    const std::string_view code_, oldCode_;
    std::set<std::string> seen_;  // and found not to lead back, or being looked at
};

}  // namespace

bool BOMItemQuantities::ItemHasBOM(const LProfile& profile, std::string_view code) {
    LItem item;
    return OpenItem(profile, item, code) && item.IsBuilt();
}

bool BOMItemQuantities::UsedInAnotherItemsBOM(const LProfile& profile, std::string_view id) {
    LItem component;
    if (!profile.Items().Open(component, id)) return false;
    const std::string code = component.GetString("Name");
    bool isUsed = false;
    ForEachBuiltItem(profile, [&](const LItem&, const std::vector<BOMItemQuantities>& lines) {
        isUsed = Names(lines, code);
        return !isUsed;
    });
    return isUsed;
}

void ParseBOMItemsAndQuantities(std::vector<BOMItemQuantities>& list, std::string_view text) {
    list.clear();
    for (const std::string& element : ParseCsvRow(text)) {
        std::string_view rest = element;
        const std::string_view code = TakePiece(rest);
        list.push_back({std::string(code), ParseStoredReal(rest)});
    }
}

std::string GetBOMItemQuantityString(const LProfile& profile,
                                     const std::vector<BOMItemQuantities>& lines) {
    std::string out;
    for (const BOMItemQuantities& line : lines) {
        out += '"';
        AppendStoredText(out, line.code);
        out += '/';
        AppendExactNumber(out, line.quantity, profile.DigitsAfterDecimalPoint());
        out += "\",";
    }
    return out;
}

std::vector<std::string> ItemsBuiltFrom(const LProfile& profile, std::string_view code) {
    std::vector<std::string> codes;
    ForEachBuiltItem(profile, [&](const LItem& item, const std::vector<BOMItemQuantities>& lines) {
        if (Names(lines, code)) codes.push_back(item.GetString("Name"));
        return true;
    });
    return codes;
}

LComponentError CheckComponentLine(const LProfile& profile, const LComponentInput& input,
                                   BOMItemQuantities& line) {
    if (!CheckDouble(ToPlainNumber(profile, input.quantity))) {
        return LComponentError::At(LComponentField::kQuantity, "Wrong number format!");
    }
    // What the lax check lets through and is no number after all.
    const std::optional<double> quantity = profile.ParseNumber(input.quantity);
    if (!quantity) return LComponentError::At(LComponentField::kQuantity, "Wrong number format!");
    if (*quantity < 0) {
        return LComponentError::At(LComponentField::kQuantity, "Quantity must be positive.");
    }
    const std::optional<LMoney> value = profile.ParseMoney(input.value);
    if (value && value->minorUnits < 0) {
        return LComponentError::At(LComponentField::kValue, "The value must be positive.");
    }
    if (input.code.empty()) {
        return LComponentError::At(LComponentField::kCode, "Select items of bill-of-material item");
    }
    if (!CanBeComponent(input.code)) {
        return LComponentError::At(LComponentField::kCode, CannotBeComponent(input.code));
    }
    line = {std::string(CutText(input.code)), *quantity};
    return LComponentError::None();
}

std::string CheckBillOfMaterials(const LProfile& profile, std::string_view code,
                                 std::string_view oldCode, std::string_view billOfMaterials) {
    for (const std::string& element : ParseCsvRow(billOfMaterials)) {
        std::string reason = CheckElement(element);
        if (!reason.empty()) return reason;
    }
    std::vector<BOMItemQuantities> lines;
    ParseBOMItemsAndQuantities(lines, billOfMaterials);
    LBillSearch search(profile, code, oldCode);
    for (const BOMItemQuantities& line : lines) {
        if (line.code == code) return "An item cannot be a component of itself.";
        if (search.LeadsBackFrom(line.code, 0)) {
            return "Item " + line.code +
                   " cannot be a component because it is itself built from this item.";
        }
    }
    return {};
}
