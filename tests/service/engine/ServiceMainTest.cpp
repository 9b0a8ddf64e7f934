#include "service/engine/ServiceMain.h"

#include <gtest/gtest.h>
#include <netinet/in.h>
#include <sys/socket.h>

#include <algorithm>
#include <array>
#include <csignal>
#include <filesystem>

#include "datastore/UserSettings.h"
#include "platform/FileIo.h"
#include "platform/LMutex.h"
#include "platform/ProcessInfo.h"
#include "platform/SocketIo.h"
#include "service/control/LNamedPipeRef.h"
#include "service/control/LServiceControl.h"
#include "service/control/LServiceEngineProxy.h"
#include "service/control/LServiceQueries.h"
#include "tests/service/engine/LServiceProcess.h"
#include "web/server/LWebletServer.h"

namespace {

// What may pass between a request to end and the end. ThreadSanitizer sleeps a second at the exit.
#if defined(__SANITIZE_THREAD__)
constexpr int kSoonMs = 10000;
#else
constexpr int kSoonMs = 2000;
#endif

// Keeps the log lines that the service sends.
class LListener final : public LEngineNotifyHandler {
public:
    void EvEngineNotify(uint32_t, const void*, uint32_t) override {}
    void EvServiceLog(const std::string& text1, const std::string&, int) override {
        const LMutexLock lock(mutex_);
        lines_.push_back(text1);
    }
    std::vector<std::string> Lines() {
        const LMutexLock lock(mutex_);
        return lines_;
    }
    bool Hears(const std::string& line) {
        return Becomes([&] {
            const auto lines = Lines();
            return std::find(lines.begin(), lines.end(), line) != lines.end();
        });
    }

private:
    LMutex mutex_;
    std::vector<std::string> lines_ L_GUARDED_BY(mutex_);
};

void CallAtOnce(const std::function<void()>& work) { work(); }

LFileDescriptor TcpSocket() { return LFileDescriptor(::socket(AF_INET, SOCK_STREAM, 0)); }

sockaddr_in LocalAddress(uint16_t port) {
    sockaddr_in address{};
    address.sin_family = AF_INET;
    address.sin_port = htons(port);
    address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
    return address;
}

uint16_t FreePort() {
    const LFileDescriptor socket = TcpSocket();
    sockaddr_in address = LocalAddress(0);
    socklen_t size = sizeof address;
    ::bind(socket.Get(), reinterpret_cast<sockaddr*>(&address), size);
    ::getsockname(socket.Get(), reinterpret_cast<sockaddr*>(&address), &size);
    return ntohs(address.sin_port);
}

bool IsServed(uint16_t port) {
    const LFileDescriptor socket = TcpSocket();
    const sockaddr_in address = LocalAddress(port);
    if (::connect(socket.Get(), reinterpret_cast<const sockaddr*>(&address), sizeof address) != 0) {
        return false;
    }
    std::string answer(5, '\0');
    const LSignalObject never;
    return WriteAll(socket.Get(), "GET /nothing.css HTTP/1.1\r\nConnection: close\r\n\r\n") &&
           ReceiveExactly(socket.Get(), answer.data(), answer.size(), never, 5000) ==
               LSocketResult::kOk &&
           answer == "HTTP/";
}

std::string ServicePath() { return LNamedPipeRef::MakeFilePath(kServicePipeName); }

struct ServiceMainTest : testing::Test {
    ServiceMainTest() { SetDelay(0); }
    static void SetDelay(int delayMs) {
        LUserSettingSetString("Service", "Delay", std::to_string(delayMs));
    }
    static void ServeAt(uint16_t port) {
        LUserSettingSetString("WebServer", "Enabled", "1");
        LUserSettingSetString("WebServer", "Port", std::to_string(port));
    }
    LTempHome home;
    LListener listener;
};

}  // namespace

