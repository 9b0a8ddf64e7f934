#include "web/accounts/PageCheck.h"

#include <atomic>

#include "tests/web/accounts/AccountsFixture.h"
#include "web/accounts/BusinessPages.h"
#include "web/framework/RunPage.h"

namespace {

std::atomic<int> saves{0};

class LCheckedList : public LWebPageEx {
public:
    using LWebPageEx::LWebPageEx;

protected:
    void Generate() override { PassPriviligies(Script()); }
    void PrintBody() override { Out().Printf("in %H", Profile().BusinessName()); }
};

class LEditing : public LWebDialogEA {
public:
    explicit LEditing(LWebletForm& form) : LWebDialogEA(form) {
        SetOkCancelPage("list", "list");
        AddTools({"More", "more", [] { return ++saves, true; }});
    }

protected:
    bool CmOk() override { return ++saves, true; }
};

class PageCheck : public LAccountsTest {
protected:
    PageCheck() {
        saves = 0;
        LWebletInstallScript("list", WLWebPageRun<LCheckedList>);
        LWebletInstallScript("edit", WLWebDialogRun<LEditing>);
        LWebletInstallScript("act", [](LWebletForm& form) {
            if (AuthenticateAction(form)) WLRedirect(form, WLMayChange(form) ? "done" : "viewer");
        });
        MakeAccount("ann@example.com", LAccountRole::kUser, {0});
        MakeAccount("eve@example.com", LAccountRole::kViewer, {0});
    }
};

TEST_F(PageCheck, WhoeverMayPassSeesTheBusinessOfTheSession) {
    for (const auto& [email, role] :
         {std::pair{"boss@example.com", "1"}, {"ann@example.com", "2"}, {"eve@example.com", "3"}}) {
        const LTestAnswer page = LoggedOn(email).Get("list");
        EXPECT_TRUE(page.Has("in First &amp; Co")) << email;
        EXPECT_TRUE(page.Has("Logged on as " + std::string(email)));
        EXPECT_TRUE(page.Has("var iPrivileges = " + std::string(role) + ";\n")) << email;
    }
}

TEST_F(PageCheck, AnyDoubtEndsTheSession) {
    struct LCase {
        const char *field, *value, *action, *why;
    };
    for (const LCase& one : {LCase{"Enabled", "0", "done", "disabled meanwhile"},
                             LCase{"ProfileIDs", "1,", "logon", "barred from the business"},
                             LCase{"ProfileIDs", "", "logon", "barred from all"}}) {
        MakeAccount("bob@example.com", LAccountRole::kUser, {0});
        LTestBrowser browser = LoggedOn("bob@example.com");
        Store("bob@example.com", one.field, one.value);
        EXPECT_EQ(browser.Get("act").Location(), one.action) << one.why;
        EXPECT_EQ(browser.Get("list").Location(), "logon") << one.why;
        EXPECT_EQ(SessionFile(browser), "") << one.why;
        EXPECT_TRUE(browser.Get("act").Has("Your session is expired.")) << one.why;
    }
    LTestBrowser browser = LoggedOn("ann@example.com");
    ASSERT_TRUE(LWebAccountDelete("ann@example.com"));
    EXPECT_EQ(browser.Get("list").Location(), "logon") << "the account is gone";
    EXPECT_EQ(LTestBrowser(web_).Get("list").Location(), "logon") << "no session at all";
    browser.cookie = "../../x";
    EXPECT_EQ(browser.Get("list").Location(), "logon") << "no session that there could be";
}

TEST_F(PageCheck, AViewersSubmitPassesForDoneAndSavesNothing) {
    LTestBrowser viewer = LoggedOn("eve@example.com"), user = LoggedOn("ann@example.com");
    EXPECT_EQ(viewer.Submit("edit", {}).body, "window.location = 'list';\n");
    EXPECT_EQ(viewer.Submit("edit", {}, "More").body, "window.location = 'more';\n");
    EXPECT_EQ(viewer.Get("act").Location(), "viewer");
    EXPECT_EQ(saves, 0);
    EXPECT_EQ(user.Submit("edit", {}).body, "window.location = 'list';\n");
    EXPECT_EQ(user.Submit("edit", {}, "More").body, "window.location = 'more';\n");
    EXPECT_EQ(saves, 2);
}

TEST_F(PageCheck, ASubmitAfterTheSessionEndedIsSentToTheLogon) {
    LTestBrowser browser = LoggedOn("ann@example.com");
    Store("ann@example.com", "Enabled", "0");
    EXPECT_EQ(browser.Submit("edit", {}).Location(), "logon");
    EXPECT_EQ(saves, 0);
}

}  // namespace
