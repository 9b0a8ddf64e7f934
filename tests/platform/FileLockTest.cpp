#include "platform/FileLock.h"

#include <fcntl.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <chrono>

#include "platform/LFileDescriptor.h"
#include "tests/support/LScopedAlarm.h"
#include "tests/support/LTempFolder.h"

namespace {

// With these the pauses are 11, 22, 44, 88 and 176 ms.
constexpr int kTimeoutMs = 320;
constexpr int kAllPausesMs = 341;

class FileLock : public ::testing::Test {
protected:
    LFileDescriptor Open() const {
        return LFileDescriptor(
            ::open(folder_.File("lock").c_str(), O_RDWR | O_CREAT | O_CLOEXEC, 0600));
    }
    // How long the lock was tried for, in ms; `taken` tells whether it was had.
    static long TryFor(const LFileDescriptor& fd, LFileLockKind kind, int timeoutMs, bool& taken) {
        const auto begin = std::chrono::steady_clock::now();
        taken = flocktimed(fd.Get(), kind, timeoutMs);
        const auto spent = std::chrono::steady_clock::now() - begin;
        return static_cast<long>(
            std::chrono::duration_cast<std::chrono::milliseconds>(spent).count());
    }

    LTempFolder folder_;
};

}  // namespace

TEST_F(FileLock, GivesUpWhenTheNextPauseWouldReachTheTimeout) {
    const LFileDescriptor holder = Open();
    const LFileDescriptor other = Open();
    ASSERT_TRUE(flocktimed(holder.Get(), LFileLockKind::kExclusive));
    // A busy machine stretches some tries, but not all; tripled pauses would make 440 ms.
    long shortestMs = 10000;
    for (int attempt = 0; attempt < 5 && shortestMs > kAllPausesMs + 60; ++attempt) {
        const auto kind = attempt % 2 == 0 ? LFileLockKind::kShared : LFileLockKind::kExclusive;
        bool taken = true;
        const long spentMs = TryFor(other, kind, kTimeoutMs, taken);
        EXPECT_FALSE(taken);
        EXPECT_GE(spentMs, kAllPausesMs);
        shortestMs = std::min(shortestMs, spentMs);
    }
    EXPECT_LE(shortestMs, kAllPausesMs + 60);
}

TEST_F(FileLock, InterruptedPausesAreResumed) {
    const LFileDescriptor holder = Open();
    const LFileDescriptor other = Open();
    ASSERT_TRUE(flocktimed(holder.Get(), LFileLockKind::kExclusive));
    const LScopedAlarm alarm;
    bool taken = true;
    const long spentMs = TryFor(other, LFileLockKind::kExclusive, kTimeoutMs, taken);
    EXPECT_FALSE(taken);
    EXPECT_GE(spentMs, kAllPausesMs);
}