TEST_F(ServiceMainTest, EveryCommandLineHasItsRole) {
    struct Case {
        std::vector<std::string> arguments;
        int status;
        const char* error;
    };
    for (const Case& row :
         {Case{{}, 1, "this build has no desktop program"},
          Case{{"-desktop"}, 1, "this build has no desktop program"},
          Case{{"service"}, 1, "'quillmarsh -service'"}, Case{{"-service", "-manual"}, 0, ""},
          Case{{"-service", "-reinstall"}, 0, ""},
          Case{{"-service", "-anything", "-service"}, 0, ""},
          Case{{"-installer", "--nonsense"}, 1, "--nonsense"}}) {
        LServiceProcess program(home, row.arguments);
        EXPECT_EQ(program.WaitFor(20000), row.status) << row.error;
        const std::string errors = program.Errors();
        EXPECT_NE(errors.find(row.error), std::string::npos) << errors;
        EXPECT_EQ(std::count(errors.begin(), errors.end(), '\n'), *row.error == '\0' ? 0 : 1);
        EXPECT_EQ(program.Output(), "");
    }
}

TEST_F(ServiceMainTest, InstallsAndUninstallsItself) {
    home.WriteFile("bin/systemctl", "#!/bin/sh\nexit 1\n");  // the real one is not ours to change
    std::filesystem::permissions(home.File("bin/systemctl"), std::filesystem::perms::owner_all);
    const LScopedEnvironment path("PATH", home.File("bin") + ":/usr/bin:/bin");
    const std::string agent = home.File("data/Quillmarsh/Agent/QuillmarshAgent");
    LServiceProcess install(home, {"-service", "-install"});
    EXPECT_EQ(install.WaitFor(20000), 0);
    EXPECT_EQ(install.Output(), "The service is installed (direct start: " + agent + "). '" +
                                    agent + " -service' starts it.\n");
    EXPECT_EQ(ReadFile(agent), ReadFile(QUILLMARSH_PROGRAM));
    ServeAt(FreePort());
    LServiceProcess uninstall(home, {"-service", "-uninstall"});
    EXPECT_EQ(uninstall.WaitFor(20000), 0);
    EXPECT_FALSE(std::filesystem::exists(agent));
    EXPECT_FALSE(LWebletServer::IsWebletServerEnabled());
    EXPECT_EQ(install.Errors() + uninstall.Errors(), "");
}

TEST_F(ServiceMainTest, AnswersUntilItIsAskedToStop) {
    SetDelay(300);
    LServiceProcess service(home, {"-service"});
    ASSERT_TRUE(service.IsReady());
    EXPECT_EQ(service.Output(), "<STOP_PIPE_BLOCKING>");
    const std::vector<int> agents = FindProcesses("QuillmarshAgent");  // of other tests as well
    EXPECT_NE(std::find(agents.begin(), agents.end(), service.Id()), agents.end());

    LServiceEngineProxy proxy(&listener, CallAtOnce);
    ASSERT_TRUE(proxy.Start());
    EXPECT_TRUE(listener.Hears("Starting server engine..."));
    EXPECT_TRUE(LServiceIsRunningAndActiveAndMatchingVersionString());
    EXPECT_EQ(proxy.ControlWithResult(kServiceStopSoon), 1U);
    EXPECT_TRUE(listener.Hears("Stopping server engine"));
    EXPECT_EQ(service.WaitFor(kSoonMs), 0) << service.Errors();
    EXPECT_FALSE(std::filesystem::exists(ServicePath()));
    const std::string errors = service.Errors();
    EXPECT_LT(errors.find(" Starting server engine...\n"),
              errors.find(" Stopping server engine\n"));
    EXPECT_EQ(errors.find("web server"), std::string::npos) << "it was not turned on";
}

