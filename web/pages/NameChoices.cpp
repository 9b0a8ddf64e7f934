#include "web/pages/NameChoices.h"

#include <algorithm>

#include "inventory/StockQuantities.h"

std::vector<std::string> SortedNames(const LProfile& profile, std::string_view listName) {
    std::vector<std::string> names;
    const LNameMap map(profile, listName);
    for (const auto& [key, name] : map.Pairs()) names.push_back(name);
    std::sort(names.begin(), names.end());
    names.erase(std::unique(names.begin(), names.end()), names.end());
    return names;
}

std::vector<std::string> WithAll(std::vector<std::string> names) {
    names.insert(names.begin(), "All");
    return names;
}
