#include "datastore/LPathLock.h"

#include <gtest/gtest.h>

#include <atomic>

#include "datastore/LFileStoreListBase.h"
#include "tests/support/LTempFolder.h"

namespace {

using std::chrono::milliseconds;

// A thread that takes its turn at a file and notes its number when it is served.
class Visitor {
public:
    Visitor(size_t path, LFileLockKind kind, int number, std::vector<int>& served,
            std::mutex& mutex)
        : thread_([=, this, &served, &mutex] {
              started_ = true;
              const LPathLock turn(path, kind);
              {
                  const std::lock_guard lock(mutex);
                  served.push_back(number);
              }
              while (!leave_) std::this_thread::sleep_for(milliseconds(1));
          }) {
        while (!started_) std::this_thread::yield();
        std::this_thread::sleep_for(milliseconds(100));  // until it stands in the queue
    }
    ~Visitor() { Leave(); }
    void Leave() {
        leave_ = true;
        if (thread_.joinable()) thread_.join();
    }

private:
    std::atomic<bool> started_{false}, leave_{false};
    std::thread thread_;
};

}  // namespace

TEST(LPathLock, ServesInTheOrderOfComing) {
    constexpr LFileLockKind kRead = LFileLockKind::kShared, kWrite = LFileLockKind::kExclusive;
    constexpr size_t kPath = 5, kSameStripe = 5 + 64;
    std::mutex mutex;
    std::vector<int> served;
    const auto servedSoFar = [&] {
        std::this_thread::sleep_for(milliseconds(100));
        const std::lock_guard lock(mutex);
        return served;
    };
    Visitor reader1(kPath, kRead, 1, served, mutex), reader2(kPath, kRead, 2, served, mutex);
    EXPECT_EQ(servedSoFar(), (std::vector<int>{1, 2})) << "readers go together";
    Visitor writer(kPath, kWrite, 3, served, mutex);
    Visitor late(kPath, kRead, 4, served, mutex);
    EXPECT_EQ(servedSoFar().size(), 2U) << "a writer waits, and readers do not overtake it";
    Visitor elsewhere(kSameStripe, kWrite, 5, served, mutex);
    EXPECT_EQ(servedSoFar().back(), 5) << "another file does not wait";
    reader1.Leave();
    EXPECT_EQ(servedSoFar().back(), 5);
    reader2.Leave();
    EXPECT_EQ(servedSoFar().back(), 3);
    writer.Leave();
    EXPECT_EQ(servedSoFar().back(), 4);
    late.Leave();
    const LPathLock again(kPath, kWrite);
    EXPECT_EQ(again.RemainingMs(), kLockTimeoutMs);
}

// Without the queue before the file lock, threads would pause for 313 ms at every meeting.
TEST(FileStoreThreads, ChangeOneRecordWithoutPausesAndLoseNothing) {
    constexpr int kThreads = 4, kEach = 300;
    const LTempFolder home;
    const LFileStoreListBase list(LFileStoreDataStore(home.Path()), "Items");
    const auto start = std::chrono::steady_clock::now();
    std::atomic<bool> halfRecord{false};
    std::vector<std::thread> threads;
    for (int i = 0; i < kThreads; ++i) {
        threads.emplace_back([&, i] {
            const std::string field = "field" + std::to_string(i);
            for (int n = 1; n <= kEach; ++n) {
                LRecord record;
                list.OpenAlways(record, "1");
                if (record.GetInt(field, 0) != n - 1) halfRecord = true;
                record.SetInt(field, n);
            }
        });
    }
    for (std::thread& thread : threads) thread.join();
    EXPECT_LT(std::chrono::steady_clock::now() - start, std::chrono::seconds(10));
    EXPECT_FALSE(halfRecord);
    LRecord record;
    ASSERT_TRUE(list.Open(record, "1"));
    for (int i = 0; i < kThreads; ++i) {
        EXPECT_EQ(record.GetInt("field" + std::to_string(i), 0), kEach);
    }
}
