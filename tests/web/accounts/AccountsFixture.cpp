#include "tests/web/accounts/AccountsFixture.h"

#include "datastore/Businesses.h"
#include "web/accounts/AccountPages.h"
#include "web/accounts/AccountScripts.h"
#include "web/accounts/LogonPages.h"
#include "web/framework/RunPage.h"

LAccountsTest::LAccountsTest() {
    LProfile();  // initialises the default business
    EXPECT_TRUE(SetBusinessName(0, "First & Co"));
    secondFolder_ = CreateNewBusiness().value_or("");
    LProfile{secondFolder_};
    EXPECT_TRUE(SetBusinessName(1, "Second"));
    InstallAccountScripts();
    LWebletInstallScript("userlist", WLWebPageRun<LAppWebAccountsPage>);
    LWebletInstallScript("userprop", WLWebDialogRun<LAppWebAccountDialog>);
    LWebletInstallScript("userdelete", WLUserDelete);
    LWebletInstallScript("chooseprofile", WLWebDialogRun<LWebSelectProfileDialog>);
    MakeAccount("boss@example.com", LAccountRole::kAdministrator, {0});
}

void LAccountsTest::MakeAccount(const std::string& email, LAccountRole role,
                                const std::vector<int>& businesses, int lastUsed) {
    ASSERT_TRUE(LAppWebAccountCreate({.email = email,
                                      .password = "password",
                                      .displayName = "<" + email + ">",
                                      .role = role,
                                      .profileIds = businesses,
                                      .lastUsedProfileId = lastUsed}));
}

std::string LAccountsTest::Stored(const std::string& email, const std::string& field) {
    LAppWebAccount account;
    return OpenWebAccount(account, email) ? account.GetString(field) : "(no account)";
}

void LAccountsTest::Store(const std::string& email, const std::string& field,
                          const std::string& value) {
    LAppWebAccount account;
    ASSERT_TRUE(OpenWebAccount(account, email));
    account.SetString(field, value);
    ASSERT_TRUE(account.Flush());
}

LTestAnswer LAccountsTest::TryLogOn(LTestBrowser& browser, const std::string& email,
                                    const std::string& password, bool remember) {
    LTestFields fields{{"101", email}, {"102", password}};
    if (remember) fields.emplace_back("103", "1");
    return browser.Submit("logon", fields);
}

LTestBrowser LAccountsTest::LoggedOn(const std::string& email) {
    LTestBrowser browser(web_);
    TryLogOn(browser, email, "password");
    EXPECT_FALSE(browser.cookie.empty()) << email;
    return browser;
}

std::string LAccountsTest::SessionFile(const LTestBrowser& browser) const {
    return home_.ReadFile("data/Quillmarsh/Shared/SessionData/" + browser.cookie + ".sess");
}
