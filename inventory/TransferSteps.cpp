#include "inventory/TransferSteps.h"

#include <algorithm>
#include <map>
#include <utility>

#include "inventory/BillOfMaterials.h"
#include "inventory/LItem.h"
#include "inventory/MasterRecords.h"
#include "inventory/MovementLock.h"
#include "inventory/StockHistory.h"
#include "inventory/StockQuantities.h"

namespace {

constexpr char kMoving[] = "Moving";
constexpr int kMaxParts = 10000;  // past this a bill is mangled and nothing that anyone builds

// What moves of the items that keep stock: quantities by item key.
using LParts = std::map<std::string, double>;

// Takes built items apart, down to what keeps stock.
class LPartsList {
public:
    explicit LPartsList(const LProfile& profile) : profile_(profile) {}

    // False when an item or component is missing or a bill leads back to itself; Problem says so.
    bool Add(const LTransferLine& line) {
        LItem item;
        if (!profile_.Items().Open(item, line.itemId)) {
            problem_ = "Item " + line.itemCode + " has been deleted.";
            return false;
        }
        return Add(item, line.quantity, 0);
    }
    const LParts& Parts() const { return parts_; }
    const std::string& Problem() const { return problem_; }

private:
    bool Add(const LItem& item, double quantity, size_t depth) {
        if (!item.IsBuilt()) {
            parts_[item.GetPrimaryKey()] += quantity;
            return true;
        }
        std::vector<BOMItemQuantities> lines;
        ParseBOMItemsAndQuantities(lines, item.GetView("BillOfMaterials"));
        for (const BOMItemQuantities& line : lines) {
            LItem component;
            if (depth >= kMaxBillDepth || ++count_ > kMaxParts) {
                problem_ = "The bill of materials of item " + item.GetString("Name") +
                           " leads back to itself.";
                return false;
            }
            if (!OpenItem(profile_, component, line.code)) {
                problem_ = "Component " + line.code + " of item " + item.GetString("Name") +
                           " does not exist.";
                return false;
            }
            if (!Add(component, quantity * line.quantity, depth + 1)) return false;
        }
        return true;
    }

    const LProfile& profile_;
    LParts parts_;
    std::string problem_;
    int count_ = 0;
};

// "InTransit" has the form of a bill of materials, with keys in the place of codes.
std::string FormatParts(const LProfile& profile, const LParts& parts) {
    std::vector<BOMItemQuantities> list;
    for (const auto& [id, quantity] : parts) list.push_back({id, quantity});
    return GetBOMItemQuantityString(profile, list);
}

LParts ParseParts(std::string_view text) {
    std::vector<BOMItemQuantities> list;
    ParseBOMItemsAndQuantities(list, text);
    LParts parts;
    for (const BOMItemQuantities& part : list) parts[part.code] += part.quantity;
    return parts;
}

// Adds `sign` times the parts to the stock at the location: all or none. Empty, or what stood
// against it.
std::string MoveParts(const LProfile& profile, const LParts& parts, double sign,
                      const std::string& locationName) {
    std::string problem;
    auto part = parts.begin();
    for (; part != parts.end() && problem.empty(); ++part) {
        const auto& [id, quantity] = *part;
        if (LItemChangeQuantityById(profile, id, sign * quantity, locationName, true)) continue;
        LItem item;
        const bool isThere = profile.Items().Open(item, id);
        problem = isThere ? "The stock of item " + item.GetString("Name") + " at " + locationName +
                                " cannot be changed."
                          : "An item of this transfer has been deleted.";
        break;
    }
    if (problem.empty()) return {};
    while (part != parts.begin()) {
        --part;
        static_cast<void>(LItemChangeQuantityById(profile, part->first, -sign * part->second,
                                                  locationName, true));
    }
    return problem;
}

std::string Shortage(const LProfile& profile, const std::string& id, double needed,
                     const std::string& locationName) {
    LItem item;
    if (!profile.Items().Open(item, id)) return {};
    const double inStock = GetItemsInStock(profile, item, locationName);
    if (inStock >= needed) return {};
    return "Item " + item.GetString("Name") + ": " + profile.FormatQuantity(inStock) +
           " in stock at " + locationName + ", " + profile.FormatQuantity(needed) + " needed.";
}

// One step of one transfer.
class LTransferMove {
public:
    LTransferMove(const LProfile& profile, LTransfer& transfer, const LTransferStep& step)
        : profile_(profile), transfer_(transfer), step_(step) {}

