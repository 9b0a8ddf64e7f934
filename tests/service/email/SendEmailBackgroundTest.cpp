#include "service/email/SendEmailBackground.h"

#include <gtest/gtest.h>

#include <chrono>
#include <functional>
#include <thread>

#include "datastore/UserSettings.h"
#include "service/email/LEmail.h"
#include "tests/service/email/LMailScript.h"
#include "tests/support/LScriptedUserInterface.h"
#include "tests/support/LTempFolder.h"

namespace {

using std::chrono::milliseconds;

class SendEmailBackground : public testing::Test {
protected:
    SendEmailBackground() {
        plan_.pauses = {milliseconds(1), milliseconds(20), milliseconds(40)};
        SetEmailLog([this](std::string_view line, LEmailLogLevel level) {
            const LMutexLock lock(mutex_);
            log_ += std::to_string(static_cast<int>(level)) + " " + std::string(line) + "\n";
        });
    }
    ~SendEmailBackground() override { SetEmailLog({}); }

    void Use(const LMailScript& server) {
        LEmailSettings settings;
        settings.useSmtpHost = true;
        settings.mailSmtpHost = server.Address();
        settings.replyToEmail = "ann@example.com";
        ASSERT_TRUE(StoreEmailSettings(settings));
    }
    std::string Log() {
        const LMutexLock lock(mutex_);
        return log_;
    }
    static bool IsIdleSoon(const LEmailSendBackgroundThread& sender) {
        for (int i = 0; i < 2000 && sender.WaitingCount() > 0; ++i) {
            std::this_thread::sleep_for(milliseconds(5));
        }
        return sender.WaitingCount() == 0;
    }