TEST_F(ServiceMainTest, ASignalEndsItWhereverItIs) {
    struct Case {
        int delayMs, signal;
        const char* why;
    };
    for (const Case& row : {Case{60000, SIGTERM, "in the start delay"}, Case{0, SIGTERM, "at work"},
                            Case{0, SIGINT, "Ctrl+C"}, Case{-5, SIGHUP, "the terminal closed"}}) {
        SetDelay(row.delayMs);
        LServiceProcess service(home, {"-service"});
        ASSERT_TRUE(service.IsReady());
        const LFileDescriptor midMessage = ConnectUnix(ServicePath());
        ASSERT_TRUE(WriteAll(midMessage.Get(), ServiceMessage({kServiceMagic, 1, 1, 500, 1}, "x")));
        if (row.delayMs <= 0) {
            const LServiceEngineProxyHandle handle;
            EXPECT_EQ(handle.Proxy().ControlWithResult(kServiceActivityQuery), 1U) << row.why;
        }
        service.Signal(row.signal);
        EXPECT_EQ(service.WaitFor(kSoonMs), 0) << row.why << "\n" << service.Errors();
        EXPECT_FALSE(std::filesystem::exists(ServicePath())) << row.why;
        EXPECT_EQ(service.Errors().empty(), row.delayMs > 0) << service.Errors();
    }
}

TEST_F(ServiceMainTest, ASignalWhileItStartsEndsItToo) {
    for (int i = 0; i < 12; ++i) {
        LServiceProcess service(home, {"-service"});
        std::this_thread::sleep_for(std::chrono::milliseconds(i * 8));
        service.Signal(SIGTERM);
        const int status = service.WaitFor(kSoonMs);
        // Before the program itself runs, the system ends it.
        EXPECT_TRUE(status == 0 || status == -SIGTERM) << status << "\n" << service.Errors();
    }
}

TEST_F(ServiceMainTest, ASecondServiceLeavesTheFirstAlone) {
    LServiceProcess first(home, {"-service"});
    ASSERT_TRUE(first.IsReady());
    LServiceProcess second(home, {"-service"});
    EXPECT_EQ(second.WaitFor(20000), 0);
    const std::string errors = second.Errors();
    EXPECT_NE(errors.find("The service already runs"), std::string::npos);
    EXPECT_EQ(std::count(errors.begin(), errors.end(), '\n'), 1);
    EXPECT_TRUE(LServiceIsRunningAndActiveAndMatchingVersionString());

    first.Signal(SIGKILL);
    EXPECT_EQ(first.WaitFor(kSoonMs), -SIGKILL);
    LServiceProcess third(home, {"-service"});
    EXPECT_TRUE(third.IsReady()) << "what a killed service left behind is in the way";
    EXPECT_TRUE(LServiceIsRunningAndActiveAndMatchingVersionString());
}

TEST_F(ServiceMainTest, ServesTheWebByTheSettingsOfTheMoment) {
    const uint16_t port = FreePort();
    ServeAt(port);
    LServiceProcess service(home, {"-service"});
    ASSERT_TRUE(service.IsReady());
    LServiceEngineProxy proxy(&listener, CallAtOnce);
    ASSERT_TRUE(proxy.Start());
    EXPECT_TRUE(Becomes([&] { return IsServed(port); })) << service.Errors();

    const uint16_t otherPort = FreePort();
    LUserSettingSetString("WebServer", "Port", std::to_string(otherPort));
    proxy.Control(kServiceWebSettingsChanged);
    EXPECT_EQ(proxy.ControlWithResult(kServiceActivityQuery), 1U);
    EXPECT_TRUE(IsServed(port)) << "that code alone changes nothing";
    proxy.Control(kServiceRestartWebServer);
    EXPECT_TRUE(Becomes([&] { return IsServed(otherPort); }));
    EXPECT_FALSE(IsServed(port));
    EXPECT_TRUE(listener.Hears("Stopping web server (Non-secure)"));
    EXPECT_TRUE(listener.Hears("Restarting web server"));

    EXPECT_TRUE(LWebletServer::SetWebletServerPort(port));
    EXPECT_TRUE(Becomes([&] { return IsServed(port); }));
    EXPECT_TRUE(LWebletServer::EnableWebletServer(false));
    EXPECT_TRUE(Becomes([&] { return !IsServed(port); }));
    LServiceEngineProxyHandle handle;
    EXPECT_EQ(handle.Proxy().ControlWithResult(kServiceActivityQuery), 1U);
    EXPECT_TRUE(LWebletServer::EnableWebletServer(true));
    EXPECT_TRUE(Becomes([&] { return IsServed(port); }));
}

