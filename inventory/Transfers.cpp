#include "inventory/Transfers.h"

#include <algorithm>
#include <array>
#include <optional>
#include <utility>

#include "datastore/CsvText.h"
#include "datastore/NumberText.h"
#include "datastore/StoredNumbers.h"
#include "inventory/LItem.h"
#include "inventory/MasterRecords.h"
#include "inventory/MovementLock.h"
#include "inventory/StoredLists.h"
#include "inventory/TransferSteps.h"

namespace {

constexpr std::array<std::string_view, 4> kStateNames{"Requested", "Sent", "Received", "Cancelled"};
constexpr int kLargestNumber = 1'000'000'000;

LTransferError Complain(LTransferField field, std::string message, size_t line) {
    LTransferError error;
    static_cast<LFieldError<LTransferField>&>(error) =
        LFieldError<LTransferField>::At(field, std::move(message));
    error.line = static_cast<int>(line);
    return error;
}

LTransferError Complain(LTransferField field, std::string message) {
    LTransferError error = Complain(field, std::move(message), 0);
    error.line = -1;
    return error;
}

std::string LocationName(const LProfile& profile, const LTransfer& transfer,
                         std::string_view keyField, std::string_view nameField) {
    LLocation location;
    const bool isThere = LLocationList(profile).Load(transfer.GetView(keyField), location);
    return isThere ? location.GetString("Name") : transfer.GetString(nameField);
}

LTransferError CheckLocations(const LLocationList& locations, const LTransferInput& input,
                              LLocation& from, LLocation& to) {
    if (input.from.empty()) {
        return Complain(LTransferField::kFrom, "Select the location that the stock comes from.");
    }
    if (!OpenLocation(locations, from, input.from)) {
        return Complain(LTransferField::kFrom, "There is no location " + input.from + ".");
    }
    if (input.to.empty()) {
        return Complain(LTransferField::kTo, "Select the location that the stock goes to.");
    }
    if (!OpenLocation(locations, to, input.to)) {
        return Complain(LTransferField::kTo, "There is no location " + input.to + ".");
    }
    if (from.GetPrimaryKey() == to.GetPrimaryKey()) {
        return Complain(LTransferField::kTo, "Select another location than the stock comes from.");
    }
    return {};
}

LTransferError CheckLine(const LProfile& profile, const LTransferLineInput& input, size_t index,
                         LTransferLine& line) {
    const std::string code(TrimBlanks(input.itemCode));
    if (code.empty()) {
        return Complain(LTransferField::kItem, "There are blank items in your list.", index);
    }
    LItem item;
    if (!OpenItem(profile, item, code)) {
        return Complain(LTransferField::kItem, "There is no item " + code + ".", index);
    }
    const std::optional<double> quantity = profile.ParseNumber(input.quantity);
    if (!quantity || *quantity <= 0) {
        return Complain(LTransferField::kQuantity,
                        "There are invalid quantity values in your list.", index);
    }
    line = {item.GetPrimaryKey(), code, *quantity};
    return {};
}

LTransferError CheckLines(const LProfile& profile, const LTransferInput& input,
                          std::vector<LTransferLine>& lines) {
    for (size_t i = 0; i < input.lines.size(); ++i) {
        const LTransferLineInput& typed = input.lines[i];
        if (TrimBlanks(typed.itemCode).empty() && TrimBlanks(typed.quantity).empty()) continue;
        LTransferError error = CheckLine(profile, typed, i, lines.emplace_back());
        if (!error.IsNone()) return error;
    }
    if (!lines.empty()) return {};
    return Complain(LTransferField::kItem, "There are no items in your list.", 0);
}

std::string FormatLines(const LProfile& profile, const std::vector<LTransferLine>& lines) {
    std::string out;
    for (const LTransferLine& line : lines) {
        out += '"';
        AppendStoredText(out, line.itemId);
        out += '/';
        AppendExactNumber(out, line.quantity, profile.DigitsAfterDecimalPoint());
        out += '/';
        AppendStoredText(out, line.itemCode);
        out += "\",";
    }
    return out;
}

// The counter is written before the number is used, so that no number is given out twice.
std::string TakeNumber(const LProfile& profile, const LTransferList& transfers) {
    LRecord settings;
    profile.OpenSettings(settings, "Transfer");
    int number = std::clamp(settings.GetInt("Number", 1), 1, kLargestNumber);
    while (transfers.TestRecordExists("TRF" + std::to_string(number))) ++number;
    settings.SetInt("Number", number + 1);
    return "TRF" + std::to_string(number);
}

bool HasElementOf(const LTransfer& transfer, std::string_view field, std::string_view itemId) {
    const std::vector<std::string> elements = ParseCsvRow(transfer.GetView(field));
    return std::any_of(elements.begin(), elements.end(),
                       [&](std::string_view element) { return TakePiece(element) == itemId; });
}

template <typename Test>
bool AnyOpenTransfer(const LProfile& profile, const Test& test) {
    bool found = false;
    LTransferList(profile).ForEach([&](const LTransfer& transfer) {
        found = transfer.IsOpen() && test(transfer);
        return !found;
    });
    return found;
}

}  // namespace

