#include <gtest/gtest.h>
#include <sys/stat.h>

#include <chrono>

#include "service/email/EmailSMTPSendProcess.h"
#include "service/email/LMailConnection.h"
#include "tests/service/email/LMailScript.h"
#include "tests/support/LTempFolder.h"

namespace {

constexpr char kGeneral[] =
    "Error while trying to send email. Email address may be wrong or your SMTP server may require "
    "a username or password. Please check address again and see Email Settings. ";

EmailSMTPSendProcess JobFor(const LMailScript& server, bool authenticate = false) {
    EmailSMTPSendProcess job;
    job.account.server = server.Address();
    job.account.sender = "Ann <ann@example.com>";
    job.account.authenticate = authenticate;
    if (authenticate) job.account.userName = "ann", job.account.password = "secret";
    job.message.to = "bob@example.com";
    job.message.subject = "Hello";
    job.message.body = "one\n.\ntwo\n";
    job.limits.connectMs = job.limits.commandMs = job.limits.replyMs = 5000;
    return job;
}

// The lines that a client sent, the text of the message left out.
std::string Commands(const LMailScript& server, size_t n = 0) {
    std::string text = server.Received(n);
    const size_t start = text.find("DATA\r\n");
    if (start != std::string::npos) text.erase(start + 6, text.rfind("\r\n.\r\n") + 5 - start - 6);
    for (size_t at = 0; (at = text.find("\r\n", at)) != std::string::npos;)
        text.replace(at, 2, "|");
    const size_t name = text.find("LO ") + 3;  // of this machine
    return text.replace(name, text.find('|') - name, "me");
}

TEST(SmtpDialogue, SaysWhatItShould) {
    LMailScript server({GoodReplies()});
    auto job = JobFor(server);
    LWatchedProcess process;
    ASSERT_TRUE(Process(process, job)) << job.ErrorText();
    EXPECT_EQ(Commands(server),
              "HELO me|MAIL FROM:<ann@example.com>|RCPT TO:<bob@example.com>|DATA|QUIT|");
    EXPECT_NE(server.Received().find("\r\n\r\none\r\n..\r\ntwo\r\n.\r\n"), std::string::npos);
    EXPECT_EQ(
        process.statusTexts,
        (std::vector<std::string>{"To: bob@example.com", "Connecting to server",
                                  "Connected to server", "Sending Message Text", "Email sent"}));
    EXPECT_EQ(process.progress, (std::vector<double>{0.1, 0.95}));
}

TEST(SmtpDialogue, SaysItWithAPassword) {
    auto again = GoodAuthReplies();
    again.insert(again.begin() + 2, {"503 greet first", "250 hello"});
    LMailScript server({GoodAuthReplies(), again});
    constexpr char kRest[] =
        "AUTH LOGIN|YW5u|c2VjcmV0|MAIL FROM:<ann@example.com>|RCPT TO:<bob@example.com>|DATA|QUIT|";
    for (const std::string start : {"EHLO me|", "EHLO me|AUTH LOGIN|EHLO me|"}) {
        auto job = JobFor(server, true);
        LWatchedProcess process;
        ASSERT_TRUE(Process(process, job)) << job.ErrorText();
        std::string said = Commands(server, server.ConnectionCount() - 1);
        const size_t second = said.rfind("EHLO ") + 5;
        if (second > 5) said.replace(second, said.find('|', second) - second, "me");
        EXPECT_EQ(said, start + kRest);
    }
}

struct LRefusal {
    LMailScript::Replies replies;
    std::string error;  // "(" at its start: behind the general one
    bool isTemporary = false;
};

TEST(SmtpDialogue, EveryRefusalHasItsText) {
    const auto plain = GoodReplies(), auth = GoodAuthReplies();
    const std::string bob = "emailto: bob@example.com",
                      where = bob + " mailhost: 127.0.0.1 error: ";
    const std::string unreachable =
        "Unable to connect to mail server \"127.0.0.1\" when sending an email to "
        "\"bob@example.com\".";
    const std::string account = "Email authentication username or password not accepted (334): ";
    const LRefusal kPlain[] = {
        {Then(plain, 0, "554 go away"), unreachable},
        {Then(plain, 0, "421 busy"), unreachable, true},
        {Then(plain, 1, "504 who?"),
         "Mail host server error (HELO not accepted, error code 504) for destination email "
         "bob@example.com - usually this means the email address is not valid."},
        {Then(plain, 1, "550-no\r\n550 never"),
         "Mail host server error (HELO not accepted): 550 " + bob},
        {Then(plain, 2, "550 not you"),
         "Mail host server error (MAIL FROM not accepted). Please check your Email Settings. "
         "ann@example.com - (550 - not you)"},
        {Then(plain, 3, "550 unknown"), "(550): unknown"},
        {Then(plain, 3, "450 grey"), "(450): grey", true},
        {Then(plain, 3, "550 " + std::string(1000, 'x')),
         "(550): " + std::string(kMaxReplyLine - 4, 'x')},
        {Then(plain, 4, "554 no"), "Mail host server error (DATA not accepted)"},
        {Then(plain, 5, "550 policy"),
         "The recipient's email server does not allow email to be received in this manner.  "
         "Please use an SMTP account for sending email to this address. " +
             where + "policy"},
        {Then(plain, 5, "554 spam"),
         "The recipient's email server rejected this email because of an unspecified reason.  "
         "Try using an SMTP account for sending email to this address."},
        {Then(plain, 5, "552 big"), "The email exceeds the size limits set for this account."},
        {Then(plain, 5, "451 later"),
         "Mail host server error (data terminator not accepted) " + where + "451", true},
    };
    const LRefusal kAuth[] = {
        {Then(auth, 2, "530 TLS first"),
         "Encryption required for requested Email server. Please check your Email Settings."},
        {Then(auth, 2, "502 unknown"), "(502): unknown"},
        {Then(Then(auth, 2, "503 first"), 3, "550 no"), "(550): no"},
        {Then(auth, 3, "535 who?"), account + "who?"},
        {Then(auth, 4, "535 wrong"), account + "wrong"},
        {Then(auth, 4, "454 later"), account + "later", true},
    };
    const auto check = [](const LRefusal& refusal, bool authenticates) {
        LMailScript server({refusal.replies});
        auto job = JobFor(server, authenticates);
        LWatchedProcess process;
        EXPECT_FALSE(Process(process, job));
        ASSERT_EQ(job.failures.size(), 1u);
        const bool isGeneral = refusal.error[0] == '(';
        EXPECT_EQ(job.ErrorText(), (isGeneral ? kGeneral : "") + refusal.error);
        EXPECT_EQ(job.failures[0].isTemporary, refusal.isTemporary) << refusal.error;
    };
    for (const LRefusal& refusal : kPlain) check(refusal, false);
    for (const LRefusal& refusal : kAuth) check(refusal, true);
}

TEST(SmtpDialogue, AServerThatMisbehavesAtAnyMomentEndsInAnErrorInTime) {
    const auto replies = GoodAuthReplies();
    for (const char* trick : {kStall, kHangUp, kNoLineEnd, kManyLines, kNonsense}) {
        for (size_t stage = 0; stage + 1 < replies.size(); ++stage) {
            LMailScript server({Then(replies, stage, trick)});
            auto job = JobFor(server, true);
            job.limits.replyMs = 200;
            LWatchedProcess process;
            const auto start = std::chrono::steady_clock::now();
            EXPECT_FALSE(Process(process, job)) << trick << " at stage " << stage;
            EXPECT_FALSE(job.ErrorText().empty());
            EXPECT_LT(std::chrono::steady_clock::now() - start, std::chrono::seconds(5)) << trick;
            EXPECT_EQ(job.failures[0].isTemporary, trick != std::string_view(kNonsense))
                << trick << " at stage " << stage << ": " << job.ErrorText();
        }
    }
}

TEST(SmtpDialogue, AServerThatHangsUpInTheTextMaySayWhy) {
    LMailScript server({Then(GoodReplies(), 5, std::string(kEarly) + "552 too big")});
    auto job = JobFor(server);
    job.message.body = std::string(8 << 20, 'x');
    LWatchedProcess process;
    EXPECT_FALSE(Process(process, job));
    EXPECT_EQ(job.ErrorText(), "The email exceeds the size limits set for this account.");
}

TEST(SmtpDialogue, TheSecondPortIsTriedWhenTheFirstRefuses) {
    LMailScript server({GoodReplies()});
    auto job = JobFor(server);
    job.account.server = "127.0.0.1";
    job.limits.submissionPort = 1;  // nobody listens there
    job.limits.relayPort = server.Port();
    LWatchedProcess process;
    EXPECT_TRUE(Process(process, job)) << job.ErrorText();

    auto named = JobFor(server);
    named.account.server = "127.0.0.1:2";
    named.limits = job.limits;
    EXPECT_FALSE(Process(process, named)) << "another port than the usual one was asked for";
    EXPECT_EQ(named.ErrorTitle(), "Mail server not responding");
}

TEST(SmtpDialogue, DirectGoesToTheExchangersOfEachRecipient) {
    const auto late = Then(GoodReplies(), 3, "450 later");
    LMailScript server({GoodReplies(), late});
    auto job = JobFor(server);
    job.account.mode = LSendMode::kDirect;
    job.message.to = "a@one.example, b@two.example, nobody, c@none.example, d@\xC3\xBC.example";
    job.limits.relayPort = server.Port();
    std::vector<std::string> asked;
    job.findExchangers = [&asked](const std::string& domain) -> LExchangers {
        asked.push_back(domain);
        if (domain == "none.example") return {LLookupResult::kNone, {}};
        // Nobody listens at the first one.
        return {LLookupResult::kFound, {"127.0.0.2", "127.0.0.1"}};
    };
    LWatchedProcess process;
    EXPECT_FALSE(Process(process, job));
    EXPECT_EQ(asked, (std::vector<std::string>{"one.example", "two.example", "none.example",
                                               "xn--tda.example"}));
    ASSERT_EQ(job.failures.size(), 4u);
    EXPECT_EQ(job.failures[0].recipients, "b@two.example");
    EXPECT_TRUE(job.failures[0].isTemporary);
    EXPECT_EQ(job.failures[1].text, "Invalid email address to send to: nobody");
    EXPECT_FALSE(job.failures[2].isTemporary) << "no such domain";
    EXPECT_EQ(Commands(server),
              "HELO me|MAIL FROM:<ann@example.com>|RCPT TO:<a@one.example>|DATA|QUIT|");

    LMailScript refusing({{"554 no"}});
    job.message.to = "a@one.example";
    job.limits.relayPort = refusing.Port();
    EXPECT_FALSE(Process(process, job));
    EXPECT_TRUE(job.failures.at(0).isTemporary) << "the one nobody listens at may be back soon";
}

TEST(SmtpDialogue, RefusesBeforeItConnects) {
    struct LCase {
        const char *to, *sender, *server, *error;
    };
    constexpr LCase kCases[] = {
        {"", "a@b.c", "127.0.0.1:1", "No recipients listed to receive email."},
        {" , ", "a@b.c", "127.0.0.1:1", "No recipients listed to receive email."},
        {"x@y.z>\r\nRCPT TO:<v@w.x", "a@b.c", "127.0.0.1:1",
         "Invalid email address to send to: x@y.z>\r\nRCPT TO:<v@w.x"},
        {"x@y.z", "a b", "127.0.0.1:1", "Please enter a valid reply-to email address."},
        {"x@y.z", "a@b.c", " ", "If you choose SMTP you must enter a server."},
    };
    for (const LCase& one : kCases) {
        EmailSMTPSendProcess job;
        job.message.to = one.to, job.account.sender = one.sender, job.account.server = one.server;
        LWatchedProcess process;
        EXPECT_FALSE(Process(process, job));
        EXPECT_EQ(job.ErrorText(), one.error);
        EXPECT_FALSE(job.failures[0].isTemporary);
    }
}

TEST(SmtpDialogue, AServerWithoutTlsIsUsedWithoutIt) {
    LMailScript server({GoodAuthReplies()});
    for (const bool mustVerify : {false, true}) {
        auto job = JobFor(server, true);
        job.account.useTls = true;
        job.account.verifyTls = mustVerify;
        LWatchedProcess process;
        EXPECT_EQ(Process(process, job), !mustVerify) << job.ErrorText();
        EXPECT_EQ(job.ErrorText(),
                  mustVerify ? "Could not create secure connection to server." : "");
    }
}

TEST(SmtpDialogue, ABrokenHandshakeIsToldOf) {
    for (const char* reply : {"220 go", "220 go\r\n250 smuggled", "454 not now"}) {
        LMailScript server({{"220 ready", "250-hello\r\n250 STARTTLS", reply, "junk", "junk"}});
        auto job = JobFor(server, true);
        job.account.useTls = true;
        job.limits.replyMs = 500;
        LWatchedProcess process;
        EXPECT_FALSE(Process(process, job));
        EXPECT_EQ(job.ErrorText(), "Could not create secure connection to server.") << reply;
    }
}

// A program of that name that lies alone on the PATH.
class MailPrograms : public testing::Test {
protected:
    void Install(const std::string& name, const std::string& script) const {
        home_.WriteFile(name, "#!/bin/sh\n" + script);
        ASSERT_EQ(::chmod(home_.File(name).c_str(), 0755), 0);
    }
    LTempHome home_;
    LScopedEnvironment path_{"PATH", home_.Path() + ":/usr/bin:/bin"};
    EmailSMTPSendProcess job_;
    LWatchedProcess process_;
};

TEST_F(MailPrograms, SendMailGetsTheMessageAsItIs) {
    Install(
        "sendmail",
        "echo \"$@\" >\"$HOME/arguments\"\ncat >\"$HOME/mail\"\nexit $(cat \"$HOME/status\")\n");
    job_.account.mode = LSendMode::kSendMail;
    job_.account.sender = "ann@example.com";
    job_.message.to = "-x@example.com, Bob <bob@example.com>";
    job_.message.body = "one\n.\n";
    for (const auto& [status, isTemporary] : {std::pair{0, false}, {75, true}, {67, false}}) {
        home_.WriteFile("status", std::to_string(status));
        EXPECT_EQ(Process(process_, job_), status == 0) << job_.ErrorText();
        EXPECT_EQ(!job_.failures.empty() && job_.failures[0].isTemporary, isTemporary);
        EXPECT_EQ(home_.ReadFile("arguments"),
                  "-i -f ann@example.com -- -x@example.com bob@example.com\n");
        EXPECT_TRUE(home_.ReadFile("mail").ends_with("\n\none\n.\n")) << home_.ReadFile("mail");
    }
}

TEST_F(MailPrograms, TheDesktopMailIsGivenItsParts) {
    Install("xdg-email", "printf '%s|' \"$@\" >\"$HOME/arguments\"\n");
    home_.WriteFile("order.pdf", "x");
    job_.account.mode = LSendMode::kDesktopMail;
    job_.message.to = "-x@example.com, a+b@example.com";
    job_.message.subject = "$(id)";
    job_.message.attachments = {home_.File("order.pdf")};
    EXPECT_TRUE(Process(process_, job_)) << job_.ErrorText();
    EXPECT_EQ(home_.ReadFile("arguments"), "--utf8|--subject|$(id)|--attach|" +
                                               home_.File("order.pdf") +
                                               "|mailto:-x@example.com,a%2Bb@example.com|");
}

}  // namespace
