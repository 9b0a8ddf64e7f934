#include "web/accounts/PasswordPages.h"

#include "tests/web/accounts/AccountsFixture.h"

namespace {

class PasswordPages : public LAccountsTest {
protected:
    ~PasswordPages() override { SetLogonDetailsMailer({}); }
};

TEST_F(PasswordPages, ALostPasswordIsReplacedAndSentOnceInAWhile) {
    std::vector<std::string> mails;
    SetLogonDetailsMailer([&mails](const std::string& email, const std::string& password) {
        mails.push_back(email + " " + password);
        return true;
    });
    MakeAccount("lost@example.com", LAccountRole::kUser, {0});
    LTestBrowser browser(web_);
    EXPECT_TRUE(browser.Get("lostpassword")
                    .Has("Please enter your email address. Your password will be reset and sent to "
                         "you by email."));
    EXPECT_EQ(browser.Submit("lostpassword", {{"101", " LOST@example.com "}}).body,
              "window.location = 'lostpasswordsent';\n");
    const std::string password = Stored("lost@example.com", "Password");
    EXPECT_EQ(password.size(), 8u);
    EXPECT_EQ(mails, std::vector<std::string>{"lost@example.com " + password});
    EXPECT_TRUE(
        browser.Submit("lostpassword", {{"101", "lost@example.com"}}).Has("'lostpasswordsent'"))
        << "asked again";
    EXPECT_EQ(mails.size(), 1u);
    EXPECT_EQ(Stored("lost@example.com", "Password"), password);
    EXPECT_TRUE(browser.Get("lostpasswordsent")
                    .Has("<center>Your password has been reset and sent to your email address.<p>"
                         "Click <a href=\"logon\">here</a> to log on when you receive your "
                         "password.</center>"));
}

TEST_F(PasswordPages, ALostPasswordIsAskedForInItsWords) {
    struct LCase {
        const char *email, *message;
    };
    constexpr LCase kCases[] = {
        {" ", "Please enter your email address."},
        {"boss", "This email address is invalid. Please try again."},
        {"who@example.com",
         "This user doesn\\x26#39;t exist in the Quillmarsh Stock Manager System"},
        {"boss@example.com", "could not be sent by email"},
    };
    for (const LCase& one : kCases) {
        LTestBrowser browser(web_);
        const LTestAnswer answer = browser.Submit("lostpassword", {{"101", one.email}});
        EXPECT_TRUE(answer.Has(one.message)) << answer.body;
    }
    EXPECT_EQ(Stored("boss@example.com", "Password"), "password")
        << "nothing is reset that nobody would learn of";
}

TEST_F(PasswordPages, ChangingTakesTheOldPassword) {
    EXPECT_EQ(LTestBrowser(web_).Get("changepassword").Location(), "logon");
    LTestBrowser browser = LoggedOn("boss@example.com");
    struct LCase {
        const char *old, *fresh, *again, *message;
    };
    constexpr LCase kCases[] = {
        {"wrong", "secret", "secret", "not your current password"},
        {"password", "short", "short", "minimum of 6 characters"},
        {"password", "secret", "secrets", "not the same"},
    };
    for (const LCase& one : kCases) {
        EXPECT_TRUE(browser
                        .Submit("changepassword",
                                {{"101", one.old}, {"102", one.fresh}, {"103", one.again}})
                        .Has(one.message));
        EXPECT_EQ(Stored("boss@example.com", "Password"), "password");
    }
    EXPECT_EQ(
        browser
            .Submit("changepassword", {{"101", "password"}, {"102", "secret"}, {"103", "secret"}})
            .body,
        "window.location = 'changepasswordchanged';\n");
    EXPECT_EQ(Stored("boss@example.com", "Password"), "secret");
    EXPECT_TRUE(browser.Get("changepasswordchanged")
                    .Has("<center>Your password has been changed.<p>Click <a href='main'>here</a> "
                         "to return.</center>"));
}

}  // namespace
