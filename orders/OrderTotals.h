// What an order comes to: its total and its tax amounts, from its lines and the taxes' rates.
//
// A line comes to floor(quantity x unit value + 0.5) minor units. What does not fit into 64 bits is
// told by the result; the order is unchanged then.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "datastore/LProfile.h"
#include "orders/LPOrder.h"
#include "orders/OrderTaxes.h"
#include "platform/LUserInterface.h"

// With which rates an order is computed: those of the settings, or those that its lines keep from
// the day it was saved.
enum class LTaxRates { kPresent, kStored };

// --- The whole: what everyone who saves an order calls. ---

// Computes "Total", "TaxAmountCount", "TaxAmount%d" and "TaxAmountName%d" of the order anew, in
// place; the caller saves. All lines are counted in one number of digits: where they have several,
// lines with fewer are converted to the most first, which loses nothing. False, and the order as it
// was, when an amount does not fit.
[[nodiscard]] bool LOrderSumTotals(const LProfile& profile, LPOrder& order, LTaxRates which);

// --- Its steps. ---

// What totals need of a line, read once.
struct LOrderSumLine {
    double quantity = 0;
    LMoney unitValue;          // all lines in one number of digits
    bool isConverted = false;  // stored in other digits
    std::string_view taxName;  // at most 259 bytes; lives until the order changes
    int taxIndex = -1;         // the entry of the tax list, -1: the line stores a rate or none
    double storedRate = 0;     // percent
};
using LOrderSumLines = std::vector<LOrderSumLine>;
// Nothing when a unit value does not fit in the order's digits.
std::optional<LOrderSumLines> LOrderReadSumLines(const LProfile& profile, const LPOrder& order);

struct LOrderTax {
    std::string name;    // letter case counts; empty: there is no default tax
    double rate = 0;     // percent
    int64_t base = 0;    // what it is levied on, minor units
    int64_t amount = 0;  // minor units
};

// The taxes that the lines of an order name. The order of the rows is the reverse of that in which
// the lines name them first, as it is stored.
class LOrderTaxTable {
public:
    LOrderTax* Find(std::string_view name);
    // Ahead of the others; nothing happens when the name is there already.
    void Add(std::string_view name, double rate);
    std::vector<LOrderTax>& Rows() { return rows_; }
    const std::vector<LOrderTax>& Rows() const { return rows_; }

private:
    std::vector<LOrderTax> rows_;
};

// The taxes named by some line, each with the rate of the first line that names it, base and
// amount 0.
LOrderTaxTable LPOrderExtractTaxNames(const LTaxOptions& options, const LOrderSumLines& lines,
                                      LTaxRates which);
// Fills the bases; returns the sum of the lines that no row of the table taxes, nothing when an
// amount does not fit.
std::optional<int64_t> GetTotals(const LTaxOptions& options, const LOrderSumLines& lines,
                                 LOrderTaxTable& taxes);
enum class LTaxInclusion { kPricesExcludeTax, kPricesIncludeTax };
// Computes the amounts and, when prices exclude tax, adds them to the total. False when one does
// not fit.
[[nodiscard]] bool LApplyTaxes(int64_t& total, LOrderTaxTable& taxes, LTaxInclusion inclusion);

// --- Keeping old rates when an order is edited. ---

// Drafts have a number that begins with "DFT", or say so.
bool LOrderIsDraft(const LPOrder& order);
// Whether the settings have moved on since the order was saved: the inclusivity, or the rate of a
// line. Never for a draft.
bool LInvIsTaxRateChanged(const LTaxOptions& options, const LPOrder& order);

inline constexpr std::string_view kUseOldRates = "Use Old";
inline constexpr std::string_view kUseNewRates = "Use New";
// Asks which rates to use where they have changed; once per editing session, which is the caller's
// to remember. Without an answer old rates are kept.
LTaxRates LOrderAskTaxRates(LUserInterface& ui, const LTaxOptions& options, const LPOrder& order);
// The same without a question: where rates have changed, old ones are kept.
LTaxRates LOrderKeptTaxRates(const LTaxOptions& options, const LPOrder& order);
// Stores with the order what it is computed with: a rate with each line, and the inclusivity.
// kStored leaves both as they are but for lines that have no rate yet. Before LOrderSumTotals.
void LOrderStoreTaxRates(const LTaxOptions& options, LPOrder& order, LTaxRates which);
// The lines' rates alone.
void LOrderStoreLineRates(const LTaxOptions& options, LPOrder& order, LTaxRates which);
