#include "service/control/LPipeListener.h"

#include <gtest/gtest.h>
#include <sys/resource.h>
#include <sys/socket.h>
#include <sys/un.h>
#include <unistd.h>

#include <filesystem>

#include "platform/FileIo.h"
#include "platform/SocketIo.h"
#include "tests/service/control/LPipeClient.h"
#include "tests/service/control/LTestService.h"

namespace {

class LCountingListener final : public LPipeListener {
public:
    explicit LCountingListener(const std::string& path) { SetPath(path); }
    ~LCountingListener() override { StopAndJoin(); }
    bool Listens() { return Start() && WaitUntilListening(); }
    int Count() const { return count_; }

private:
    void NewConnection(LFileDescriptor pipe) override {
        if (pipe.IsOpen()) ++count_;
    }
    std::atomic<int> count_{0};
};

// No descriptor is left in this process while it lives.
class LNoDescriptorLeft {
public:
    LNoDescriptorLeft() {
        ::getrlimit(RLIMIT_NOFILE, &old_);
        const auto used = static_cast<rlim_t>(LFileDescriptor(::dup(STDERR_FILENO)).Get());
        const rlimit low{used + 64, old_.rlim_max};
        ::setrlimit(RLIMIT_NOFILE, &low);
        for (int fd = ::dup(STDERR_FILENO); fd >= 0; fd = ::dup(STDERR_FILENO)) {
            fillers_.emplace_back(fd);
        }
    }
    ~LNoDescriptorLeft() { ::setrlimit(RLIMIT_NOFILE, &old_); }
    LNoDescriptorLeft(const LNoDescriptorLeft&) = delete;
    LNoDescriptorLeft& operator=(const LNoDescriptorLeft&) = delete;

private:
    rlimit old_{};
    std::vector<LFileDescriptor> fillers_;
};

}  // namespace

TEST(LPipeListener, ListensForEverybodyAndLeavesNoFileBehind) {
    const LTempFolder folder;
    const std::string path = folder.File("pipe");
    {
        LCountingListener listener(path);
        ASSERT_TRUE(listener.Listens());
        using std::filesystem::perms;
        EXPECT_EQ(std::filesystem::status(path).permissions(), perms::all);
        EXPECT_TRUE(LPipeClient(path).IsConnected());
        EXPECT_TRUE(Becomes([&] { return listener.Count() == 1; }));
    }
    EXPECT_FALSE(std::filesystem::exists(path));
}

TEST(LPipeListener, AStaleFileGivesWay) {
    const LTempFolder folder;
    const std::string path = folder.File("pipe");
    folder.WriteFile("pipe", "left behind");
    EXPECT_TRUE(LCountingListener(path).Listens());
    {
        const LFileDescriptor killed = ListenUnix(path, 1);  // its owner never removes the file
    }
    ASSERT_TRUE(std::filesystem::exists(path));
    EXPECT_TRUE(LCountingListener(path).Listens());
}

TEST(LPipeListener, AServiceThatAnswersIsLeftAlone) {
    const LTempFolder folder;
    const std::string path = folder.File("pipe");
    LLogRecorder log;
    LCountingListener first(path);
    ASSERT_TRUE(first.Listens());
    {
        LCountingListener second(path);
        EXPECT_FALSE(second.Listens());
        EXPECT_TRUE(second.IsStopRequested());  // whoever waits for it wakes up
    }
    EXPECT_TRUE(log.Holds("The service already runs"));
    EXPECT_TRUE(LPipeClient(path).IsConnected());
}

TEST(LPipeListener, AFileThatIsNoLongerItsOwnStays) {
    const LTempFolder folder;
    const std::string path = folder.File("pipe");
    {
        LCountingListener listener(path);
        ASSERT_TRUE(listener.Listens());
        std::filesystem::remove(path);
        folder.WriteFile("pipe", "a successor's");
    }
    EXPECT_EQ(folder.ReadFile("pipe"), "a successor's");
}

TEST(LPipeListener, SaysWhyItCannotListen) {
    const LTempFolder folder;
    folder.WriteFile("file", "");
    const std::string tooLong = folder.Path() + "/" + std::string(200, 'x');
    const std::string cut = tooLong.substr(0, 104);
    ASSERT_TRUE(MakeFolderTree(cut));
    struct Case {
        std::string path, reason;
    };
    for (const Case& row :
         {Case{folder.File("missing/pipe"), "No such file or directory"},
          Case{folder.File("file/pipe"), "Not a directory"}, Case{tooLong, "File name too long"}}) {
        LLogRecorder log;
        LCountingListener listener(row.path);
        EXPECT_FALSE(listener.Listens());
        EXPECT_TRUE(log.Holds("2 Cannot take control connections at|" + listener.Path() + ": " +
                              row.reason))
            << row.reason;
    }
    EXPECT_TRUE(FolderExists(cut));
}

TEST(LPipeListener, SurvivesAShortageOfDescriptors) {
    const LTempFolder folder;
    LLogRecorder log;
    LCountingListener listener(folder.File("pipe"));
    ASSERT_TRUE(listener.Listens());
    const LFileDescriptor client(::socket(AF_UNIX, SOCK_STREAM, 0));
    sockaddr_un address{};
    address.sun_family = AF_UNIX;
    folder.File("pipe").copy(address.sun_path, sizeof address.sun_path - 1);
    {
        const LNoDescriptorLeft shortage;
        ASSERT_EQ(::connect(client.Get(), reinterpret_cast<sockaddr*>(&address), sizeof address),
                  0);
        EXPECT_TRUE(Becomes([&] { return log.Holds("Too many open files"); }));
    }
    EXPECT_TRUE(Becomes([&] { return listener.Count() == 1; }));
    EXPECT_TRUE(listener.IsRunning());
}
