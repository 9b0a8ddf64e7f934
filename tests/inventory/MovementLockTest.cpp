#include "inventory/MovementLock.h"

#include <fcntl.h>
#include <gtest/gtest.h>
#include <sys/file.h>

#include <array>
#include <atomic>
#include <chrono>
#include <string>
#include <thread>
#include <vector>

#include "inventory/LItem.h"
#include "inventory/StockQuantities.h"
#include "platform/LFileDescriptor.h"
#include "tests/inventory/LTestBusiness.h"
#include "tests/support/LChildProcess.h"

namespace {

using std::chrono::milliseconds;
using Clock = std::chrono::steady_clock;

constexpr int kChanges = 300;

// Takes one item out and puts two in, `kChanges` times; the item is opened once and grows stale.
int Work(const LProfile& profile, const std::string& key, const char* location) {
    LItem item;
    if (!profile.Items().Open(item, key)) return 1;
    for (int i = 0; i < kChanges; ++i) {
        if (!LItemChangeQuantity(profile, item, -1, location, true)) return 2;
        if (!LItemChangeQuantityById(profile, key, 2, location, true)) return 3;
    }
    return 0;
}

class TwoAtOnce : public testing::Test {
protected:
    std::string Expected(int atMain, int atYard) {
        return "\"1/" + std::to_string(atMain) + ".00/0.00/0.00\",\"2/" + std::to_string(atYard) +
               ".00/0.00/0.00\",";
    }

    LTestBusiness shop_;
    std::string yard_ = shop_.AddLocation("Yard");  // the key "2"
    std::string key_ = shop_.AddItem("A", "\"1/0.00/0.00/0.00\",\"2/0.00/0.00/0.00\",");
};

TEST_F(TwoAtOnce, ProcessesLoseNoChange) {
    { const LMovementLock lock(shop_.Profile()); }  // its file is open now: nobody may inherit it
    LChildProcess first([&] { return Work(LProfile(), key_, "Main"); });
    LChildProcess second([&] { return Work(LProfile(), key_, "Main"); });
    LChildProcess third([&] { return Work(LProfile(), key_, "Yard"); });
    EXPECT_EQ(first.Wait(), 0);
    EXPECT_EQ(second.Wait(), 0);
    EXPECT_EQ(third.Wait(), 0);
    EXPECT_EQ(shop_.StoredStock(key_), Expected(2 * kChanges, kChanges));
}

TEST_F(TwoAtOnce, ThreadsLoseNoChange) {
    std::atomic<int> failures = 0;
    std::vector<std::thread> threads;
    for (const char* location : {"Main", "Main", "Yard", "Main"}) {
        threads.emplace_back([&, location] { failures += Work(LProfile(), key_, location); });
    }
    for (std::thread& thread : threads) thread.join();
    EXPECT_EQ(failures, 0);
    EXPECT_EQ(shop_.StoredStock(key_), Expected(3 * kChanges, kChanges));
    EXPECT_EQ(shop_.Stored("Items", key_, "Quantity"), std::to_string(4 * kChanges) + ".000000");
}

TEST_F(TwoAtOnce, CodesAreFoundByManyThreads) {
    for (int i = 0; i < 20; ++i) shop_.AddItem("I" + std::to_string(i), "");
    std::atomic<int> found = 0;
    std::vector<std::thread> threads;
    for (int t = 0; t < 4; ++t) {
        threads.emplace_back([&, t] {
            const LProfile profile;
            LItem item;
            for (int i = 0; i < 40; ++i) {
                if (OpenItem(profile, item, "I" + std::to_string((i + t) % 21))) ++found;
            }
        });
    }
    for (std::thread& thread : threads) thread.join();
    EXPECT_EQ(found, 4 * 40 - 6) << "20 codes exist, the 21st does not";
}

TEST(LMovementLock, IsHeldUntilTheLastOfOneThreadHasGone) {
    LTestBusiness shop;
    const std::string path = shop.Profile().DatabaseFolder() + "/.movements";
    const auto isFree = [&] {
        LFileDescriptor file(::open(path.c_str(), O_RDWR | O_CLOEXEC));
        return file.IsOpen() && ::flock(file.Get(), LOCK_EX | LOCK_NB) == 0;
    };
    {
        const LMovementLock outer(shop.Profile());
        {
            const LMovementLock inner(shop.Profile());
            EXPECT_FALSE(isFree());
        }
        EXPECT_FALSE(isFree());
    }
    EXPECT_TRUE(isFree());
}

TEST(LMovementLock, ServesThreadsInTheOrderInWhichTheyCame) {
    LTestBusiness shop;
    std::vector<int> order;  // guarded by the lock under test
    std::vector<std::thread> threads;
    {
        const LMovementLock lock(shop.Profile());
        for (int i = 0; i < 5; ++i) {
            threads.emplace_back([&, i] {
                const LMovementLock mine(shop.Profile());
                order.push_back(i);
            });
            std::this_thread::sleep_for(milliseconds(30));
        }
    }
    for (std::thread& thread : threads) thread.join();
    EXPECT_EQ(order, (std::vector<int>{0, 1, 2, 3, 4}));
}

TEST(LMovementLock, GoesAheadAfterTenSeconds) {
    LTestBusiness shop;
    const std::string path = shop.Profile().DatabaseFolder() + "/.movements";
    LFileDescriptor stuck(::open(path.c_str(), O_RDWR | O_CREAT | O_CLOEXEC, 0600));
    ASSERT_EQ(::flock(stuck.Get(), LOCK_EX), 0);
    const Clock::time_point start = Clock::now();
    const std::string key = shop.AddItem("A", "");
    EXPECT_TRUE(LItemChangeQuantityById(shop.Profile(), key, 1, "Main", true));
    const auto waited = Clock::now() - start;
    EXPECT_GE(waited, milliseconds(9000));
    EXPECT_LE(waited, milliseconds(13000));
}

TEST(LMovementLock, AFolderThatTakesNoLockFileHoldsNothingUp) {
    LTestBusiness shop;
    const std::string path = shop.Profile().DatabaseFolder() + "/.movements";
    ASSERT_EQ(::mkdir(path.c_str(), 0700), 0);
    const Clock::time_point start = Clock::now();
    { const LMovementLock lock(shop.Profile()); }
    EXPECT_LE(Clock::now() - start, milliseconds(1000));
}

}  // namespace
