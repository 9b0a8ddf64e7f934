#include "service/control/LServiceEngineProxy.h"

#include <gtest/gtest.h>

#include <chrono>
#include <deque>

#include "platform/SocketIo.h"
#include "service/control/LServiceControl.h"
#include "service/control/LServiceQueries.h"
#include "tests/service/control/LPipeClient.h"
#include "tests/service/control/LTestService.h"

namespace {

constexpr LServiceProxyTimes kQuick{300, 300, 5};

// The main thread's queue of the program beside the service.
class LWorkQueue {
public:
    LMainThreadPoster Poster() {
        return [this](std::function<void()> work) {
            const LMutexLock lock(mutex_);
            queue_.push_back(std::move(work));
        };
    }
    // Runs the next piece of work as soon as there is one.
    bool RunOne() {
        std::function<void()> work;
        const bool found = Becomes([&] {
            const LMutexLock lock(mutex_);
            if (queue_.empty()) return false;
            work = std::move(queue_.front());
            queue_.pop_front();
            return true;
        });
        if (found) work();
        return found;
    }

private:
    LMutex mutex_;
    std::deque<std::function<void()>> queue_ L_GUARDED_BY(mutex_);
};

class LOwner final : public LEngineNotifyHandler {
public:
    void EvEngineNotify(uint32_t code, const void* data, uint32_t size) override {
        notified.push_back(
            {code, data == nullptr ? "null" : std::string(static_cast<const char*>(data), size),
             size});
    }
    void EvServiceLog(const std::string& text1, const std::string& text2, int level) override {
        lines.push_back(text1 + "|" + text2 + "|" + std::to_string(level));
    }
    struct Notified {
        uint32_t code;
        std::string data;
        uint32_t size;
        friend bool operator==(const Notified&, const Notified&) = default;
    };
    std::vector<Notified> notified;
    std::vector<std::string> lines;
};

// A service that the test plays by hand.
class LPlayedService {
public:
    LPlayedService() : listening_(ListenUnix(LTestService::Path(), 5)) {}
    LPipeClient Accept() const {
        const LSignalObject never;
        WaitReadable(listening_.Get(), never, kPatienceMs);
        return LPipeClient(AcceptSocket(listening_.Get()));
    }

private:
    LFileDescriptor listening_;
};

struct LScopedLauncher {
    explicit LScopedLauncher(LServiceLauncher launcher) { SetServiceLauncher(std::move(launcher)); }
    ~LScopedLauncher() { SetServiceLauncher({}); }
};

struct LServiceEngineProxyTest : testing::Test {
    LTempHome home;
    LWorkQueue queue;
    LOwner owner;
};

}  // namespace

TEST_F(LServiceEngineProxyTest, TalksToTheService) {
    LTestService service;
    LServiceEngineProxy proxy(nullptr, nullptr);
    ASSERT_TRUE(proxy.Start());
    EXPECT_EQ(proxy.ControlWithResult(kServiceActivityQuery), 1U);
    EXPECT_EQ(proxy.ControlWithResult(1234), 0U);
    std::vector<unsigned char> data{'o', 'l', 'd'};
    EXPECT_EQ(proxy.ControlWithReturnData(kServiceVersionQuery, nullptr, 0, data), 1U);
    EXPECT_EQ(std::string(data.begin(), data.end()), std::string("5.00EN", 7));
    EXPECT_EQ(proxy.ControlWithReturnData(99, "x", 1, data), 0U);
    EXPECT_TRUE(data.empty());
    LServiceControl(7, "abc", 3);
    LServiceControl(8, nullptr, 3);
    const auto seen = service.Engine().WaitForSeen(2);
    ASSERT_EQ(seen.size(), 2U);
    EXPECT_EQ(seen[0].data, "abc");
    EXPECT_EQ(seen[1].data, std::nullopt);
    EXPECT_EQ(seen[1].size, 3U);
    EXPECT_TRUE(LServiceIsMatchingVersionString());
}

TEST_F(LServiceEngineProxyTest, IsOfNoUseWithoutAService) {
    LServiceEngineProxy proxy(nullptr, nullptr);
    EXPECT_FALSE(proxy.Start());
    EXPECT_FALSE(proxy.IsConnected());
    EXPECT_EQ(proxy.ControlWithResult(kServiceActivityQuery), 0U);
    proxy.Control(1);
    EXPECT_FALSE(LServiceIsMatchingVersionString());
    EXPECT_FALSE(LServiceApplyWebSettings());
}

