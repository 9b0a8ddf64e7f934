// The movement history: one CSV file a day for sales and one for receipts. Rows are added here and
// found again; HistoryDelete.h takes them out.
#pragma once

#include <functional>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "datastore/LDate.h"
#include "datastore/LMoney.h"
#include "datastore/LProfile.h"
#include "platform/LUserInterface.h"

inline constexpr char kSellHistoryFolder[] = "Sellhistory";
inline constexpr char kReceiveHistoryFolder[] = "ReceiveHistory";
inline constexpr char kDamagedLost[] = "Damaged/lost";           // stored as a write-off's customer
inline constexpr char kDamagedLostItem[] = "Damaged/lost item";  // and shown so

// The columns of both kinds of row.
enum LHistoryColumn {
    kHistoryQuantity = 0,
    kHistoryItemId = 1,
    kHistoryUnitAmount = 2,
    kHistoryLocation = 3,
    kHistoryParty = 4,  // customer or supplier
    kSellTotal = 5,
    kSellReference = 6,
    kReceiveOrderId = 5,
    kReceiveTotal = 6,
    kReceiveText = 7
};
inline constexpr size_t kSellColumns = 7;
inline constexpr size_t kReceiveColumns = 8;

struct LSellRow {
    std::string itemId, locationName, customer, reference;
    LDate date;
    double quantity = 0;
    LMoney unitPrice;
};
struct LReceiveRow {
    std::string itemId, locationName, supplier, orderId, text;
    LDate date;
    double quantity = 0;
    LMoney unitCost;
};

// The day's file; its folder is made when missing. Empty when the date is none.
std::string LGetSellCSVFilePath(const LProfile& profile, const LDate& date);
std::string LGetReceiveCSVFilePath(const LProfile& profile, const LDate& date);

// Append one row under the file's exclusive lock, in one write. False when the file cannot be
// opened or written; nothing of the row remains then.
[[nodiscard]] bool CreateNewSellRecord(const LProfile& profile, const LSellRow& row);
[[nodiscard]] bool CreateNewReceiveRecord(const LProfile& profile, const LReceiveRow& row);
// Several rows of one day with one write: all of them, or none after false.
[[nodiscard]] bool CreateNewReceiveRecords(const LProfile& profile,
                                           const std::vector<LReceiveRow>& rows);

// The quantity column as a number: the profile's format, or the plain form with "." when the
// settings have changed since. Nothing when it is neither.
std::optional<double> ReadHistoryQuantity(const LProfile& profile, std::string_view text);

// Whether any row of any ".csv" file in the business's folder holds exactly `value` in `column`.
bool IsValueInCsvHistory(const LProfile& profile, std::string_view folder, int column,
                         std::string_view value);

// Names one stored row: its day, where it begins in the file and how it reads there, line end
// included. A file that has changed in the meantime does not answer to it any more, so that it can
// never lead to another row.
struct LHistoryRowId {
    LDate date;
    size_t position = 0;
    std::string text;

    // One text that a form can carry, and back; nothing for a text that is no such id.
    std::string ToText() const;
    static std::optional<LHistoryRowId> FromText(std::string_view text);
    friend bool operator==(const LHistoryRowId&, const LHistoryRowId&) = default;
};

// A row found by a search, with what a list shows of it.
struct LHistoryRow {
    LDate date;
    std::vector<std::string> fields;        // as stored, padded to kReceiveColumns
    std::string itemCode, itemDescription;  // empty when the item is gone
    std::string party;  // the customer or supplier; "Damaged/lost item" for a write-off
    bool isWriteOff = false;
    LHistoryRowId id;
};
enum class LSellKind { kAll, kAllButWriteOffs, kWriteOffs };
// "All", "All but damaged/lost", "Damaged/lost".
std::string_view SellKindName(LSellKind kind);
LSellKind SellKindFromName(std::string_view name);  // kAll for any other text

struct LHistoryFilter {
    LDate from, to;                    // both days included
    std::string itemCode;              // empty or "All": every item
    LSellKind kind = LSellKind::kAll;  // sales only
};

// Visit the matching rows, oldest day first, in the order of writing; progress and the count go to
// `process`. Returns an error text ("End date must follow start date.") or an empty one. A file
// that cannot be read is left out; a cancelled search ends with the rows found so far.
std::string LFillSellHistoryList(const LProfile& profile, const LHistoryFilter& filter,
                                 LProcessInterface& process,
                                 const std::function<void(const LHistoryRow&)>& visit);
std::string LFillReceiveHistoryList(const LProfile& profile, const LHistoryFilter& filter,
                                    LProcessInterface& process,
                                    const std::function<void(const LHistoryRow&)>& visit);