    // The new state with the stock that goes with it, all or nothing. `keyField` and `sign` say
    // where the parts are added; `text` goes to the history rows.
    std::string Run(LTransferState state, const LParts& parts, double sign,
                    std::string_view keyField, const std::string& text) {
        LLocation location;
        if (!LLocationList(profile_).Load(transfer_.GetView(keyField), location)) {
            return "The location of this transfer has been deleted.";
        }
        locationName_ = location.GetString("Name");
        const LTransferState before = transfer_.State();
        const std::string inTransit = transfer_.GetString("InTransit");
        transfer_.SetString("InTransit", sign < 0 ? FormatParts(profile_, parts) : "");
        OverwriteField(transfer_, kMoving, "1");
        if (!StoreTransferState(profile_, transfer_, state, step_)) {
            return "The transfer could not be saved.";
        }
        std::string problem = MoveParts(profile_, parts, sign, locationName_);
        if (problem.empty() && !WriteRows(sign, text)) {
            problem = "The movement history could not be written.";
            static_cast<void>(MoveParts(profile_, parts, -sign, locationName_));
        }
        transfer_.DeleteField(kMoving);
        if (problem.empty()) {
            transfer_.Flush();
            return {};
        }
        const std::string name(TransferStateName(state));
        OverwriteField(transfer_, "State", TransferStateName(before));
        OverwriteField(transfer_, "InTransit", inTransit);
        transfer_.DeleteField(name + "Date");
        transfer_.DeleteField(name + "By");
        transfer_.Flush();
        return problem;
    }

private:
    // With one write: all rows of the step or none.
    bool WriteRows(double sign, const std::string& text) const {
        std::vector<LReceiveRow> rows;
        for (const LTransferLine& line : transfer_.Lines()) {
            LReceiveRow& row = rows.emplace_back();
            row.itemId = line.itemId;
            row.locationName = locationName_;
            row.text = text;
            row.date = step_.date;
            row.quantity = sign * line.quantity;
            row.unitCost = {0, 0};
        }
        return CreateNewReceiveRecords(profile_, rows);
    }

    const LProfile& profile_;
    LTransfer& transfer_;
    const LTransferStep& step_;
    std::string locationName_;
};

std::string WrongState(const LTransfer& transfer) {
    std::string state(TransferStateName(transfer.State()));
    state[0] = static_cast<char>(state[0] - 'A' + 'a');
    return "Transfer " + transfer.GetPrimaryKey() + " has been " + state + " already.";
}

std::string TextOf(const LTransfer& transfer, std::string_view rest) {
    return "Transfer " + transfer.GetPrimaryKey() + " " + std::string(rest);
}

std::string JoinLines(const std::vector<std::string>& lines) {
    std::string text;
    for (const std::string& line : lines) text += (text.empty() ? "" : "\n") + line;
    return text;
}

constexpr char kGone[] = "This transfer has been deleted.";

}  // namespace

bool StoreTransferState(const LProfile& profile, LTransfer& transfer, LTransferState state,
                        const LTransferStep& step) {
    const std::string name(TransferStateName(state));
    OverwriteField(transfer, "State", name);
    OverwriteField(transfer, name + "Date", step.date.ToStored());
    OverwriteField(transfer, name + "By", step.who);
    LTransfer stored;
    return transfer.Flush() && LTransferList(profile).Load(transfer.GetPrimaryKey(), stored) &&
           stored.State() == state && stored.GetView("InTransit") == transfer.GetView("InTransit");
}

std::string LTransferSend(const LProfile& profile, std::string_view id, const LTransferStep& step,
                          LShortage shortage) {
    const LMovementLock lock(profile);
    LTransfer transfer;
    if (!LTransferList(profile).Open(transfer, id)) return kGone;
    if (transfer.State() != LTransferState::kRequested) return WrongState(transfer);
    LPartsList list(profile);
    for (const LTransferLine& line : transfer.Lines()) {
        if (!list.Add(line)) return list.Problem();
    }
    if (shortage == LShortage::kRefuse) {
        const std::string problem = JoinLines(TransferShortages(profile, transfer));
        if (!problem.empty()) return problem;
    }
    return LTransferMove(profile, transfer, step)
        .Run(LTransferState::kSent, list.Parts(), -1, "From",
             TextOf(transfer, "to " + transfer.ToName(profile)));
}