TEST_F(LServiceEngineProxyTest, RequestsAreNumberedAndRepliesGoByTheNumber) {
    const LPlayedService service;
    LServiceEngineProxy proxy(nullptr, nullptr, kQuick);
    ASSERT_TRUE(proxy.Start());
    const LPipeClient there = service.Accept();

    proxy.Control(5, "abc", 3);
    auto message = there.Read();
    ASSERT_TRUE(message);
    EXPECT_EQ(message->header.type, kServiceCommand);
    EXPECT_EQ(message->header.tag, 1U);
    EXPECT_EQ(message->payload, "abc");

    std::thread answering([&] {
        const auto request = there.Read();
        ASSERT_TRUE(request);
        EXPECT_EQ(request->header.tag, 2U);
        there.Send(kServiceReply, 55, "late", 1);  // to a number of before
        there.Send(kServiceReply, 56, "early", 3);
        there.Send(kServiceReply, 57, "right", 2);
        there.Send(kServiceReply, 58, "again", 2);
    });
    std::vector<unsigned char> data;
    EXPECT_EQ(proxy.ControlWithReturnData(6, nullptr, 0, data), 57U);
    EXPECT_EQ(std::string(data.begin(), data.end()), "right");
    answering.join();

    // Nobody answers: 0 after the time, and the late answer belongs to nobody.
    EXPECT_EQ(proxy.ControlWithResult(7), 0U);
    message = there.Read();
    ASSERT_TRUE(message);
    EXPECT_EQ(message->header.tag, 3U);
    there.Send(kServiceReply, 59, {}, 3);
    EXPECT_EQ(proxy.ControlWithResult(8), 0U);
}

TEST_F(LServiceEngineProxyTest, ConnectsAgainWhenTheServiceHasGone) {
    LServiceEngineProxy proxy(nullptr, nullptr, {10000, 300, 5});
    {
        LTestService first;
        ASSERT_TRUE(proxy.Start());
        EXPECT_EQ(proxy.ControlWithResult(kServiceActivityQuery), 1U);
    }
    EXPECT_TRUE(Becomes([&] { return !proxy.IsConnected(); }));
    EXPECT_EQ(proxy.ControlWithResult(kServiceActivityQuery), 0U);
    LTestService second;
    EXPECT_TRUE(Becomes([&] { return proxy.IsConnected(); }));
    EXPECT_EQ(proxy.ControlWithResult(kServiceActivityQuery), 1U);
}

TEST_F(LServiceEngineProxyTest, WhatIsNoMessageMakesItConnectAnew) {
    const LPlayedService service;
    LServiceEngineProxy proxy(nullptr, nullptr, kQuick);
    ASSERT_TRUE(proxy.Start());
    EXPECT_TRUE(service.Accept().Send("no header at all"));
    const LPipeClient second = service.Accept();
    ASSERT_TRUE(second.SendHeader({kServiceMagic, kServiceLogLine, 0, 100, 1}));  // and no payload
    const LPipeClient third = service.Accept();
    EXPECT_TRUE(third.IsConnected());
    EXPECT_TRUE(second.IsHungUp());
}

TEST_F(LServiceEngineProxyTest, ARequestDoesNotOutliveItsConnection) {
    const LPlayedService service;
    LServiceEngineProxy proxy(nullptr, nullptr, {60000, 300, 5});
    ASSERT_TRUE(proxy.Start());
    std::thread leaving([&] { EXPECT_TRUE(service.Accept().Read()); });
    EXPECT_EQ(proxy.ControlWithResult(kServiceActivityQuery), 0U);
    leaving.join();
}

TEST_F(LServiceEngineProxyTest, LogLinesAreCutWhereTheTagSays) {
    const LPlayedService service;
    LServiceEngineProxy proxy(&owner, queue.Poster(), kQuick);
    ASSERT_TRUE(proxy.Start());
    const LPipeClient there = service.Accept();
    struct Case {
        uint32_t tag;
        std::string payload, shown;
    };
    for (const Case& row : {Case{4, std::string("one\0two", 8), "one|two|2"},
                            Case{4, "one.two.", "one|two|2"},           // NULs are forced
                            Case{0, std::string("one\0", 4), "|ne|2"},  // held at 1
                            Case{999, "abcd", "ab||2"},                 // held at the length - 1
                            Case{1, "ab", "||2"}}) {
        ASSERT_TRUE(there.Send(kServiceLogLine, 2, "x", 1));  // too short to be one
        ASSERT_TRUE(there.SendHeader({kServiceMagic, 0x8000 | kServiceLogLine, 2, 50, 1}));
        ASSERT_TRUE(there.Send(kServiceLogLine, 2, row.payload, row.tag));
        ASSERT_TRUE(queue.RunOne());
        ASSERT_EQ(owner.lines.size(), 1U);
        EXPECT_EQ(owner.lines[0], row.shown);
        owner.lines.clear();
    }
}

