#include "orders/OrderTotals.h"

#include <algorithm>
#include <cmath>
#include <limits>

#include "inventory/OrderReferences.h"
#include "platform/TextLimits.h"

namespace {

constexpr int kNoListIndex = -1;       // the line stores a rate, or nothing
constexpr double kSameRate = 0.00001;  // rates that differ by no more are the same
constexpr std::string_view kDraftPrefix = "DFT";

bool Add(int64_t& sum, int64_t amount) { return !__builtin_add_overflow(sum, amount, &sum); }

// Nothing when it was held to the range of 64 bits: nobody's line comes to exactly that.
std::optional<int64_t> CheckedLineAmount(const LOrderSumLine& line) {
    const int64_t amount = LineAmount(line.quantity, line.unitValue).minorUnits;
    constexpr std::numeric_limits<int64_t> kRange;
    if (amount == kRange.max() || amount == kRange.min()) return std::nullopt;
    return amount;
}

// A tax amount as whole minor units.
std::optional<int64_t> Rounded(double amount) {
    constexpr double kLimit = 9223372036854775808.0;  // 2^63
    const double rounded = std::floor(amount + 0.5);
    if (!(rounded >= -kLimit && rounded < kLimit)) return std::nullopt;
    return static_cast<int64_t>(rounded);
}

bool IsDefaultName(std::string_view name) { return name.empty() || name == kTaxDefaultName; }

std::string_view LineTaxName(const LPOrder& order, int line) {
    return CutText(order.GetView(LOrderLineField(line + 1, "TaxName")));
}

bool HasStoredRate(const LPOrder& order, int line) {
    const std::string_view text = order.GetView(LOrderLineField(line + 1, "TaxRate"));
    return text.find('/') != std::string_view::npos;
}

// The name under which a line's tax stands in the table, and its rate.
struct LLineTax {
    std::string_view name;
    double rate = 0;
    int index = kNoListIndex;
};

LLineTax NamedTax(const LTaxOptions& options, const LOrderSumLine& line, LTaxRates which) {
    const bool isStored = which == LTaxRates::kStored;
    if (IsDefaultName(line.taxName)) {
        const int number = options.DefaultTax();
        return {options.TaxName(number), isStored ? line.storedRate : options.GetTaxRate(number)};
    }
    const int index = isStored ? line.taxIndex : options.GetTaxNumberFromName(line.taxName);
    if (index < 0) return {line.taxName, isStored ? line.storedRate : 0};
    // Not ListNameToTaxRate: here a name that no entry has is no tax, not the default one.
    const int number = ListNameToTax(options, line.taxName) - kTaxListFirst + 1;
    return {line.taxName, options.GetTaxRate(number), index};
}

LLineTax TaxOfLine(const LTaxOptions& options, const LOrderSumLine& line, LTaxRates which) {
    LLineTax tax = NamedTax(options, line, which);
    if (tax.rate == 0 && tax.index == kNoListIndex) {
        const double present = ListNameToTaxRate(options, tax.name);
        if (present >= 0) tax.rate = present;
    }
    return tax;
}

// The name of the tax that is levied on the line. An entry of the list wins over the line's name.
std::string_view BaseName(const LTaxOptions& options, const LOrderSumLine& line) {
    if (line.taxIndex == kTaxListNone) return kTaxNoneName;
    const std::string_view name = line.taxIndex == kNoListIndex
                                      ? line.taxName
                                      : options.TaxName(ListTaxToNumber(options, line.taxIndex));
    return IsDefaultName(name) ? options.TaxName(options.DefaultTax()) : name;
}

// All lines in the most digits that one has: that loses nothing.
bool UseOneDigitsCount(LOrderSumLines& lines) {
    int digits = 0;
    for (const LOrderSumLine& line : lines) digits = std::max(digits, line.unitValue.digits);
    for (LOrderSumLine& line : lines) {
        if (line.unitValue.digits == digits) continue;
        const std::optional<LMoney> converted = WithDigits(line.unitValue, digits);
        if (!converted) return false;
        line.unitValue = *converted;
        line.isConverted = true;
    }
    return true;
}

struct LOrderSums {
    int64_t total = 0;
    LOrderTaxTable taxes;
};

std::optional<LOrderSums> Sum(const LTaxOptions& options, const LPOrder& order,
                              const LOrderSumLines& lines, LTaxRates which) {
    LOrderSums sums;
    sums.taxes = LPOrderExtractTaxNames(options, lines, which);
    const std::optional<int64_t> untaxed = GetTotals(options, lines, sums.taxes);
    if (!untaxed) return std::nullopt;
    sums.total = *untaxed;
    for (const LOrderTax& tax : sums.taxes.Rows()) {
        if (!Add(sums.total, tax.base)) return std::nullopt;
    }
    if (order.GetInt("TaxRate", 0) == kOrderNotTaxed) return sums;
    const LTaxInclusion inclusion = order.GetBool("IsTaxInclusive", false)
                                        ? LTaxInclusion::kPricesIncludeTax
                                        : LTaxInclusion::kPricesExcludeTax;
    if (!LApplyTaxes(sums.total, sums.taxes, inclusion)) return std::nullopt;
    return sums;
}

void StoreConverted(LPOrder& order, const LOrderSumLines& lines) {
    for (size_t i = 0; i < lines.size(); ++i) {
        if (!lines[i].isConverted) continue;
        order.SetItemUnitValue(static_cast<int>(i), lines[i].unitValue.minorUnits);
        order.SetItemUnitValueDigits(static_cast<int>(i), lines[i].unitValue.digits);
    }
}

void StoreSums(LPOrder& order, const LOrderSums& sums) {
    const std::vector<LOrderTax>& taxes = sums.taxes.Rows();
    order.SetTaxAmountCount(static_cast<int>(taxes.size()));
    int number = 0;
    for (const LOrderTax& tax : taxes) order.SetTaxAmount(++number, tax.name, tax.amount);
    if (order.GetTotal() != sums.total) order.SetInt64("Total", sums.total);
}

}  // namespace

