#include "service/control/LServiceEngine.h"

#include <gtest/gtest.h>
#include <sys/socket.h>

#include <array>
#include <chrono>
#include <filesystem>
#include <random>

#include "service/control/LServiceControl.h"
#include "service/control/LServiceLog.h"
#include "tests/service/control/LPipeClient.h"
#include "tests/service/control/LTestService.h"

namespace {

using Clock = std::chrono::steady_clock;

long MillisecondsSince(Clock::time_point start) {
    return std::chrono::duration_cast<std::chrono::milliseconds>(Clock::now() - start).count();
}

struct LServiceEngineTest : testing::Test {
    LTempHome home;
    LTestService service;
    LPipeClient client{LTestService::Path()};
};

}  // namespace

TEST_F(LServiceEngineTest, AnswersByTheTable) {
    struct Case {
        uint16_t type;
        uint32_t code, result;
        std::string data;
        const char* why;
    };
    const std::vector<Case> cases{
        {2, 0x100000f, 1, "", "active"},
        {2, 0x100000d, 0, "", "it runs already"},
        {2, 1, 0, "", "a restart has no result"},
        {2, 0x1000010, 0, "", "the version is data, not a result"},
        {2, 0xffffffff, 0, "", "unknown"},
        {0x8002, 0x100000f, 1, "", "with a size but no data"},
        {3, 0x1000010, 1, std::string("5.00EN", 7), "version"},
        {3, 0x100000f, 0, "", "activity is no data"},
        {3, 0, 0, "", "unknown"},
    };
    uint32_t tag = 77;
    for (const Case& row : cases) {
        ASSERT_TRUE(client.SendHeader(
            {kServiceMagic, row.type, row.code, row.type >= 0x8000 ? 1U : 0U, ++tag}));
        const auto reply = client.ReadReply();
        ASSERT_TRUE(reply) << row.why;
        EXPECT_EQ(reply->header.code, row.result) << row.why;
        EXPECT_EQ(reply->header.tag, tag) << row.why;
        EXPECT_EQ(reply->header.length, row.data.size()) << row.why;
        EXPECT_EQ(reply->payload.value_or(""), row.data) << row.why;
    }
    EXPECT_TRUE(service.Engine().Seen().empty());
}

TEST_F(LServiceEngineTest, CommandsReachTheEngineOnTheMainThreadInTheirOrder) {
    const std::string fixed(8192, 'f'), heap(9000, 'h');
    ASSERT_TRUE(client.Send(kServiceCommand, 1));
    ASSERT_TRUE(client.Send(kServiceCommand, 2, fixed));
    ASSERT_TRUE(client.Send(kServiceCommand, 3, heap));
    ASSERT_TRUE(client.SendHeader({kServiceMagic, 0x8001, 4, 10, 0}));
    ASSERT_TRUE(client.Send(7, 99, "of no known type"));
    ASSERT_TRUE(client.Send(kServiceReply, 99));
    ASSERT_TRUE(client.Send(kServiceCommand, 0x1000005, "ab"));
    const auto seen = service.Engine().WaitForSeen(5);
    ASSERT_EQ(seen.size(), 5U);
    const std::vector<std::tuple<uint32_t, std::optional<std::string>, uint32_t>> expected{
        {1, std::nullopt, 0},
        {2, fixed, 8192},
        {3, heap, 9000},
        {4, std::nullopt, 10},
        {0x1000005, "ab", 2}};
    for (size_t i = 0; i < seen.size(); ++i) {
        EXPECT_EQ(std::tie(seen[i].code, seen[i].data, seen[i].size), expected[i]) << i;
        EXPECT_EQ(seen[i].thread, service.MainThread()) << i;
    }
}

TEST_F(LServiceEngineTest, OrdersFromInsideReachTheEngineOnTheMainThread) {
    std::string data = "settings";
    LServiceControl(1, data.data(), static_cast<uint32_t>(data.size()));
    data = "gone now";
    LServiceControl(2, nullptr, 5);
    EXPECT_TRUE(LServiceApplyWebSettings());
    const auto seen = service.Engine().WaitForSeen(3);
    ASSERT_EQ(seen.size(), 3U);
    EXPECT_EQ(seen[0].data, "settings");
    EXPECT_EQ(seen[0].thread, service.MainThread());
    EXPECT_EQ(seen[1].data, std::nullopt);
    EXPECT_EQ(seen[1].size, 5U);
    EXPECT_EQ(seen[2].code, kServiceRestartWebServer);
}

TEST_F(LServiceEngineTest, AClientThatFallsSilentKeepsNobodyWaiting) {
    const LPipeClient midHeader(LTestService::Path());
    ASSERT_TRUE(midHeader.Send(std::string_view("\x34\x12\x01", 3)));
    const LPipeClient midPayload(LTestService::Path());
    ASSERT_TRUE(midPayload.SendHeader({kServiceMagic, 2, 0x100000f, 5000, 1}));
    ASSERT_TRUE(midPayload.Send("the beginning"));
    const LPipeClient huge(LTestService::Path());
    ASSERT_TRUE(huge.SendHeader({kServiceMagic, 1, 1, 0xffffffff, 1}));

    const auto start = Clock::now();
    for (int i = 0; i < 20; ++i) ASSERT_EQ(client.Ask(kServiceActivityQuery), 1U);
    EXPECT_LT(MillisecondsSince(start), 2000);
    EXPECT_TRUE(huge.IsHungUp(2000));
    EXPECT_FALSE(midHeader.IsHungUp(10));

    // The one whose payload never came is cut off when its time is over, the other is not.
    EXPECT_TRUE(midPayload.IsHungUp());
    EXPECT_GE(MillisecondsSince(start), 9000);
    EXPECT_LT(MillisecondsSince(start), 14000);
    ASSERT_TRUE(midHeader.Send(std::string("\0\x05\0\0\0\0\0\0\0\0\0\0\0", 13)));
    EXPECT_EQ(service.Engine().WaitForSeen(1).size(), 1U);
}

