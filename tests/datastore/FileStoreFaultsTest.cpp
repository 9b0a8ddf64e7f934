// What the store does when the disk, the folder or a file does not play along.
#include <fcntl.h>
#include <grp.h>
#include <gtest/gtest.h>
#include <sched.h>
#include <sys/mount.h>
#include <sys/resource.h>
#include <sys/stat.h>
#include <unistd.h>

#include <csignal>
#include <random>

#include "datastore/LFileStoreListBase.h"
#include "tests/datastore/LFailStoreCalls.h"
#include "tests/support/LChildProcess.h"
#include "tests/support/LFailNthFileCall.h"
#include "tests/support/LTempFolder.h"

namespace {

LFileStoreListBase ItemsIn(const std::string& folder) {
    return {LFileStoreDataStore(folder), "Items"};
}

std::string OpenAndGet(const LFileStoreListBase& list, std::string_view key,
                       std::string_view field) {
    LRecord record;
    return list.Open(record, key) ? record.GetString(field, "-") : "no record";
}

bool Put(const LFileStoreListBase& list, std::string_view key, std::string_view value) {
    LRecord record;
    list.OpenAlways(record, key);
    record.SetString("a", value);
    return record.Flush();
}

std::string Create(const LFileStoreListBase& list, std::string_view value) {
    LRecord record;
    list.CreateNewRecord(record);
    record.SetString("a", value);
    return list.Save(record) ? record.GetPrimaryKey() : "failed";
}

int CountRecords(const LFileStoreListBase& list) {
    int count = 0;
    LRecord record;
    const auto iterator = list.CreateIteratorBase(record);
    for (; record.IsBound(); iterator->Next(record)) ++count;
    return count;
}

int OpenDescriptors() {
    int count = 0;
    for ([[maybe_unused]] const auto& entry :
         std::filesystem::directory_iterator("/proc/self/fd")) {
        ++count;
    }
    return count;
}

constexpr int kSkipped = 77;

// As somebody without special rights; root is refused nothing.
int AsNobody(const std::function<bool()>& work) {
    return LChildProcess([&] {
               constexpr unsigned kNobody = 65534;
               if (::geteuid() == 0 && (::setgroups(0, nullptr) != 0 || ::setgid(kNobody) != 0 ||
                                        ::setuid(kNobody) != 0)) {
                   return kSkipped;
               }
               return work() ? 0 : 1;
           })
        .Wait();
}

class FileStoreFaults : public ::testing::Test {
protected:
    FileStoreFaults() { ::chmod(home_.Path().c_str(), 0755); }

    LTempFolder home_;
    LFileStoreListBase list_ = ItemsIn(home_.Path());
};

}  // namespace

// One save, one walk and one new record with a fault at a certain moment. The record afterwards
// holds the old or the new text, a new one is there whole or not at all, and no descriptor stays
// open. Returns whether the fault came.
template <typename Fault, typename... Arguments>
bool SurvivesFault(Arguments... arguments) {
    const LTempFolder home;
    const LFileStoreListBase list = ItemsIn(home.Path());
    EXPECT_TRUE(Put(list, "one", "old and rather long"));
    EXPECT_EQ(Create(list, "x"), "1");  // the watch is open from here on
    const int descriptors = OpenDescriptors();
    std::string key;
    bool fired = false;
    {
        const Fault fault(arguments...);
        EXPECT_TRUE(Put(list, "one", "new") || fault.Fired());
        CountRecords(list);
        key = Create(list, "made");
        fired = fault.Fired();
    }
    const std::string value = OpenAndGet(list, "one", "a");
    EXPECT_TRUE(value == "old and rather long" || value == "new") << value;
    EXPECT_TRUE(fired || value == "new");
    EXPECT_TRUE(key == "2" || (fired && key == "failed")) << key;
    EXPECT_EQ(CountRecords(list), key == "2" ? 3 : 2);
    EXPECT_EQ(OpenAndGet(list, "2", "a"), key == "2" ? "made" : "no record");
    EXPECT_EQ(OpenDescriptors(), descriptors);
    return fired;
}

TEST(FileStoreFailingCalls, LeaveTheOldOrTheNewText) {
    for (const int error : {ENOSPC, EIO, EMFILE, EPERM, EOPNOTSUPP}) {
        int n = 1;
        for (; SurvivesFault<LFailStoreCalls>(LStoreCall::kAny, n, error); ++n) {
            ASSERT_FALSE(HasFailure()) << "call " << n << ", error " << error;
        }
        EXPECT_GT(n, 10);
        for (n = 1; SurvivesFault<LFailNthFileCall>(n, error, LFaultSpan::kOnce); ++n) {
            ASSERT_FALSE(HasFailure()) << "file call " << n << ", error " << error;
        }
        EXPECT_GT(n, 3);
    }
}

