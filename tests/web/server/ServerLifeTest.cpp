// Settings, start and stop, the port.
#include <gtest/gtest.h>
#include <netinet/in.h>
#include <sys/socket.h>

#include <mutex>
#include <vector>

#include "datastore/UserSettings.h"
#include "service/control/LServiceLog.h"
#include "tests/web/server/LTestServer.h"

namespace {

// Collects the log lines of one test.
class LLogLines {
public:
    LLogLines() {
        SetServiceLogSink([this](std::string_view text1, std::string_view, int) {
            const std::lock_guard<std::mutex> lock(mutex_);
            lines_.emplace_back(text1);
        });
    }
    ~LLogLines() { SetServiceLogSink({}); }
    std::vector<std::string> Take() {
        const std::lock_guard<std::mutex> lock(mutex_);
        return std::exchange(lines_, {});
    }

private:
    std::mutex mutex_;
    std::vector<std::string> lines_;
};

// Somebody else's program on a port.
class LPortHolder {
public:
    LPortHolder() : socket_(::socket(AF_INET, SOCK_STREAM | SOCK_CLOEXEC, 0)) {
        sockaddr_in address{};
        address.sin_family = AF_INET;
        auto* generic = reinterpret_cast<sockaddr*>(&address);
        socklen_t size = sizeof address;
        EXPECT_EQ(::bind(socket_.Get(), generic, size), 0);
        EXPECT_EQ(::listen(socket_.Get(), 1), 0);
        EXPECT_EQ(::getsockname(socket_.Get(), generic, &size), 0);
        port_ = ntohs(address.sin_port);
    }
    uint16_t Port() const { return port_; }
    void Release() { socket_.Close(); }

private:
    LFileDescriptor socket_;
    uint16_t port_ = 0;
};

using Lines = std::vector<std::string>;

TEST(WebSettings, ReadAsTheyAreStored) {
    const LTempHome home;
    const auto enabled = [](const char* value) {
        EXPECT_TRUE(LUserSettingSetString("WebServer", "Enabled", value));
        return LWebletServer::IsWebletServerEnabled();
    };
    EXPECT_FALSE(LWebletServer::IsWebletServerEnabled()) << "off until turned on";
    EXPECT_FALSE(enabled(""));
    EXPECT_FALSE(enabled("0"));
    EXPECT_TRUE(enabled("1"));
    EXPECT_TRUE(enabled("n")) << "anything but 0";

    const auto port = [](const char* value) {
        EXPECT_TRUE(LUserSettingSetString("WebServer", "Port", value));
        return LWebletServer::GetWebletServerPort();
    };
    EXPECT_EQ(LWebletServer::GetWebletServerPort(), 1097);
    EXPECT_EQ(port("8080"), 8080);
    EXPECT_EQ(port("0"), 1097);
    EXPECT_EQ(port("65536"), 1097) << "its low 16 bits are 0";
    EXPECT_EQ(port("65537"), 1);
    EXPECT_EQ(port("x"), 1097);
    EXPECT_TRUE(LWebletServer::SetWebletServerPort(8080));
    EXPECT_EQ(LUserSettingGetString("WebServer", "Port", ""), "8080");
}

TEST(WebServer, DoesNotStartWhenItIsTurnedOff) {
    const LTempHome home;
    LLogLines log;
    LTestWeblet weblet;
    weblet.StartServer();
    EXPECT_FALSE(weblet.IsRunning());
    EXPECT_EQ(log.Take(), Lines{});
}

TEST(WebServer, FollowsItsSettingsAtRunTime) {
    LLogLines log;
    LTestServer server;
    EXPECT_EQ(log.Take(), Lines{"Starting web server (Non-secure)"});
    LTestClient early = server.Connect();
    EXPECT_TRUE(Eventually([&] { return server.weblet.ConnectionCount() == 1; }));
    const uint16_t firstPort = server.weblet.BoundPort();

    LPortHolder place;  // a port that is free for sure, once it is let go
    server.weblet.port = place.Port();
    place.Release();
    server.weblet.UpdateServerUnsecure();
    ASSERT_TRUE(server.weblet.WaitUntilListening());
    EXPECT_EQ(server.weblet.BoundPort(), place.Port());
    EXPECT_FALSE(LTestClient(firstPort).IsConnected());
    EXPECT_NE(server.Ask(Get("/a.css", "Connection: close\r\n")), "");
    early.Send(Get("/a.css"));
    EXPECT_EQ(BodyOf(early.ReadAnswer()), "body {}") << "who is connected stays so";
    EXPECT_EQ(log.Take(), Lines{"Restarting web server"});

    EXPECT_TRUE(LUserSettingSetString("WebServer", "Enabled", "0"));
    server.weblet.UpdateServerUnsecure();
    EXPECT_FALSE(server.weblet.IsRunning());
    EXPECT_TRUE(early.IsClosedByServer());
    EXPECT_FALSE(LTestClient(place.Port()).IsConnected());
    server.weblet.UpdateServerUnsecure();
    EXPECT_EQ(log.Take(), Lines{"Stopping web server"}) << "once";

    EXPECT_TRUE(LUserSettingSetString("WebServer", "Enabled", "1"));
    server.weblet.UpdateServerUnsecure();
    ASSERT_TRUE(server.weblet.WaitUntilListening());
    EXPECT_NE(server.Ask(Get("/a.css", "Connection: close\r\n")), "");
    EXPECT_EQ(log.Take(), Lines{"Starting web server"});
}

TEST(WebServer, APortInUseIsToldAndDoesNotDelayTheEnd) {
    const LTempHome home;
    EXPECT_TRUE(LUserSettingSetString("WebServer", "Enabled", "1"));
    LPortHolder holder;
    LLogLines log;
    LTestWeblet weblet;
    weblet.port = holder.Port();
    weblet.StartServer();
    EXPECT_TRUE(Eventually([&] { return weblet.HasBindConflict(); }));
    EXPECT_TRUE(weblet.IsRunning()) << "it will try again";
    EXPECT_EQ(weblet.BoundPort(), 0);

    holder.Release();
    weblet.UpdateServerUnsecure();
    ASSERT_TRUE(weblet.WaitUntilListening());
    EXPECT_FALSE(weblet.HasBindConflict());
    const std::string port = std::to_string(holder.Port());
    EXPECT_EQ(
        log.Take(),
        (Lines{"Starting web server (Non-secure)", "Webserver cannot bind to TCP/IP port.",
               "Some other program may be using port " + port + ".", "Restarting web server"}));
}

TEST(WebServer, StopsAtOnceWithConnectionsInEveryState) {
    LTestServer server;
    server.home.WriteFile(server.WebFile("large.js"), std::string(20000000, 'x'));
    std::vector<LTestClient> clients;
    for (int i = 0; i < 60; ++i) {
        clients.push_back(server.Connect());
        if (i % 3 == 1) clients.back().Send("GET /a.css HTTP/1.1\r\nHos");  // in mid-header
        if (i % 3 == 2) clients.back().Send(Get("/large.js"));              // never read
    }
    EXPECT_TRUE(Eventually([&] { return server.weblet.ConnectionCount() == 60; }));
    std::this_thread::sleep_for(std::chrono::milliseconds(50));
    const auto start = std::chrono::steady_clock::now();
    server.weblet.StopServer();
    EXPECT_LT(Elapsed(start).count(), 1000);
    EXPECT_EQ(server.weblet.ConnectionCount(), 0u);
}

// The documented waits, all at the same time.
TEST(WebServerWaits, EndWhenTheyShould) {
    LTestServer server;
    LPortHolder holder;
    LTestWeblet waiting;
    waiting.port = holder.Port();
    waiting.StartServer();
    EXPECT_TRUE(Eventually([&] { return waiting.HasBindConflict(); }));
    holder.Release();

    const auto start = std::chrono::steady_clock::now();
    LTestClient silent = server.Connect(), header = server.Connect(), kept = server.Connect();
    LTestClient dribbler = server.Connect();
    dribbler.Send("G");
    header.Send("GET /a.css HTTP/1.1\r\nHost: x\r\nX-");
    kept.Send(Get("/a.css"));
    EXPECT_EQ(BodyOf(kept.ReadAnswer()), "body {}");
    EXPECT_TRUE(header.IsClosedByServer(25000));
    EXPECT_NEAR(static_cast<double>(Elapsed(start).count()), 20000, 1500);
    dribbler.Send("E");  // one byte now and then wins no time
    EXPECT_TRUE(silent.IsClosedByServer(15000));
    EXPECT_TRUE(dribbler.IsClosedByServer(5000));
    EXPECT_TRUE(kept.IsClosedByServer(5000));
    EXPECT_NEAR(static_cast<double>(Elapsed(start).count()), 30000, 1500);
    EXPECT_TRUE(waiting.WaitUntilListening()) << "the port was tried again";
    EXPECT_FALSE(waiting.HasBindConflict());
}

}  // namespace