TEST_F(LServiceEngineTest, GarbageEndsItsOwnConnectionOnly) {
    std::mt19937 random(5);
    for (int i = 0; i < 50; ++i) {
        std::string bytes(16 + random() % 64, '\0');
        for (char& byte : bytes) byte = static_cast<char>(random());
        bytes[0] = 'G';  // no magic
        const LPipeClient vandal(LTestService::Path());
        ASSERT_TRUE(vandal.Send(bytes));
        EXPECT_TRUE(vandal.IsHungUp());
    }
    EXPECT_EQ(client.Ask(kServiceActivityQuery), 1U);
    EXPECT_TRUE(service.Engine().Seen().empty());
}

TEST_F(LServiceEngineTest, LogLinesAndNotificationsReachEveryClientWhole) {
    const LPipeClient other(LTestService::Path());
    ASSERT_EQ(other.Ask(kServiceActivityQuery), 1U);  // both are known to the service now
    ASSERT_EQ(client.Ask(kServiceActivityQuery), 1U);
    LServiceLog("first", "second", kLogError);
    LServiceLog("alone");
    service.Service().EvEngineNotify(0x100000c, "data", 4);
    service.Service().EvEngineNotify(0x1000005, nullptr, 6);
    LServiceRunWebRouting();
    struct Case {
        uint16_t type;
        uint32_t code, tag;
        std::optional<std::string> payload;
    };
    for (const LPipeClient* reader : {static_cast<const LPipeClient*>(&client), &other}) {
        for (const Case& row :
             {Case{19, 2, 6, std::string("first\0second", 13)},
              Case{19, 0, 6, std::string("alone\0", 7)}, Case{17, 0x100000c, 4, "data"},
              Case{17, 0x1000005, 6, std::nullopt}, Case{17, 0x100000c, 0, std::nullopt}}) {
            const auto message = reader->Read();
            ASSERT_TRUE(message);
            EXPECT_EQ(message->header.type, row.type);
            EXPECT_EQ(message->header.code, row.code);
            EXPECT_EQ(message->header.tag, row.tag);
            EXPECT_EQ(message->payload, row.payload);
        }
    }
}

TEST_F(LServiceEngineTest, StopsWhenAClientAsksForIt) {
    const LPipeClient other(LTestService::Path());
    ASSERT_EQ(other.Ask(kServiceActivityQuery), 1U);
    EXPECT_EQ(client.Ask(kServiceStopSoon), 1U);
    EXPECT_TRUE(service.HasEnded(5000));
    EXPECT_FALSE(std::filesystem::exists(LTestService::Path()));
    // Who was still connected has heard the engine's last words.
    const auto lastWords = other.ReadType(kServiceLogLine);
    ASSERT_TRUE(lastWords);
    EXPECT_EQ(lastWords->payload, std::string("test engine stops\0", 19));
    EXPECT_TRUE(other.IsHungUp());
}

TEST_F(LServiceEngineTest, StopsThoughClientsDoNotReadOrAreInTheMiddleOfAMessage) {
    const LPipeClient midPayload(LTestService::Path());
    ASSERT_TRUE(midPayload.SendHeader({kServiceMagic, 1, 1, 5000, 1}));
    const LPipeClient deaf(LTestService::Path());
    ASSERT_EQ(deaf.Ask(kServiceActivityQuery), 1U);
    std::thread logger([] {  // until the deaf client's buffer is full, and then waits for it
        for (int i = 0; i < 2000; ++i) LServiceLog(std::string(1000, 'x'));
    });
    std::this_thread::sleep_for(std::chrono::milliseconds(300));
    const auto start = Clock::now();
    service.Service().RequestStop();
    EXPECT_TRUE(service.HasEnded(5000));
    EXPECT_LT(MillisecondsSince(start), 2000);
    logger.join();
}

TEST_F(LServiceEngineTest, AStormOfClientsLeavesNothingBehind) {
    ASSERT_EQ(client.Ask(kServiceActivityQuery), 1U);
    const size_t threads = CountThreads();
    const size_t descriptors = CountDescriptors();
    std::vector<std::thread> storm;
    std::atomic<int> answered{0};
    for (int part = 0; part < 4; ++part) {
        storm.emplace_back([&, part] {
            for (int i = 0; i < 50; ++i) {
                const LPipeClient guest(LTestService::Path());
                if (i % 5 == part) continue;  // comes and goes
                if (i % 5 == 4) {
                    guest.SendHeader({kServiceMagic, 1, 1, 100, 0});
                    continue;  // hangs up in the middle
                }
                if (guest.Ask(kServiceActivityQuery) == 1U) ++answered;
            }
        });
    }
    for (std::thread& thread : storm) thread.join();
    EXPECT_EQ(answered, 4 * 30);
    EXPECT_TRUE(Becomes([&] { return service.Service().ConnectionCount() == 1; }));
    EXPECT_TRUE(Becomes([&] { return CountThreads() == threads; }));
    EXPECT_EQ(CountDescriptors(), descriptors);
    EXPECT_EQ(client.Ask(kServiceActivityQuery), 1U);
}
