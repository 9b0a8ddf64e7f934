#include "orders/OrderInput.h"

#include <algorithm>
#include <cmath>
#include <utility>

#include "datastore/NumberText.h"
#include "inventory/MasterRecords.h"
#include "inventory/OrderReferences.h"
#include "orders/LPOrderList.h"
#include "orders/OrderTaxes.h"
#include "platform/TextLimits.h"

namespace {

constexpr int kStoredDecimals = 6;

// With the profile's decimals, or as many more as the stored number has.
std::string QuantityText(const LProfile& profile, double quantity) {
    const double unit = std::pow(10, kStoredDecimals);
    int digits = profile.DigitsAfterDecimalPoint();
    for (; digits < kStoredDecimals; ++digits) {
        const double shown = quantity * std::pow(10, digits);
        if (!std::isfinite(shown) || std::abs(shown - std::round(shown)) < 0.5 / unit) break;
    }
    return profile.FormatNumber(quantity, digits, false);
}

std::string DateText(const LProfile& profile, std::string_view stored) {
    const std::optional<LDate> date = LDate::FromStored(stored);
    return date ? profile.FormatDate(*date) : std::string(stored);
}

std::string StoredDate(const LProfile& profile, std::string_view typed) {
    const std::string_view text = TrimBlanks(typed);
    const std::optional<LDate> date = profile.ParseDate(text);
    return date ? date->ToStored() : std::string(CutText(text));
}

LOrderLineInput LineInputOf(const LProfile& profile, const LTaxOptions& options,
                            const LPOrder& order, int line) {
    LOrderLineInput input;
    input.code = LOrderLineCode(profile, order, line);
    input.description = order.GetItemDescription(line);
    input.measure = order.GetItemMeasure(line);
    input.quantity = QuantityText(profile, order.GetItemQty(line));
    input.unitCost = profile.FormatMoneyInput(order.GetItemUnitCost(profile, line));
    input.taxName = LOrderLineTaxChoice(options, order, line);
    input.storedLine = line + 1;
    return input;
}

// A mangled count promises lines that were never stored.
int StoredLineCount(const LPOrder& order) {
    int count = order.GetItemCount();
    const auto isStored = [&](int line) {
        return order.TestFieldExists(LOrderLineField(line + 1, "ID")) ||
               order.TestFieldExists(LOrderLineField(line + 1, "Qty"));
    };
    while (count > 0 && !isStored(count - 1)) --count;
    return count;
}

LOrderError Complain(LOrderField field, std::string message, std::string title = {},
                     int line = -1) {
    LOrderError error;
    static_cast<LFieldError<LOrderField>&>(error) =
        LFieldError<LOrderField>::At(field, std::move(message));
    error.title = std::move(title);
    error.line = line;
    return error;
}

std::string NotValid(std::string_view typed, std::string_view what) {
    return "The entered value \"" + std::string(CutText(typed)) + "\" is not valid" +
           std::string(what) + ".";
}

// A line in which nothing was entered; a quantity or cost of 0 is nothing.
bool IsBlank(const LProfile& profile, const LOrderLineInput& line) {
    const auto isBlank = [](std::string_view text) { return TrimBlanks(text).empty(); };
    const auto isZeroQuantity = profile.ParseNumber(line.quantity) == 0.0;
    const auto cost = profile.ParseMoney(line.unitCost);
    return isBlank(line.code) && isBlank(line.description) &&
           (isBlank(line.quantity) || isZeroQuantity) &&
           (isBlank(line.unitCost) || (cost && cost->minorUnits == 0));
}

// The numbers of one line. What cannot be read is told at its place.
LOrderError ReadNumbers(const LProfile& profile, const LOrderLineInput& input,
                        LOrderReadLine& line) {
    const std::string_view quantity = TrimBlanks(input.quantity);
    const std::optional<double> number = quantity.empty() ? 0 : profile.ParseNumber(quantity);
    if (!number) {
        return Complain(LOrderField::kQuantity, NotValid(quantity, " number"), "", line.inputLine);
    }
    line.quantity = *number;
    const std::string_view cost = TrimBlanks(input.unitCost);
    const std::optional<LMoney> amount =
        cost.empty() ? LMoney{0, profile.CurrencyDigits()} : profile.ParseMoney(cost);
    if (!amount) return Complain(LOrderField::kUnitCost, NotValid(cost, ""), "", line.inputLine);
    line.unitCost = *amount;
    return {};
}

LOrderReadLine TextsOf(const LOrderLineInput& input, int inputLine) {
    LOrderReadLine line;
    line.code = CutText(TrimBlanks(input.code));
    line.description = input.description;
    line.measure = TrimBlanks(input.measure);
    line.taxName = input.taxName;
    line.storedLine = input.storedLine;
    line.inputLine = inputLine;
    return line;
}

LOrderRead HeadOf(const LProfile& profile, const LOrderInput& input) {
    LOrderRead read;
    read.supplier = TrimBlanks(input.supplier);
    read.date = StoredDate(profile, input.date);
    read.receiptDate = StoredDate(profile, input.receiptDate);
    return read;
}

// The stored order as it is now; unbound for a new one.
bool HasStockReceived(const LProfile& profile, const LOrderInput& input) {
    LPOrder stored;
    return !input.id.empty() && LPOrderOpen(profile, stored, input.id) &&
           stored.GetStockReceivedStatus() != StockNotReceived;
}

bool MayRecordAgain(LUserInterface& ui, const LProfile& profile, const LOrderInput& input) {
    return !HasStockReceived(profile, input) ||
           ui.Ask("Record order",
                  "Stock has been received for this order, would you like to record it anyway?",
                  {"Record", "Cancel"}) == "Record";
}

LOrderError CheckHead(const LOrderRead& read) {
    constexpr const char* kNoDate = "Please enter a valid date.";
    const std::optional<LDate> date = LDate::FromStored(read.date);
    if (!date) return Complain(LOrderField::kDate, kNoDate, "Date Required");
    const std::optional<LDate> receiptDate = LDate::FromStored(read.receiptDate);
    if (!receiptDate) return Complain(LOrderField::kReceiptDate, kNoDate, "Date Required");
    if (*receiptDate < *date) {
        return Complain(LOrderField::kReceiptDate, "The receipt date must be after the issue date.",
                        "Invalid Date");
    }
    if (read.supplier.empty()) {
        return Complain(LOrderField::kSupplier, "Please enter the supplier name.",
                        "Supplier Name Required");
    }
    return {};
}

LOrderError CheckLine(const LOrderReadLine& line) {
    if (line.quantity < 0) {
        return Complain(LOrderField::kQuantity, "Quantity cannot be negative.", "", line.inputLine);
    }
    if (line.code.empty()) {
        return Complain(LOrderField::kItem, "Item code cannot be blank.", "", line.inputLine);
    }
    return {};
}

// `check` looks at each line as soon as it is read.
template <typename Check>
LOrderError ReadLines(const LProfile& profile, const LOrderInput& input, LOrderRead& read,
                      const Check& check) {
    if (input.lines.size() > static_cast<size_t>(kMaxOrderLines)) {
        return Complain(LOrderField::kLines,
                        "An order can have at most " + std::to_string(kMaxOrderLines) + " lines.");
    }
    int index = -1;
    for (const LOrderLineInput& lineInput : input.lines) {
        ++index;
        if (IsBlank(profile, lineInput)) continue;
        LOrderReadLine line = TextsOf(lineInput, index);
        LOrderError error = ReadNumbers(profile, lineInput, line);
        if (error.IsNone()) error = check(line);
        if (!error.IsNone()) return error;
        read.lines.push_back(std::move(line));
    }
    return {};
}

}  // namespace

