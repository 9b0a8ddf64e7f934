#include <gtest/gtest.h>

#include "datastore/LFileStoreListBase.h"
#include "tests/support/LTempFolder.h"

namespace {

class NewKeys : public ::testing::Test {
protected:
    std::string Create(std::string_view listName = "Items") const {
        const LFileStoreListBase list(LFileStoreDataStore(home_.Path()), listName);
        LRecord record;
        list.CreateNewRecord(record);
        record.SetString("a", "1");
        return list.Save(record) ? record.GetPrimaryKey() : "failed";
    }
    void Put(const std::string& name) const { home_.WriteFile("Items/" + name, "a=1"); }
    void Remove(const std::string& name) const {
        std::filesystem::remove_all(home_.File("Items/" + name));
    }
    void Move(const std::string& from, const std::string& to) const {
        std::filesystem::rename(home_.File(from), home_.File(to));
    }

    LTempFolder home_;
};

}  // namespace

TEST_F(NewKeys, AreTheSmallestFreeNumbers) {
    EXPECT_EQ(Create(), "1");
    Put("3.dat");
    EXPECT_EQ(Create(), "2");
    EXPECT_EQ(Create(), "4");
    Remove("1.dat");
    Remove("3.dat");
    EXPECT_EQ(Create(), "1");
    EXPECT_EQ(Create(), "3");
    EXPECT_EQ(Create(), "5");
    EXPECT_EQ(home_.ReadFile("Items/5.dat"), "a=1");
    EXPECT_EQ(Create("Orders"), "1") << "each list has its own";
}

// A number counts as taken or free as the folder stands, whoever changed it and however.
TEST_F(NewKeys, FollowEveryChangeOfTheFolder) {
    EXPECT_EQ(Create(), "1");
    std::filesystem::create_directory(home_.File("Items/2.dat"));  // named like a record
    Put("03.dat");
    Put("x.dat");
    EXPECT_EQ(Create(), "3");
    Move("Items/1.dat", "1.dat");
    EXPECT_EQ(Create(), "1");
    Move("1.dat", "Items/4.dat");
    EXPECT_EQ(Create(), "5");
    Move("Items/3.dat", "Items/name.dat");
    EXPECT_EQ(Create(), "3");
    Move("Items/name.dat", "Items/6.dat");
    EXPECT_EQ(Create(), "7");
    for (int i = 8; i < 3000; ++i) Put(std::to_string(i) + ".dat");  // more than one read of events
    EXPECT_EQ(Create(), "3000");
    for (int i = 2999; i > 2500; --i) Remove(std::to_string(i) + ".dat");
    EXPECT_EQ(Create(), "2501");
}

TEST_F(NewKeys, StartAnewWhereTheFolderIsAnotherOne) {
    EXPECT_EQ(Create(), "1");
    EXPECT_EQ(Create(), "2");
    Move("Items", "Before");
    EXPECT_EQ(Create(), "1") << "a new folder";
    Move("Items", "After");
    Move("Before", "Items");
    EXPECT_EQ(Create(), "3") << "the old one is back, as by a restore";
    std::filesystem::remove_all(home_.File("Items"));
    EXPECT_EQ(Create(), "1") << "removed and made again, perhaps under the same inode";
    std::filesystem::remove_all(home_.File("Items"));
    std::filesystem::create_directory(home_.File("Items"));
    Put("1.dat");
    EXPECT_EQ(Create(), "2");
}

TEST_F(NewKeys, OfSeveralThreadsAreAllDifferentAndNoneIsSkipped) {
    constexpr int kThreads = 4, kEach = 100;
    std::vector<std::thread> threads;
    for (int i = 0; i < kThreads; ++i) {
        threads.emplace_back([this] {
            for (int n = 0; n < kEach; ++n) EXPECT_NE(Create(), "failed");
        });
    }
    for (std::thread& thread : threads) thread.join();
    EXPECT_EQ(home_.FileCount(), kThreads * kEach);
    EXPECT_EQ(Create(), std::to_string(kThreads * kEach + 1));
}
