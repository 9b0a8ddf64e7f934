#include "inventory/HistoryDelete.h"

#include <map>
#include <optional>
#include <utility>

#include "datastore/CsvText.h"
#include "inventory/HistoryFile.h"
#include "inventory/LItem.h"
#include "inventory/MovementLock.h"
#include "inventory/StockQuantities.h"

namespace {

// Rows of one day as the user chose them: where each begins and how it read then.
using LWantedRows = std::map<size_t, std::string>;

// A wanted row, found again in its file.
struct LFoundRow {
    size_t start = 0, end = 0;
    std::vector<std::string> fields;
    double stockDelta = 0;  // what deleting it does to the stock
};

std::vector<LFoundRow> FindRows(std::string_view text, const LWantedRows& wanted) {
    std::vector<LFoundRow> found;
    LCsvReader rows(text);
    std::vector<std::string> fields;
    while (rows.Next(fields)) {
        const auto row = wanted.find(rows.RowStart());
        const size_t size = rows.RowEnd() - rows.RowStart();
        if (row == wanted.end() || text.substr(rows.RowStart(), size) != row->second) continue;
        fields.resize(std::max(fields.size(), kReceiveColumns));
        found.push_back({rows.RowStart(), rows.RowEnd(), fields, 0});
    }
    return found;
}

std::string WithoutRows(std::string_view text, const std::vector<LFoundRow>& rows) {
    std::string rest;
    size_t pos = 0;
    for (const LFoundRow& row : rows) {
        rest += text.substr(pos, row.start - pos);
        pos = row.end;
    }
    rest += text.substr(pos);
    return rest;
}

// One confirmed deletion in one of the two histories.
class LHistoryDeletion {
public:
    // `sign` is +1 where deleting puts stock back (sales), -1 where it takes stock out (receipts).
    LHistoryDeletion(const LProfile& profile, std::string_view folder, int sign)
        : profile_(profile), folder_(folder), sign_(sign) {}

    // Returns the rows that were deleted.
    std::vector<LFoundRow> DeleteDay(const LDate& date, const LWantedRows& wanted);
    // A sentence for each row or file that refused.
    const std::vector<std::string>& Refusals() const { return refusals_; }

private:
    bool PutStockBack(LFoundRow& row);
    bool ChangeStock(const LFoundRow& row, double delta) const;
    bool Refuse(const LFoundRow& row, std::string_view reason);

    const LProfile& profile_;
    const std::string_view folder_;
    const int sign_;
    std::vector<std::string> refusals_;
};

std::vector<LFoundRow> LHistoryDeletion::DeleteDay(const LDate& date, const LWantedRows& wanted) {
    const LHistoryFile file(HistoryFilePath(profile_, folder_, date), LHistoryAccess::kRewrite);
    std::string text;
    if (!file.Read(text)) {
        refusals_.push_back("The history file of " + date.ToStored() + " cannot be changed.");
        return {};
    }
    std::vector<LFoundRow> rows = FindRows(text, wanted);
    if (rows.size() < wanted.size()) {
        refusals_.emplace_back(
            "A selected record has been changed or deleted in the meantime. Please search again.");
    }
    std::erase_if(rows, [this](LFoundRow& row) { return !PutStockBack(row); });
    if (rows.empty() || file.Replace(text, WithoutRows(text, rows))) return rows;

    for (const LFoundRow& row : rows) ChangeStock(row, -row.stockDelta);
    refusals_.push_back("The history file of " + date.ToStored() + " cannot be changed.");
    return {};
}

// False when the row has to stay.
bool LHistoryDeletion::PutStockBack(LFoundRow& row) {
    const auto quantity = ReadHistoryQuantity(profile_, row.fields[kHistoryQuantity]);
    if (!quantity) return Refuse(row, "its quantity cannot be read");
    row.stockDelta = sign_ * *quantity;
    return ChangeStock(row, row.stockDelta) || Refuse(row, "the stock there cannot be changed");
}

bool LHistoryDeletion::ChangeStock(const LFoundRow& row, double delta) const {
    LItem item;
    if (!profile_.Items().Open(item, row.fields[kHistoryItemId])) return true;  // no stock is left
    return LItemChangeQuantity(profile_, item, delta, row.fields[kHistoryLocation], true);
}

bool LHistoryDeletion::Refuse(const LFoundRow& row, std::string_view reason) {
    LItem item;
    const bool isKnown = profile_.Items().Open(item, row.fields[kHistoryItemId]);
    std::string sentence = "The record of item ";
    sentence += isKnown ? item.GetString("Name") : row.fields[kHistoryItemId];
    sentence += " at " + row.fields[kHistoryLocation] + " cannot be deleted because ";
    sentence += reason;
    refusals_.push_back(sentence + ".");
    return false;
}

std::map<LDate, LWantedRows> ByDay(const std::vector<LHistoryRowId>& rows) {
    std::map<LDate, LWantedRows> days;
    for (const LHistoryRowId& row : rows) days[row.date][row.position] = row.text;
    return days;
}

int DeleteRows(LUserInterface& ui, const LProfile& profile, const std::vector<LHistoryRowId>& rows,
               LHistoryDeletion& deletion,
               const std::function<void(const LDate&, const LFoundRow&)>& deleted) {
    if (rows.empty()) return 0;
    const bool isOne = rows.size() == 1;
    const std::string title = isOne ? "Delete Record" : "Delete Records";
    const std::string number = isOne ? "" : std::to_string(rows.size()) + " ";
    if (!AskDelete(ui, title,
                   "Are you sure you want to delete the selected " + number + "records?")) {
        return 0;
    }
    int count = 0;
    {
        const LMovementLock lock(profile);
        for (const auto& [date, wanted] : ByDay(rows)) {
            for (const LFoundRow& row : deletion.DeleteDay(date, wanted)) {
                deleted(date, row);
                ++count;
            }
        }
    }
    // Only now: while a message stands on the screen, others' movements must not wait.
    for (const std::string& refusal : deletion.Refusals()) ui.Inform(title, refusal);
    return count;
}

LReceiveRow ToReceiveRow(const LDate& date, const LFoundRow& row) {
    LReceiveRow receipt;
    receipt.date = date;
    receipt.itemId = row.fields[kHistoryItemId];
    receipt.locationName = row.fields[kHistoryLocation];
    receipt.supplier = row.fields[kHistoryParty];
    receipt.orderId = row.fields[kReceiveOrderId];
    receipt.text = row.fields[kReceiveText];
    receipt.quantity = -row.stockDelta;
    return receipt;
}

}  // namespace

int LDeleteSellRows(LUserInterface& ui, const LProfile& profile,
                    const std::vector<LHistoryRowId>& rows) {
    LHistoryDeletion deletion(profile, kSellHistoryFolder, +1);
    return DeleteRows(ui, profile, rows, deletion, [](const LDate&, const LFoundRow&) {});
}

int LDeleteReceiveRows(LUserInterface& ui, const LProfile& profile,
                       const std::vector<LHistoryRowId>& rows,
                       const std::function<void(const LReceiveRow&)>& deleted) {
    LHistoryDeletion deletion(profile, kReceiveHistoryFolder, -1);
    return DeleteRows(ui, profile, rows, deletion, [&](const LDate& date, const LFoundRow& row) {
        LReceiveRow receipt = ToReceiveRow(date, row);
        receipt.unitCost = profile.ParseMoney(row.fields[kHistoryUnitAmount]).value_or(LMoney{});
        if (deleted) deleted(receipt);
    });
}
