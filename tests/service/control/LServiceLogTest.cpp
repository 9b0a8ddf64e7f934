#include "service/control/LServiceLog.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <atomic>
#include <string>
#include <thread>

#include "platform/LSignalObject.h"

TEST(LServiceLog, OneCallIsOneLineWithTheTime) {
    testing::internal::CaptureStderr();
    LServiceLog("cannot answer\npage", "a\tb\x7f\x01 \xc3\xa4", kLogError);
    LServiceLog("alone");
    std::string lines = testing::internal::GetCapturedStderr();
    std::replace_if(
        lines.begin(), lines.end(), [](char byte) { return byte >= '0' && byte <= '9'; }, '9');
    EXPECT_EQ(lines,
              "9999-99-99 99:99:99 cannot answer page a b   \xc3\xa4\n"
              "9999-99-99 99:99:99 alone\n");
}

TEST(LServiceLog, ASinkThatIsTakenAwayHasNobodyInside) {
    const LSignalObject inside, mayLeave;
    std::atomic<bool> left{false};
    SetServiceLogSink([&](std::string_view, std::string_view, int level) {
        EXPECT_EQ(level, kLogWarning);
        inside.Set();
        mayLeave.Wait();
        left = true;
    });
    std::thread logger([] { LServiceLog("one", "two", kLogWarning); });
    inside.Wait();
    std::thread opener([&] {
        std::this_thread::sleep_for(std::chrono::milliseconds(50));
        mayLeave.Set();
    });
    SetServiceLogSink(nullptr);
    EXPECT_TRUE(left);
    logger.join();
    opener.join();
    LServiceLog("nobody listens");
}
