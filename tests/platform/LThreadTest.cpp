#include "platform/LThread.h"

#include <gtest/gtest.h>
#include <pthread.h>

#include <array>
#include <cerrno>
#include <chrono>

#include "tests/support/LFailNthFileCall.h"

namespace {

// Waits for its stop signal and notes what it saw.
class LWaitingThread final : public LThread {
public:
    LWaitingThread() : LThread("LWaitingThreadWithALongName") {}
    ~LWaitingThread() override { StopAndJoin(); }

    std::atomic<int> runs{0};
    std::string shownName;  // read it after StopAndJoin

private:
    void ThreadFunction() override {
        std::array<char, 32> name{};
        ::pthread_getname_np(::pthread_self(), name.data(), name.size());
        shownName = name.data();
        ++runs;
        StopSignal().Wait();
    }
};

// What the members of a group leave behind. Outlives the group.
struct LRecord {
    std::atomic<int> running{0};
    std::atomic<int> destroyed{0};
    std::atomic<int> destroyedElsewhere{0};  // not on the thread that ran it
};

class LMember final : public LDetachedThread {
public:
    enum class Kind { kUntilStopped, kShort };
    LMember(LRecord& record, Kind kind, const LDetachedThreadGroup& group)
        : LDetachedThread("LMember"), record_(record), kind_(kind), group_(group) {}
    ~LMember() override {
        if (ran_ && !::pthread_equal(::pthread_self(), self_)) ++record_.destroyedElsewhere;
        if (ran_) {
            EXPECT_GT(group_.Count(), 0u) << "counted until it is gone";
            std::this_thread::sleep_for(std::chrono::milliseconds(1));
        }
        ++record_.destroyed;
    }

    void ThreadFunction() override {
        ran_ = true;
        self_ = ::pthread_self();
        ++record_.running;
        if (kind_ == Kind::kUntilStopped) StopSignal().Wait();
    }

private:
    LRecord& record_;
    const Kind kind_;
    const LDetachedThreadGroup& group_;
    bool ran_ = false;
    pthread_t self_{};
};

void WaitUntil(const std::function<bool()>& condition) {
    const auto limit = std::chrono::steady_clock::now() + std::chrono::seconds(10);
    while (!condition() && std::chrono::steady_clock::now() < limit) {
        std::this_thread::sleep_for(std::chrono::milliseconds(1));
    }
    EXPECT_TRUE(condition());
}

}  // namespace

TEST(LThread, StopsWhenAskedAndCanBeStartedAgain) {
    LWaitingThread thread;
    thread.StopAndJoin();  // never started
    EXPECT_FALSE(thread.IsStopRequested());
    for (int run = 1; run <= 3; ++run) {
        ASSERT_TRUE(thread.Start());
        EXPECT_TRUE(thread.IsRunning());
        EXPECT_FALSE(thread.Start()) << "runs already";
        thread.StopAndJoin();
        EXPECT_FALSE(thread.IsRunning());
        EXPECT_EQ(thread.runs, run);
    }
    EXPECT_EQ(thread.shownName, "LWaitingThreadW");
}

TEST(LThread, AStopRequestBeforeTheStartIsNotLost) {
    LWaitingThread thread;
    thread.RequestStop();
    ASSERT_TRUE(thread.Start());
    WaitUntil([&] { return !thread.IsRunning(); });
    EXPECT_EQ(thread.runs, 1);
}

TEST(LDetachedThreadGroup, StopAllReturnsWhenEveryMemberIsDestroyed) {
    LRecord record;
    LDetachedThreadGroup group;
    constexpr int kMembers = 20;
    for (int i = 0; i < kMembers; ++i) {
        ASSERT_TRUE(
            group.Start(std::make_unique<LMember>(record, LMember::Kind::kUntilStopped, group)));
    }
    WaitUntil([&] { return record.running == kMembers; });
    EXPECT_EQ(group.Count(), static_cast<size_t>(kMembers));
    EXPECT_EQ(record.destroyed, 0);
    group.StopAll();
    EXPECT_EQ(record.destroyed, kMembers);
    EXPECT_EQ(record.destroyedElsewhere, 0);
    EXPECT_EQ(group.Count(), 0u);

    ASSERT_TRUE(group.Start(std::make_unique<LMember>(record, LMember::Kind::kShort, group)))
        << "a stopped group takes members again";
}

TEST(LDetachedThreadGroup, NoMemberSlipsInWhileItStops) {
    LRecord record;
    LDetachedThreadGroup group;
    std::atomic<bool> done{false};
    std::atomic<int> handedOver{0};
    std::thread starter([&] {
        while (!done) {
            ++handedOver;
            (void)group.Start(
                std::make_unique<LMember>(record, LMember::Kind::kUntilStopped, group));
            std::this_thread::sleep_for(std::chrono::microseconds(200));
        }
    });
    for (int i = 0; i < 5; ++i) {
        WaitUntil([&] { return group.Count() >= 5; });
        group.StopAll();  // would hang on a member that nobody stops
    }
    done = true;
    starter.join();
    group.StopAll();
    EXPECT_EQ(record.destroyed, handedOver);
}

TEST(LDetachedThreadGroup, WithoutADescriptorAMemberIsRefusedAndTheProgramGoesOn) {
    LRecord record;
    LDetachedThreadGroup group;
    const LFailNthFileCall noDescriptor(1, EMFILE);
    auto member = std::make_unique<LMember>(record, LMember::Kind::kUntilStopped, group);
    ASSERT_TRUE(noDescriptor.Fired());
    EXPECT_FALSE(member->IsStopRequested());
    member->RequestStop();
    EXPECT_FALSE(group.Start(std::move(member)));
    EXPECT_EQ(record.destroyed, 1);
    EXPECT_EQ(record.running, 0);
    EXPECT_EQ(group.Count(), 0u);
}