TEST_F(FileStoreFaults, NewKeysWorkWithoutNamelessFilesAndWithoutAWatch) {
    const std::pair<LStoreCall, int> kMissing[] = {{LStoreCall::kLinkat, ENOENT},
                                                   {LStoreCall::kAddWatch, ENOSPC}};
    int made = 0;
    for (const auto& [call, error] : kMissing) {
        const LTempFolder home;
        const LFileStoreListBase list = ItemsIn(home.Path());
        const LFailStoreCalls fault(call, 0, error);
        for (const char* key : {"1", "2", "3"}) EXPECT_EQ(Create(list, "x"), key);
        EXPECT_TRUE(list.Delete("2"));
        EXPECT_EQ(Create(list, "x"), "2");
        EXPECT_EQ(Create(list, "x"), "4");
        EXPECT_TRUE(fault.Fired());
        made += CountRecords(list);
    }
    EXPECT_EQ(made, 8);
}

// A limit on the size of files stands in for a disk with room for a part of the text only.
TEST_F(FileStoreFaults, ATextThatDoesNotFitLeavesTheOldOne) {
    ASSERT_TRUE(Put(list_, "1", "old"));
    const int status = LChildProcess([&] {
                           ::signal(SIGXFSZ, SIG_IGN);
                           const rlimit limit{600, 600};
                           if (::setrlimit(RLIMIT_FSIZE, &limit) != 0) return kSkipped;
                           if (!Put(list_, "1", std::string(1000, 'n'))) return 1;
                           if (OpenAndGet(list_, "1", "a") != "old") return 2;
                           if (Create(list_, std::string(1000, 'n')) != "failed") return 3;
                           if (CountRecords(list_) != 1) return 4;
                           if (Create(list_, "small") != "2") return 5;
                           return Put(list_, "1", "new") ? 0 : 6;
                       }).Wait();
    EXPECT_EQ(status, 0);
    EXPECT_EQ(OpenAndGet(list_, "1", "a"), "new");
    EXPECT_EQ(OpenAndGet(list_, "2", "a"), "small");
}

TEST_F(FileStoreFaults, AFullDiskLosesNoRecord) {
    const int status =
        LChildProcess([&] {
            const std::string disk = home_.File("disk");
            if (::mkdir(disk.c_str(), 0777) != 0 || ::unshare(CLONE_NEWNS) != 0 ||
                ::mount(nullptr, "/", nullptr, MS_REC | MS_PRIVATE, nullptr) != 0 ||
                ::mount("tmpfs", disk.c_str(), "tmpfs", 0, "size=256k,nr_inodes=100") != 0) {
                return kSkipped;
            }
            const LFileStoreListBase list = ItemsIn(disk);
            int made = 0;
            while (made < 100 && Create(list, std::string(3000, 'x')) != "failed") ++made;
            if (made < 10 || made == 100) return 1;
            if (CountRecords(list) != made) return 2;
            for (int key = 1; key <= made; ++key) {
                const std::string value(size_t{3000} + (key % 2 == 0 ? 3000 : 0), 'y');
                if (!Put(list, std::to_string(key), value)) return 3;
            }
            for (int key = 1; key <= made; ++key) {
                const std::string value = OpenAndGet(list, std::to_string(key), "a");
                const bool isNew = value.find_first_not_of('y') == std::string::npos;
                if (value != std::string(3000, 'x') && !isNew) return 4;
                if (isNew && value.size() != 3000 && value.size() != 6000) return 5;
            }
            return list.Delete("1") && Create(list, "fits again") == "1" ? 0 : 6;
        }).Wait();
    if (status == kSkipped) GTEST_SKIP() << "no right to mount a small disk";
    EXPECT_EQ(status, 0);
}

TEST_F(FileStoreFaults, AReadOnlyFolderIsReadAndNothingElse) {
    ASSERT_TRUE(Put(list_, "1", "old"));
    ::chmod(home_.File("Items/1.dat").c_str(), 0444);
    ::chmod(home_.File("Items").c_str(), 0555);
    const int status = AsNobody([&] {
        const LFileStoreListBase list = ItemsIn(home_.Path());
        return OpenAndGet(list, "1", "a") == "old" && CountRecords(list) == 1 &&
               Put(list, "1", "new") && Put(list, "2", "new") && Create(list, "new") == "failed" &&
               !list.Delete("1") && CountRecords(list) == 1;
    });
    if (status == kSkipped) GTEST_SKIP() << "no right to become somebody else";
    EXPECT_EQ(status, 0);
    EXPECT_EQ(OpenAndGet(list_, "1", "a"), "old");
    ::chmod(home_.File("Items").c_str(), 0755);
}

