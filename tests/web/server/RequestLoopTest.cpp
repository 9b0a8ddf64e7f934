// What goes over the wire, request by request.
#include <gtest/gtest.h>
#include <sys/socket.h>

#include <array>
#include <filesystem>

#include "tests/web/server/LTestServer.h"
#include "web/server/LWebletConnection.h"
#include "web/server/LWebletForm.h"
#include "web/server/LWebletScripts.h"
#include "web/server/LWebletSessionData.h"
#include "web/server/ServeFile.h"
#include "web/server/StandardAnswers.h"
#include "web/server/WebletOutput.h"

namespace {

using namespace std::string_literals;

constexpr char kNotImplemented[] = "HTTP/1.1 501 Not Implemented\r\nConnection: close\r\n\r\n";
constexpr char kClosing404[] = "HTTP/1.1 404 Not Found\r\nConnection: close\r\n\r\n";
constexpr char kMissingFile[] = "HTTP/1.1 404 Not Found\r\nContent-Length: 0\r\n\r\n";

// Tells what reached the handler.
void EchoPage(LWebletForm& form) {
    wfprintf(form, "%s%s|%s|%s", kHtmlHead, form.PageName(), form.Parameters().SaveHTTPString(),
             form.Cookies().SaveHTTPString());
}

void SmallPage(LWebletForm& form) {
    form.SetSelfDelimited();
    WebletSend(form, "HTTP/1.1 200 OK\r\nContent-Length: 2\r\n\r\nok");
}

void ForcedPage(LWebletForm& form) {
    SmallPage(form);
    form.SetForceClose();
}

void FailingPage(LWebletForm&) { throw std::bad_alloc(); }

void DownloadPage(LWebletForm& form) {
    LWebletServeBuffer(form, "a,b\r\n", "text/csv", "list \"1\".csv");
}

void CountingPage(LWebletForm& form) {
    const std::string count = form.Session().GetString("count");
    form.Session().SetString("count", count + "I");
    wfprintf(form, "%s%s", kHtmlHead, form.Session().GetString("count"));
}

void LogonPage(LWebletForm& form) {
    form.Session().CreateNewSession(false);
    wfprintf(form, "%s%s", kHtmlHead, form.Session().Id());
}

// Reads half of the body and leaves the rest.
void HalfReceiver(LWebletForm& form) {
    std::array<char, 4> text{};
    size_t count = 0;
    form.Connection().ReadSome(text, count, 1000);
    form.Parameters().SetString("received", std::string_view(text.data(), count));
}

void RefusingReceiver(LWebletForm& form) { WebletSend(form, kNotImplemented); }

class RequestLoop : public testing::Test {
protected:
    static void SetUpTestSuite() {
        LWebletInstallScript("echo", SmallPage);  // shadowed by the later one
        LWebletInstallScript("echo", EchoPage);
        LWebletInstallScript("small", SmallPage);
        LWebletInstallScript("forced", ForcedPage);
        LWebletInstallScript("failing", FailingPage);
        LWebletInstallScript("download", DownloadPage);
        LWebletInstallScript("counting", CountingPage);
        LWebletInstallScript("newsession", LogonPage);
        LWebletInstallScript("upload", EchoPage);
        LWebletInstallPostScript("upload", HalfReceiver);
        LWebletInstallScript("refused", EchoPage);
        LWebletInstallPostScript("refused", RefusingReceiver);
    }
    LTestServer server;
};

struct LAnswerCase {
    std::string request;
    std::string answer;
    const char* why;
};

TEST_F(RequestLoop, RefusesWithOneLineAndCloses) {
    const std::string otherSite = "HTTP/1.1 403 Forbidden\r\nConnection: close\r\n\r\n";
    const std::string tooLong = "HTTP/1.1 500 Content Length Too Long\r\nConnection: close\r\n\r\n";
    const std::array<LAnswerCase, 19> kCases{{
        {"HEAD /a.css HTTP/1.1\r\n\r\n", kNotImplemented, "only GET and POST"},
        {"get /a.css HTTP/1.1\r\n\r\n", kNotImplemented, "in capitals"},
        {"\r\nGET / HTTP/1.1\r\n\r\n", kNotImplemented, "an empty line is no method"},
        {"\0\1\2\xff\n"s, kNotImplemented, "garbage"},
        {"GET /../a.css HTTP/1.1\r\n\r\n", kClosing404, "upwards"},
        {"GET /x/%2e%2E/a.css HTTP/1.1\r\n\r\n", kClosing404, "upwards in disguise"},
        {"GET /%2e%00%2e/x HTTP/1.1\r\n\r\n", kClosing404, "upwards around a byte 0"},
        {"GET a.css HTTP/1.1\r\n\r\n", kClosing404, "no slash"},
        {"GET http://localhost/a.css HTTP/1.1\r\n\r\n", kClosing404, "a whole address"},
        {"GET\r\n\r\n", kClosing404, "no path"},
        {"POST /echo HTTP/1.1\r\nContent-Length: 3000001\r\n\r\nab", tooLong, "a byte too many"},
        {"POST /echo HTTP/1.1\r\nContent-Length: 99999999999999999999\r\n\r\n", tooLong,
         "more than a number holds"},
        {"POST /echo HTTP/1.1\r\nSec-Fetch-Site: cross-site\r\nContent-Length: 3\r\n\r\na=b",
         otherSite, "the browser says so"},
        {"POST /a.css HTTP/1.1\r\nOrigin: http://evil\r\nHost: shop\r\n\r\n", otherSite,
         "an older browser says so"},
        {"POST /upload HTTP/1.1\r\nSec-Fetch-Site: cross-site\r\n\r\n", otherSite,
         "before its receiver runs"},
        {"POST /refused HTTP/1.1\r\nContent-Length: 9\r\n\r\nx", kNotImplemented,
         "the receiver's own answer is the only one"},
        {"GET /none HTTP/1.0\r\n\r\n", kMissingFile, "an old client's connection is closed"},
        {"GET /none HTTP/1.1\r\nConnection: Close\r\n\r\n", kMissingFile, "as the client wishes"},
        {"GET /failing HTTP/1.1\r\n\r\n", "", "a handler that throws"},
    }};
    for (const LAnswerCase& row : kCases) {
        LTestClient client = server.Connect();
        client.Send(row.request);
        EXPECT_EQ(client.ReadToEnd(), row.answer) << row.why;
        EXPECT_TRUE(client.HasEnded()) << row.why;
    }
    EXPECT_NE(server.Ask(Get("/echo")), "") << "the server goes on";
}

TEST_F(RequestLoop, HandsTheRequestToThePage) {
    const std::string head(kHtmlHead);
    const std::array<LAnswerCase, 10> kCases{{
        {Get("/echo?b=1&a=%26"), "echo|a=%26&b=1|", "parameters of the query"},
        {Get("/ec%68o"), "echo||", "the name is decoded"},
        {"GET /echo HTTP/1.1\n\n", "echo||", "line feeds alone"},
        {Get("/echo", "Cookie: a=1; b=%32\r\n"), "echo||a=1&b=2", "cookies"},
        {Post("/echo?a=1&b=1", "b=2&c=+"), "echo|a=1&b=2&c=%20|", "the body wins"},
        {Post("/echo", ""), "echo||", "an empty body"},
        {"POST /echo HTTP/1.1\r\nContent-Length: -1\r\n\r\na=b", "echo||", "no length, no body"},
        {"POST /echo HTTP/1.1\r\nTransfer-Encoding: chunked\r\n\r\n3\r\na=b\r\n0\r\n\r\n", "echo||",
         "pieces are not put together"},
        {"POST /echo HTTP/0.9\r\nOrigin: http://shop:80\r\nHost: shop\r\n\r\n", "echo||",
         "from our own page"},
        {Post("/upload", "abcdefgh"), "upload|received=abcd|", "the receiver first, then the page"},
    }};
    for (const LAnswerCase& row : kCases) {
        LTestClient client = server.Connect();
        client.Send(row.request);
        EXPECT_EQ(client.ReadToEnd(), head + row.answer) << row.why;
        EXPECT_TRUE(client.HasEnded()) << "pages close: " << row.why;
    }
}

TEST_F(RequestLoop, ReadsABodyOfExactlyThreeMillionBytes) {
    const std::string body = "a=" + std::string(2999998, 'x');
    EXPECT_EQ(BodyOf(server.Ask(Post("/echo", body))), "echo|" + body + "|");
}

TEST_F(RequestLoop, AClientThatSendsTooMuchStillReadsWhy) {
    // The rest of the body lies unread when the connection ends; a reset would eat the answer.
    const std::string answer = server.Ask(Post("/echo", std::string(3000001, 'x')));
    EXPECT_TRUE(answer.starts_with("HTTP/1.1 500 Content Length Too Long")) << answer;
    const std::string other = server.Ask(Post("/../x", std::string(1000000, 'x')));
    EXPECT_EQ(other, kClosing404);
}

TEST_F(RequestLoop, AClientThatWaitsForLeaveGetsIt) {
    LTestClient client = server.Connect();
    client.Send("POST /echo HTTP/1.1\r\nContent-Length: 3\r\nExpect: 100-continue\r\n\r\n");
    EXPECT_EQ(client.ReadAnswer(), "HTTP/1.1 100 Continue\r\n\r\n");
    client.Send("a=b");
    EXPECT_EQ(BodyOf(client.ReadToEnd()), "echo|a=b|");
}

TEST_F(RequestLoop, KeepsTheConnectionWhereItMay) {
    struct LCase {
        std::string request;
        bool isKept;
        const char* why;
    };
    const std::array<LCase, 16> kCases{{
        {Get("/a.css"), true, "a file"},
        {Get("/none"), true, "a missing file"},
        {Get("/small"), true, "a page that tells its length"},
        {Get("/forced"), false, "a page that wants the end"},
        {Get("/echo"), false, "any other page"},
        {Get("/a.css", "Connection: keep-alive, close\r\n"), false, "the client wants the end"},
        {"GET /a.css HTTP/1.0\r\nConnection: keep-alive\r\n\r\n", false, "an old client"},
        {"GET /a.css\r\n\r\n", false, "an ancient client"},
        {"GET /small HTTP/1.0\r\n\r\n", false, "an old client, whatever the page says"},
        {Post("/a.css", ""), false, "not after a POST"},
        {Post("/small", "a=1"), true, "a page that tells its length decides after a POST too"},
        {Get("/a.css", "Content-Length: 5\r\n"), false, "a body would pass for the next request"},
        {Get("/a.css", "Transfer-Encoding: chunked\r\n"), false, "so would this one"},
        {Get("/help/index.html"), true, "help"},
        {"GET /help/index.html HTTP/1.0\r\n\r\n", true, "help, whatever the version"},
        {Get("/help/index.html", "Connection: close\r\n"), true, "and whatever was asked"},
    }};
    for (const LCase& row : kCases) {
        LTestClient client = server.Connect();
        client.Send(row.request + Get("/a.css"));
        const std::string answers = client.ReadToEnd(row.isKept ? 150 : 5000);
        EXPECT_EQ(client.HasEnded(), !row.isKept) << row.why;
        EXPECT_EQ(answers.ends_with("body {}") && answers.find("HTTP/1.1", 1) != answers.npos,
                  row.isKept)
            << row.why << "\n"
            << answers;
    }
}

TEST_F(RequestLoop, EveryRequestSweepsExpiredSessions) {
    const std::string path = LWebletSessionData::Folder() + "/sold.sess";
    for (const char* when : {"at first", "while the folder is watched"}) {
        server.home.WriteFile("data/Quillmarsh/Shared/SessionData/sold.sess", "a=b");
        std::filesystem::last_write_time(
            path, std::filesystem::file_time_type::clock::now() - std::chrono::hours(8 * 24));
        EXPECT_TRUE(Eventually([&] {
            server.Ask(Get("/a.css", "Connection: close\r\n"));
            return !std::filesystem::exists(path);
        })) << when;
    }
}

TEST_F(RequestLoop, AnswersManyRequestsThatComeInPieces) {
    LTestClient client = server.Connect();
    std::string requests;
    for (int i = 0; i < 40; ++i) requests += Get("/a.css?" + std::to_string(i));
    for (size_t at = 0; at < requests.size(); at += 333) {
        client.Send(std::string_view(requests).substr(at, 333));
        if (at % 999 == 0) std::this_thread::sleep_for(std::chrono::milliseconds(1));
    }
    for (int i = 0; i < 40; ++i) EXPECT_EQ(BodyOf(client.ReadAnswer()), "body {}") << i;
}

TEST_F(RequestLoop, AnAnswerIsNotHeldBackForItsAcknowledgement) {
    LTestClient client = server.Connect();
    const auto start = std::chrono::steady_clock::now();
    for (int i = 0; i < 50; ++i) {
        client.Send(Get("/a.css"));
        client.ReadAnswer();
    }
    EXPECT_LT(Elapsed(start).count(), 1000) << "forty milliseconds each";
}

TEST_F(RequestLoop, HelpLeadsToTheGuideOnThisServer) {
    const auto answer = [](const std::string& target) {
        return "HTTP/1.1 302 Found\r\nLocation: " + target + "\r\nContent-Length: 0\r\n\r\n";
    };
    LTestClient client = server.Connect();
    client.Send(Get("/help/index.html") + Get("/help/a/b%0d%0aX:%20c.html") + Get("/help/") +
                Get("/help"));
    EXPECT_EQ(client.ReadAnswer(), answer("/guide/index.html"));
    EXPECT_EQ(client.ReadAnswer(), answer("/guide/b%0D%0AX%3A%20c.html"));
    EXPECT_EQ(client.ReadAnswer(), answer("/guide/index.html"));
    EXPECT_EQ(client.ReadAnswer(), kMissingFile) << "a file of that name like any other";
}

TEST_F(RequestLoop, DownloadsFromMemoryBearTheirName) {
    EXPECT_EQ(server.Ask(Get("/download")),
              "HTTP/1.1 200 OK\r\nContent-Length: 5\r\nContent-Type: text/csv\r\n"
              "Content-Disposition: attachment; filename=\"list _1_.csv\"\r\n"
              "Cache-Control: private\r\nExpires: Sun, 01 Jan 2012 00:00:01 GMT\r\n\r\na,b\r\n");
}

TEST_F(RequestLoop, TheSessionFollowsItsCookie) {
    const std::string id = BodyOf(server.Ask(Get("/newsession")));
    const std::string cookie = "Cookie: quillmarsh_sess=" + id + "\r\n";
    EXPECT_EQ(BodyOf(server.Ask(Get("/counting", cookie))), "I");
    EXPECT_EQ(BodyOf(server.Ask(Get("/counting", "Cookie: x=1; quillmarsh_sess=" + id + "\r\n"))),
              "II");
    EXPECT_EQ(BodyOf(server.Ask(Get("/counting"))), "I") << "nobody's session is not kept";
    EXPECT_EQ(BodyOf(server.Ask(Get("/counting", "Cookie: quillmarsh_sess=sunknown00\r\n"))), "I")
        << "an unknown id reaches the page without a session";
    EXPECT_EQ(BodyOf(server.Ask(Get("/counting", cookie))), "III");
}

}  // namespace
