// Lists of numbered records over user or shared settings.
#pragma once

#include <algorithm>
#include <optional>
#include <string>
#include <string_view>

#include "datastore/StoredNumbers.h"

template <typename Record>
class LSettingsListIteratorTemplate;

// The records live in sections of their own beside the list's section, which holds the highest
// number ever used ("Count"). `Record` is LUserSettingsRecord or LSharedSettingsRecord. Two
// processes that add to one list at the same moment can take the same number.
template <typename Record>
class LSettingsListTemplate {
public:
    static constexpr int kMaxRecords = 10000;  // also what a mangled count is held to

    // A record of the list. Its field "ID" belongs to the list, whose mark of a taken number it is.
    class LEntry : private Record {
    public:
        using Record::DeleteRecord;
        using Record::GetString;
        using Record::Record;
        // False, and nothing stored, also for "ID".
        bool SetString(std::string_view name, std::string_view value) {
            return name != kMark && Record::SetString(name, value);
        }
    };

    explicit LSettingsListTemplate(std::string_view section) : section_(section) {}

    // The smallest free number from 1, now taken; nothing when it could not be stored.
    std::optional<int> CreateNewRecord() {
        int number = 1;
        while (TestRecordExists(number)) ++number;
        if (number > kMaxRecords) return std::nullopt;
        Record record(Record::SectionOf(section_, number));
        if (!record.SetString(kMark, std::to_string(number))) return std::nullopt;
        Record list(section_);
        if (number > Highest() && !list.SetString("Count", std::to_string(number))) {
            return std::nullopt;
        }
        return number;
    }

    // A view of record `number`, whether it exists or not.
    LEntry Open(int number) const { return LEntry(Record::SectionOf(section_, number)); }
    bool TestRecordExists(int number) const {
        return Open(number).GetString(kMark) == std::to_string(number);
    }
    bool Delete(int number) { return TestRecordExists(number) && Open(number).DeleteRecord(); }

private:
    friend class LSettingsListIteratorTemplate<Record>;
    static constexpr std::string_view kMark = "ID";
    int Highest() const {
        return std::clamp(ParseStoredInt(Record(section_).GetString("Count")), 0, kMaxRecords);
    }
    std::string section_;
};

// Walks a list in the order of the numbers. Deleting the current record is allowed.
template <typename Record>
class LSettingsListIteratorTemplate {
public:
    explicit LSettingsListIteratorTemplate(const LSettingsListTemplate<Record>& list)
        : list_(list), highest_(list.Highest()) {
        Next();
    }
    bool IsValid() const { return number_ <= highest_; }
    int Number() const { return number_; }
    auto Current() const { return list_.Open(number_); }
    void Next() {
        do {
            ++number_;
        } while (IsValid() && !list_.TestRecordExists(number_));
    }

private:
    const LSettingsListTemplate<Record>& list_;
    int highest_;
    int number_ = 0;
};