TEST_F(FileStoreFaults, AnUnreadableFileIsLeftOutAndLeftAlone) {
    ASSERT_TRUE(Put(list_, "1", "secret"));
    ASSERT_TRUE(Put(list_, "2", "open"));
    ::chmod(home_.File("Items").c_str(), 0777);
    ::chmod(home_.File("Items/1.dat").c_str(), 0);
    ::chmod(home_.File("Items/2.dat").c_str(), 0666);
    const int status = AsNobody([&] {
        return OpenAndGet(list_, "1", "a") == "no record" && CountRecords(list_) == 1 &&
               Put(list_, "1", "new") && Put(list_, "2", "new") && Create(list_, "x") == "3";
    });
    if (status == kSkipped) GTEST_SKIP() << "no right to become somebody else";
    EXPECT_EQ(status, 0);
    ::chmod(home_.File("Items/1.dat").c_str(), 0644);
    EXPECT_EQ(OpenAndGet(list_, "1", "a"), "secret");
    EXPECT_EQ(OpenAndGet(list_, "2", "a"), "new");
}

TEST_F(FileStoreFaults, AFolderOrPipeInThePlaceOfARecordIsNone) {
    std::filesystem::create_directories(home_.File("Items/1.dat/inside"));
    ::mkfifo(home_.File("Items/2.dat").c_str(), 0666);
    const int descriptors = OpenDescriptors();
    EXPECT_EQ(OpenAndGet(list_, "1", "a"), "no record");
    EXPECT_FALSE(list_.TestRecordExists("1"));
    EXPECT_TRUE(Put(list_, "1", "x")) << "a file that cannot be opened counts as saved";
    EXPECT_FALSE(list_.Delete("1"));
    Put(list_, "2", "x");  // must not wait for somebody at the other end
    EXPECT_EQ(CountRecords(list_), 0);
    EXPECT_EQ(OpenDescriptors(), descriptors);
    EXPECT_EQ(Create(list_, "x"), "3");
    EXPECT_TRUE(std::filesystem::exists(home_.File("Items/1.dat/inside")));
}

TEST_F(FileStoreFaults, AFileOfFourGigabytesReadsAsEmptyAndIsReplaced) {
    home_.WriteFile("Items/1.dat", "a=1&" + std::string(5000, 'x'));
    if (::truncate(home_.File("Items/1.dat").c_str(), off_t{1} << 32) != 0) {
        GTEST_SKIP() << "no sparse files here";
    }
    LRecord record;
    ASSERT_TRUE(list_.Open(record, "1"));
    EXPECT_EQ(record.Fields().Count(), 0U);
    record.SetString("b", "2");
    EXPECT_TRUE(record.Flush());
    EXPECT_EQ(std::filesystem::file_size(home_.File("Items/1.dat")), 3U);
    EXPECT_EQ(OpenAndGet(list_, "1", "b"), "2");
}

TEST_F(FileStoreFaults, RecordsOfAnyBytesLoadAndCanBeMended) {
    std::mt19937 random(4711);
    const int descriptors = OpenDescriptors();
    for (int round = 0; round < 1500; ++round) {
        std::string text = "Name=PART&Description=Hex%20bolt&Quantity=5.000000&Notes=";
        if (round % 3 == 0) text.assign(random() % 6000, ' ');
        for (size_t i = random() % (text.size() + 1); i > 0; --i) {
            text[random() % text.size()] = static_cast<char>(random());
        }
        text.resize(random() % (text.size() + 1));
        home_.WriteFile("Items/1.dat", text);
        LRecord record, again;
        ASSERT_TRUE(list_.Open(record, "1"));
        const size_t fields = record.Fields().Count();
        record.GetFloat("Quantity");
        record.SetString("Mended", std::to_string(round));
        ASSERT_TRUE(record.Flush());
        ASSERT_TRUE(list_.Open(again, "1"));
        ASSERT_EQ(again.GetInt("Mended", -1), round);
        ASSERT_EQ(again.Fields().Count(), fields + 1);
        for (size_t i = 0; i < fields; ++i) {
            ASSERT_FALSE(again.Fields().Name(i).empty());
            ASSERT_LE(again.Fields().Name(i).size(), 63U);
            ASSERT_EQ(again.Fields().Name(i), record.Fields().Name(i));
            ASSERT_EQ(again.Fields().Value(i), record.Fields().Value(i));
        }
    }
    EXPECT_EQ(OpenDescriptors(), descriptors);
}
