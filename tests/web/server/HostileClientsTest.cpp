// Clients that no browser would be.
#include <fcntl.h>
#include <gtest/gtest.h>
#include <sys/socket.h>

#include <algorithm>
#include <array>
#include <filesystem>
#include <random>
#include <vector>

#include "tests/web/server/LTestServer.h"
#include "web/server/LWebletForm.h"
#include "web/server/LWebletScripts.h"
#include "web/server/RequestReader.h"
#include "web/server/StandardAnswers.h"
#include "web/server/WebletOutput.h"

namespace {

size_t CountEntries(const char* folder) {
    const std::filesystem::directory_iterator entries(folder);
    return static_cast<size_t>(std::distance(begin(entries), end(entries)));
}
size_t OpenFiles() { return CountEntries("/proc/self/fd"); }
size_t Threads() { return CountEntries("/proc/self/task"); }

void FormPage(LWebletForm& form) {
    wfprintf(form, "%s%H", kHtmlHead, form.Parameters().SaveHTTPString());
}

void EndlessPage(LWebletForm& form) {
    const std::string row(8192, 'x');
    WebletSend(form, kHtmlHead);
    while (WebletSend(form, row)) {
    }
}

// A reader on one end of a socket pair, fed with the text at the other.
class LFedReader {
public:
    explicit LFedReader(std::string_view text) {
        std::array<int, 2> ends{-1, -1};
        EXPECT_EQ(::socketpair(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC | SOCK_NONBLOCK, 0, ends.data()),
                  0);
        const LFileDescriptor writer(ends[0]);
        EXPECT_EQ(::send(writer.Get(), text.data(), text.size(), MSG_NOSIGNAL),
                  static_cast<ssize_t>(text.size()));
        connection_.emplace(LFileDescriptor(ends[1]), stop_, stopping_);
    }
    LWebletConnection& Connection() { return *connection_; }

private:
    LSignalObject stop_;
    std::atomic<bool> stopping_{false};
    std::optional<LWebletConnection> connection_;
};

// Puts a request together from pieces that mean something and mangles some of it.
std::string FuzzedRequest(std::mt19937& random) {
    static const std::array<std::string_view, 40> kPieces{
        "GET ",
        "POST ",
        "HEAD ",
        "/",
        "/a.css",
        "/form",
        "/help/x",
        "..",
        "%2e",
        "%00",
        "%",
        "%G1",
        "?a=1&b=%zz",
        "&&==",
        " HTTP/1.1",
        " HTTP/1.0",
        " HTTP/",
        "\r\n",
        "\n",
        "\r",
        "\r\n\r\n",
        "\n\n",
        "Content-Length: 5\r\n",
        "Content-Length: -1\r\n",
        "content-length: 99999999999999999999\r\n",
        "Range: bytes=-0\r\n",
        "Range: bytes=1-\r\n",
        "Range: bytes=9999999999999999999-\r\n",
        "Connection: close\r\n",
        ": ",
        ":",
        "Cookie: ",
        "quillmarsh_sess=../../etc/passwd;",
        "quillmarsh_sess=s;",
        ";=;;",
        "Host: x\r\n",
        "Expect: 100-continue\r\n",
        "Transfer-Encoding: chunked\r\n",
        "a=b&c=d",
        "\x80\xff"};
    std::string request = random() % 4 == 0 ? "" : "GET /a.css HTTP/1.1\r\n";
    const size_t count = random() % 14;
    for (size_t i = 0; i < count; ++i) request += kPieces[random() % kPieces.size()];
    if (random() % 3 == 0 && !request.empty()) {
        request[random() % request.size()] = static_cast<char>(random());
    }
    if (random() % 8 == 0) request.append(random() % 5000, 'x');
    return request + (random() % 2 == 0 ? "\r\n\r\n" : "");
}

TEST(RequestFuzz, TheReaderHasAnAnswerForEveryByte) {
    std::mt19937 random(20250705);
    for (int round = 0; round < 20000; ++round) {
        LFedReader fed(FuzzedRequest(random));
        LRequestReader reader(fed.Connection());
        LRequestLine line;
        LHashTable headers, cookies;
        if (!reader.ReadRequestLine(line)) continue;
        EXPECT_LE(line.path.size(), 259u);
        EXPECT_EQ(line.path.find('\0'), std::string::npos);
        if (!reader.ReadHeaders(headers)) continue;
        ParseCookies(headers.GetParm("cookie"), cookies);
        std::string body;
        fed.Connection().ReadExactly(
            body, ParseContentLength(headers.GetParm("content-length")).value_or(0) % 100, 1000);
    }
}

TEST(RequestFuzz, TheServerGoesOnAnswering) {
    LWebletInstallScript("form", FormPage);
    LTestServer server;
    std::mt19937 random(4711);
    for (int round = 0; round < 1500; ++round) {
        LTestClient client = server.Connect();
        ASSERT_TRUE(client.IsConnected());
        client.Send(FuzzedRequest(random));
        client.EndInput();
        client.ReadToEnd(5000);
        EXPECT_TRUE(client.HasEnded()) << "round " << round;
    }
    EXPECT_EQ(BodyOf(server.Ask(Get("/form?a=1"))), "a=1");
    EXPECT_TRUE(Eventually([&] { return server.weblet.ConnectionCount() == 0; }));
}

// However it is cut: one line, many lines, lines of nothing.
TEST(HostileClients, CannotTakeEndlessMemoryBeforeTheirRequestIsWhole) {
    LTestServer server;
    const std::array<std::string, 4> kPieces{std::string(65536, 'x'), "a:\n",
                                             "Name: " + std::string(1000, 'v') + "\r\n", "\r"};
    for (const std::string& piece : kPieces) {
        LTestClient client = server.Connect();
        client.Send("GET /a.css HTTP/1.1\r\n");
        std::string batch;
        while (batch.size() < 65536) batch += piece;
        size_t sent = 0;
        while (sent < 64u << 20) {
            const ssize_t count = ::send(client.Get(), batch.data(), batch.size(), MSG_NOSIGNAL);
            if (count <= 0) break;
            sent += static_cast<size_t>(count);
        }
        EXPECT_LT(sent, 17u << 20) << "with what lies in the socket's buffers";
    }
    LTestClient honest = server.Connect();
    honest.Send("GET /a.css HTTP/1.1\r\nX: " + std::string(1 << 20, 'x') + "\r\n\r\n");
    EXPECT_EQ(BodyOf(honest.ReadAnswer()), "body {}") << "a megabyte is no offence";
}

TEST(HostileClients, AStormLeavesNoThreadAndNoDescriptorBehind) {
    LWebletInstallScript("form", FormPage);
    LTestServer server;
    EXPECT_NE(server.Ask(Get("/form")), "");
    EXPECT_TRUE(Eventually([&] { return server.weblet.ConnectionCount() == 0; }));
    const size_t files = OpenFiles(), threads = Threads();
    for (int round = 0; round < 3; ++round) {
        std::vector<LTestClient> clients;
        for (int i = 0; i < 200; ++i) {
            clients.push_back(server.Connect());
            const LTestClient& client = clients.back();
            if (i % 5 == 0) client.Send(Get("/form?a=1"));
            if (i % 5 == 1) client.Send("POST /form HTTP/1.1\r\nContent-Length: 100\r\n\r\nhalf");
            if (i % 5 == 2) client.EndInput();
            if (i % 5 == 3) client.Send(Get("/a.css"));
        }
        for (size_t i = 0; i < clients.size(); i += 5) {
            EXPECT_EQ(BodyOf(clients[i].ReadToEnd()), "a=1");
        }
    }
    EXPECT_TRUE(Eventually([&] { return server.weblet.ConnectionCount() == 0; }));
    EXPECT_TRUE(Eventually([&] { return OpenFiles() <= files && Threads() <= threads; }))
        << OpenFiles() << " files, " << Threads() << " threads; before " << files << ", "
        << threads;
}

TEST(HostileClients, AHalfClosedConnectionStillGetsItsAnswers) {
    LTestServer server;
    LTestClient client = server.Connect();
    client.Send(Get("/a.css") + Get("/a.css"));
    client.EndInput();
    EXPECT_EQ(BodyOf(client.ReadAnswer()), "body {}");
    EXPECT_EQ(BodyOf(client.ReadAnswer()), "body {}");
    EXPECT_TRUE(client.IsClosedByServer());
}

TEST(HostileClients, ASlowReaderGetsEverything) {
    LTestServer server;
    const std::string content(8000000, 'x');
    server.home.WriteFile(server.WebFile("large.js"), content);
    LTestClient client = server.Connect();
    client.Send(Get("/large.js", "Connection: close\r\n"));
    std::this_thread::sleep_for(std::chrono::milliseconds(300));
    LTestClient other = server.Connect();
    other.Send(Get("/a.css"));
    EXPECT_EQ(BodyOf(other.ReadAnswer()), "body {}") << "nobody else waits for it";
    EXPECT_EQ(BodyOf(client.ReadToEnd(30000)).size(), content.size());
}

TEST(HostileClients, WhoLeavesInMidAnswerEndsItsPage) {
    LWebletInstallScript("endless", EndlessPage);
    LTestServer server;
    {
        LTestClient client = server.Connect();
        client.Send(Get("/endless"));
        client.ReadAnswer();
    }
    EXPECT_TRUE(Eventually([&] { return server.weblet.ConnectionCount() == 0; }));
}

}  // namespace
