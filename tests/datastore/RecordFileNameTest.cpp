#include "datastore/RecordFileName.h"

#include <gtest/gtest.h>

#include <set>

#include "datastore/LFileStoreListBase.h"
#include "datastore/RecordText.h"
#include "datastore/Sha256Digest.h"
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
    EXPECT_EQ(nameOf(Repeat("k", 300)), "/db/Items/" + Repeat("k", 259) + ".dat");
    // 86 escapes are 258 bytes, so the cut leaves the percent sign of the next.
    EXPECT_EQ(nameOf(Repeat(" ", 87)), "/db/Items/" + Repeat("%20", 86) + "%.dat");
}

// Lengths around the end of a block; expected values from the system's own checksum program.
TEST(Sha256Digest, IsTheOneOfOtherPrograms) {
    struct Case {
        int length;
        const char* digest;
    };
    const Case kCases[] = {
        {55, "94ABCC11F65698688FFC2858EFB9B3D55F20C579ABAAD82735AE6817887595F4"},
        {56, "493A700B8FD71C2A186C018E1D3A9B1BEBBCEC358A13DAA67E76A788FDDC2E07"},
        {64, "2519B49BCF69FEAC270AC3C8631539E8CAED4C7E6A62C6CC5511228A61780745"},
    };
    for (const Case& c : kCases) EXPECT_EQ(Sha256Digest(std::string(c.length, 'k')), c.digest);
    EXPECT_EQ(Sha256Digest("\u00E4"),
              "33E6D73FEE82904C8D7AFB78DE1154D1E8DC2A0EDB08120E63DF5B9385C2D9CC");
}

TEST(RecordFileName, LongKeysNeverShareAFileAndAreFoundAgain) {
    std::set<std::string> names;
    std::vector<std::string> keys;
    for (const std::string& base :
         {Repeat("k", 251), Repeat("ä", 100), Repeat("a ", 120), Repeat("%", 84)}) {
        for (const char* tail : {"1", "2", " ", "@@"}) keys.push_back(base + tail);
    }
    keys.push_back(Repeat("k", 252));
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