bool LOrderSumTotals(const LProfile& profile, LPOrder& order, LTaxRates which) {
    const std::optional<LOrderSumLines> lines = LOrderReadSumLines(profile, order);
    if (!lines) return false;
    const LTaxOptions options(profile);
    const std::optional<LOrderSums> sums = Sum(options, order, *lines, which);
    if (!sums) return false;
    StoreConverted(order, *lines);
    StoreSums(order, *sums);
    return true;
}

std::optional<LOrderSumLines> LOrderReadSumLines(const LProfile& profile, const LPOrder& order) {
    LOrderSumLines lines(static_cast<size_t>(order.GetItemCount()));
    int number = 0;
    for (LOrderSumLine& line : lines) {
        line.quantity = order.GetItemQty(number);
        line.unitValue = order.GetItemUnitCost(profile, number);
        line.taxName = LineTaxName(order, number);
        line.taxIndex = order.GetItemTaxRate(number, line.storedRate);
        ++number;
    }
    if (!UseOneDigitsCount(lines)) return std::nullopt;
    return lines;
}

LOrderTax* LOrderTaxTable::Find(std::string_view name) {
    const auto found = std::find_if(rows_.begin(), rows_.end(),
                                    [name](const LOrderTax& tax) { return tax.name == name; });
    return found == rows_.end() ? nullptr : &*found;
}

void LOrderTaxTable::Add(std::string_view name, double rate) {
    if (Find(name) != nullptr) return;
    rows_.insert(rows_.begin(), LOrderTax{std::string(name), rate});
}

LOrderTaxTable LPOrderExtractTaxNames(const LTaxOptions& options, const LOrderSumLines& lines,
                                      LTaxRates which) {
    LOrderTaxTable taxes;
    for (const LOrderSumLine& line : lines) {
        const LLineTax tax = TaxOfLine(options, line, which);
        if (tax.name != kTaxNoneName) taxes.Add(CutText(tax.name), tax.rate);
    }
    return taxes;
}