std::string LTransferReceive(const LProfile& profile, std::string_view id,
                             const LTransferStep& step) {
    const LMovementLock lock(profile);
    LTransfer transfer;
    if (!LTransferList(profile).Open(transfer, id)) return kGone;
    if (transfer.State() == LTransferState::kRequested) {
        return "Transfer " + transfer.GetPrimaryKey() + " has not been sent yet.";
    }
    if (transfer.State() != LTransferState::kSent) return WrongState(transfer);
    return LTransferMove(profile, transfer, step)
        .Run(LTransferState::kReceived, ParseParts(transfer.GetView("InTransit")), +1, "To",
             TextOf(transfer, "from " + transfer.FromName(profile)));
}

std::string LTransferCancel(const LProfile& profile, std::string_view id,
                            const LTransferStep& step) {
    const LMovementLock lock(profile);
    LTransfer transfer;
    if (!LTransferList(profile).Open(transfer, id)) return kGone;
    if (!transfer.IsOpen()) return WrongState(transfer);
    if (transfer.State() == LTransferState::kRequested) {
        const bool isStored =
            StoreTransferState(profile, transfer, LTransferState::kCancelled, step);
        return isStored ? "" : "The transfer could not be saved.";
    }
    return LTransferMove(profile, transfer, step)
        .Run(LTransferState::kCancelled, ParseParts(transfer.GetView("InTransit")), +1, "From",
             TextOf(transfer, "cancelled"));
}

std::string TransferInterruption(const LProfile& profile, std::string_view id) {
    LTransfer transfer;
    const LTransferList transfers(profile);
    if (!transfers.Load(id, transfer) || !transfer.GetBool(kMoving, false)) return {};
    const LMovementLock lock(profile);  // a step that is being taken just now is over then
    if (!transfers.Load(id, transfer) || !transfer.GetBool(kMoving, false)) return {};
    const bool isArrival = transfer.State() == LTransferState::kReceived;
    return "The last step of this transfer was interrupted. Compare the stock of its items at " +
           (isArrival ? transfer.ToName(profile) : transfer.FromName(profile)) +
           " with what lies there: it may not have changed.";
}

LTransferError LTransferStock(const LProfile& profile, LTransfer& transfer,
                              const LTransferInput& input, const LTransferStep& step,
                              LTransferState until, LShortage shortage) {
    const LMovementLock lock(profile);  // nobody takes a step of it in between
    LTransferError error = LTransferRequest(profile, transfer, input, step);
    if (!error.IsNone() || until == LTransferState::kRequested) return error;
    const std::string id = transfer.GetPrimaryKey();
    transfer.Invalidate();
    const LTransferList transfers(profile);
    std::string problem = LTransferSend(profile, id, step, shortage);
    if (!problem.empty()) {
        transfers.Delete(id);
    } else if (until == LTransferState::kReceived) {
        problem = LTransferReceive(profile, id, step);
        if (!problem.empty()) {
            const std::string kept = LTransferCancel(profile, id, step);
            if (!kept.empty()) problem += "\n" + kept;
        }
    }
    if (problem.empty()) {
        static_cast<void>(transfers.Open(transfer, id));
        return {};
    }
    static_cast<LFieldError<LTransferField>&>(error) =
        LFieldError<LTransferField>::General(std::move(problem));
    return error;
}

std::vector<std::string> TransferShortages(const LProfile& profile, const LTransfer& transfer) {
    const std::string from = transfer.FromName(profile);
    LPartsList list(profile);
    for (const LTransferLine& line : transfer.Lines()) {
        if (!list.Add(line)) return {list.Problem()};
    }
    std::vector<std::string> shortages;
    for (const auto& [id, needed] : list.Parts()) {
        std::string text = Shortage(profile, id, needed, from);
        if (!text.empty()) shortages.push_back(std::move(text));
    }
    return shortages;
}
