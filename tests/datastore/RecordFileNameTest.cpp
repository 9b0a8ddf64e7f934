#include "datastore/RecordFileName.h"

#include <gtest/gtest.h>

#include <set>

#include "datastore/LFileStoreListBase.h"
#include "datastore/RecordText.h"
#include "tests/support/LTempFolder.h"

namespace {

std::string Repeat(std::string_view text, int count) {
    std::string all;
    for (int i = 0; i < count; ++i) all += text;
    return all;
}

}  // namespace

TEST(MakeDataFilePath, EncodesTheKeyAndCutsAt259Bytes) {
    const auto nameOf = [](std::string_view key) {
        return LFileStoreDataStore::MakeDataFilePath("/db/Items", key);
    };
    EXPECT_EQ(nameOf("A/B c"), "/db/Items/A%2FB%20c.dat");
    EXPECT_EQ(nameOf("../x"), "/db/Items/..%2Fx.dat");
    EXPECT_EQ(nameOf(std::string(300, 'k')), "/db/Items/" + std::string(259, 'k') + ".dat");
    // 86 escapes are 258 bytes, so the cut leaves the percent sign of the next.
    EXPECT_EQ(nameOf(std::string(87, ' ')), "/db/Items/" + Repeat("%20", 86) + "%.dat");
}

TEST(RecordFileName, IsThePlainEncodingAsLongAsTheFileSystemTakesIt) {
    EXPECT_EQ(RecordFileName("A/B c"), "A%2FB%20c.dat");
    EXPECT_EQ(RecordFileName(""), "");
    EXPECT_EQ(RecordFileName(std::string(251, 'k')), std::string(251, 'k') + ".dat");
    EXPECT_EQ(KeyNote(std::string(251, 'k')), "");
    EXPECT_EQ(KeyOfRecordFile("a+b%2fc.dat", ""), "a b/c");
    EXPECT_EQ(KeyOfRecordFile(".dat", ""), "") << "no key at all";
    EXPECT_EQ(KeyOfRecordFile("%00.dat", ""), "");
    EXPECT_EQ(KeyOfRecordFile(Repeat("x", 251) + ".dat", "=other&a=1"), Repeat("x", 251))
        << "a note counts only in a shortened file";
}

TEST(RecordFileName, LongKeysNeverShareAFileAndAreFoundAgain) {
    std::set<std::string> names;
    std::vector<std::string> keys;
    for (const std::string& base :
         {std::string(251, 'k'), Repeat("ä", 100), Repeat("a ", 120), Repeat("%", 84)}) {
        for (const char* tail : {"1", "2", " ", "@@"}) keys.push_back(base + tail);
    }
    keys.push_back(std::string(252, 'k'));
    for (const std::string& key : keys) {
        const std::string name = RecordFileName(key);
        EXPECT_LE(name.size(), 255U);
        EXPECT_TRUE(names.insert(name).second) << key;
        EXPECT_EQ(KeyOfRecordFile(name, KeyNote(key)), key);
        EXPECT_EQ(KeyOfRecordFile(name, KeyNote(key) + "&a=1"), key);
        for (const char* lost : {"", "a=1", "=another", "=", "=%"}) {
            const std::string found = KeyOfRecordFile(name, lost);
            EXPECT_EQ(RecordFileName(found), name) << "the key made of the name leads there too";
        }
    }
}

TEST(RecordFileName, RecordsOfLongKeysLiveInTheListLikeOthers) {
    const LTempFolder home;
    const LFileStoreListBase list(LFileStoreDataStore(home.Path()), "Accounts");
    const std::string key = Repeat("ä", 120), twin = key + "x";
    for (const std::string& each : {key, twin}) {
        LRecord record;
        list.CreateNewRecord(record, each);
        record.SetString("Name", each.substr(each.size() - 1));
    }
    std::set<std::string> seen;
    LRecord record;
    const auto iterator = list.CreateIteratorBase(record);
    for (; record.IsBound(); iterator->Next(record)) {
        seen.insert(record.GetPrimaryKey());
        record.SetString("Seen", "1");
    }
    EXPECT_EQ(seen, (std::set<std::string>{key, twin}));
    ASSERT_TRUE(list.Open(record, twin));
    EXPECT_EQ(record.GetString("Name") + record.GetString("Seen"), "x1");
    record.SetPrimaryKey("short");
    record.Flush();
    EXPECT_EQ(home.ReadFile("Accounts/short.dat"), "Name=x&Seen=1") << "no note any more";
    record.SetPrimaryKey(twin);
    record.Flush();
    EXPECT_TRUE(list.Open(record, twin));
    EXPECT_TRUE(list.Delete(key));
    EXPECT_EQ(home.FileCount(), 1);
}
