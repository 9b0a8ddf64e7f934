#include "datastore/Businesses.h"
#include "service/control/LServiceLog.h"
#include "tests/web/accounts/AccountsFixture.h"

namespace {

class Logon : public LAccountsTest {};

TEST_F(Logon, ChecksInItsOrderAndInItsWords) {
    MakeAccount("off@example.com", LAccountRole::kUser, {0});
    Store("off@example.com", "Enabled", "0");
    MakeAccount("none@example.com", LAccountRole::kUser, {});
    MakeAccount("lost@example.com", LAccountRole::kUser, {}, -1);
    struct LCase {
        const char *email, *password, *message;
    };
    constexpr LCase kCases[] = {
        {"  ", "password", "Please enter your email address."},
        {"boss", "password", "Please enter a valid email address."},
        {"boss@example.com", "Password", "Please check you have the right password."},
        {"boss@example.com", "", "Login failed. Please check you have the right password."},
        {"who@example.com", "password", "Login failed. Please check you have the right password."},
        {"../../x", "password", "Please enter a valid email address."},
        {"off@example.com", "wrong", "Please check you have the right password."},
        {"off@example.com", "password", "Login failed. Your account has been disabled."},
        {"none@example.com", "password", "doesn\\x26#39;t have allowed company profiles"},
        {"lost@example.com", "password", "doesn\\x26#39;t have allowed company profiles"},
    };
    for (const LCase& one : kCases) {
        LTestBrowser browser(web_);
        const LTestAnswer answer = TryLogOn(browser, one.email, one.password);
        EXPECT_TRUE(answer.Has(one.message)) << one.email << ": " << answer.body;
        EXPECT_FALSE(answer.Has("document.cookie")) << one.email;
        EXPECT_FALSE(answer.Has("window.location")) << one.email;
    }
}

TEST_F(Logon, HandsTheSessionOutByScript) {
    LTestBrowser browser(web_);
    const LTestAnswer answer = TryLogOn(browser, " BOSS@Example.com ", " password ");
    EXPECT_EQ(answer.body, "document.cookie = 'quillmarsh_sess=" + browser.cookie +
                               "; path=/';\nwindow.location = 'main';\n");
    EXPECT_EQ(browser.cookie[0], 's');
    const std::string session = SessionFile(browser);
    EXPECT_NE(session.find("user=boss%40example.com"), std::string::npos) << session;
    EXPECT_NE(session.find("profile="), std::string::npos);

    LTestBrowser own(web_);
    const LTestAnswer kept = TryLogOn(own, "boss@example.com", "password", true);
    EXPECT_EQ(kept.body,
              "document.cookie = 'quillmarsh_sess=" + own.cookie +
                  "; path=/; expires=Sunday, 17-Jan-2038 19:14:07 GMT';\nwindow.location = "
                  "'main';\n");
    EXPECT_EQ(own.cookie[0], 'l');
    EXPECT_NE(own.cookie, browser.cookie);
}

TEST_F(Logon, LeadsToTheBusinessUsedLastOrToTheChoice) {
    MakeAccount("second@example.com", LAccountRole::kUser, {1}, 1);
    MakeAccount("barred@example.com", LAccountRole::kUser, {1}, 0);
    MakeAccount("new@example.com", LAccountRole::kUser, {0, 1}, -1);
    MakeAccount("gone@example.com", LAccountRole::kAdministrator, {}, 9);
    struct LCase {
        const char *email, *page, *folder;
    };
    const LCase kCases[] = {
        {"second@example.com", "main", "MultiBus"},
        {"barred@example.com", "chooseprofile", nullptr},
        {"new@example.com", "chooseprofile", nullptr},
        {"gone@example.com", "chooseprofile", nullptr},
    };
    for (const LCase& one : kCases) {
        LTestBrowser browser(web_);
        const LTestAnswer answer = TryLogOn(browser, one.email, "password");
        EXPECT_TRUE(answer.Has("window.location = '" + std::string(one.page) + "';")) << one.email;
        const std::string session = SessionFile(browser);
        EXPECT_EQ(session.find("profile=") != std::string::npos, one.folder != nullptr) << session;
        if (one.folder != nullptr) {
            EXPECT_NE(session.find(one.folder), std::string::npos) << session;
        }
    }
    ASSERT_TRUE(SetBusinessDeleted(1, true));
    LTestBrowser browser(web_);
    EXPECT_TRUE(
        TryLogOn(browser, "second@example.com", "password").Has("t have allowed company profiles"))
        << "a deleted business counts for nobody";
}

TEST_F(Logon, WhoIsLoggedOnIsLedOnAtOnce) {
    LTestBrowser browser = LoggedOn("boss@example.com");
    EXPECT_EQ(browser.Get("logon").Location(), "main");
    EXPECT_EQ(browser.Get("logon?onok=itemlist").Location(), "itemlist");
    EXPECT_EQ(browser.Get("logon?onok=//evil.example").Location(), "main");
}

TEST_F(Logon, WhatALinkPutsIntoTheFormStaysText) {
    LTestBrowser browser(web_);
    const LTestAnswer page = browser.Get("logon?email=%22%27%3E%3Cscript%3E");
    EXPECT_FALSE(page.Has("<script>\""));
    EXPECT_TRUE(page.Has("value='&quot;&#39;&gt;&lt;script&gt;'"));
}

TEST_F(Logon, LogoffEndsTheSession) {
    std::string logged;
    SetServiceLogSink([&logged](std::string_view text, std::string_view, int) { logged += text; });
    LTestBrowser browser = LoggedOn("boss@example.com");
    const LTestAnswer answer = browser.Get("logoff?sess=" + browser.cookie);
    SetServiceLogSink({});
    EXPECT_TRUE(answer.Has("<title>Quillmarsh - Logoff</title>"));
    EXPECT_TRUE(
        answer.Has("<center>You have successfully logged out. Thank you for using Quillmarsh Stock "
                   "Manager.<br><br>Click <a href=\"logon\">here</a> to log on again.</center>"));
    EXPECT_EQ(logged, "Web user \"boss@example.com\" logged out.");
    EXPECT_EQ(SessionFile(browser), "");
    EXPECT_EQ(browser.Get("userlist").Location(), "logon");
    EXPECT_TRUE(browser.Get("logoff").Has("Your session is expired."));
}

class ChooseBusiness : public LAccountsTest {};

TEST_F(ChooseBusiness, OffersWhatTheAccountMayOpenAndRemembersTheChoice) {
    MakeAccount("ann@example.com", LAccountRole::kUser, {1}, -1);
    LTestBrowser browser = LoggedOn("ann@example.com");
    const LTestAnswer page = browser.Get("chooseprofile");
    EXPECT_TRUE(page.Has(">Second</option>"));
    EXPECT_FALSE(page.Has("First")) << "though the default business is what a session begins with";

    EXPECT_FALSE(browser.Submit("chooseprofile", {{"101", "First & Co"}}).Has("window.location"))
        << "not offered, not opened";
    EXPECT_EQ(browser.Submit("chooseprofile", {{"101", "Second"}}).body,
              "window.location = 'main';\n");
    EXPECT_NE(SessionFile(browser).find("MultiBus"), std::string::npos);
    EXPECT_EQ(Stored("ann@example.com", "LastUsedProfileID"), "1");
    LTestBrowser next(web_);
    EXPECT_TRUE(TryLogOn(next, "ann@example.com", "password").Has("'main'"));
}

TEST_F(ChooseBusiness, IsForThoseWhoAreLoggedOn) {
    EXPECT_EQ(LTestBrowser(web_).Get("chooseprofile").Location(), "logon");
    LTestBrowser browser = LoggedOn("boss@example.com");
    EXPECT_EQ(browser.Get("chooseprofile?error=1").Location(), "logon");
    Store("boss@example.com", "Enabled", "0");
    EXPECT_EQ(browser.Get("chooseprofile").Location(), "logon");
}

}  // namespace
