#include "inventory/NameLists.h"

#include <algorithm>

#include "datastore/NumberText.h"
#include "platform/CaseFolding.h"

std::vector<std::string> GetNameList(const LProfile& profile, std::string_view listName) {
    std::vector<std::string> names;
    const LFileStoreListBase list = profile.List(listName);
    LRecord record;
    const auto iterator = list.CreateIteratorBase(record);
    for (; record.IsBound(); iterator->Next(record)) names.push_back(record.GetPrimaryKey());
    std::sort(names.begin(), names.end(), [](const std::string& left, const std::string& right) {
        return FoldCase(left) < FoldCase(right);
    });
    return names;
}

void AddToNameList(const LProfile& profile, std::string_view listName, std::string_view text) {
    const std::string_view name = TrimBlanks(text);
    const LFileStoreListBase list = profile.List(listName);
    if (name.empty() || list.TestRecordExists(name)) return;
    LRecord record;
    list.CreateNewRecord(record, name);
    list.Save(record);  // a record without fields is not dirty and would not save itself
}

bool LNameListDelete(LUserInterface& ui, const LProfile& profile, std::string_view listName,
                     const std::vector<std::string>& entries) {
    if (entries.empty() ||
        !AskDelete(ui, "Delete Entries", "Are you sure you want to delete the selected entries?")) {
        return false;
    }
    const LFileStoreListBase list = profile.List(listName);
    return std::count_if(entries.begin(), entries.end(),
                         [&](const std::string& entry) { return list.Delete(entry); }) > 0;
}
