#include "platform/LFolderMonitor.h"

#include <gtest/gtest.h>

#include <atomic>

#include "tests/support/LTempFolder.h"

namespace {

namespace fs = std::filesystem;

struct LFolderMonitorTest : testing::Test {
    LFolderMonitorTest() { fs::create_directories(items); }
    // The number of signals once they have been quiet for a while, counted anew.
    int Signals() {
        int before = -1;
        for (int now = signals; now != before || now == 0; now = signals) {
            if (++rounds > 40) break;
            before = now;
            std::this_thread::sleep_for(std::chrono::milliseconds(400));
        }
        rounds = 0;
        return signals.exchange(0);
    }
    LTempFolder folder;
    const std::string items = folder.File("data/Items");
    std::atomic<int> signals{0};
    int rounds = 0;
    LFolderMonitor monitor{[this](const std::string& path) {
        EXPECT_EQ(path, items);
        ++signals;
    }};
};

}  // namespace

TEST_F(LFolderMonitorTest, FoldsABurstAndStopsWithinASecond) {
    EXPECT_FALSE(monitor.StartMonitor(""));
    EXPECT_FALSE(monitor.StartMonitor(folder.File("missing")));
    ASSERT_TRUE(monitor.StartMonitor(items));
    EXPECT_FALSE(monitor.StartMonitor(items)) << "already started";
    for (int i = 0; i < 200; ++i) {
        folder.WriteFile("data/Items/" + std::to_string(i % 20) + ".dat", "x");
    }
    const int told = Signals();
    EXPECT_GE(told, 1);
    EXPECT_LE(told, 5) << "200 writes are one change, or a few on a slow machine";
    const auto start = std::chrono::steady_clock::now();
    monitor.StopMonitor();
    EXPECT_LT(std::chrono::steady_clock::now() - start, std::chrono::seconds(1));
    fs::remove(items + "/1.dat");
    std::this_thread::sleep_for(std::chrono::milliseconds(300));
    EXPECT_EQ(signals, 0);
    EXPECT_TRUE(monitor.StartMonitor(items)) << "it can be started again";
}

TEST_F(LFolderMonitorTest, FollowsThePathWhenTheFolderIsReplaced) {
    ASSERT_TRUE(monitor.StartMonitor(items));
    fs::rename(folder.File("data"), folder.File("data.old"));  // as a restore does
    EXPECT_GE(Signals(), 1);
    folder.WriteFile("data.old/Items/1.dat", "not ours any more");
    folder.WriteFile("data/Items/1.dat", "restored");
    EXPECT_GE(Signals(), 1);
    fs::remove_all(items);
    EXPECT_GE(Signals(), 1);
    fs::create_directories(items);
    EXPECT_GE(Signals(), 1);
    folder.WriteFile("data/Items/2.dat", "new");
    EXPECT_GE(Signals(), 1);
}
