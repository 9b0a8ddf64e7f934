#include <gtest/gtest.h>
#include <sys/stat.h>

#include <set>

#include "datastore/LFileStoreListBase.h"
#include "datastore/UnboundListBase.h"
#include "tests/support/LTempFolder.h"

namespace {

class FileStore : public ::testing::Test {
protected:
    std::string TextOf(std::string_view key) const {
        return home_.ReadFile("Items/" + std::string(key) + ".dat");
    }
    void Put(std::string_view key, std::string_view text) const {
        home_.WriteFile("Items/" + std::string(key) + ".dat", text);
    }
    std::string OpenAndGet(std::string_view key, std::string_view field) const {
        LRecord record;
        return list_.Open(record, key) ? record.GetString(field, "-") : "no record";
    }
    std::set<std::string> Keys() const {
        std::set<std::string> keys;
        LRecord record;
        const auto iterator = list_.CreateIteratorBase(record);
        for (; record.IsBound(); iterator->Next(record)) keys.insert(record.GetPrimaryKey());
        return keys;
    }

    LTempFolder home_;
    LFileStoreListBase list_{LFileStoreDataStore(home_.Path()), "Items"};
};

}  // namespace

TEST_F(FileStore, MakesItsFolderForEverybody) {
    EXPECT_EQ(list_.Folder(), home_.File("Items"));
    EXPECT_EQ(list_.KeyField(), "ID");
    const mode_t mask = ::umask(0);
    const LFileStoreListBase orders(LFileStoreDataStore(home_.Path()), "Orders");
    LRecord numbered, named;
    orders.CreateNewRecord(numbered);
    numbered.SetString("a", "1");
    orders.CreateNewRecord(named, "x");
    named.SetString("a", "1");
    EXPECT_TRUE(numbered.Flush() && named.Flush());
    ::umask(mask);
    const auto modeOf = [&](const char* name) {
        struct stat status {};
        return ::stat(home_.File(name).c_str(), &status) == 0 ? status.st_mode & 07777 : 0;
    };
    EXPECT_EQ(modeOf("Orders"), 0777U);
    EXPECT_EQ(modeOf("Orders/1.dat"), 0666U);
    EXPECT_EQ(modeOf("Orders/x.dat"), 0666U);
}

TEST_F(FileStore, CreatesOpensAndDeletesUnderAKey) {
    LRecord record;
    EXPECT_FALSE(list_.Open(record, "A/B c"));
    EXPECT_FALSE(record.IsBound());
    EXPECT_FALSE(list_.Open(record, ""));
    list_.CreateNewRecord(record, "A/B c");
    EXPECT_EQ(record.GetPrimaryKey(), "A/B c");
    EXPECT_EQ(record.GetLoadedKey(), "");
    EXPECT_TRUE(record.Flush());
    EXPECT_FALSE(list_.TestRecordExists("A/B c")) << "a clean record is not saved";
    record.SetString("Name", "Bolt & nut");
    EXPECT_TRUE(record.Flush());
    EXPECT_EQ(record.GetLoadedKey(), "A/B c");
    EXPECT_EQ(TextOf("A%2FB%20c"), "Name=Bolt%20%26%20nut");

    EXPECT_TRUE(list_.TestRecordExists("A/B c"));
    ASSERT_TRUE(list_.Open(record, record.GetPrimaryKey()));
    EXPECT_EQ(record.GetLoadedKey(), "A/B c");
    EXPECT_EQ(record.GetString("Name"), "Bolt & nut");
    EXPECT_FALSE(record.IsDirty());
    EXPECT_TRUE(list_.Delete("A/B c"));
    EXPECT_FALSE(list_.Delete("A/B c"));
    EXPECT_FALSE(list_.Delete(""));
    EXPECT_FALSE(list_.TestRecordExists("A/B c"));
    list_.CreateNewRecord(record, "");
    EXPECT_FALSE(record.IsBound());
}

