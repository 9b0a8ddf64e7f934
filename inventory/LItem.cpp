#include "inventory/LItem.h"

#include <algorithm>
#include <map>
#include <optional>
#include <utility>

#include "datastore/NumberText.h"
#include "datastore/StoredNumbers.h"
#include "inventory/ItemCodeCache.h"
#include "inventory/LBuildableStock.h"
#include "inventory/StockQuantities.h"
#include "inventory/StoredLists.h"
#include "platform/CaseFolding.h"
#include "platform/FileIo.h"

namespace {

constexpr int kDerivedDigits = 5;

LMoney Amount(const LItem& item, std::string_view field, std::string_view digitsField) {
    return {item.GetInt64(field, 0), HoldDigits(item.GetInt(digitsField, LMoney().digits))};
}

bool IsLaxDigit(char byte) {
    const int low = static_cast<unsigned char>(byte) & 0x7F;
    return low >= '/' && low <= '9';
}

// Walks all items for `code`; the key of the first that bears it, or an empty text. Every code met
// is remembered on the way, so that one search serves all items.
std::string SearchItemKey(const LProfile& profile, std::string_view code) {
    std::string key;
    LItemKeysByCode keysByCode;
    LItem item;
    const auto iterator = profile.Items().CreateIteratorBase(item);
    for (; item.IsBound(); iterator->Next(item)) {
        const std::string_view name = item.GetView("Name");
        keysByCode.Set(name, item.GetPrimaryKey());
        if (key.empty() && name == code) key = item.GetPrimaryKey();
    }
    RememberItemCodes(profile, std::move(keysByCode));
    return key;
}

}  // namespace

LMoney LItem::Cost() const { return Amount(*this, "Value", "CostDigits"); }

LMoney LItem::Price() const { return Amount(*this, "Price", "ValueDigits"); }

void LItem::SetCost(const LMoney& cost) {
    SetInt64("Value", cost.minorUnits);
    SetInt("CostDigits", cost.digits);
}

void LItem::SetPrice(const LMoney& price) {
    SetInt64("Price", price.minorUnits);
    SetInt("ValueDigits", price.digits);
}

bool LItem::IsBuilt() const { return !TrimBlanks(GetView("BillOfMaterials")).empty(); }

void LItem::GetCategoryName(const LProfile& profile, std::string& out) const {
    out.clear();
    LRecord category;
    if (profile.List("Categories").Load(GetView("Category"), category)) {
        out = category.GetString("Name");
    }
}

void LItem::GetBOMLocationsAndQuantities(const LProfile& profile, std::string& out) const {
    out.clear();
    LBuildableStock buildable(profile);
    for (const LocationAndQuantities& entry : buildable.Of(*this)) {
        out += '"';
        AppendStoredText(out, entry.location);
        out += '/';
        AppendStoredReal(out, entry.quantity, kDerivedDigits);
        out += "/0/0\",";
    }
}

std::string GetItemPictureFile(const LProfile& profile, const LItem& item) {
    const std::string path = item.GetShortString("ImageFile");
    if (path.empty() || FileExists(path)) return path;
    const std::string moved =
        profile.Items().Folder() + "/" + path.substr(path.find_last_of('/') + 1);
    return FileExists(moved) ? moved : std::string();
}

bool OpenItem(const LProfile& profile, LItem& item, std::string_view code) {
    if (!code.empty()) {
        if (OpenRememberedItem(profile, item, code)) return true;
        const std::string key = SearchItemKey(profile, code);
        if (!key.empty() && profile.Items().Open(item, key)) return true;
    }
    item.Invalidate();
    return false;
}

bool CheckItemExist(const LProfile& profile, std::string_view code) {
    LItem item;
    const auto iterator = profile.Items().CreateIteratorBase(item);
    for (; item.IsBound(); iterator->Next(item)) {
        if (EqualIgnoringCase(item.GetView("Name"), code)) return true;
    }
    return false;
}

bool CheckItemExist(const std::vector<std::string>& codes, std::string_view code) {
    return std::any_of(codes.begin(), codes.end(),
                       [&](const std::string& other) { return EqualIgnoringCase(other, code); });
}

void GetItemIndex(const LProfile& profile, std::vector<std::string>& codes) {
    codes.clear();
    LItem item;
    const auto iterator = profile.Items().CreateIteratorBase(item);
    for (; item.IsBound(); iterator->Next(item)) codes.push_back(item.GetString("Name"));
}

void GetFirstLocationForTheItem(const LProfile& profile, std::string_view code, std::string& out) {
    LItem item;
    if (!OpenItem(profile, item, code)) return;
    out.clear();
    const LFileStoreListBase& locations = profile.Locations();
    std::map<std::string, double> inStock;  // by name; the first entry of a name counts
    LRecord location;
    for (const LocationAndQuantities& entry : GetStockEntries(profile, item)) {
        if (!locations.Load(entry.location, location)) continue;
        inStock.emplace(location.GetString("Name"), entry.quantity);
    }
    const auto iterator = locations.CreateIteratorBase(location);
    for (; location.IsBound(); iterator->Next(location)) {
        const auto found = inStock.find(location.GetString("Name"));
        if (found == inStock.end() || found->second <= 0) continue;
        out = found->first;
        return;
    }
}

bool CheckDouble(std::string_view text) {
    text.remove_prefix(std::min(text.find_first_not_of(" \t"), text.size()));
    if (text.starts_with('+') || text.starts_with('-')) text.remove_prefix(1);
    const auto isPart = [](char byte) { return byte == '.' || IsLaxDigit(byte); };
    return !text.empty() && std::all_of(text.begin(), text.end(), isPart) &&
           std::count(text.begin(), text.end(), '.') <= 1;
}

std::string ToPlainNumber(const LProfile& profile, std::string_view text) {
    std::string_view rest = TrimBlanks(text);
    const LSign sign = TakeSign(rest);
    const LNumberSymbols symbols(profile.DecimalSymbol(), profile.ThousandsSymbol());
    const std::optional<LDecimalDigits> digits = ReadDigits(rest, symbols);
    if (!digits) return std::string(text);
    std::string plain = sign == LSign::kMinus ? "-" : "";
    plain += digits->whole;
    if (!digits->fraction.empty()) plain.append(".").append(digits->fraction);
    return plain;
}
