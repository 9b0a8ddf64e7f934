#include "web/accounts/AccountPages.h"

#include "datastore/Businesses.h"
#include "service/control/LServiceLog.h"
#include "tests/web/accounts/AccountsFixture.h"

namespace {

class AccountPages : public LAccountsTest {
protected:
    AccountPages() {
        MakeAccount("ann@example.com", LAccountRole::kUser, {0});
        SetServiceLogSink(
            [this](std::string_view text, std::string_view, int) { log_.emplace_back(text); });
    }
    ~AccountPages() override { SetServiceLogSink({}); }
    std::vector<std::string> log_;
};

TEST_F(AccountPages, AreForAdministratorsOnly) {
    LTestBrowser user = LoggedOn("ann@example.com");
    for (const char* page : {"userlist", "userprop", "userprop?id=boss@example.com",
                             "userdelete?id=boss@example.com"}) {
        EXPECT_EQ(user.Get(page).Location(), "main") << page;
    }
    EXPECT_EQ(
        user.Submit("userprop",
                    {{"101", "x"}, {"102", "x@example.com"}, {"103", "secret"}, {"300", "301"}})
            .body,
        "window.location = 'main';\n");
    EXPECT_EQ(Stored("x@example.com", "Password"), "(no account)");
}

TEST_F(AccountPages, TheListShowsEveryAccountAndNoPassword) {
    const LTestAnswer page = LoggedOn("boss@example.com").Get("userlist");
    for (const char* title :
         {"Display Name", "Email Address", "Admin", "Enabled", "Edit", "Delete"}) {
        EXPECT_TRUE(page.Has(">" + std::string(title) + "</th>")) << title;
    }
    EXPECT_TRUE(page.Has("&lt;ann@example.com&gt;</td>"));
    EXPECT_TRUE(page.Has("<a href='userprop?id=ann%40example.com' aria-label='Edit "));
    EXPECT_TRUE(page.Has("<a href='userdelete?id=ann%40example.com' aria-label='Delete "));
    EXPECT_FALSE(page.Has("password"));
}

TEST_F(AccountPages, ANewAccountIsCheckedInItsWordsAndOrder) {
    LTestBrowser boss = LoggedOn("boss@example.com");
    struct LCase {
        const char *name, *email, *password, *message;
    };
    constexpr LCase kCases[] = {
        {" ", "x", "x", "Please enter a name for the user."},
        {"Bob", "ANN@example.com ", "x",
         "There is another user with the same email already exists. Please use another email."},
        {"Bob", "bob@", "x",
         "Wrong Email address. Please enter correct Email address to create a new Account."},
        {"Bob", "", "x", "Wrong Email address."},
        {"Bob", "bob@example.com", "",
         "Please enter the Account Password. The password must have a minimum of 6 characters."},
        {"Bob", "bob@example.com", "\xc3\xa4\xc3\xa4\xc3\xa4\xc3\xa4\xc3\xa4",
         "The password must have a minimum of 6 characters."},
    };
    for (const LCase& one : kCases) {
        const LTestAnswer answer =
            boss.Submit("userprop", {{"101", one.name}, {"102", one.email}, {"103", one.password}});
        EXPECT_TRUE(answer.Has(one.message)) << answer.body;
    }
    EXPECT_EQ(Stored("bob@example.com", "Password"), "(no account)");
    EXPECT_TRUE(log_.empty());
}

TEST_F(AccountPages, ANewAccountCanLogOnToTheTickedBusinesses) {
    LTestBrowser boss = LoggedOn("boss@example.com");
    EXPECT_EQ(boss.Submit("userprop", {{"101", "Bob"},
                                       {"102", "Bob@Example.com"},
                                       {"103", "secret"},
                                       {"104", "1"},
                                       {"300", "303"},
                                       {"1001", "1"},
                                       {"1007", "1"}})
                  .body,
              "window.location = 'userlist';\n");
    EXPECT_EQ(log_, (std::vector<std::string>{"Register New User Bob",
                                              "Account has been enabled for bob@example.com"}));
    const std::pair<const char*, const char*> kStored[] = {
        {"DisplayName", "Bob"}, {"Password", "secret"}, {"Enabled", "1"},
        {"Administrator", "0"}, {"Priviligies", "3"},   {"ProfileIDs", "1,"}};
    for (const auto& [field, value] : kStored) {
        EXPECT_EQ(Stored("bob@example.com", field), value) << field;
    }
    LTestBrowser bob(web_);
    EXPECT_TRUE(TryLogOn(bob, "bob@example.com", "secret").Has("'chooseprofile'"));
}

TEST_F(AccountPages, AChangeKeepsThePasswordThatNoPageShows) {
    LTestBrowser boss = LoggedOn("boss@example.com");
    const LTestAnswer page = boss.Get("userprop?id=ann@example.com");
    EXPECT_FALSE(page.Has("value='password'"));
    const std::string shown = page.Between("<input type=password id=103 name=103 value='", "'");
    EXPECT_TRUE(boss.Submit("userprop", {{"id", "ann@example.com"},
                                         {"101", "Ann"},
                                         {"103", shown},
                                         {"300", "301"},
                                         {"1000", "1"}})
                    .Has("window.location"));
    EXPECT_EQ(Stored("ann@example.com", "Password"), "password");
    EXPECT_EQ(Stored("ann@example.com", "Administrator"), "1");
    EXPECT_EQ(Stored("ann@example.com", "Enabled"), "0");
    EXPECT_EQ(log_, std::vector<std::string>{"Account has been disabled for ann@example.com"});
    boss.Submit("userprop", {{"id", "ann@example.com"},
                             {"101", "Ann"},
                             {"103", "new-one"},
                             {"104", "1"},
                             {"300", "302"}});
    EXPECT_EQ(Stored("ann@example.com", "Password"), "new-one");
    EXPECT_EQ(Stored("ann@example.com", "Administrator"), "0");
    EXPECT_EQ(Stored("ann@example.com", "ProfileIDs"), "");
}

TEST_F(AccountPages, NobodyTakesTheirOwnRightsAway) {
    LTestBrowser boss = LoggedOn("boss@example.com");
    boss.Submit(
        "userprop",
        {{"id", "BOSS@example.com"}, {"101", "The Boss"}, {"103", "another"}, {"300", "303"}});
    EXPECT_EQ(Stored("boss@example.com", "DisplayName"), "The Boss");
    EXPECT_EQ(Stored("boss@example.com", "Password"), "another");
    EXPECT_EQ(Stored("boss@example.com", "Enabled"), "1");
    EXPECT_EQ(Stored("boss@example.com", "Administrator"), "1");
    EXPECT_EQ(Stored("boss@example.com", "ProfileIDs"), "0,");
}

TEST_F(AccountPages, DeletedBusinessesAreNotOfferedAndNotKept) {
    ASSERT_TRUE(SetBusinessDeleted(1, true));
    LTestBrowser boss = LoggedOn("boss@example.com");
    EXPECT_FALSE(boss.Get("userprop?id=ann@example.com").Has("Second"));
    boss.Submit("userprop", {{"id", "ann@example.com"},
                             {"101", "Ann"},
                             {"103", "password"},
                             {"300", "302"},
                             {"1000", "1"},
                             {"1001", "1"}});
    EXPECT_EQ(Stored("ann@example.com", "ProfileIDs"), "0,");
}

TEST_F(AccountPages, DeletingAsksFirst) {
    LTestBrowser boss = LoggedOn("boss@example.com");
    const LTestAnswer page = boss.Get("userdelete?id=ann@example.com");
    EXPECT_TRUE(page.Has("Do you want to delete &quot;ann@example.com&quot;?"));
    EXPECT_EQ(Stored("ann@example.com", "Enabled"), "1");
    const std::string token = page.Between("confirmed=", "&");
    EXPECT_EQ(boss.Get("userdelete?id=ann@example.com&confirmed=" + token).Location(), "userlist");
    EXPECT_EQ(Stored("ann@example.com", "Enabled"), "(no account)");
    EXPECT_EQ(boss.Get("userdelete?id=ann@example.com").Location(), "userlist") << "gone already";
}

}  // namespace
