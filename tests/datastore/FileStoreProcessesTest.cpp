// Several processes at the same folders, as the desktop and the service are.
#include <fcntl.h>
#include <gtest/gtest.h>
#include <sys/file.h>
#include <sys/mman.h>
#include <unistd.h>

#include <atomic>
#include <random>
#include <set>

#include "datastore/LFileStoreListBase.h"
#include "platform/LFileDescriptor.h"
#include "tests/support/LChildProcess.h"
#include "tests/support/LTempFolder.h"

namespace {

using std::chrono::milliseconds;

// A counter that parent and children share.
class SharedCounter {
public:
    SharedCounter()
        : counter_(new (::mmap(nullptr, sizeof(std::atomic<int>), PROT_READ | PROT_WRITE,
                               MAP_SHARED | MAP_ANONYMOUS, -1, 0)) std::atomic<int>(0)) {}
    ~SharedCounter() { ::munmap(counter_, sizeof(std::atomic<int>)); }
    SharedCounter(const SharedCounter&) = delete;
    SharedCounter& operator=(const SharedCounter&) = delete;
    std::atomic<int>& operator*() const { return *counter_; }

private:
    std::atomic<int>* counter_;
};

LFileStoreListBase ItemsIn(const LTempFolder& home) {
    return {LFileStoreDataStore(home.Path()), "Items"};
}

using Children = std::vector<std::unique_ptr<LChildProcess>>;

// Runs `work(0)` ... `work(count - 1)` in processes that begin at the same moment.
Children StartTogether(int count, SharedCounter& arrived, const std::function<int(int)>& work) {
    Children children;
    for (int i = 0; i < count; ++i) {
        children.push_back(std::make_unique<LChildProcess>([&, i] {
            for (++*arrived; *arrived < count;) ::usleep(50);
            return work(i);
        }));
    }
    return children;
}

// Text whose length tells whether all of it is there.
std::string NumberedText(int n) {
    return std::to_string(n) + std::string(static_cast<size_t>(n * 37 % 1400), 'x') + ".";
}

// The number of a text that is whole; -1 for any other.
int NumberOfText(std::string_view text) {
    const int n = std::atoi(std::string(text.substr(0, 12)).c_str());
    return text == NumberedText(n) ? n : -1;
}

}  // namespace

TEST(FileStoreProcesses, FourWritersOfOneRecordLoseNothingAndNobodySeesHalfOfIt) {
    constexpr int kWriters = 4, kEach = 500;
    const LTempFolder home;
    const LFileStoreListBase list = ItemsIn(home);
    const auto field = [](int i) { return "field" + std::to_string(i); };
    LRecord record;
    list.CreateNewRecord(record, "1");
    for (int i = 0; i < kWriters; ++i) record.SetString(field(i), NumberedText(0));
    record.Invalidate();

    SharedCounter arrived, done;
    Children children = StartTogether(kWriters + 1, arrived, [&](int i) {
        if (i < kWriters) {
            for (int n = 1; n <= kEach; ++n) {
                LRecord own;
                if (!list.Open(own, "1")) return 1;
                own.SetString(field(i), NumberedText(n));
            }
            ++*done;
            return 0;
        }
        std::vector<int> last(kWriters, 0);
        int loads = 0;
        for (; *done < kWriters; ++loads) {
            LRecord seen;
            if (!list.Open(seen, "1")) return 2;
            for (int w = 0; w < kWriters; ++w) {
                const int n = NumberOfText(seen.GetView(field(w)));
                if (n < last[static_cast<size_t>(w)]) return 3;  // half a text, or a lost change
                last[static_cast<size_t>(w)] = n;
            }
            ::usleep(300);
        }
        return loads > 0 ? 0 : 4;
    });
    for (auto& child : children) EXPECT_EQ(child->Wait(), 0);
    ASSERT_TRUE(list.Open(record, "1"));
    for (int i = 0; i < kWriters; ++i) EXPECT_EQ(NumberOfText(record.GetView(field(i))), kEach);
}

TEST(FileStoreProcesses, FourCreatorsTakeEveryNumberOnceAndAreNeverSeenHalf) {
    constexpr int kCreators = 4, kEach = 500;
    const LTempFolder home;
    const LFileStoreListBase list = ItemsIn(home);
    SharedCounter arrived, done;
    Children children = StartTogether(kCreators + 1, arrived, [&](int i) {
        if (i < kCreators) {
            for (int n = 0; n < kEach; ++n) {
                LRecord record;
                list.CreateNewRecord(record);
                record.SetString("text", NumberedText(n));
                record.SetInt("by", i);
                if (!record.Flush() || record.GetPrimaryKey().empty()) return 1;
            }
            ++*done;
            return 0;
        }
        while (*done < kCreators) {
            LRecord seen;
            const auto iterator = list.CreateIteratorBase(seen);
            for (; seen.IsBound(); iterator->Next(seen)) {
                if (NumberOfText(seen.GetView("text")) < 0 || !seen.TestFieldExists("by")) return 2;
            }
        }
        return 0;
    });
    for (auto& child : children) EXPECT_EQ(child->Wait(), 0);
    std::multiset<std::pair<int, int>> made;
    LRecord record;
    for (int key = 1; key <= kCreators * kEach; ++key) {
        ASSERT_TRUE(list.Open(record, std::to_string(key))) << key << " was skipped";
        made.emplace(record.GetInt("by", -1), NumberOfText(record.GetView("text")));
    }
    EXPECT_EQ(home.FileCount(), kCreators * kEach);
    EXPECT_EQ(made.size(), std::set(made.begin(), made.end()).size()) << "one record per save";
}