TEST_F(FileStore, OpenAlwaysCreatesOnTheFirstSave) {
    LRecord record;
    list_.OpenAlways(record, "Options");
    EXPECT_TRUE(record.IsBound());
    EXPECT_EQ(record.GetInt("DatabaseVersion", 3), 3);
    record.Invalidate();
    EXPECT_FALSE(list_.TestRecordExists("Options")) << "only read, so nothing was made";
    list_.OpenAlways(record, "Options");
    record.SetInt("DatabaseVersion", 4);
    list_.OpenAlways(record, "Options");  // saves first
    EXPECT_EQ(record.GetInt("DatabaseVersion", 3), 4);
    EXPECT_EQ(record.GetLoadedKey(), "Options");
}

TEST_F(FileStore, ConcurrentSavesCombineFieldByField) {
    Put("1", "a=1&b=1&c=1");
    LRecord ours, theirs;
    ASSERT_TRUE(list_.Open(ours, "1"));
    ASSERT_TRUE(list_.Open(theirs, "1"));
    theirs.SetString("b", "theirs");
    theirs.SetString("new", "field");
    EXPECT_TRUE(theirs.Flush());
    ours.SetString("a", "ours");
    ours.DeleteField("c");
    EXPECT_TRUE(ours.Flush());
    EXPECT_EQ(TextOf("1"), "a=ours&b=theirs&new=field");
    EXPECT_EQ(ours.GetString("b"), "theirs") << "the saver sees what it took over";
    // theirs still holds c; it was only read there, and a save writes what it holds.
    theirs.SetString("b", "again");
    EXPECT_TRUE(theirs.Flush());
    EXPECT_EQ(TextOf("1"), "a=ours&b=again&c=1&new=field");
}

TEST_F(FileStore, ADeletedFieldIsLeftOutOnceAndOnlyOnce) {
    Put("1", "flag=1&a=1");
    LRecord record;
    ASSERT_TRUE(list_.Open(record, "1"));
    record.DeleteField("flag");
    EXPECT_TRUE(record.Flush());
    EXPECT_EQ(TextOf("1"), "a=1");
    EXPECT_FALSE(record.TestFieldExists("flag"));
    record.SetString("a", "2");
    EXPECT_TRUE(record.Flush());
    EXPECT_EQ(TextOf("1"), "flag=1&a=2") << "the same object writes the old value again";
    EXPECT_FALSE(record.TestFieldExists("flag")) << "hidden here nevertheless";
    record.DeleteField("flag");
    EXPECT_TRUE(record.Flush());
    EXPECT_EQ(TextOf("1"), "a=2");
    record.SetString("flag", "0");
    EXPECT_TRUE(list_.Save(record));
    EXPECT_EQ(TextOf("1"), "flag=0&a=2");
    EXPECT_FALSE(record.IsDirty());
}

TEST_F(FileStore, ShorterLongerAndEmptyTextsReplaceTheOldWhole) {
    LRecord record;
    list_.CreateNewRecord(record, "1");
    for (const size_t size : {10, 5000, 3, 100000, 4090, 4096, 4097, 0, 1}) {
        record.SetString("a", std::string(size, 'x'));
        record.SetString("n", std::to_string(size));
        EXPECT_TRUE(record.Flush());
        EXPECT_EQ(TextOf("1"), "a=" + std::string(size, 'x') + "&n=" + std::to_string(size));
        EXPECT_EQ(OpenAndGet("1", "a").size(), size);
    }
    record.DeleteField("a");
    record.DeleteField("n");
    EXPECT_TRUE(record.Flush());
    EXPECT_EQ(TextOf("1"), "");
}

