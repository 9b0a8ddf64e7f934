// Searching the movement history.
#include <algorithm>
#include <unordered_map>
#include <utility>

#include "datastore/CsvText.h"
#include "inventory/HistoryFile.h"
#include "inventory/LItem.h"
#include "inventory/StockHistory.h"

namespace {

constexpr std::pair<LSellKind, std::string_view> kSellKinds[] = {
    {LSellKind::kAll, "All"},
    {LSellKind::kAllButWriteOffs, "All but damaged/lost"},
    {LSellKind::kWriteOffs, kDamagedLost},
};

bool IsNoFilter(std::string_view text) { return text.empty() || text == "All"; }

bool KindMatches(LSellKind kind, bool isWriteOff) {
    return kind == LSellKind::kAll || (kind == LSellKind::kWriteOffs) == isWriteOff;
}

struct LDayFile {
    LDate date;
    std::string name;
};

std::vector<LDayFile> DayFilesWithin(const LProfile& profile, std::string_view folder,
                                     const LHistoryFilter& filter) {
    std::vector<LDayFile> files;
    for (const std::string& name : HistoryFileNames(profile, folder)) {
        const auto date = LDate::FromStored(std::string_view(name).substr(0, name.rfind('.')));
        if (date && *date >= filter.from && *date <= filter.to) files.push_back({*date, name});
    }
    return files;
}

// One search: what it looks for and what it has met.
class LHistorySearch {
public:
    LHistorySearch(const LProfile& profile, std::string_view folder, const LHistoryFilter& filter)
        : profile_(profile), folder_(folder), filter_(filter) {}

    std::string Run(LProcessInterface& process,
                    const std::function<void(const LHistoryRow&)>& visit);

private:
    bool FindWantedItem();
    void SearchFile(const LDayFile& file, const std::function<void(const LHistoryRow&)>& visit);
    bool Matches(const LHistoryRow& row) const;
    void FillItem(LHistoryRow& row);

    struct LShownItem {
        std::string code, description;
    };
    const LProfile& profile_;
    const std::string_view folder_;
    const LHistoryFilter& filter_;
    std::string wantedId_;  // empty: every item
    // Items met so far by id: each is opened once, however many rows name it.
    std::unordered_map<std::string, LShownItem> items_;
    int count_ = 0;
};

// False when the filter names an item that is not there: no row can be its.
bool LHistorySearch::FindWantedItem() {
    if (IsNoFilter(filter_.itemCode)) return true;
    LItem item;
    if (!OpenItem(profile_, item, filter_.itemCode)) return false;
    wantedId_ = item.GetPrimaryKey();
    return true;
}

std::string LHistorySearch::Run(LProcessInterface& process,
                                const std::function<void(const LHistoryRow&)>& visit) {
    if (filter_.to < filter_.from) return "End date must follow start date.";
    if (FindWantedItem()) {
        const auto files = DayFilesWithin(profile_, folder_, filter_);
        for (size_t i = 0; i < files.size() && !process.IsCancelled(); ++i) {
            process.SetProgress(static_cast<double>(i) / static_cast<double>(files.size()));
            process.SetStatus("Searching records for " + files[i].name + "...");
            SearchFile(files[i], visit);
        }
    }
    process.SetProgress(1);
    process.SetStatus(std::to_string(count_) + " records found");
    return {};
}

void LHistorySearch::SearchFile(const LDayFile& file,
                                const std::function<void(const LHistoryRow&)>& visit) {
    const std::string path = HistoryFolder(profile_, folder_) + "/" + file.name;
    std::string text;
    if (!LHistoryFile(path, LHistoryAccess::kRead).Read(text)) return;
    LCsvReader rows(text);
    LHistoryRow row;
    while (rows.Next(row.fields)) {
        row.fields.resize(std::max(row.fields.size(), kReceiveColumns));
        row.isWriteOff = folder_ == kSellHistoryFolder && row.fields[kHistoryParty] == kDamagedLost;
        if (!Matches(row)) continue;
        row.date = file.date;
        row.party = row.isWriteOff ? kDamagedLostItem : row.fields[kHistoryParty];
        row.id = {file.date, rows.RowStart(),
                  text.substr(rows.RowStart(), rows.RowEnd() - rows.RowStart())};
        FillItem(row);
        visit(row);
        ++count_;
    }
}

bool LHistorySearch::Matches(const LHistoryRow& row) const {
    if (!wantedId_.empty() && row.fields[kHistoryItemId] != wantedId_) return false;
    return folder_ != kSellHistoryFolder || KindMatches(filter_.kind, row.isWriteOff);
}

void LHistorySearch::FillItem(LHistoryRow& row) {
    const auto [place, isNew] = items_.try_emplace(row.fields[kHistoryItemId]);
    if (isNew) {
        LItem item;
        if (profile_.Items().Open(item, place->first)) {
            place->second = {item.GetString("Name"), item.GetString("Description")};
        }
    }
    row.itemCode = place->second.code;
    row.itemDescription = place->second.description;
}

}  // namespace

std::string_view SellKindName(LSellKind kind) {
    for (const auto& [value, name] : kSellKinds) {
        if (value == kind) return name;
    }
    return {};
}

LSellKind SellKindFromName(std::string_view name) {
    for (const auto& [value, text] : kSellKinds) {
        if (text == name) return value;
    }
    return LSellKind::kAll;
}

std::string LFillSellHistoryList(const LProfile& profile, const LHistoryFilter& filter,
                                 LProcessInterface& process,
                                 const std::function<void(const LHistoryRow&)>& visit) {
    return LHistorySearch(profile, kSellHistoryFolder, filter).Run(process, visit);
}

std::string LFillReceiveHistoryList(const LProfile& profile, const LHistoryFilter& filter,
                                    LProcessInterface& process,
                                    const std::function<void(const LHistoryRow&)>& visit) {
    return LHistorySearch(profile, kReceiveHistoryFolder, filter).Run(process, visit);
}
