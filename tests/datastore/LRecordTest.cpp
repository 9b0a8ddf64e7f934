#include "datastore/LRecord.h"

#include <gtest/gtest.h>

#include <cmath>
#include <limits>

#include "datastore/RecordText.h"

namespace {

std::string TextOf(const LRecord& record) {
    LTextBuffer text;
    record.Fields().Encode(text);
    return std::string(text.View());
}

// Counts saves; what a save does to the marks is done as the file store does it.
class LCountingStore final : public LDataStoreRecordStore {
public:
    explicit LCountingStore(std::vector<std::string>& saved, bool answer = true)
        : saved_(saved), answer_(answer) {}
    bool Save(LRecord& record) const override {
        saved_.push_back(TextOf(record));
        record.Fields().ClearChangedMarks();
        return answer_;
    }

private:
    std::vector<std::string>& saved_;
    bool answer_;
};

void BindTo(std::vector<std::string>& saved, LRecord& record, bool answer = true) {
    record.Bind(std::make_unique<LCountingStore>(saved, answer));
}

}  // namespace

TEST(LRecord, SettingAnEqualValueLeavesItClean) {
    std::vector<std::string> saved;
    LRecord record;
    BindTo(saved, record);
    record.SetString("Name", "Bolt");
    EXPECT_TRUE(record.IsDirty());
    EXPECT_TRUE(record.Flush());
    record.SetString("Name", "Bolt");
    EXPECT_FALSE(record.IsDirty());
    EXPECT_TRUE(record.Flush());
    EXPECT_EQ(saved, std::vector<std::string>{"Name=Bolt"});
    record.SetString("Name", "");
    EXPECT_TRUE(record.IsDirty()) << "an empty value is a value";
}

TEST(LRecord, DefaultsAreNotStored) {
    LRecord record;
    record.SetInt("n", 0, 0);
    EXPECT_FALSE(record.IsDirty()) << "there was no field to delete";
    record.SetInt("n", 7);
    record.SetInt("n", 0, 0);
    record.SetString("s", "x", "d");
    record.SetString("s", "d", "d");
    record.SetBool("f", true, false);
    record.SetBool("g", true, true);
    record.SetInt("m", 5, 0);
    EXPECT_EQ(TextOf(record), "f=1&m=5");
    EXPECT_EQ(record.GetInt("n", 3), 3);
    EXPECT_EQ(record.GetString("s", "d"), "d");
}

TEST(LRecord, NumbersOfEveryText) {
    struct Case {
        const char* text;
        int number;
        int64_t number64;
        double real;
    };
    constexpr int kMin = std::numeric_limits<int>::min(), kMax = std::numeric_limits<int>::max();
    constexpr int64_t kMin64 = std::numeric_limits<int64_t>::min(),
                      kMax64 = std::numeric_limits<int64_t>::max();
    constexpr double kMaxReal = std::numeric_limits<double>::max();
    const Case kCases[] = {
        {"12abc", 12, 12, 12},
        {" \t\r\n-7 5", -7, -7, -7},
        {"+5", 5, 5, 5},
        {"+-5", 0, 0, 0},
        {"0x10", 0, 0, 0},
        {"1.75", 1, 1, 1.75},
        {"1e3", 1, 1, 1000},
        {"inf", 0, 0, 0},
        {"-nan", 0, 0, 0},
        {"2147483648", kMax, 2147483648, 2147483648.0},
        {"-2147483649", kMin, -2147483649, -2147483649.0},
        {"9223372036854775807", kMax, kMax64, 9223372036854775807.0},
        {"99999999999999999999", kMax, kMax64, 1e20},
        {"-9223372036854775808", kMin, kMin64, -9223372036854775808.0},
        {"1e999", 1, 1, kMaxReal},
        {"0.001e999", 0, 0, kMaxReal},
        {"\x7f"
         "5",
         0, 0, 0},
    };
    for (const Case& c : kCases) {
        LRecord record;
        record.SetString("n", c.text);
        EXPECT_EQ(record.GetInt("n", 9), c.number) << c.text;
        EXPECT_EQ(record.GetInt64("n", 9), c.number64) << c.text;
        EXPECT_EQ(record.GetFloat("n", 9), c.real) << c.text;
    }
    LRecord record;
    record.SetString("n", std::string(400, '9') + " 1e-5");
    EXPECT_EQ(record.GetFloat("n", 9), kMaxReal) << "what follows a number does not count";
}

TEST(LRecord, MissingEmptyAndDeletedFieldsRead) {
    LRecord record;
    record.SetString("empty", "");
    record.SetString("gone", "1");
    record.DeleteField("gone");
    for (const char* name : {"missing", "gone"}) {
        EXPECT_EQ(record.GetInt(name, 5), 5);
        EXPECT_EQ(record.GetInt64(name, 5), 5);
        EXPECT_EQ(record.GetFloat(name, 5), 5);
        EXPECT_TRUE(record.GetBool(name, true));
        EXPECT_EQ(record.GetString(name, "d"), "d");
        EXPECT_FALSE(record.TestFieldExists(name));
    }
    EXPECT_EQ(record.GetInt("empty", 5), 0) << "there, so not the default";
    EXPECT_FALSE(record.GetBool("empty", true));
    EXPECT_EQ(record.GetInt64("empty", 5), 5);
    EXPECT_EQ(record.GetFloat("empty", 5), 5);
    EXPECT_EQ(record.GetFloat("empty"), 0);
    EXPECT_EQ(record.GetString("empty", "d"), "");
    record.SetString("two", "2");
    EXPECT_TRUE(record.GetBool("two", false));
}

