// A property list: the settings file of the per-user launcher that runs launch agents.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <utility>
#include <variant>
#include <vector>

// A dictionary whose keys keep the order in which they were first set. A value is a text, an
// integer, a truth value, a nested dictionary, or an array of texts or of dictionaries.
class LPlist {
public:
    using LTexts = std::vector<std::string>;
    using LDictionaries = std::vector<LPlist>;

    void SetValue(std::string_view key, std::string_view value) { Set(key, std::string(value)); }
    void SetValue(std::string_view key, const char* value) { Set(key, std::string(value)); }
    void SetValue(std::string_view key, int64_t value) { Set(key, value); }
    void SetValue(std::string_view key, int value) { Set(key, static_cast<int64_t>(value)); }
    void SetValue(std::string_view key, bool value) { Set(key, value); }
    // A dictionary on its own is kept as an array of one; `LValue` could not hold itself.
    void SetValue(std::string_view key, LPlist value);
    void SetValue(std::string_view key, LTexts value) { Set(key, std::move(value)); }
    void SetValue(std::string_view key, LDictionaries value) { Set(key, std::move(value)); }

    bool TestKeyExists(std::string_view key) const { return Find(key) != nullptr; }
    // False, and `value` as it was, when the key is missing or holds something else.
    bool GetValue(std::string_view key, std::string& value) const { return Get(key, value); }
    bool GetValue(std::string_view key, int64_t& value) const { return Get(key, value); }
    bool GetValue(std::string_view key, bool& value) const { return Get(key, value); }
    bool GetValue(std::string_view key, LTexts& value) const { return Get(key, value); }
    bool GetValue(std::string_view key, LDictionaries& value) const;
    bool GetValue(std::string_view key, LPlist& value) const;

    // The document, a key or value to a line, each level indented by three blanks more. Bytes that
    // XML does not know are left out.
    std::string Text() const;
    // Created or truncated, locked against other writers while it is written, mode 0644.
    [[nodiscard]] bool WriteToFile(const std::string& path) const;

private:
    using LValue = std::variant<std::string, int64_t, bool, LTexts, LDictionaries>;
    struct LEntry {
        std::string key;
        LValue value;
        bool isSingle = false;  // the one dictionary of the array is the value itself
    };

    LEntry& Set(std::string_view key, LValue value);
    const LEntry* Find(std::string_view key) const;
    template <typename T>
    bool Get(std::string_view key, T& value) const {
        const LEntry* entry = Find(key);
        const T* found = entry == nullptr ? nullptr : std::get_if<T>(&entry->value);
        if (found != nullptr) value = *found;
        return found != nullptr;
    }
    void AppendDictionary(std::string& out, size_t indent) const;
    static void AppendValue(std::string& out, const LEntry& entry, const std::string& blanks);

    std::vector<LEntry> entries_;
};
