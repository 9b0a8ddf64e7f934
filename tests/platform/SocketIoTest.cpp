#include "platform/SocketIo.h"

#include <fcntl.h>
#include <gtest/gtest.h>
#include <sys/socket.h>
#include <sys/stat.h>
#include <unistd.h>

#include <atomic>
#include <chrono>
#include <filesystem>
#include <thread>

#include "tests/support/LTempFolder.h"

namespace {

using namespace std::chrono_literals;

class SocketPair : public ::testing::Test {
protected:
    SocketPair() {
        int ends[2] = {-1, -1};
        EXPECT_EQ(::socketpair(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0, ends), 0);
        mine_ = LFileDescriptor(ends[0]);
        peer_ = LFileDescriptor(ends[1]);
        EXPECT_TRUE(PrepareSocket(mine_.Get()));
    }
    void PeerSends(std::string_view text) const {
        EXPECT_EQ(::send(peer_.Get(), text.data(), text.size(), MSG_NOSIGNAL),
                  static_cast<ssize_t>(text.size()));
    }
    LSocketResult Receive(size_t size, int timeoutMs) {
        received_.assign(size, '\0');
        return ReceiveExactly(mine_.Get(), received_.data(), size, stop_, timeoutMs);
    }

    LFileDescriptor mine_, peer_;
    LSignalObject stop_;
    std::string received_;
};

template <typename Work>
std::chrono::milliseconds TimeOf(Work work) {
    const auto begin = std::chrono::steady_clock::now();
    work();
    return std::chrono::duration_cast<std::chrono::milliseconds>(std::chrono::steady_clock::now() -
                                                                 begin);
}

}  // namespace

TEST_F(SocketPair, BytesThatComeInPiecesAreReceivedWhole) {
    std::thread sender([&] {
        for (const char* piece : {"he", "ll", "o and more"}) {
            std::this_thread::sleep_for(5ms);
            PeerSends(piece);
        }
    });
    EXPECT_EQ(Receive(5, 5000), LSocketResult::kOk);
    EXPECT_EQ(received_, "hello");
    sender.join();
    EXPECT_EQ(Receive(9, 5000), LSocketResult::kOk);
    EXPECT_EQ(received_, " and more") << "not a byte too many was taken";
    EXPECT_EQ(Receive(0, 0), LSocketResult::kOk);
}

TEST_F(SocketPair, ASlowPeerDoesNotStretchTheBudget) {
    std::atomic<bool> done{false};
    std::thread dripping([&] {
        while (!done) {
            PeerSends("x");
            std::this_thread::sleep_for(10ms);
        }
    });
    LSocketResult result = LSocketResult::kOk;
    const auto spent = TimeOf([&] { result = Receive(200, 80); });
    done = true;
    dripping.join();
    EXPECT_EQ(result, LSocketResult::kFailed);
    EXPECT_GE(spent, 80ms);
    EXPECT_LT(spent, 1000ms);
}

TEST_F(SocketPair, AStopSignalEndsEveryWait) {
    std::thread stopper([&] {
        std::this_thread::sleep_for(20ms);
        stop_.Set();
    });
    EXPECT_EQ(Receive(1, -1), LSocketResult::kStopped);
    stopper.join();
    PeerSends("x");
    EXPECT_EQ(WaitReadable(mine_.Get(), stop_), LSocketResult::kStopped) << "stop comes first";
    EXPECT_EQ(WaitWritable(mine_.Get(), stop_, 1000), LSocketResult::kStopped);
}

TEST_F(SocketPair, APeerThatHasGoneCountsAsReadable) {
    PeerSends("abc");
    peer_.Close();
    EXPECT_EQ(WaitReadable(mine_.Get(), stop_, 1000), LSocketResult::kOk);
    EXPECT_EQ(Receive(4, -1), LSocketResult::kFailed) << "three of four came";
    EXPECT_EQ(WaitReadable(mine_.Get(), stop_, -1), LSocketResult::kOk);
}

TEST(UnixSockets, AStaleFileIsReplacedAndAnybodyMayConnect) {
    LTempFolder folder;
    const std::string path = folder.File("pipe");
    folder.WriteFile("pipe", "left by a crash");
    const LFileDescriptor listening = ListenUnix(path, 5);
    ASSERT_TRUE(listening.IsOpen());
    struct stat status {};
    ASSERT_EQ(::stat(path.c_str(), &status), 0);
    EXPECT_TRUE(S_ISSOCK(status.st_mode));
    EXPECT_EQ(status.st_mode & 0777, 0777u);

    EXPECT_FALSE(AcceptSocket(listening.Get()).IsOpen()) << "nobody there, and nobody waits";
    const LFileDescriptor client = ConnectUnix(path);
    ASSERT_TRUE(client.IsOpen());
    EXPECT_NE(::fcntl(client.Get(), F_GETFL) & O_NONBLOCK, 0);
    EXPECT_NE(::fcntl(client.Get(), F_GETFD) & FD_CLOEXEC, 0);
    const LFileDescriptor server = AcceptSocket(listening.Get());
    ASSERT_TRUE(server.IsOpen());
    EXPECT_NE(::fcntl(server.Get(), F_GETFL) & O_NONBLOCK, 0);
    EXPECT_NE(::fcntl(server.Get(), F_GETFD) & FD_CLOEXEC, 0);
}

TEST(UnixSockets, LongPathsAreCutAlikeOnBothSides) {
    LTempFolder folder;
    const std::string path = folder.File(std::string(200, 'p'));
    const LFileDescriptor listening = ListenUnix(path, 5);
    ASSERT_TRUE(listening.IsOpen());
    EXPECT_TRUE(std::filesystem::is_socket(path.substr(0, 104)));
    EXPECT_TRUE(ConnectUnix(path).IsOpen());
}
