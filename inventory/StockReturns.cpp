#include "inventory/StockReturns.h"

#include <optional>
#include <utility>

#include "datastore/NumberText.h"
#include "inventory/LItem.h"
#include "inventory/MasterRecords.h"
#include "inventory/MovementLock.h"

namespace {

constexpr int64_t kTooMuchMinorUnits = 10'000'000'000'000;

LReturnError Complain(LReturnField field, std::string message) {
    LReturnError error;
    static_cast<LFieldError<LReturnField>&>(error) =
        LFieldError<LReturnField>::At(field, std::move(message));
    return error;
}

LReturnError CheckItem(const LProfile& profile, const LReturnLine& line, LReceipt& receipt) {
    if (TrimBlanks(line.itemCode).empty()) {
        return Complain(LReturnField::kItem, "There are blank items in your list.");
    }
    LItem item;
    if (!OpenItem(profile, item, line.itemCode)) {
        return Complain(LReturnField::kItem, "There is no item " + line.itemCode + ".");
    }
    receipt.itemId = item.GetPrimaryKey();
    return {};
}

LReturnError CheckLocation(const LProfile& profile, const LReturnLine& line, LReceipt& receipt) {
    if (TrimBlanks(line.locationName).empty()) {
        return Complain(LReturnField::kLocation, "There are blank locations in your list.");
    }
    LLocation location;
    if (!OpenLocation(LLocationList(profile), location, line.locationName)) {
        return Complain(LReturnField::kLocation, "There is no location " + line.locationName + ".");
    }
    receipt.locationName = line.locationName;
    return {};
}

LReturnError CheckQuantity(const LProfile& profile, const LReturnLine& line, LReceipt& receipt) {
    const auto quantity = profile.ParseNumber(line.quantity);
    if (!quantity || *quantity <= 0) {
        return Complain(LReturnField::kQuantity, "There are invalid quantity values in your list.");
    }
    receipt.quantity = -*quantity;
    return {};
}

LReturnError CheckCost(const LProfile& profile, const LReturnLine& line, LReceipt& receipt) {
    const auto cost = profile.ParseMoney(line.unitCost);
    if (!cost) {
        return Complain(LReturnField::kCost,
                        "Enter a proper cost currency value. For description only (non charge "
                        "items) enter 0.");
    }
    if (cost->minorUnits < 0) return Complain(LReturnField::kCost, "Cost must be positive.");
    if (cost->minorUnits >= kTooMuchMinorUnits) {
        return Complain(LReturnField::kCost, "Cost is invalid.");
    }
    receipt.unitCost = *cost;
    return {};
}

LReturnError CheckLine(const LProfile& profile, const LReturnLine& line, LReceipt& receipt) {
    for (const auto check : {CheckItem, CheckLocation, CheckQuantity, CheckCost}) {
        LReturnError error = check(profile, line, receipt);
        if (!error.IsNone()) return error;
    }
    return {};
}

}  // namespace

LReturnError LReturnStock(const LProfile& profile, const LReturn& input, int& linesReturned,
                          const std::function<void(const LReceipt&)>& returned) {
    linesReturned = 0;
    if (input.lines.empty()) {
        return Complain(LReturnField::kLines, "There are no items in your list.");
    }
    LReceipt common;
    common.supplier = input.supplier;
    common.text = input.text;
    common.orderId = input.orderId;
    common.date = input.date;
    std::vector<LReceipt> receipts(input.lines.size(), common);
    for (size_t i = 0; i < receipts.size(); ++i) {
        LReturnError error = CheckLine(profile, input.lines[i], receipts[i]);
        if (error.IsNone()) continue;
        error.line = static_cast<int>(i);
        return error;
    }

    const LMovementLock lock(profile);
    for (const LReceipt& receipt : receipts) {
        if (!ReceiveItem(profile, receipt)) continue;
        ++linesReturned;
        if (returned) returned(receipt);
    }
    return {};
}
