#include "inventory/LocationRename.h"

#include <deque>
#include <optional>
#include <unordered_map>
#include <utility>
#include <vector>

#include "datastore/CsvText.h"
#include "inventory/HistoryFile.h"
#include "inventory/StockHistory.h"

namespace {

// What the changed rows of a file read before, by what they read now. Rows that read the same are
// interchangeable.
using LOriginalRows = std::unordered_map<std::string, std::deque<std::string>>;

struct LDayFile {
    std::string path, name;
    std::string_view kind;  // "sales" or "receive", as the progress calls it
};
struct LChangedFile {
    std::string path, name;
    LOriginalRows originals;
};
struct LConvertedText {
    std::string text;
    LOriginalRows originals;
    int count = 0;
};

// Copies `text` with each row replaced by what `replace(row, fields)` gives, if it gives anything.
template <typename Replace>
std::string ReplaceRows(std::string_view text, const Replace& replace) {
    std::string out;
    size_t copied = 0;
    LCsvReader rows(text);
    std::vector<std::string> fields;
    while (rows.Next(fields)) {
        const std::string row(text.substr(rows.RowStart(), rows.RowEnd() - rows.RowStart()));
        const std::optional<std::string> other = replace(row, fields);
        if (!other) continue;
        out += text.substr(copied, rows.RowStart() - copied);
        out += *other;
        copied = rows.RowEnd();
    }
    out += text.substr(copied);
    return out;
}

class LLocationRename {
public:
    LLocationRename(const LProfile& profile, std::string_view oldName, std::string_view newName)
        : profile_(profile), oldName_(oldName), newName_(newName) {}

    // False when it was cancelled or a file could not be changed.
    bool Convert(LProcessInterface& process);
    bool Undo(LProcessInterface& process);
    bool HasChanges() const { return !changed_.empty(); }
    const std::string& Failure() const { return failure_; }

private:
    std::vector<LDayFile> Files() const;
    LConvertedText ConvertText(std::string_view text) const;
    bool ConvertFile(const LDayFile& file);
    bool UndoFile(LChangedFile& file) const;
    bool Fail(const std::string& fileName);

    const LProfile& profile_;
    const std::string_view oldName_, newName_;
    std::vector<LChangedFile> changed_;
    int count_ = 0;
    std::string failure_;
};

std::vector<LDayFile> LLocationRename::Files() const {
    std::vector<LDayFile> files;
    const std::pair<std::string_view, std::string_view> kinds[] = {
        {kSellHistoryFolder, "sales"}, {kReceiveHistoryFolder, "receive"}};
    for (const auto& [folder, kind] : kinds) {
        for (const std::string& name : HistoryFileNames(profile_, folder)) {
            files.push_back({HistoryFolder(profile_, folder) + "/" + name, name, kind});
        }
    }
    return files;
}

bool LLocationRename::Convert(LProcessInterface& process) {
    const std::vector<LDayFile> files = Files();
    for (size_t i = 0; i < files.size(); ++i) {
        if (process.IsCancelled()) return false;
        process.SetProgress(static_cast<double>(i) / static_cast<double>(files.size()));
        process.SetStatus("Updating " + std::string(files[i].kind) + " records for " +
                          files[i].name + "...");
        if (!ConvertFile(files[i])) return Fail(files[i].name);
    }
    if (process.IsCancelled()) return false;
    process.SetProgress(1);
    process.SetStatus(std::to_string(count_) + " records modified");
    return true;
}

LConvertedText LLocationRename::ConvertText(std::string_view text) const {
    LConvertedText converted;
    converted.text = ReplaceRows(
        text,
        [&](const std::string& row,
            std::vector<std::string>& fields) -> std::optional<std::string> {
            if (fields.size() <= kHistoryLocation || fields[kHistoryLocation] != oldName_) {
                return std::nullopt;
            }
            ++converted.count;
            fields[kHistoryLocation] = newName_;
            std::string newRow = FormatCsvRow(fields) + kHistoryLineEnd;
            converted.originals[newRow].push_back(row);
            return newRow;
        });
    return converted;
}

bool LLocationRename::ConvertFile(const LDayFile& file) {
    std::string text;
    // A look first: most files name other locations only and need not be opened for writing.
    if (!LHistoryFile(file.path, LHistoryAccess::kRead).Read(text)) return false;
    if (const LConvertedText look = ConvertText(text); look.text == text) {
        count_ += look.count;
        return true;
    }
    const LHistoryFile history(file.path, LHistoryAccess::kRewrite);
    if (!history.Read(text)) return false;
    LConvertedText converted = ConvertText(text);
    if (!history.Replace(text, converted.text)) return false;
    count_ += converted.count;
    changed_.push_back({file.path, file.name, std::move(converted.originals)});
    return true;
}

bool LLocationRename::Undo(LProcessInterface& process) {
    bool allUndone = true;
    for (size_t i = 0; i < changed_.size(); ++i) {
        process.SetProgress(static_cast<double>(i) / static_cast<double>(changed_.size()));
        process.SetStatus("Cancelling Location name change...");
        if (!UndoFile(changed_[i])) allUndone = Fail(changed_[i].name);
    }
    process.SetProgress(1);
    return allUndone;
}

bool LLocationRename::UndoFile(LChangedFile& file) const {
    const LHistoryFile history(file.path, LHistoryAccess::kRewrite);
    std::string text;
    if (!history.Read(text)) return false;
    // Rows that others have added or deleted meanwhile are left alone.
    const std::string before = ReplaceRows(
        text, [&](const std::string& row, std::vector<std::string>&) -> std::optional<std::string> {
            const auto originals = file.originals.find(row);
            if (originals == file.originals.end() || originals->second.empty()) return std::nullopt;
            std::string original = std::move(originals->second.front());
            originals->second.pop_front();
            return original;
        });
    return history.Replace(text, before);
}

bool LLocationRename::Fail(const std::string& fileName) {
    failure_ = "The history file " + fileName + " cannot be changed.";
    return false;
}

}  // namespace

bool LocationRecordsUpdateData(LUserInterface& ui, const LProfile& profile,
                               std::string_view oldName, std::string_view newName,
                               std::string& failure) {
    LLocationRename rename(profile, oldName, newName);
    const auto convert = [&](LProcessInterface& process) { return rename.Convert(process); };
    if (ui.RunProcess("Converting Transaction Data", convert)) return true;
    if (rename.HasChanges()) {
        const auto undo = [&](LProcessInterface& process) { return rename.Undo(process); };
        ui.RunProcess("Cancelling Location name change...", undo);
    }
    failure = rename.Failure();
    return false;
}
