#include "service/control/ServiceMessageIo.h"

#include <gtest/gtest.h>
#include <sys/resource.h>
#include <sys/socket.h>

#include <array>
#include <chrono>
#include <thread>

#include "platform/FileIo.h"
#include "platform/LFileDescriptor.h"

namespace {

struct LSocketPair {
    LSocketPair() {
        std::array<int, 2> ends{};
        if (::socketpair(AF_UNIX, SOCK_STREAM | SOCK_NONBLOCK, 0, ends.data()) != 0) return;
        here = LFileDescriptor(ends[0]);
        there = LFileDescriptor(ends[1]);
    }
    LFileDescriptor here, there;
};

long MillisecondsOf(const std::function<void()>& work) {
    const auto start = std::chrono::steady_clock::now();
    work();
    return std::chrono::duration_cast<std::chrono::milliseconds>(std::chrono::steady_clock::now() -
                                                                 start)
        .count();
}

const std::string kTooMuch(4 * 1024 * 1024, 'x');  // for any socket's buffer

long ResidentPeakKiB() {
    rusage usage{};
    ::getrusage(RUSAGE_SELF, &usage);
    return usage.ru_maxrss;
}

}  // namespace

TEST(ServiceMessageIo, HeaderIsSixteenBytesLowByteFirst) {
    const std::string bytes =
        ServiceMessage({kServiceMagic, 0x8002, 0x100000f, 0x0a0b0c0d, 7}, "p");
    EXPECT_EQ(bytes, std::string("\x34\x12\x02\x80\x0f\0\0\x01\x0d\x0c\x0b\x0a\x07\0\0\0p", 17));
}

TEST(ServiceMessageIo, ASendToAPeerThatDoesNotReadEndsWithItsBudget) {
    struct Case {
        int budget, slices;
        const char* why;
    };
    for (const Case& row :
         {Case{2, 0, "below 3 from the start"}, Case{3, 1, "one slice lowers it to 1"},
          Case{9, 4, "9, 7, 5, 3 wait, 1 does not"}}) {
        const LSocketPair pair;
        const LSignalObject stop;
        LSendResult result = LSendResult::kSent;
        const long elapsed = MillisecondsOf(
            [&] { result = SendServiceMessage(pair.here.Get(), kTooMuch, stop, row.budget, 50); });
        EXPECT_EQ(result, LSendResult::kPartlySent) << row.why;
        EXPECT_GE(elapsed, row.slices * 50 - 5) << row.why;
        EXPECT_LT(elapsed, row.slices * 50 + 400) << row.why;
        EXPECT_EQ(SendServiceMessage(pair.here.Get(), "x", stop, row.budget, 1),
                  LSendResult::kNothingSent)
            << row.why;
    }
}

TEST(ServiceMessageIo, AReaderThatIsSlowGetsAllOfIt) {
    LSocketPair pair;
    std::string received;
    std::thread reader([&] {
        std::string piece(100000, '\0');
        while (received.size() < kTooMuch.size()) {
            std::this_thread::sleep_for(std::chrono::milliseconds(3));
            const ssize_t count = ::recv(pair.there.Get(), piece.data(), piece.size(), 0);
            if (count > 0) received.append(piece, 0, static_cast<size_t>(count));
        }
    });
    const LSignalObject stop;
    EXPECT_EQ(SendServiceMessage(pair.here.Get(), kTooMuch, stop, kNotifySendBudget),
              LSendResult::kSent);
    reader.join();
    EXPECT_EQ(received, kTooMuch);
}

TEST(ServiceMessageIo, AStopOrAVanishedPeerEndsASendAtOnce) {
    LSocketPair pair;
    const LSignalObject stop;
    stop.Set();
    const long stopped = MillisecondsOf([&] {
        EXPECT_EQ(SendServiceMessage(pair.here.Get(), kTooMuch, stop, kReplySendBudget),
                  LSendResult::kPartlySent);
    });
    EXPECT_LT(stopped, 1000);
    pair.there.Close();
    const LSignalObject neverStop;
    EXPECT_EQ(SendServiceMessage(pair.here.Get(), "x", neverStop, kReplySendBudget),
              LSendResult::kNothingSent);
}

TEST(ServiceMessageIo, HasAnAnswerForEveryMessage) {
    struct Case {
        uint16_t type;
        uint32_t length;
        std::string sent;
        bool received;
        uint16_t typeSeen;
        std::optional<std::string> payload;
        const char* why;
    };
    const std::string fixed(8192, 'a');
    const std::string heap(9000, 'b');
    const std::vector<Case> cases{
        {1, 0, "", true, 1, std::nullopt, "no payload"},
        {1, 3, "abc", true, 1, "abc", "payload"},
        {1, 8192, fixed, true, 1, fixed, "as large as the first piece"},
        {1, 8193, fixed + "c", true, 1, fixed + "c", "one byte more"},
        {2, 9000, heap, true, 2, heap, "larger"},
        {0x8001, 10, "", true, 1, std::nullopt, "a length but no data, 1"},
        {0x8002, 10, "", true, 2, std::nullopt, "a length but no data, 2"},
        {0x8003, 0xffffffff, "", true, 3, std::nullopt, "a length but no data, 3"},
        {7, 2, "xy", true, 7, "xy", "unknown types too"},
        {1, 4, "abc", false, 1, std::nullopt, "cut short"},
        {1, kMaxPayloadBytes + 1, "abc", false, 1, std::nullopt, "beyond all use"},
    };
    for (const Case& row : cases) {
        LSocketPair pair;
        const LSignalObject stop;
        const std::string bytes =
            ServiceMessage({kServiceMagic, row.type, 5, row.length, 9}, row.sent);
        ASSERT_TRUE(WriteAll(pair.there.Get(), bytes));
        LServiceMessageIn message;
        EXPECT_EQ(ReceiveServiceMessage(pair.here.Get(), message, stop, 50), row.received)
            << row.why;
        if (!row.received) continue;
        EXPECT_EQ(message.header.type, row.typeSeen) << row.why;
        EXPECT_EQ(message.header.length, row.length) << row.why;
        EXPECT_EQ(message.payload, row.payload) << row.why;
        EXPECT_EQ(message.Data() != nullptr, row.payload.has_value()) << row.why;
    }
}

TEST(ServiceMessageIo, RefusesAWrongMagicAndHalfAHeader) {
    for (const std::string& bytes :
         {std::string("\x35\x12\x01\0\0\0\0\0\0\0\0\0\0\0\0\0", 16),
          std::string("GET / HTTP/1.1\r\n\r\n"), std::string("\x34\x12\x01\0", 4), std::string()}) {
        LSocketPair pair;
        const LSignalObject stop;
        ASSERT_TRUE(WriteAll(pair.there.Get(), bytes));
        pair.there.Close();
        LServiceMessageIn message;
        EXPECT_FALSE(ReceiveServiceMessage(pair.here.Get(), message, stop)) << bytes;
    }
}

TEST(ServiceMessageIo, AHugeAnnouncementTakesNoMemory) {
    LSocketPair pair;
    const LSignalObject stop;
    ASSERT_TRUE(WriteAll(pair.there.Get(),
                         ServiceMessage({kServiceMagic, 1, 5, kMaxPayloadBytes, 9}, "abc")));
    const long before = ResidentPeakKiB();
    LServiceMessageIn message;
    EXPECT_FALSE(ReceiveServiceMessage(pair.here.Get(), message, stop, 50));
    EXPECT_LT(ResidentPeakKiB() - before, 1024);
    ASSERT_TRUE(message.payload);
    EXPECT_LE(message.payload->capacity(), 16384U);
}
