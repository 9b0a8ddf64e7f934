// The taxes of a business: their settings, and how an order line's choice of tax is named.
#pragma once

#include <array>
#include <string>
#include <string_view>

#include "datastore/LProfile.h"
#include "platform/LUserInterface.h"

inline constexpr int kTaxCount = 3;        // taxes are numbered from 1; 0 means no tax
inline constexpr int kNoTaxNumber = -1;    // a name that no tax bears
inline constexpr int kTaxListDefault = 0;  // entries of the drop-down of a line's tax
inline constexpr int kTaxListNone = 1;
inline constexpr int kTaxListFirst = 2;  // tax 1; the others follow
inline constexpr std::string_view kTaxDefaultName = "Default";
inline constexpr std::string_view kTaxNoneName = "None";

// The block "Tax" of the settings as it was when this was made. Reads files once; then cheap.
class LTaxOptions {
public:
    explicit LTaxOptions(const LProfile& profile);

    // In percent; 0 for a number that is no tax.
    double GetTaxRate(int number) const;
    // Empty for a number that is no tax.
    void GetTaxName(int number, std::string& out) const { out = TaxName(number); }
    std::string_view TaxName(int number) const;
    // The first tax of that name, letter case counts; kNoTaxNumber when there is none.
    int GetTaxNumberFromName(std::string_view name) const;

    int DefaultTax() const { return defaultTax_; }     // the number of the default tax
    bool IsInclusive() const { return isInclusive_; }  // prices are entered with tax

private:
    bool IsTax(int number) const { return number >= 1 && number <= kTaxCount; }

    std::array<std::string, kTaxCount> names_;
    std::array<double, kTaxCount> rates_{};
    int defaultTax_ = 0;
    bool isInclusive_ = false;
};

// The entry of the drop-down with that text. The empty text and one that no entry has are
// kTaxListDefault.
int ListNameToTax(const LTaxOptions& options, std::string_view name);
// Below 1 "Default"; empty behind the last entry.
void ListTaxToName(const LTaxOptions& options, int index, std::string& out);
// The number of the tax that an entry stands for: the default one for kTaxListDefault and below.
int ListTaxToNumber(const LTaxOptions& options, int index);
// The present rate in percent of the tax that the entry of that name stands for.
double ListNameToTaxRate(const LTaxOptions& options, std::string_view name);

// What the settings page has for the block "Tax".
struct LTaxInput {
    std::array<std::string, kTaxCount> names;
    std::array<std::string, kTaxCount> rates;  // percent as typed, in the profile's number format
    int taxSystem = 0;
    int defaultTax = 0;
    bool isInclusive = false, isDefaultExempt = false;
};
enum class LTaxField { kRate1, kRate2, kRate3 };
// Checks the rates first; on an error nothing is saved.
LFieldError<LTaxField> LTaxSettingsSave(const LProfile& profile, const LTaxInput& input);