TEST_F(LServiceEngineProxyTest, NotificationsReachTheOwnerOnTheMainThread) {
    const LPlayedService service;
    {
        LServiceEngineProxy proxy(&owner, queue.Poster(), kQuick);
        ASSERT_TRUE(proxy.Start());
        const LPipeClient there = service.Accept();
        ASSERT_TRUE(there.SendHeader({kServiceMagic, kServiceNotification, 0x1000005, 0, 6}));
        ASSERT_TRUE(there.Send(kServiceNotification, 0x100000c, "ab", 0xffffffff));
        ASSERT_TRUE(queue.RunOne());
        ASSERT_TRUE(queue.RunOne());
        const std::vector<LOwner::Notified> expected{{0x1000005, "null", 6}, {0x100000c, "ab", 2}};
        EXPECT_EQ(owner.notified, expected);
        proxy.Notify(kServiceStopSoon);
    }
    ASSERT_TRUE(queue.RunOne());  // came too late: the proxy has gone
    EXPECT_EQ(owner.notified.size(), 2U);
}

TEST_F(LServiceEngineProxyTest, StartsTheServiceThroughTheLauncherOrSaysThatItCannot) {
    std::unique_ptr<LTestService> service;
    LServiceEngineProxy proxy(&owner, queue.Poster(), kQuick);
    {
        LLogRecorder log;
        EXPECT_FALSE(proxy.ServiceStart());
        EXPECT_TRUE(log.Holds("2 Unable to start the background service!.|"));
    }
    const LScopedLauncher launcher({[&] { service = std::make_unique<LTestService>(); }, {}});
    proxy.Notify(kServiceStartSoon);
    EXPECT_FALSE(service);
    ASSERT_TRUE(queue.RunOne());
    ASSERT_TRUE(service);
    EXPECT_TRUE(proxy.IsConnected());
    EXPECT_EQ(owner.notified.size(), 1U);
}

TEST_F(LServiceEngineProxyTest, AStopNotificationLetsTheServiceGo) {
    LTestService service;
    int stops = 0;
    const LScopedLauncher launcher({{}, [&] { ++stops; }});
    LServiceEngineProxy proxy(&owner, queue.Poster(), kQuick);
    ASSERT_TRUE(proxy.Start());
    proxy.Notify(kServiceStopSoon);
    ASSERT_TRUE(queue.RunOne());
    EXPECT_EQ(stops, 1);
    EXPECT_FALSE(proxy.IsConnected());
    proxy.Notify(kServiceStopSoon);
    ASSERT_TRUE(queue.RunOne());
    EXPECT_EQ(stops, 1) << "nothing was connected any more";
    EXPECT_EQ(owner.notified.size(), 2U);
}

TEST_F(LServiceEngineProxyTest, AHandleMakesATemporaryProxyOnlyWhereNoneIsConnected) {
    EXPECT_EQ(LServiceEngineProxy::Instance(), nullptr);
    LTestService service;
    LServiceEngineProxy own(nullptr, nullptr);
    {
        const LServiceEngineProxyHandle handle;
        EXPECT_NE(&handle.Proxy(), &own);
        EXPECT_EQ(handle.Proxy().ControlWithResult(kServiceActivityQuery), 1U);
    }
    EXPECT_EQ(LServiceEngineProxy::Instance(), &own);
    ASSERT_TRUE(own.Start());
    const LServiceEngineProxyHandle handle;
    EXPECT_EQ(&handle.Proxy(), &own);
}

TEST_F(LServiceEngineProxyTest, ChangedWebSettingsReachTheServiceAndItsLauncher) {
    int starts = 0, stops = 0;
    const LPlayedService service;
    const LScopedLauncher launcher({[&] { ++starts; }, [&] { ++stops; }});
    for (const LWebServerSwitch change : {LWebServerSwitch::kUnchanged, LWebServerSwitch::kTurnedOn,
                                          LWebServerSwitch::kTurnedOff}) {
        EXPECT_TRUE(LServiceApplyWebSettings(change));
        const LPipeClient there = service.Accept();
        for (const uint32_t code : {kServiceWebSettingsChanged, kServiceRestartWebServer}) {
            const auto message = there.Read();
            ASSERT_TRUE(message);
            EXPECT_EQ(message->header.type, kServiceCommand);
            EXPECT_EQ(message->header.code, code);
        }
        EXPECT_TRUE(there.IsHungUp());
    }
    EXPECT_EQ(starts, 0) << "it runs";
    EXPECT_EQ(stops, 1);
}

TEST_F(LServiceEngineProxyTest, TurningTheWebServerOnStartsTheService) {
    std::unique_ptr<LTestService> service;
    const LScopedLauncher launcher({[&] { service = std::make_unique<LTestService>(); }, {}});
    EXPECT_FALSE(LServiceApplyWebSettings(LWebServerSwitch::kTurnedOff));
    EXPECT_FALSE(service);
    LServiceEngineProxy own(&owner, queue.Poster(), kQuick);
    EXPECT_TRUE(LServiceApplyWebSettings(LWebServerSwitch::kTurnedOn));
    EXPECT_TRUE(service);
    ASSERT_TRUE(queue.RunOne());
    EXPECT_TRUE(own.IsConnected());
    EXPECT_EQ(owner.notified.size(), 1U);
}
