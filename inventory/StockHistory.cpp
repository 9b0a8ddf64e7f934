#include "inventory/StockHistory.h"

#include <charconv>

#include "datastore/CsvText.h"
#include "inventory/HistoryFile.h"
#include "platform/FileIo.h"

namespace {

std::string PathInMadeFolder(const LProfile& profile, std::string_view folder, const LDate& date) {
    std::string path = HistoryFilePath(profile, folder, date);
    if (!path.empty()) MakeFolderTree(HistoryFolder(profile, folder));
    return path;
}

// Without thousands separators, which not every spreadsheet takes for a part of a number.
std::string QuantityText(const LProfile& profile, double quantity) {
    return profile.FormatNumber(quantity, profile.DigitsAfterDecimalPoint(), false);
}

std::string RowText(const std::vector<std::string>& fields) {
    return FormatCsvRow(fields) + kHistoryLineEnd;
}

// The rows are built before the lock is taken: the shorter it is held, the fewer others meet it.
bool AppendRows(const LProfile& profile, std::string_view folder, const LDate& date,
                const std::string& rows) {
    const LHistoryFile file(HistoryFilePath(profile, folder, date), LHistoryAccess::kAppend);
    return file.Append(rows);
}

std::string ReceiveRowText(const LProfile& profile, const LReceiveRow& row) {
    std::vector<std::string> fields(kReceiveColumns);
    fields[kHistoryQuantity] = QuantityText(profile, row.quantity);
    fields[kHistoryItemId] = row.itemId;
    fields[kHistoryUnitAmount] = profile.FormatMoney(row.unitCost);
    fields[kHistoryLocation] = row.locationName;
    fields[kHistoryParty] = row.supplier;
    fields[kReceiveOrderId] = row.orderId;
    fields[kReceiveTotal] = profile.FormatMoney(LineAmount(row.quantity, row.unitCost));
    fields[kReceiveText] = row.text;
    return RowText(fields);
}

bool HoldsValue(std::string_view text, size_t column, std::string_view value) {
    LCsvReader rows(text);
    std::vector<std::string> fields;
    while (rows.Next(fields)) {
        if (column < fields.size() && fields[column] == value) return true;
    }
    return false;
}

}  // namespace

std::string LGetSellCSVFilePath(const LProfile& profile, const LDate& date) {
    return PathInMadeFolder(profile, kSellHistoryFolder, date);
}

std::string LGetReceiveCSVFilePath(const LProfile& profile, const LDate& date) {
    return PathInMadeFolder(profile, kReceiveHistoryFolder, date);
}

bool CreateNewSellRecord(const LProfile& profile, const LSellRow& row) {
    std::vector<std::string> fields(kSellColumns);
    fields[kHistoryQuantity] = QuantityText(profile, row.quantity);
    fields[kHistoryItemId] = row.itemId;
    fields[kHistoryUnitAmount] = profile.FormatMoney(row.unitPrice);
    fields[kHistoryLocation] = row.locationName;
    fields[kHistoryParty] = row.customer;
    fields[kSellTotal] = profile.FormatMoney(LineAmount(row.quantity, row.unitPrice));
    fields[kSellReference] = row.reference;
    return AppendRows(profile, kSellHistoryFolder, row.date, RowText(fields));
}

bool CreateNewReceiveRecord(const LProfile& profile, const LReceiveRow& row) {
    return AppendRows(profile, kReceiveHistoryFolder, row.date, ReceiveRowText(profile, row));
}

bool CreateNewReceiveRecords(const LProfile& profile, const std::vector<LReceiveRow>& rows) {
    std::string text;
    for (const LReceiveRow& row : rows) text += ReceiveRowText(profile, row);
    return rows.empty() || AppendRows(profile, kReceiveHistoryFolder, rows.front().date, text);
}

std::optional<double> ReadHistoryQuantity(const LProfile& profile, std::string_view text) {
    if (const auto quantity = profile.ParseNumber(text)) return quantity;
    double plain = 0;
    const char* const end = text.data() + text.size();
    const auto result = std::from_chars(text.data(), end, plain, std::chars_format::fixed);
    if (result.ec != std::errc() || result.ptr != end) return std::nullopt;
    return plain;
}

bool IsValueInCsvHistory(const LProfile& profile, std::string_view folder, int column,
                         std::string_view value) {
    if (column < 0) return false;
    for (const std::string& name : HistoryFileNames(profile, folder)) {
        const std::string path = HistoryFolder(profile, folder) + "/" + name;
        std::string text;
        if (!LHistoryFile(path, LHistoryAccess::kRead).Read(text)) continue;
        if (HoldsValue(text, static_cast<size_t>(column), value)) return true;
    }
    return false;
}

std::string LHistoryRowId::ToText() const {
    return date.ToStored() + " " + std::to_string(position) + " " + text;
}

std::optional<LHistoryRowId> LHistoryRowId::FromText(std::string_view text) {
    const size_t afterDate = text.find(' ');
    if (afterDate == std::string_view::npos) return std::nullopt;
    const size_t afterPosition = text.find(' ', afterDate + 1);
    if (afterPosition == std::string_view::npos) return std::nullopt;

    LHistoryRowId id;
    const auto date = LDate::FromStored(text.substr(0, afterDate));
    const char* const end = text.data() + afterPosition;
    const auto result = std::from_chars(text.data() + afterDate + 1, end, id.position);
    if (!date || result.ec != std::errc() || result.ptr != end) return std::nullopt;
    id.date = *date;
    id.text = text.substr(afterPosition + 1);
    return id;
}
