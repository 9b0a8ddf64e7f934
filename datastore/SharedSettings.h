// Settings that the desktop program and the service share: one XML file in the shared data folder,
// an element for each section and in it one for each setting.
#pragma once

#include <string>
#include <string_view>

namespace pugi {
class xml_document;
}

// Section and name are names of XML elements, of letters (any byte beyond ASCII counts as one),
// digits, "_", "-" and ".", not beginning with a digit, "-" or "."; any other is never there and
// cannot be stored. Any thread and any process: the file is locked while a setting is changed, for
// about ten seconds at most. False when nothing was stored.
bool LSharedSettingSetString(std::string_view section, std::string_view name,
                             std::string_view value);
std::string LSharedSettingGetString(std::string_view section, std::string_view name,
                                    std::string_view defaultValue);  // at most 259 bytes

// Rewrites the shared file from the document's top-level elements. A file that cannot be opened is
// left out without a word.
void LSharedSettingsSave(const pugi::xml_document& document);

// One section as a record; it keeps nothing in memory.
class LSharedSettingsRecord {
public:
    explicit LSharedSettingsRecord(std::string_view section) : section_(section) {}

    bool SetString(std::string_view name, std::string_view value);
    std::string GetString(std::string_view name, std::string_view defaultValue = {}) const;
    bool DeleteRecord();  // the whole section

    // The section of record `number` of the list that lives in `section`.
    static std::string SectionOf(std::string_view section, int number);

private:
    std::string section_;
};