TEST_F(FileStore, ANewKeyRenamesTheFileUnlessItIsTaken) {
    struct Case {
        const char *from, *to, *key, *why;
    };
    const Case kCases[] = {
        {"one", "two", "two", "free"},
        {"two", "TWO", "TWO", "other letters of the same key"},
        {"TWO", "taken", "TWO", "another record has it"},
        {"TWO", "Taken", "Taken", "in these letters it is free"},
        {"Taken", "taken", "Taken", "a different file bears it in these letters"},
    };
    Put("one", "a=1");
    Put("taken", "a=other");
    for (const Case& c : kCases) {
        LRecord record;
        ASSERT_TRUE(list_.Open(record, c.from)) << c.why;
        record.SetPrimaryKey(c.to);
        record.SetString("moved to", c.to);
        EXPECT_TRUE(record.Flush()) << c.why;
        EXPECT_EQ(record.GetPrimaryKey(), c.key) << c.why;
        EXPECT_EQ(record.GetLoadedKey(), c.key) << c.why;
        EXPECT_EQ(OpenAndGet(c.key, "moved to"), c.to) << c.why;
        EXPECT_EQ(TextOf("taken"), "a=other");
        EXPECT_EQ(home_.FileCount(), 2) << c.why;
    }
}

TEST_F(FileStore, WalksItsRecordFilesAndNothingElse) {
    Put("1", "a=1");
    Put("A%2FB%20c", "a=2");
    Put("empty", "");
    Put("", "no key");
    Put("%00", "nor here");
    home_.WriteFile("Items/1.dat.bak", "a=x");
    home_.WriteFile("Items/1.bmp", "a=x");
    home_.WriteFile("Items/1.DAT", "a=x");
    std::filesystem::create_directory(home_.File("Items/folder.dat"));
    ::mkfifo(home_.File("Items/pipe.dat").c_str(), 0666);
    std::filesystem::create_symlink("1.dat", home_.File("Items/link.dat"));
    std::filesystem::create_symlink("gone.dat", home_.File("Items/broken.dat"));
    EXPECT_EQ(Keys(), (std::set<std::string>{"1", "A/B c", "empty", "link"}));
    EXPECT_FALSE(LAppDataBaseList<LRecord>(LFileStoreDataStore(home_.Path()), "Items").IsEmpty());
    EXPECT_TRUE(LAppDataBaseList<LRecord>(LFileStoreDataStore(home_.Path()), "Misc").IsEmpty());
}

TEST_F(FileStore, AWalkSavesChangesAndEndsUnbound) {
    for (const char* key : {"1", "2", "3"}) Put(key, "a=" + std::string(key));
    LRecord other;
    list_.CreateNewRecord(other, "other");
    other.SetString("a", "0");
    EXPECT_TRUE(other.Flush());
    LRecord record;
    const auto iterator = list_.CreateIteratorBase(record);
    for (int steps = 0; record.IsBound(); ++steps) {
        ASSERT_LT(steps, 4);
        EXPECT_EQ(record.GetPrimaryKey(), record.GetLoadedKey());
        if (record.GetPrimaryKey() == "2") {
            InitUnboundRecord(record, "2");  // bound elsewhere by the visitor
        } else {
            record.SetString("b", record.GetView("a"));
        }
        iterator->Next(record);
    }
    EXPECT_EQ(record.GetPrimaryKey(), "");
    EXPECT_EQ(record.Fields().Count(), 0U);
    iterator->Next(record);
    EXPECT_FALSE(record.IsBound());
    EXPECT_EQ(TextOf("1"), "a=1&b=1");
    EXPECT_EQ(TextOf("2"), "a=2");
    EXPECT_EQ(TextOf("3"), "a=3&b=3");
}

TEST_F(FileStore, WhatCannotBeWrittenIsTriedAgainWithTheNextSave) {
    LRecord record, fresh;
    list_.OpenAlways(record, "Tax");
    list_.CreateNewRecord(fresh);
    std::filesystem::remove(home_.File("Items"));
    record.SetString("a", "1");
    fresh.SetString("b", "1");
    EXPECT_TRUE(record.Flush()) << "callers treat the save as done";
    EXPECT_FALSE(fresh.Flush()) << "no number could be had";
    EXPECT_EQ(fresh.GetPrimaryKey(), "");
    std::filesystem::create_directory(home_.File("Items"));
    Put("Tax", "a=old");
    record.SetString("c", "1");
    fresh.SetString("c", "1");
    EXPECT_TRUE(record.Flush() && fresh.Flush());
    EXPECT_EQ(TextOf("Tax"), "a=1&c=1");
    EXPECT_EQ(TextOf("1"), "b=1&c=1");
}