TEST_F(ServiceMainTest, ASignalInTheMiddleOfRestartsEndsIt) {
    ServeAt(FreePort());
    LServiceProcess service(home, {"-service"});
    ASSERT_TRUE(service.IsReady());
    const LServiceEngineProxyHandle handle;
    for (int i = 0; i < 50; ++i) handle.Proxy().Control(kServiceRestartWebServer);
    service.Signal(SIGTERM);
    EXPECT_EQ(service.WaitFor(kSoonMs), 0) << service.Errors();
}

TEST_F(ServiceMainTest, AnAnswerUnderWayOutlivesARestartAndUnfinishedRequestsNoSignal) {
    const std::string content(1 << 20, 'x');
    home.WriteFile("data/Quillmarsh/Shared/Web/large.txt", content);
    const uint16_t port = FreePort();
    ServeAt(port);
    LServiceProcess service(home, {"-service"});
    ASSERT_TRUE(service.IsReady());
    ASSERT_TRUE(Becomes([&] { return IsServed(port); }));
    const auto connect = [&](std::string_view request) {
        LFileDescriptor socket = TcpSocket();
        const sockaddr_in address = LocalAddress(port);
        EXPECT_EQ(
            ::connect(socket.Get(), reinterpret_cast<const sockaddr*>(&address), sizeof address),
            0);
        EXPECT_TRUE(WriteAll(socket.Get(), request));
        return socket;
    };
    constexpr std::string_view kLarge = "GET /large.txt HTTP/1.1\r\nConnection: close\r\n\r\n";
    const LFileDescriptor client = connect(kLarge);
    std::string answer(100, '\0');
    ASSERT_EQ(::recv(client.Get(), answer.data(), answer.size(), MSG_WAITALL), 100);
    const LServiceEngineProxyHandle handle;
    ASSERT_TRUE(LServiceApplyWebSettings());
    std::this_thread::sleep_for(std::chrono::milliseconds(20));
    std::string rest;
    ASSERT_TRUE(ReadAll(client.Get(), rest));
    answer += rest;
    EXPECT_EQ(answer.size() - answer.find("\r\n\r\n") - 4, content.size());

    ASSERT_TRUE(Becomes([&] { return IsServed(port); }));
    const LFileDescriptor deaf = connect(kLarge);  // its answer fills every buffer
    const LFileDescriptor inHeaders = connect("GET /main HTTP/1.1\r\nHost:");
    const LFileDescriptor inBody = connect("POST /logon HTTP/1.1\r\nContent-Length: 99\r\n\r\nx");
    EXPECT_TRUE(Becomes([&] {  // as soon as the three were accepted
        service.Signal(SIGUSR1);
        return service.Errors().find(" WEBC ") != std::string::npos;
    }));
    EXPECT_NE(service.Errors().find(" MAIN \n"), std::string::npos) << service.Errors();
    service.Signal(SIGTERM);
    EXPECT_EQ(service.WaitFor(kSoonMs), 0) << service.Errors();
}

TEST_F(ServiceMainTest, SleepsWhenThereIsNothingToDo) {
#if defined(__SANITIZE_THREAD__)
    GTEST_SKIP() << "the sanitizer has a thread of its own that wakes up";
#endif
    ServeAt(FreePort());
    LServiceProcess service(home, {"-service"});
    ASSERT_TRUE(service.IsReady());
    LServiceEngineProxy client(nullptr, nullptr);
    ASSERT_TRUE(client.Start());
    ASSERT_EQ(client.ControlWithResult(kServiceActivityQuery), 1U);
    std::this_thread::sleep_for(std::chrono::milliseconds(500));
    const long before = service.CountSleeps();
    std::this_thread::sleep_for(std::chrono::milliseconds(2000));
    EXPECT_EQ(service.CountSleeps(), before);
}