TEST(FileStoreProcesses, TheSmallestFreeNumberCountsWhatOthersDidMeanwhile) {
    const LTempFolder home;
    const LFileStoreListBase list = ItemsIn(home);
    const auto create = [&] {
        LRecord record;
        list.CreateNewRecord(record);
        record.SetString("a", "1");
        return list.Save(record) ? record.GetPrimaryKey() : "failed";
    };
    const auto inChild = [](const std::function<bool()>& work) {
        return LChildProcess([&] { return work() ? 0 : 1; }).Wait() == 0;
    };
    for (int n = 1; n <= 5; ++n) EXPECT_EQ(create(), std::to_string(n));
    EXPECT_TRUE(inChild([&] { return list.Delete("2") && list.Delete("4"); }));
    EXPECT_EQ(create(), "2");
    // The child begins with the parent's memory, but must not take away what the parent is told.
    EXPECT_TRUE(inChild([&] { return list.Delete("1") && list.Delete("5") && create() == "1"; }));
    EXPECT_EQ(create(), "4");
    EXPECT_EQ(create(), "5");
    EXPECT_TRUE(inChild([&] { return create() == "6"; }));
    EXPECT_EQ(create(), "7");
}

TEST(FileStoreProcesses, ALockHeldElsewhereDelaysAsLongAsDocumentedAndNoLonger) {
    const LTempFolder home;
    const LFileStoreListBase list = ItemsIn(home);
    for (const char* name : {"read", "written", "both", "released"}) {
        home.WriteFile("Items/" + std::string(name) + ".dat", "a=1");
    }
    SharedCounter ready;
    LChildProcess holder([&] {
        std::vector<LFileDescriptor> files;
        for (const char* name : {"read", "written", "both", "released"}) {
            const std::string path = home.File("Items/" + std::string(name) + ".dat");
            files.emplace_back(::open(path.c_str(), O_RDWR));
            ::flock(files.back().Get(), LOCK_EX);
        }
        ++*ready;
        ::usleep(500000);
        files.back().Close();
        ::pause();
        return 0;
    });
    while (*ready == 0) ::usleep(1000);

    const auto start = std::chrono::steady_clock::now();
    const auto elapsed = [&] {
        return std::chrono::duration_cast<milliseconds>(std::chrono::steady_clock::now() - start)
            .count();
    };
    std::array<int64_t, 5> took{};
    const auto load = [&](const char* key, size_t slot) {
        LRecord record;
        EXPECT_TRUE(list.Open(record, key)) << "reads without the lock in the end";
        EXPECT_EQ(record.GetString("a").substr(0, 1), "1");
        took.at(slot) = elapsed();
    };
    const auto save = [&](const char* key, size_t slot) {
        LRecord record;
        list.CreateNewRecord(record, key);
        record.SetString("a", "12");
        EXPECT_TRUE(record.Flush()) << "writes without the lock in the end";
        took.at(slot) = elapsed();
    };
    std::vector<std::thread> threads;
    threads.emplace_back(load, "read", 0);
    threads.emplace_back(save, "written", 1);
    threads.emplace_back(load, "released", 2);
    threads.emplace_back(save, "both", 3);
    ::usleep(100000);
    threads.emplace_back(load, "both", 4);  // queues behind the save before it asks for the lock
    for (std::thread& thread : threads) thread.join();

    for (const size_t slot : {0, 1, 3}) {
        EXPECT_GE(took.at(slot), 9703);  // 313 + 626 + 1252 + 2504 + 5008
        EXPECT_LT(took.at(slot), 12000);
    }
    EXPECT_GE(took[2], 939);  // busy at 0 and 313 ms, free when asked again
    EXPECT_LT(took[2], 2191);
    EXPECT_LT(took[4], 12000) << "both waits share the ten seconds";
    EXPECT_EQ(home.ReadFile("Items/written.dat"), "a=12");
}

// A power cut would be worse; a killed process must leave nothing but whole records.
TEST(FileStoreProcesses, KilledAtAnyMomentOf2000SavesLeavesTheOldOrTheNewText) {
    const LTempFolder home;
    const LFileStoreListBase list = ItemsIn(home);
    std::mt19937 random(99);
    SharedCounter saves;
    int kills = 0;
    for (; *saves < 2000; ++kills) {
        const int before = *saves;
        LChildProcess writer([&] {
            for (int n = before + 1;; ++n) {
                LRecord record;
                if (n % 10 == 0) {
                    list.CreateNewRecord(record);
                } else {
                    list.OpenAlways(record, "one");
                }
                record.SetString("text", NumberedText(n));
                record.SetString("tail", std::to_string(n));
                if (!record.Flush()) return 1;
                if (n % 10 == 0) list.Delete(record.GetPrimaryKey());
                *saves = n;
            }
        });
        while (*saves == before) ::usleep(100);
        ::usleep(random() % 2000);
        writer.Kill();
        LRecord record;
        const auto iterator = list.CreateIteratorBase(record);
        for (; record.IsBound(); iterator->Next(record)) {
            const int n = NumberOfText(record.GetView("text"));
            ASSERT_GE(n, 1) << record.GetPrimaryKey() << " after kill " << kills;
            ASSERT_EQ(record.GetInt("tail", 0), n) << record.GetPrimaryKey();
            if (record.GetPrimaryKey() == "one") {
                EXPECT_GE(n + 1, *saves);  // the last one finished, or the one under way
            }
        }
    }
    EXPECT_GT(kills, 10);
}