    LTempHome home_;
    LSendPlan plan_;

private:
    LMutex mutex_;
    std::string log_;
};

TEST_F(SendEmailBackground, TriesAgainWhatIsTemporary) {
    const auto later = Then(GoodReplies(), 3, "450 later");
    LMailScript server({later, Then(GoodReplies(), 4, kHangUp), GoodReplies()});
    Use(server);
    EXPECT_FALSE(LSendEmailBackground("bob@example.com", "s", "b")) << "nobody sends";
    LEmailSendBackgroundThread sender(plan_);
    ASSERT_TRUE(sender.Start());
    ASSERT_TRUE(LSendEmailBackground("bob@example.com", "Order 7", "b"));
    ASSERT_TRUE(IsIdleSoon(sender));
    EXPECT_EQ(server.ConnectionCount(), 3u);
    EXPECT_TRUE(Log().ends_with("0 E-mail \"Order 7\" to bob@example.com sent.\n")) << Log();
    EXPECT_NE(Log().find("1 E-mail \"Order 7\" to bob@example.com could not be sent yet (try 2)"),
              std::string::npos);
}

TEST_F(SendEmailBackground, GivesUpAfterItsTriesAndAtOnceWhenItIsFinal) {
    for (const auto& [reply, tries] : {std::pair{"450 later", 4u}, {"550 unknown", 1u}}) {
        LMailScript server({Then(GoodReplies(), 3, reply)});
        Use(server);
        LEmailSendBackgroundThread sender(plan_);
        ASSERT_TRUE(sender.Start());
        ASSERT_TRUE(LSendEmailBackground("bob@example.com", reply, "b"));
        ASSERT_TRUE(IsIdleSoon(sender));
        EXPECT_EQ(server.ConnectionCount(), tries);
        EXPECT_NE(Log().find("2 E-mail \"" + std::string(reply) +
                             "\" to bob@example.com was not sent: Error while"),
                  std::string::npos);
    }
}

TEST_F(SendEmailBackground, StopsSoonWhereverTheServerStalls) {
    plan_.maxWaiting = 2;
    for (const size_t stage : {0u, 3u, 5u}) {
        LMailScript server({Then(GoodReplies(), stage, kStall)});
        Use(server);
        LEmailSendBackgroundThread sender(plan_);
        ASSERT_TRUE(LSendEmailBackground("bob@example.com", "first", "b"));
        ASSERT_TRUE(LSendEmailBackground("bob@example.com", "second", "b"));
        EXPECT_FALSE(LSendEmailBackground("bob@example.com", "third", "b")) << "too many";
        ASSERT_TRUE(sender.Start());
        for (int i = 0; i < 1000 && server.ConnectionCount() == 0; ++i) {
            std::this_thread::sleep_for(milliseconds(5));
        }
        std::this_thread::sleep_for(milliseconds(50));
        const auto start = std::chrono::steady_clock::now();
        sender.StopAndJoin();
        EXPECT_LT(std::chrono::steady_clock::now() - start, std::chrono::seconds(2));
    }
    for (const char* subject : {"first", "second"}) {
        EXPECT_NE(Log().find("2 E-mail \"" + std::string(subject) +
                             "\" to bob@example.com was not sent: the service ends."),
                  std::string::npos);
    }
}

TEST_F(SendEmailBackground, ThePasswordIsEncipheredAndTheDefaultsAreSetOnce) {
    ASSERT_TRUE(LUserSettingSetString("Email", "SMTPPassword", "typed"));
    ASSERT_TRUE(LUserSettingSetString("Email", "SMTPUserName", "ann"));
    EXPECT_EQ(LoadEmailSettings().smtpPassword, "typed");
    LEmail::CheckInstallDefaults();
    const LEmailSettings settings = LoadEmailSettings();
    EXPECT_TRUE(settings.useSmtpHost && settings.useSsl && settings.smtpAuthOn);
    EXPECT_FALSE(settings.verifySsl || CanSendEmail(settings)) << "no server yet";
    EXPECT_EQ(settings.smtpPassword, "typed");
    EXPECT_EQ(LUserSettingGetString("Email", "SMTPPassword", "gone"), "gone");
    ASSERT_TRUE(LUserSettingSetString("Email", "UseSSL", "0"));
    LEmail::CheckInstallDefaults();
    EXPECT_FALSE(LoadEmailSettings().useSsl);
}

// Each step mends what the refusal before it was about.
TEST_F(SendEmailBackground, TheSettingsAreChecked) {
    LEmailSettings settings;
    const std::string replyTo = "Reply Email Required/", enter = " Enter your email address.";
    const std::string must = ",\nyou must enter ", connect = " to connect to your server.";
    const std::string auth = "Required/If your SMTP server requires authentication" + must;
    const std::pair<std::function<void()>, std::string> kSteps[] = {
        {[&] { settings.sendDirect = true; },
         replyTo + "If you choose SMTP or Send Direct you must enter a valid reply-to address." +
             enter},
        {[&] { settings.useSmtpHost = true; },
         "SMTP Server Address Required/If you choose SMTP you must enter a server."},
        {[&] { settings.mailSmtpHost = "mail.example.com"; },
         replyTo + "If you choose SMTP you must enter a valid reply-to address." + enter},
        {[&] { settings.replyToEmail = "ann"; },
         replyTo + "Please enter a valid reply-to email address."},
        {[&] { settings.replyToEmail = "a@b.c, d@e.f", settings.smtpAuthOn = true; },
         "User Name " + auth + "an SMTP username" + connect},
        {[&] { settings.smtpUserName = "ann"; },
         "Password " + auth + "a valid SMTP password" + connect},
    };
    for (const auto& [change, refusal] : kSteps) {
        change();
        LScriptedUserInterface ui;
        EXPECT_FALSE(LEmailSendSettingsDlg::CmOk(ui, settings).IsNone());
        EXPECT_EQ(ui.Informed().at(0).title + "/" + ui.Informed().at(0).text, refusal);
    }
    EXPECT_FALSE(LUserSettingTestExists("Email", "ReplyToEmail"));
    settings.smtpPassword = "p";
    LScriptedUserInterface ui;
    EXPECT_TRUE(LEmailSendSettingsDlg::CmOk(ui, settings).IsNone());
    EXPECT_EQ(LoadEmailSettings().smtpPassword, "p");
}

TEST_F(SendEmailBackground, AConnectionIsTriedOut) {
    LMailScript server({{"220 ready", "250 hello", "221 bye"}, {"554 no"}});
    LEmailSettings settings;
    settings.useSmtpHost = true;
    settings.replyToEmail = "ann@example.com";
    for (const auto& [host, title] :
         {std::pair<std::string, std::string>{"", "SMTP Server Address Required"},
          {server.Address(), "Verify Connection"},
          {server.Address(), "Mail server not responding"}}) {
        settings.mailSmtpHost = host;
        LScriptedUserInterface ui;
        EXPECT_EQ(LEmailSendSettingsDlg::VerifyConnection(ui, settings),
                  title == "Verify Connection");
        EXPECT_EQ(ui.Informed().at(0).title, title);
    }
}

}  // namespace
