#include "orders/LPOrder.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <cmath>
#include <cstdio>

#include "datastore/NumberText.h"
#include "datastore/StoredNumbers.h"
#include "inventory/OrderReferences.h"
#include "platform/TextLimits.h"

namespace {

// Everything that a line stores.
constexpr std::array<std::string_view, 9> kLineFields{
    "ID",        "Description",     "Measure", "Qty",    "QtyRecd",
    "UnitValue", "UnitValueDigits", "TaxRate", "TaxName"};

LOrderLineField Field(int line, std::string_view what) { return {line + 1, what}; }

std::string TaxField(int number) { return "TaxAmount" + std::to_string(number); }
std::string TaxNameField(int number) { return "TaxAmountName" + std::to_string(number); }

void NameBehindKey(const LProfile& profile, std::string_view listName, std::string_view key,
                   std::string& out) {
    out.clear();
    LRecord record;
    if (profile.List(listName).Load(key, record)) out = record.GetString("Name");
}

// The shortest decimal text that reads back as the same number.
std::string DecimalText(double value) {
    std::array<char, kMaxTextBytes> text;
    if (!std::isfinite(value)) value = 0;
    auto end = std::to_chars(text.begin(), text.end(), value, std::chars_format::fixed);
    if (end.ec != std::errc()) end = std::to_chars(text.begin(), text.end(), value);
    return {text.data(), end.ptr};
}

}  // namespace

std::string_view StockReceivedLabel(int status) {
    constexpr std::array<std::string_view, 3> kLabels{"Open", "Partial", "Received"};
    const bool isKnown = status >= StockNotReceived && status <= StockFullyReceived;
    return isKnown ? kLabels[static_cast<size_t>(status)] : std::string_view();
}

// --- the head ---

int LPOrder::GetTotalDigits(const LProfile& profile) const {
    const int digits = GetItemUnitValueDigits(0);
    return digits < 0 ? profile.CurrencyDigits() : HoldDigits(digits);
}

int LPOrder::GetTaxAmountCount() const {
    return std::clamp(GetInt("TaxAmountCount", 0), 0, kMaxOrderLines);
}

int64_t LPOrder::GetTaxAmount(int number) const { return GetInt64(TaxField(number), 0); }

std::string LPOrder::GetTaxAmountName(int number) const { return GetString(TaxNameField(number)); }

void LPOrder::SetTaxAmountCount(int count) {
    for (int number = count + 1; number <= GetTaxAmountCount(); ++number) {
        DeleteField(TaxField(number));
        DeleteField(TaxNameField(number));
    }
    SetInt("TaxAmountCount", count);
}

void LPOrder::SetTaxAmount(int number, std::string_view name, int64_t amount) {
    SetInt64(TaxField(number), amount);
    SetString(TaxNameField(number), name);
}

int64_t LPOrder::CalculateSubTotal(const LProfile&) const {
    // Wide enough for any number of 64-bit amounts; only the result has to fit.
    __extension__ typedef __int128 LWide;
    LWide rest = GetTotal();
    for (int number = 1; number <= GetTaxAmountCount(); ++number) rest -= GetTaxAmount(number);
    return static_cast<int64_t>(std::clamp<LWide>(rest, INT64_MIN, INT64_MAX));
}

eStockReceivedStatus LPOrder::GetStockReceivedStatus() const {
    if (GetBool("StockReceived", false)) return StockFullyReceived;
    return GetBool("StockPartial", false) ? StockPartiallyReceived : StockNotReceived;
}

void LPOrder::SetStockReceivedStatus(int status) {
    if (StockReceivedLabel(status).empty()) return;
    SetString("StockReceived", status == StockFullyReceived ? "1" : "0");
    SetBool("StockPartial", status == StockPartiallyReceived);
}

void LPOrder::GetSupplierName(const LProfile& profile, std::string& out) const {
    NameBehindKey(profile, "Suppliers", GetView("Supplier"), out);
}

void LPOrder::GetLocationName(const LProfile& profile, std::string& out) const {
    NameBehindKey(profile, "Locations", GetView("Location"), out);
}

// --- the lines ---

int LPOrder::GetItemCount() const { return OrderLineCount(*this); }

void LPOrder::SetItemCount(int count) {
    for (int line = count; line < GetItemCount(); ++line) {
        for (const std::string_view what : kLineFields) DeleteField(Field(line, what));
    }
    SetInt("ItemCount", count);
}

std::string LPOrder::GetItemID(int line) const { return GetString(Field(line, "ID")); }

void LPOrder::SetItemID(int line, std::string_view id) { SetString(Field(line, "ID"), id); }

std::string LPOrder::GetItemDescription(int line) const {
    return GetString(Field(line, "Description"));
}

void LPOrder::SetItemDescription(int line, std::string_view text) {
    SetString(Field(line, "Description"), text);
}

std::string LPOrder::GetItemMeasure(int line) const { return GetString(Field(line, "Measure")); }

void LPOrder::SetItemMeasure(int line, std::string_view text) {
    SetString(Field(line, "Measure"), text);
}

double LPOrder::GetItemQty(int line) const { return GetFloat(Field(line, "Qty")); }

void LPOrder::SetItemQty(int line, double quantity) { SetFloat(Field(line, "Qty"), quantity); }

double LPOrder::GetItemQtyReceived(int line) const { return GetFloat(Field(line, "QtyRecd")); }

void LPOrder::SetItemQtyReceived(int line, double quantity) {
    SetFloat(Field(line, "QtyRecd"), quantity);
}

double LPOrder::GetItemQtyNotReceived(int line) const {
    switch (GetStockReceivedStatus()) {
        case StockNotReceived:
            return GetItemQty(line);
        case StockPartiallyReceived:
            return GetItemQty(line) - GetItemQtyReceived(line);
        case StockFullyReceived:
            break;
    }
    return 0;
}

int64_t LPOrder::GetItemUnitValue(int line) const { return GetInt64(Field(line, "UnitValue"), 0); }

void LPOrder::SetItemUnitValue(int line, int64_t minorUnits) {
    SetInt64(Field(line, "UnitValue"), minorUnits);
}

int LPOrder::GetItemUnitValueDigits(int line) const {
    return GetInt(Field(line, "UnitValueDigits"), kNoUnitValueDigits);
}

void LPOrder::SetItemUnitValueDigits(int line, int digits) {
    SetInt(Field(line, "UnitValueDigits"), digits);
}

LMoney LPOrder::GetItemUnitCost(const LProfile& profile, int line) const {
    const int digits = GetItemUnitValueDigits(line);
    return {GetItemUnitValue(line), digits < 0 ? profile.CurrencyDigits() : HoldDigits(digits)};
}

int LPOrder::GetItemTaxRate(int line, double& ratePercent) const {
    const std::string_view text = GetView(Field(line, "TaxRate"));
    const size_t slash = text.find('/');
    if (slash == std::string_view::npos && !text.empty()) return ParseStoredInt(text);
    ratePercent = text.empty() ? 0 : ParseStoredReal(CutText(text.substr(0, slash)));
    return -1;
}

void LPOrder::SetItemTaxRate(int line, double ratePercent) {
    SetString(Field(line, "TaxRate"), DecimalText(ratePercent) + "/");
}

std::string LPOrder::GetItemTaxName(int line) const { return GetString(Field(line, "TaxName")); }

void LPOrder::SetItemTaxName(int line, std::string_view name) {
    SetString(Field(line, "TaxName"), name);
}

void GetItemCode(const LProfile& profile, std::string_view itemId, std::string& out) {
    NameBehindKey(profile, "Items", itemId, out);
}
