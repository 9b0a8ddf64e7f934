#include "datastore/UserSettings.h"

#include <algorithm>
#include <vector>

#include "datastore/CsvText.h"
#include "datastore/SettingsCipher.h"
#include "datastore/StoredNumbers.h"
#include "platform/LPreferences.h"
#include "platform/TextLimits.h"

namespace {

// A name that no caller of the record can use.
constexpr std::string_view kNamesOfRecord;

// "/" leads into the section of another record.
bool IsFieldName(std::string_view name) {
    return !name.empty() && name.find('/') == std::string_view::npos;
}

std::string SettingKey(std::string_view section, std::string_view name) {
    std::string key(section);
    if (!section.ends_with('/')) key += '/';
    key += name;
    return std::string(CutText(key, kMaxSettingKeyBytes));
}

std::string PasswordKey(std::string_view section, std::string_view name) {
    return SettingKey(section, "__" + std::string(name));
}

// Whole: the list of names outgrows what a setting gives its readers.
std::vector<std::string> NamesOfRecord(std::string_view section) {
    const auto names = PreferencesGet(SettingKey(section, kNamesOfRecord));
    return names ? ParseCsvRow(*names) : std::vector<std::string>();
}

}  // namespace

bool LUserSettingSetString(std::string_view section, std::string_view name,
                           std::string_view value) {
    return PreferencesSet(SettingKey(section, name), value);
}

std::string LUserSettingGetString(std::string_view section, std::string_view name,
                                  std::string_view defaultValue) {
    const auto value = PreferencesGet(SettingKey(section, name));
    return std::string(CutText(value ? *value : defaultValue));
}

template <>
int LUserSettingGet<int>(std::string_view section, std::string_view name, int defaultValue) {
    const std::string text = LUserSettingGetString(section, name, {});
    return text.empty() ? defaultValue : ParseStoredInt(text);
}

bool LUserSettingTestExists(std::string_view section, std::string_view name) {
    return PreferencesGet(SettingKey(section, name)).has_value();
}

bool LUserSettingDeleteItem(std::string_view section, std::string_view name) {
    const bool plain = PreferencesDelete(SettingKey(section, name));
    const bool password = PreferencesDelete(PasswordKey(section, name));
    return plain && password;
}

bool LUserSettingSetPassword(std::string_view section, std::string_view name,
                             std::string_view value) {
    const std::string key = PasswordKey(section, name);
    const auto stored = EncipherSetting(value, key);
    return stored && PreferencesSet(key, *stored);
}

std::string LUserSettingGetPassword(std::string_view section, std::string_view name,
                                    std::string_view defaultValue) {
    const std::string key = PasswordKey(section, name);
    // Read whole: the enciphered text is longer than the password, and cut it would be worthless.
    const auto stored = PreferencesGet(key);
    if (stored && stored->empty()) return {};
    const auto plain = stored ? DecipherSetting(*stored, key) : std::nullopt;
    return std::string(CutText(plain ? *plain : defaultValue));
}

bool LUserSettingsRecord::SetString(std::string_view name, std::string_view value) {
    if (!IsFieldName(name)) return false;
    std::vector<std::string> names = NamesOfRecord(section_);
    // The name first: a value that no list knows could never be deleted.
    if (std::find(names.begin(), names.end(), name) == names.end()) {
        names.emplace_back(name);
        if (!LUserSettingSetString(section_, kNamesOfRecord, FormatCsvRow(names))) return false;
    }
    return LUserSettingSetString(section_, name, value);
}

std::string LUserSettingsRecord::GetString(std::string_view name,
                                           std::string_view defaultValue) const {
    return LUserSettingGetString(section_, name, defaultValue);
}

bool LUserSettingsRecord::DeleteRecord() {
    for (const std::string& name : NamesOfRecord(section_)) {
        if (!LUserSettingDeleteItem(section_, name)) return false;
    }
    return LUserSettingDeleteItem(section_, kNamesOfRecord);
}

std::string LUserSettingsRecord::SectionOf(std::string_view section, int number) {
    std::string path(section);
    if (!section.ends_with('/')) path += '/';
    return path + std::to_string(number);
}
