#include "datastore/LHashTable.h"

#include "datastore/RecordText.h"
#include "datastore/StoredNumbers.h"
#include "platform/TextLimits.h"

void LHashTable::SetString(std::string_view name, std::string_view value) {
    const auto found = values_.lower_bound(name);
    if (found != values_.end() && found->first == name) {
        found->second = value;
    } else {
        values_.emplace_hint(found, name, value);
    }
}

void LHashTable::SetInt(std::string_view name, int value) {
    SetString(name, std::to_string(value));
}

std::string_view LHashTable::GetParm(std::string_view name, std::string_view defaultValue) const {
    const auto found = values_.find(name);
    return found == values_.end() ? defaultValue : std::string_view(found->second);
}

std::string LHashTable::GetString(std::string_view name, std::string_view defaultValue) const {
    return std::string(GetParm(name, defaultValue));
}

std::string LHashTable::GetShortString(std::string_view name, std::string_view defaultValue) const {
    return std::string(CutText(GetParm(name, defaultValue)));
}

int LHashTable::GetInt(std::string_view name, int defaultValue) const {
    const std::string_view value = GetParm(name);
    return value.empty() ? defaultValue : ParseStoredInt(value);
}

bool LHashTable::GetBool(std::string_view name, bool defaultValue) const {
    const std::string_view value = GetParm(name);
    return value.empty() ? defaultValue : value.front() == '1';
}

bool LHashTable::TestExists(std::string_view name) const { return values_.contains(name); }

void LHashTable::DeleteField(std::string_view name) {
    const auto found = values_.find(name);
    if (found != values_.end()) values_.erase(found);
}

void LHashTable::LoadHTTPString(std::string_view text) {
    LRecordTextReader reader(text);
    std::string_view name, value;
    while (reader.Next(name, value)) SetString(name, value);
}

std::string LHashTable::SaveHTTPString() const {
    std::string out;
    for (const auto& [name, value] : values_) {
        if (!out.empty()) out += '&';
        AppendEncoded(out, name);
        out += '=';
        AppendEncoded(out, value);
    }
    return out;
}