std::string_view TransferStateName(LTransferState state) {
    return kStateNames[static_cast<size_t>(state)];
}

LTransferState LTransfer::State() const {
    const auto name = std::find(kStateNames.begin(), kStateNames.end(), GetView("State"));
    return name == kStateNames.end() ? LTransferState::kCancelled
                                     : static_cast<LTransferState>(name - kStateNames.begin());
}

std::vector<LTransferLine> LTransfer::Lines() const {
    std::vector<LTransferLine> lines;
    for (const std::string& element : ParseCsvRow(GetView("Lines"))) {
        std::string_view rest = element;
        LTransferLine& line = lines.emplace_back();
        line.itemId = TakePiece(rest);
        line.quantity = ParseStoredReal(TakePiece(rest));
        line.itemCode = rest;  // the last piece: a code may hold "/"
    }
    return lines;
}

std::string LTransfer::FromName(const LProfile& profile) const {
    return LocationName(profile, *this, "From", "FromName");
}

std::string LTransfer::ToName(const LProfile& profile) const {
    return LocationName(profile, *this, "To", "ToName");
}

std::string LTransfer::FromName(const LNameMap& locations) const {
    const std::string_view name = locations.Name(GetView("From"));
    return name.empty() ? GetString("FromName") : std::string(name);
}

std::string LTransfer::ToName(const LNameMap& locations) const {
    const std::string_view name = locations.Name(GetView("To"));
    return name.empty() ? GetString("ToName") : std::string(name);
}

LTransferError LTransferRequest(const LProfile& profile, LTransfer& transfer,
                                const LTransferInput& input, const LTransferStep& step) {
    const LMovementLock lock(profile);
    LLocation from, to;
    LTransferError error = CheckLocations(LLocationList(profile), input, from, to);
    std::vector<LTransferLine> lines;
    if (error.IsNone()) error = CheckLines(profile, input, lines);
    if (!error.IsNone()) return error;

    const LTransferList transfers(profile);
    transfers.CreateNewRecord(transfer, TakeNumber(profile, transfers));
    transfer.SetString("From", from.GetPrimaryKey());
    transfer.SetString("FromName", from.GetView("Name"));
    transfer.SetString("To", to.GetPrimaryKey());
    transfer.SetString("ToName", to.GetView("Name"));
    transfer.SetString("Lines", FormatLines(profile, lines));
    transfer.SetString("Note", input.note);
    if (StoreTransferState(profile, transfer, LTransferState::kRequested, step)) return {};
    static_cast<LFieldError<LTransferField>&>(error) =
        LFieldError<LTransferField>::General("The transfer could not be saved.");
    return error;
}

bool IsItemOnOpenTransfer(const LProfile& profile, std::string_view itemId) {
    return AnyOpenTransfer(profile, [&](const LTransfer& transfer) {
        return HasElementOf(transfer, "Lines", itemId) ||
               HasElementOf(transfer, "InTransit", itemId);
    });
}

bool IsLocationOnOpenTransfer(const LProfile& profile, std::string_view locationId) {
    return AnyOpenTransfer(profile, [&](const LTransfer& transfer) {
        return transfer.GetView("From") == locationId || transfer.GetView("To") == locationId;
    });
}