std::optional<int64_t> GetTotals(const LTaxOptions& options, const LOrderSumLines& lines,
                                 LOrderTaxTable& taxes) {
    for (LOrderTax& tax : taxes.Rows()) tax.base = 0;
    int64_t untaxed = 0;
    for (const LOrderSumLine& line : lines) {
        const std::optional<int64_t> amount = CheckedLineAmount(line);
        LOrderTax* tax = taxes.Find(CutText(BaseName(options, line)));
        if (!amount || !Add(tax == nullptr ? untaxed : tax->base, *amount)) return std::nullopt;
    }
    return untaxed;
}

bool LApplyTaxes(int64_t& total, LOrderTaxTable& taxes, LTaxInclusion inclusion) {
    const bool isInclusive = inclusion == LTaxInclusion::kPricesIncludeTax;
    for (LOrderTax& tax : taxes.Rows()) {
        if (tax.base == 0 || !(tax.rate > 0)) continue;
        const double base = static_cast<double>(tax.base);
        const std::optional<int64_t> amount =
            Rounded(isInclusive ? base / (100 / tax.rate + 1) : base * tax.rate * 0.01);
        if (!amount || !Add(tax.amount, *amount)) return false;
    }
    if (isInclusive) return true;
    return std::all_of(taxes.Rows().begin(), taxes.Rows().end(),
                       [&total](const LOrderTax& tax) { return Add(total, tax.amount); });
}

bool LOrderIsDraft(const LPOrder& order) {
    const std::string& id = order.GetPrimaryKey();
    // A recorded number whose prefix is these letters has a hyphen behind them.
    const bool isDraftNumber = id.compare(0, kDraftPrefix.size(), kDraftPrefix) == 0 &&
                               id.compare(0, kDraftPrefix.size() + 1, "DFT-") != 0;
    return isDraftNumber || order.GetBool("IsDraft", false);
}

bool LInvIsTaxRateChanged(const LTaxOptions& options, const LPOrder& order) {
    if (LOrderIsDraft(order)) return false;
    if (order.GetBool("IsTaxInclusive", false) != options.IsInclusive()) return true;
    for (int line = 0; line < order.GetItemCount(); ++line) {
        if (!HasStoredRate(order, line)) continue;
        double stored = 0;
        order.GetItemTaxRate(line, stored);
        const double present = ListNameToTaxRate(options, LineTaxName(order, line));
        if (std::abs(stored - present) > kSameRate) return true;
    }
    return false;
}

LTaxRates LOrderAskTaxRates(LUserInterface& ui, const LTaxOptions& options, const LPOrder& order) {
    if (!LInvIsTaxRateChanged(options, order)) return LTaxRates::kPresent;
    const std::string answer =
        ui.Ask("Tax Rates",
               "Tax rates or tax inclusivity has been changed. Do you want to use old tax rates?",
               {std::string(kUseOldRates), std::string(kUseNewRates)});
    return answer == kUseNewRates ? LTaxRates::kPresent : LTaxRates::kStored;
}

LTaxRates LOrderKeptTaxRates(const LTaxOptions& options, const LPOrder& order) {
    return LInvIsTaxRateChanged(options, order) ? LTaxRates::kStored : LTaxRates::kPresent;
}

void LOrderStoreTaxRates(const LTaxOptions& options, LPOrder& order, LTaxRates which) {
    LOrderStoreLineRates(options, order, which);
    if (which == LTaxRates::kPresent) order.SetBool("IsTaxInclusive", options.IsInclusive());
}

void LOrderStoreLineRates(const LTaxOptions& options, LPOrder& order, LTaxRates which) {
    for (int line = 0; line < order.GetItemCount(); ++line) {
        if (which == LTaxRates::kStored && HasStoredRate(order, line)) continue;
        double unused = 0;
        const int index = order.GetItemTaxRate(line, unused);
        std::string name(LineTaxName(order, line));
        if (index >= 0) ListTaxToName(options, index, name);
        order.SetItemTaxName(line, name);
        order.SetItemTaxRate(line, ListNameToTaxRate(options, name));
    }
}
