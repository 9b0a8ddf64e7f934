#include "orders/OrderTaxes.h"

#include <algorithm>
#include <optional>

#include "datastore/NumberText.h"
#include "inventory/ItemSave.h"
#include "platform/TextLimits.h"

namespace {

constexpr size_t kComparedBytes = 260;  // longer names that begin alike are one name
constexpr double kHighestRate = 100;

std::string Numbered(std::string_view field, int number) {
    return std::string(field) + std::to_string(number);
}

size_t Place(int number) { return static_cast<size_t>(number - 1); }

// A rate in percent as typed; nothing when it is none.
std::optional<double> ReadRate(const LProfile& profile, std::string_view text) {
    text = TrimBlanks(text);
    if (text.empty() || text.front() == '-') return std::nullopt;
    const std::optional<double> rate = profile.ParseNumber(text);
    return rate && *rate >= 0 && *rate <= kHighestRate ? rate : std::nullopt;
}

}  // namespace

LTaxOptions::LTaxOptions(const LProfile& profile) {
    // The drop-down's texts hold the taxes' names, defaults included.
    const std::vector<std::string> entries = GetTaxNames(profile);
    LRecord settings;
    profile.OpenSettings(settings, "Tax");
    for (int number = 1; number <= kTaxCount; ++number) {
        names_[Place(number)] = entries[Place(number) + kTaxListFirst];
        rates_[Place(number)] = settings.GetFloat(Numbered("TaxRate", number));
    }
    defaultTax_ = settings.GetInt("DefaultRate", 0);
    isInclusive_ = settings.GetBool("TaxInclusive", false);
}

double LTaxOptions::GetTaxRate(int number) const {
    return IsTax(number) ? rates_[Place(number)] : 0;
}

std::string_view LTaxOptions::TaxName(int number) const {
    return IsTax(number) ? std::string_view(names_[Place(number)]) : std::string_view();
}

int LTaxOptions::GetTaxNumberFromName(std::string_view name) const {
    for (int number = 1; number <= kTaxCount; ++number) {
        const bool isEqual =
            CutText(TaxName(number), kComparedBytes) == CutText(name, kComparedBytes);
        if (isEqual) return number;
    }
    return kNoTaxNumber;
}

int ListNameToTax(const LTaxOptions& options, std::string_view name) {
    if (name.empty() || name == kTaxDefaultName) return kTaxListDefault;
    if (name == kTaxNoneName) return kTaxListNone;
    const int number = options.GetTaxNumberFromName(name);
    return number == kNoTaxNumber ? kTaxListDefault : number - 1 + kTaxListFirst;
}

void ListTaxToName(const LTaxOptions& options, int index, std::string& out) {
    if (index <= kTaxListDefault) {
        out = kTaxDefaultName;
    } else if (index == kTaxListNone) {
        out = kTaxNoneName;
    } else {
        options.GetTaxName(ListTaxToNumber(options, index), out);
    }
}

int ListTaxToNumber(const LTaxOptions& options, int index) {
    return index <= kTaxListDefault ? options.DefaultTax() : index - kTaxListFirst + 1;
}

double ListNameToTaxRate(const LTaxOptions& options, std::string_view name) {
    return options.GetTaxRate(ListTaxToNumber(options, ListNameToTax(options, name)));
}

LFieldError<LTaxField> LTaxSettingsSave(const LProfile& profile, const LTaxInput& input) {
    constexpr std::array<LTaxField, kTaxCount> kFields{LTaxField::kRate1, LTaxField::kRate2,
                                                       LTaxField::kRate3};
    std::array<double, kTaxCount> rates{};
    for (size_t i = 0; i < rates.size(); ++i) {
        const std::optional<double> rate = ReadRate(profile, input.rates[i]);
        if (!rate) {
            return LFieldError<LTaxField>::At(kFields[i],
                                              "Please enter a positive number between 0 and 100.");
        }
        rates[i] = *rate;
    }
    LRecord settings;
    profile.OpenSettings(settings, "Tax");
    settings.SetInt("TaxSystem", input.taxSystem);
    for (int number = 1; number <= kTaxCount; ++number) {
        settings.SetString(Numbered("TaxName", number), input.names[Place(number)]);
        settings.SetFloat(Numbered("TaxRate", number), rates[Place(number)]);
    }
    settings.SetInt("DefaultRate", std::clamp(input.defaultTax, 0, kTaxCount));
    settings.SetBool("TaxInclusive", input.isInclusive);
    settings.SetBool("DefaultExempt", input.isDefaultExempt);
    if (settings.Flush()) return LFieldError<LTaxField>::None();
    return LFieldError<LTaxField>::General("The tax settings could not be saved.");
}
