// The names of a list's records by key, read in one pass: for pages and reports, which would
// otherwise open a record per row.
#pragma once

#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "datastore/LProfile.h"

class LNameMap {
public:
    LNameMap(const LProfile& profile, std::string_view listName);
    // Empty for an unknown key; lives as long as the map.
    std::string_view Name(std::string_view key) const;
    // Key and name of every record, sorted by key.
    const std::vector<std::pair<std::string, std::string>>& Pairs() const& { return pairs_; }
    std::vector<std::pair<std::string, std::string>> Pairs() && { return std::move(pairs_); }

private:
    std::vector<std::pair<std::string, std::string>> pairs_;
};
