// Settings of this user on this machine, addressed by section and name ("WebServer", "Port").
#pragma once

#include <string>
#include <string_view>

// Reads never fail. Writes return false when the preferences store could not be written. Any
// thread.
bool LUserSettingSetString(std::string_view section, std::string_view name, std::string_view value);
std::string LUserSettingGetString(std::string_view section, std::string_view name,
                                  std::string_view defaultValue);  // at most 259 bytes
template <typename T>
T LUserSettingGet(std::string_view section, std::string_view name, T defaultValue);
// The default for an absent or empty value; a text that is no number is 0, one that is too large
// the nearest number there is.
template <>
int LUserSettingGet<int>(std::string_view section, std::string_view name, int defaultValue);
bool LUserSettingTestExists(std::string_view section, std::string_view name);
bool LUserSettingDeleteItem(std::string_view section, std::string_view name);  // its password too

// Enciphered at rest under "__" and the name, with an authenticated cipher whose key is built in:
// it keeps a password out of sight, not from whoever has the program. What cannot be deciphered
// reads as the default. False, and nothing stored, also without the cryptographic library.
bool LUserSettingSetPassword(std::string_view section, std::string_view name,
                             std::string_view value);
std::string LUserSettingGetPassword(std::string_view section, std::string_view name,
                                    std::string_view defaultValue);

// The settings of one section as a record. It remembers the names it was given, so that all of them
// can be deleted: in the setting with the empty name ("Section/"). It keeps nothing in memory.
class LUserSettingsRecord {
public:
    explicit LUserSettingsRecord(std::string_view section) : section_(section) {}

    // False, and nothing stored, also for an empty name and one with "/".
    bool SetString(std::string_view name, std::string_view value);
    std::string GetString(std::string_view name, std::string_view defaultValue = {}) const;
    bool DeleteRecord();

    // The section of record `number` of the list that lives in `section`.
    static std::string SectionOf(std::string_view section, int number);

private:
    std::string section_;
};
