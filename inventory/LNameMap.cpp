#include "inventory/LNameMap.h"

#include <algorithm>

LNameMap::LNameMap(const LProfile& profile, std::string_view listName) {
    const LFileStoreListBase list = profile.List(listName);
    LRecord record;
    const auto iterator = list.CreateIteratorBase(record);
    for (; record.IsBound(); iterator->Next(record)) {
        pairs_.emplace_back(record.GetPrimaryKey(), record.GetString("Name"));
    }
    std::sort(pairs_.begin(), pairs_.end());
}

std::string_view LNameMap::Name(std::string_view key) const {
    const auto found = std::lower_bound(
        pairs_.begin(), pairs_.end(), key,
        [](const auto& pair, std::string_view wanted) { return pair.first < wanted; });
    return found != pairs_.end() && found->first == key ? std::string_view(found->second)
                                                        : std::string_view();
}
