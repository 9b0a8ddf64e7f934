#include <gtest/gtest.h>

#include "datastore/LFileStoreListBase.h"
#include "datastore/LUsedNumbers.h"
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

TEST(LUsedNumbers, FindsTheSmallestFreeOne) {
    LUsedNumbers used;
    EXPECT_EQ(used.SmallestFree(), 1U);
    for (uint64_t number = 1; number <= 200; ++number) used.Add(number);
    EXPECT_EQ(used.SmallestFree(), 201U);
    used.Remove(64);
    used.Remove(130);
    used.Remove(5000);
    EXPECT_EQ(used.SmallestFree(), 64U);
    EXPECT_EQ(used.SmallestFree(65), 130U);
    EXPECT_EQ(used.SmallestFree(131), 201U);
    used.Add(64);
    used.Add(130);
    EXPECT_EQ(used.SmallestFree(), 201U);
    used.Add(1000000000000);  // too large to be remembered
    EXPECT_EQ(used.SmallestFree(1000000000000), 1000000000000U);
    used.Clear();
    EXPECT_EQ(used.SmallestFree(), 1U);
}

TEST(LUsedNumbers, ReadsFileNames) {
    EXPECT_EQ(NumberOfFileName("17.dat"), 17U);
    for (const char* name : {"017.dat", "0.dat", ".dat", "17", "17.DAT", "+17.dat", "17x.dat",
                             "1 7.dat", "99999999999999999999999.dat", "17.dat.dat", ""}) {
        EXPECT_FALSE(NumberOfFileName(name).has_value()) << name;
    }
}

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

// A restore puts another database in the place of the one before; the list folder itself was never
// moved then.
TEST_F(NewKeys, StartAnewWhereTheDatabaseIsAnotherOne) {
    const auto create = [this] {
        std::filesystem::create_directory(home_.File("Business"));
        return Create("Business/Items");
    };
    EXPECT_EQ(create(), "1");
    EXPECT_EQ(create(), "2");
    Move("Business", "Before");
    EXPECT_EQ(create(), "1");
    std::filesystem::remove_all(home_.File("Business"));
    Move("Before", "Business");
    EXPECT_EQ(create(), "3");
}

TEST_F(NewKeys, OfManyListsInTurn) {
    for (int round = 1; round <= 2; ++round) {  // more lists than are remembered
        for (int list = 0; list < 70; ++list) {
            EXPECT_EQ(Create("List" + std::to_string(list)), std::to_string(round));
        }
    }
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
