#include "datastore/LFolderMonitorEvents.h"

#include <gtest/gtest.h>

#include "platform/LMutex.h"
#include "tests/support/LTempFolder.h"

TEST(LFolderMonitorEvents, TellsTheMainThreadWhichListChanged) {
    const LTempFolder first, second;
    LMutex mutex;
    std::vector<std::function<void()>> posted;
    // Waits until `count` calls are posted, and a little for one that should not be.
    const auto waitForPosted = [&](size_t count) {
        size_t now = 0;
        for (int i = 0; i < 200 && (now < count || i < 10); ++i) {
            std::this_thread::sleep_for(std::chrono::milliseconds(50));
            const LMutexLock lock(mutex);
            now = posted.size();
        }
        return now;
    };
    const auto runPosted = [&] {
        std::vector<std::function<void()>> work;
        {
            const LMutexLock lock(mutex);
            work.swap(posted);
        }
        for (const auto& call : work) call();
    };
    std::vector<std::string> changed;
    {
        LFolderMonitorEvents events(
            [&](std::function<void()> work) {
                const LMutexLock lock(mutex);
                posted.push_back(std::move(work));
            },
            [&](const std::string& folder) { changed.push_back(folder); });
        ASSERT_TRUE(events.SetDatabaseName(first.Path()));
        first.WriteFile("Suppliers/1.dat", "not watched");
        first.WriteFile("Items/1.dat", "x");
        first.WriteFile("Locations/1.dat", "x");
        EXPECT_EQ(waitForPosted(2), 2U);
        first.WriteFile("Items/2.dat", "told already");
        EXPECT_EQ(waitForPosted(2), 2U);
        runPosted();
        std::sort(changed.begin(), changed.end());
        EXPECT_EQ(changed,
                  (std::vector<std::string>{first.File("Items"), first.File("Locations")}));

        first.WriteFile("Categories/1.dat", "x");
        EXPECT_EQ(waitForPosted(1), 1U);
        ASSERT_TRUE(events.SetDatabaseName(second.Path()));
        runPosted();
        EXPECT_EQ(changed.size(), 2U) << "another business is open meanwhile";
        second.WriteFile("Categories/1.dat", "x");
        EXPECT_EQ(waitForPosted(1), 1U);
    }
    runPosted();
    EXPECT_EQ(changed.size(), 2U) << "the window has gone";
}
