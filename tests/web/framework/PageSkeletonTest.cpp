// The pieces of every page, to the byte where browsers and people rely on them.
#include <atomic>

#include "tests/web/framework/FrameworkFixture.h"
#include "web/framework/LWebPage.h"
#include "web/framework/RunPage.h"
#include "web/framework/StandardPages.h"

namespace {

constexpr std::string_view kHttpHead =
    "HTTP/1.1 200 OK\r\nConnection: close\r\nCache-Control: no-cache\r\nContent-Type: text/html; "
    "charset=utf-8\r\n\r\n";
constexpr std::string_view kStyles =
    "<link href=s.css type='text/css' rel=stylesheet>"
    "<link href=print.css type='text/css' media=print rel=stylesheet>";

class LPlain : public LPlainWebPage {
public:
    explicit LPlain(LWebletForm& form) : LPlainWebPage(form) { SetStyle("b{}"); }

protected:
    void PrintBody() override {
        Script().Add("function f() {}\n");
        Out().Write("text");
    }
};

std::atomic<bool> mayGoOn{false};

class LListPage : public LWebPage {
public:
    using LWebPage::LWebPage;

protected:
    void Generate() override {
        SetTitle("<Items>");
        SetNavLinks({{"itemprop?a=1&b=2", "New <Item>"}});
    }
    void PrintBody() override {
        while (Form().Parameter("wait") == "1" && !mayGoOn) std::this_thread::yield();
        Script().AddStartUp("begin('%J');", "it's");
        Out().Printf("<p>%H</p>", Form().Parameter("text"));
    }
};

class LTurnedAway : public LWebPage {
public:
    using LWebPage::LWebPage;

protected:
    void Generate() override { Redirect("main"); }
    void PrintBody() override { Out().Write("secret"); }
};

class PageSkeleton : public LFrameworkTest {
protected:
    PageSkeleton() {
        LWebletInstallScript("plain", WLWebPageRun<LPlain>);
        LWebletInstallScript("list", WLWebPageRun<LListPage>);
        LWebletInstallScript("away", WLWebPageRun<LTurnedAway>);
    }
};

TEST_F(PageSkeleton, APlainPageHasTheFixedHeadItsStyleItsScriptAndTheFoot) {
    const LTestAnswer answer = LTestBrowser(web_).Get("plain");
    EXPECT_EQ(answer.head, kHttpHead);
    EXPECT_EQ(answer.body,
              "<html><head><title>Quillmarsh Stock Manager</title>" + std::string(kStyles) +
                  "<style type='text/css'>b{}</style></head><body>text"
                  "<script type='text/javascript'>\nfunction f() {}\n</script></body></html>");
}

TEST_F(PageSkeleton, TheStandardHeaderNamesPageLinksVersionAndUser) {
    LTestBrowser browser = LoggedOn();
    const LTestAnswer answer = browser.Get("list?text=%3Cb%3E");
    EXPECT_EQ(answer.head, kHttpHead);
    const std::string links =
        "<a href=\"itemprop?a=1&amp;b=2\" class=toptext>New &lt;Item&gt;</a>&nbsp;|&nbsp;"
        "<a href=\"main?sess=" +
        browser.cookie +
        "\" class=toptext>Main</a>&nbsp;|&nbsp;"
        "<a href=\"logoff?sess=" +
        browser.cookie +
        "\" class=toptext>Log Off</a>&nbsp;|&nbsp;"
        "<a href=\"help/index.html\" target=\"_blank\" class=toptext>Help</a>";
    const std::string start =
        "<html><head><title>Quillmarsh - &lt;Items&gt;</title>" + std::string(kStyles) +
        "</head><body><table class=headertable border=0>"
        "<tr class=headerrow1 style='height: 44px'><td class=headerapp style='font-size: 16pt; "
        "cursor: pointer; cursor: hand' onclick=\"document.location='main'\" "
        "title='Click to go to the Main Page'>Quillmarsh Stock Manager</td>"
        "<td class=headertitle>&lt;Items&gt;</td><td class=headernavlinks>" +
        links + "</td></tr><tr class=headerrow2><td>v&nbsp;5.00 ";
    EXPECT_EQ(answer.body.substr(0, start.size()), start);
    EXPECT_TRUE(answer.Has(
        "<td class=headeruser colspan=3>Logged on as ann@example.com</td></tr></table><br>"));
    EXPECT_TRUE(answer.Has("<p>&lt;b&gt;</p>")) << "the body follows";
    EXPECT_TRUE(
        answer.Has("LAddEventListener(window, 'onload', function() {begin('it\\x27s');});"));
    EXPECT_TRUE(answer.body.ends_with("</p></body></html>"));
}

TEST_F(PageSkeleton, PhonesGetTheCompactLayoutUnlessThePersonChose) {
    struct LCase {
        std::string headers;
        bool isCompact;
        const char* why;
    };
    const LCase kCases[] = {
        {"User-Agent: Mozilla/5.0 (X11; Linux x86_64)\r\n", false, "a desk"},
        {"User-Agent: Mozilla/5.0 (iPhone; CPU iPhone OS 17)\r\n", true, "a phone"},
        {"User-Agent: x Android x\r\nCookie: quillmarsh_layout=normal\r\n", false, "chosen"},
        {"Cookie: quillmarsh_layout=compact\r\n", true, "chosen on a desk"},
        {"Cookie: quillmarsh_layout=<b>\r\n", false, "no choice that there is"},
    };
    LWebletInstallScript("message",
                         [](LWebletForm& form) { WLMessagePage(form, "Hello", "<p>x</p>"); });
    for (const LCase& one : kCases) {
        LTestBrowser browser(web_);
        browser.headers = one.headers;
        const LTestAnswer answer = browser.Get("message");
        EXPECT_EQ(answer.Has("<meta name='viewport' content='width=device-width'></head><body>"
                             "<div class=headernavlinks style='font-size: 16pt; line-height: 44px; "
                             "margin-top: 3px'>"),
                  one.isCompact)
            << one.why;
        EXPECT_EQ(answer.Has("<table class=headertable"), !one.isCompact) << one.why;
        EXPECT_TRUE(
            answer.Has(one.isCompact ? "quillmarsh_layout=normal;" : "quillmarsh_layout=compact;"))
            << "the other one can be chosen";
        EXPECT_TRUE(answer.Has("Hello</h1>")) << "the title is a heading in either layout";
    }
}

TEST_F(PageSkeleton, TheHeadIsSentBeforeTheBodyIsMade) {
    LTestBrowser browser = LoggedOn();
    mayGoOn = false;
    const LFileDescriptor socket = browser.Send("GET", "list?wait=1&text=done", {});
    std::string text;
    while (text.find("<h1") == std::string::npos && LTestBrowser::Receive(socket, text, 10000)) {
    }
    EXPECT_NE(text.find("headertable"), std::string::npos) << "while the body still waits";
    mayGoOn = true;
    while (LTestBrowser::Receive(socket, text, 10000)) {
    }
    EXPECT_NE(text.find("<p>done</p>"), std::string::npos);
}

TEST_F(PageSkeleton, WithoutASessionOnlyTheExpiredPageIsShown) {
    const LTestAnswer answer = LTestBrowser(web_).Get("list?text=secret");
    EXPECT_TRUE(
        answer.Has("<center>Your session is expired. Please <a href=\"logon\"><b>Click "
                   "Here</b></a> to relogin.</center>"));
    EXPECT_FALSE(answer.Has("secret"));
    EXPECT_FALSE(answer.Has("Log Off")) << "there is nothing to log off from";
}

TEST_F(PageSkeleton, APageThatTurnsTheRequestAwayOnlyRedirects) {
    const LTestAnswer answer = LoggedOn().Get("away");
    EXPECT_EQ(answer.Location(), "main");
    EXPECT_EQ(answer.body, "");
}

}  // namespace
