// A table of texts by name with the record text as its written form: form data, parameters,
// sessions.
#pragma once

#include <map>
#include <string>
#include <string_view>

// Names are unique; the written order is the order of the names. One thread at a time.
class LHashTable {
public:
    void SetString(std::string_view name, std::string_view value);
    void SetParm(std::string_view name, std::string_view value) { SetString(name, value); }
    // The same operation: the pair is not placed last, the written order follows the names.
    void SetParmBottom(std::string_view name, std::string_view value) { SetString(name, value); }
    void SetInt(std::string_view name, int value);

    // Live until the table changes.
    std::string_view GetParm(std::string_view name, std::string_view defaultValue = {}) const;
    std::string GetString(std::string_view name, std::string_view defaultValue = {}) const;
    std::string GetShortString(std::string_view name, std::string_view defaultValue = {}) const;
    int GetInt(std::string_view name, int defaultValue) const;  // the default when empty
    // The default when empty; otherwise true only for a value that begins with "1".
    bool GetBool(std::string_view name, bool defaultValue) const;
    bool TestExists(std::string_view name) const;
    bool TestFieldExists(std::string_view name) const { return TestExists(name); }
    void DeleteField(std::string_view name);
    void Clear() { values_.clear(); }
    bool IsEmpty() const { return values_.empty(); }

    // Adds every pair of a record text; pairs that are there stay unless named again.
    void LoadHTTPString(std::string_view text);
    void LoadHTTPStringUTF8(std::string_view text) { LoadHTTPString(text); }
    std::string SaveHTTPString() const;

    auto begin() const { return values_.begin(); }
    auto end() const { return values_.end(); }

private:
    std::map<std::string, std::string, std::less<>> values_;
};