LOrderInput LOrderInputOf(const LProfile& profile, const LPOrder& order) {
    LOrderInput input;
    input.id = order.GetPrimaryKey();
    order.GetSupplierName(profile, input.supplier);
    input.date = DateText(profile, order.GetView("Date"));
    input.receiptDate = DateText(profile, order.GetView("Receipt Date"));
    input.locationId = order.GetString("Location");
    input.shipBy = order.GetString("ShipBy");
    input.trackingRef = order.GetString("TrackingRef");
    input.address = order.GetString("Address");
    input.shippingAddress = order.GetString("ShippingAddress");
    input.notes = order.GetString("Notes");
    input.internalNotes = order.GetString("NotesIternal");
    input.isSameAsBillTo = order.GetBool("SameAsBillTo", false);
    input.isNotTaxed = order.GetInt("TaxRate", 0) == kOrderNotTaxed;
    const LTaxOptions options(profile);
    const int lines = StoredLineCount(order);
    for (int line = 0; line < lines; ++line) {
        input.lines.push_back(LineInputOf(profile, options, order, line));
    }
    return input;
}

LOrderInput LOrderNewInput(const LProfile& profile) {
    LOrderInput input;
    input.date = input.receiptDate = profile.FormatDate(LDate::Today());
    LLocationList(profile).ForEach([&](const LLocation& location) {
        input.locationId = location.GetPrimaryKey();
        return false;
    });
    LRecord company;
    profile.OpenSettings(company, "Company");
    input.address = company.GetString("Address");
    return input;
}

std::string LOrderLineCode(const LProfile& profile, const LPOrder& order, int line) {
    const std::string id = order.GetItemID(line);
    std::string code;
    GetItemCode(profile, id, code);
    return code.empty() ? id : code;
}

std::string LOrderLineTaxChoice(const LTaxOptions& options, const LPOrder& order, int line) {
    double unused = 0;
    const int index = order.GetItemTaxRate(line, unused);
    std::string name = order.GetItemTaxName(line);
    if (index >= 0) ListTaxToName(options, index, name);
    return name.empty() ? std::string(kTaxDefaultName) : name;
}

LOrderError LOrderReadInput(const LProfile& profile, const LOrderInput& input, LOrderRead& read) {
    read = HeadOf(profile, input);
    return ReadLines(profile, input, read, [](const LOrderReadLine&) { return LOrderError(); });
}

LOrderError LOrderValidate(LUserInterface& ui, const LProfile& profile, const LOrderInput& input,
                           LOrderRead& read) {
    read = HeadOf(profile, input);
    if (!MayRecordAgain(ui, profile, input)) {
        LOrderError cancelled;
        cancelled.failed = true;
        return cancelled;
    }
    LOrderError error = CheckHead(read);
    if (!error.IsNone()) return error;
    if (input.lines.empty()) {
        return Complain(LOrderField::kLines, "Please add items to the order.", "Empty Order");
    }
    error = ReadLines(profile, input, read, CheckLine);
    if (!error.IsNone()) return error;
    if (!read.lines.empty()) return {};
    return Complain(LOrderField::kLines,
                    "Purchase order cannot be blank. Please add at least one item to this order.");
}