TEST(LRecord, RealsAreStoredWithoutALocale) {
    LRecord record;
    const std::pair<double, const char*> kCases[] = {
        {1.5, "1.500000"},
        {-0.0000004, "-0.000000"},
        {1e15, "1000000000000000.000000"},
        {2.0 / 3, "0.666667"},
        {std::numeric_limits<double>::infinity(), "0.000000"},
        {std::nan(""), "0.000000"},
    };
    for (const auto& [value, text] : kCases) {
        record.SetFloat("x", value);
        EXPECT_EQ(record.GetString("x"), text);
    }
    record.SetFloat("x", std::numeric_limits<double>::max());
    EXPECT_EQ(record.GetFloat("x"), std::numeric_limits<double>::max());
    record.SetInt64("n", std::numeric_limits<int64_t>::min());
    EXPECT_EQ(record.GetString("n"), "-9223372036854775808");
}

TEST(LRecord, CutsNamesKeysAndShortTexts) {
    LRecord record;
    const std::string name(70, 'n'), text(300, 'x');
    record.SetString(name, text);
    EXPECT_EQ(TextOf(record), std::string(63, 'n') + "=" + text);
    EXPECT_EQ(record.GetString(name), text);
    EXPECT_EQ(record.GetString(std::string(63, 'n') + "other"), text);
    EXPECT_EQ(record.GetShortString(name).size(), 259U);
    EXPECT_EQ(record.GetShortString("missing", text).size(), 259U);
    record.SetString("", "no name, no field");
    EXPECT_EQ(record.Fields().Count(), 1U);

    record.SetPrimaryKey(text);
    EXPECT_EQ(record.GetPrimaryKey().size(), 259U);
    record.ClearDirty();
    record.SetPrimaryKey(text + "beyond the cut");
    record.SetPrimaryKey("");
    EXPECT_FALSE(record.IsDirty());
    EXPECT_EQ(record.GetPrimaryKey().size(), 259U);
}

TEST(LRecord, ValuesMayComeFromTheRecordItself) {
    LRecord record;
    record.SetString("a", std::string(50, 'a'));
    for (int i = 0; i < 40; ++i) {  // each grows the arena under the views
        record.SetString("b" + std::to_string(i), record.GetView("a"));
        record.SetString(record.GetView("a"), record.GetView("a"));
    }
    record.SetString("a", record.GetView("a").substr(5));
    EXPECT_EQ(record.GetString("b39"), std::string(50, 'a'));
    EXPECT_EQ(record.GetString("a"), std::string(45, 'a'));
}

TEST(LRecordMerge, TakesWhatOthersWroteAndKeepsWhatChangedHere) {
    struct Case {
        const char *loaded, *file, *merged, *why;
        bool differs;
    };
    // Each record changes b to "mine" and deletes d after loading.
    const Case kCases[] = {
        {"a=1&b=1&d=1", "a=1&b=1&d=1", "a=1&b=mine", "nobody else wrote", false},
        {"a=1&b=1&d=1", "a=2&b=2&d=2", "a=2&b=mine", "theirs where we only read", true},
        {"a=1&b=1&d=1", "b=1&x=%26&d=1", "a=1&b=mine&x=%26", "a new field goes to the end", true},
        {"a=1&b=1&d=1", "=q&&a=3", "a=3&b=mine", "nameless pairs are nothing", true},
        {"a=1&b=1&d=1", "", "a=1&b=mine", "an emptied file takes nothing away", false},
        {"a=1&b=1&a=5&d=1", "a=7&a=8", "a=8&b=mine&a=5", "each pair meets the first field", true},
    };
    for (const Case& c : kCases) {
        LRecord record;
        record.Fields().Parse(c.loaded);
        record.SetString("b", "mine");
        record.DeleteField("d");
        EXPECT_EQ(record.Fields().Merge(c.file), c.differs) << c.why;
        EXPECT_EQ(TextOf(record), c.merged) << c.why;
    }
}

// Orders with many lines: past some number of fields an index finds them.
TEST(LRecord, ManyFieldsAreFoundThroughAllChanges) {
    constexpr int kFields = 400;
    const auto name = [](int i) { return "Item" + std::to_string(i) + "Qty"; };
    const auto value = [](int i, int round) {
        return std::string(static_cast<size_t>(i * 7 % 50), 'x') + " " + std::to_string(round);
    };
    LRecord record, copy;
    for (int round = 0; round < 3; ++round) {
        for (int i = 0; i < kFields; ++i) record.SetString(name(i), value(i, round));
        for (int i = 0; i < kFields; i += 3) record.DeleteField(name(i));
        copy.CopyRecord(record);
        record.Fields().Parse(TextOf(copy));
        record.Fields().Merge(EncodeText(name(3)) + "=theirs&new=1");
        for (int i = 0; i < kFields; ++i) {
            const std::string expected = i == 3 ? "theirs" : i % 3 == 0 ? "-" : value(i, round);
            ASSERT_EQ(record.GetString(name(i), "-"), expected) << i;
        }
        EXPECT_EQ(record.GetInt("new", 0), 1);
    }
}
