#include "orders/LowStockOrders.h"

#include <algorithm>
#include <cmath>

#include "datastore/NumberText.h"
#include "datastore/StoredNumbers.h"
#include "inventory/LItem.h"
#include "inventory/LNameMap.h"
#include "inventory/StockQuantities.h"
#include "orders/QuantityOnOrder.h"

namespace {

constexpr double kNoQuantity = 0.000001;        // a smaller one is none
constexpr int64_t kCostLimit = 10000000000000;  // minor units

std::string OnOneLine(std::string_view text) {
    constexpr std::string_view kBreak = "\r\n";
    std::string line;
    for (size_t end; (end = text.find(kBreak)) != std::string_view::npos;) {
        line.append(text.substr(0, end)).append(" ");
        text.remove_prefix(end + kBreak.size());
    }
    return line.append(text);
}

std::string InvalidValue(std::string_view text, std::string_view end) {
    return std::string("The entered value \"").append(text).append("\" is not valid").append(end);
}

std::string CheckQuantity(const LProfile& profile, std::string& text, double& quantity) {
    const std::optional<double> number = profile.ParseNumber(TrimBlanks(text));
    if (!number) return InvalidValue(text, " number.");
    if (*number < 0) return "Qty must be positive.";
    quantity = *number;
    text = profile.FormatQuantity(quantity);
    return {};
}

// Why a text is no amount of money.
std::string NoMoney(const LProfile& profile, std::string_view text) {
    const std::optional<double> number = profile.ParseNumber(TrimBlanks(text));
    if (!number) return InvalidValue(text, ".");
    if (*number < 0) return "Cost must be positive.";
    const double minorUnits = *number * std::pow(10, profile.CurrencyDigits());
    if (minorUnits >= static_cast<double>(kCostLimit)) return "Cost is too high.";
    return "Enter a proper cost currency value. For description only (non charge items) enter 0.";
}

std::string CheckCost(const LProfile& profile, std::string& text, LMoney& cost) {
    const std::optional<LMoney> money = profile.ParseMoney(text);
    if (!money) return NoMoney(profile, text);
    if (money->minorUnits < 0) return "Cost must be positive.";
    if (money->minorUnits >= kCostLimit) return "Cost is too high.";
    cost = *money;
    text = profile.FormatMoney(cost);
    return {};
}

// What the proposals are made from besides the items.
struct LShortages {
    const LNameMap& locations;
    const LQuantitiesOnOrder& onOrder;
    double percentBelow;
    std::vector<LLowStockRow> rows = {};

    void Add(const LItem& item);
    void AddAt(const LItem& item, const LocationAndQuantities& stock, double ordered,
               std::string_view location);
};

void LShortages::Add(const LItem& item) {
    const auto places = onOrder.Of(item.GetPrimaryKey());
    for (const LocationAndQuantities& stock :
         ParseLocationAndQuantities(item.GetView("LocationsAndQuantities"))) {
        const std::string_view location = locations.Name(stock.location);
        AddAt(item, stock, LQuantitiesOnOrder::At(places, location), location);
    }
}

void LShortages::AddAt(const LItem& item, const LocationAndQuantities& stock, double ordered,
                       std::string_view location) {
    const double need = stock.idealQuantity - (stock.quantity + ordered);
    const double threshold = percentBelow * 0.01 * stock.idealQuantity;
    // What sums of decimals leave behind is no shortage.
    if (!(need > threshold) || need - threshold < kNoQuantity) return;
    LLowStockRow row;
    row.itemId = item.GetPrimaryKey();
    row.code = item.GetString("Name");
    row.description = OnOneLine(item.GetView("Description"));
    row.locationName = location;
    row.supplierName = item.GetString("Supplier");
    row.orderQuantity = need;
    row.inStock = stock.quantity;
    row.onOrder = ordered;
    row.ideal = stock.idealQuantity;
    row.unitCost = item.Cost();
    rows.push_back(std::move(row));
}

}  // namespace

LLowStockSelection LLowStockSelection::FromPercentText(std::string_view text) {
    return {static_cast<double>(std::clamp(ParseStoredInt(text), 0, 100))};
}

std::vector<LLowStockRow> FillOrderItemsLV(const LProfile& profile,
                                           const LLowStockSelection& selection) {
    const LNameMap locations(profile, "Locations");
    const LQuantitiesOnOrder onOrder(profile);
    LShortages shortages{locations, onOrder, selection.percentBelow};
    LItem item;
    const auto iterator = profile.Items().CreateIteratorBase(item);
    for (; item.IsBound(); iterator->Next(item)) shortages.Add(item);
    return std::move(shortages.rows);
}

std::string ValidateCell(const LProfile& profile, LLowStockColumn column, std::string& text,
                         LLowStockRow& row) {
    return column == LLowStockColumn::kOrderQuantity
               ? CheckQuantity(profile, text, row.orderQuantity)
               : CheckCost(profile, text, row.unitCost);
}
