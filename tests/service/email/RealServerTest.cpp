// Against a mail server that others wrote, with STARTTLS and passwords.
#include <gtest/gtest.h>
#include <unistd.h>

#include <chrono>
#include <cstdlib>
#include <nlohmann/json.hpp>
#include <thread>

#include "platform/FileIo.h"
#include "service/email/EmailSMTPSendProcess.h"
#include "service/email/MimeEncoding.h"
#include "tests/service/email/LMailScript.h"
#include "tests/support/LChildProcess.h"
#include "tests/support/LTempFolder.h"

namespace {

bool Runs(const std::string& command) {
    return std::system((command + " >/dev/null 2>&1").c_str()) == 0;
}

// The interpreter that has the server's module; empty when none does.
std::string FindPython() {
    for (const char* python : {"/usr/bin/python3", "python3"}) {
        if (Runs(std::string(python) + " -c 'import aiosmtpd'")) return python;
    }
    return {};
}

class RealServer : public testing::Test {
protected:
    void SetUp() override {
        const std::string python = FindPython();
        if (python.empty() || !Runs("openssl version")) {
            GTEST_SKIP() << "python3-aiosmtpd or openssl is not installed: no real mail server";
        }
        ASSERT_TRUE(
            Runs("openssl req -x509 -newkey rsa:2048 -nodes -days 2 -subj /CN=localhost "
                 "-addext subjectAltName=DNS:localhost -keyout " +
                 folder_.File("key.pem") + " -out " + folder_.File("cert.pem")));
        server_.emplace([&] {
            return ::execlp(python.c_str(), python.c_str(), MAIL_SERVER, folder_.Path().c_str(),
                            nullptr);
        });
        for (int i = 0; i < 600 && !FileExists(folder_.File("port")); ++i) {
            std::this_thread::sleep_for(std::chrono::milliseconds(50));
        }
        ASSERT_TRUE(FileExists(folder_.File("port"))) << "the server does not come up";
    }

    EmailSMTPSendProcess Job() const {
        EmailSMTPSendProcess job;
        job.account.server = "localhost:" + folder_.ReadFile("port");
        job.account.sender = "J\u00fcrgen \"J\" B\u00f6hm <ann@example.com>";
        job.account.useTls = job.account.authenticate = true;
        job.account.userName = "ann";
        job.account.password = "secret";
        job.message.to = "bob@example.com, \"M\u00fcller, Eva\" <eva@example.com>";
        return job;
    }
    nlohmann::json Kept(int number) const {
        return nlohmann::json::parse(folder_.ReadFile(std::to_string(number) + ".json"));
    }

    LTempFolder folder_;
    std::optional<LChildProcess> server_;
    LWatchedProcess process_;
};

TEST_F(RealServer, AMessageArrivesAsItWasWritten) {
    const std::string bodies[] = {
        "plain\r\n.\r\n..two\r\nFrom me\r\n",
        "bare\nfeeds \n\n.\n",
        "long " + std::string(5000, 'x') + " line = \u00fc\n",
        "\u0421\u043a\u043b\u0430\u0434 \u043f\u0443\u0441\u0442\n" + std::string(300, '\xD0'),
    };
    for (int i = 0; i < 4; ++i) {
        auto job = Job();
        job.message.subject = "Gr\u00fc\u00dfe aus dem Lager, " + std::string(60, 'y') + " \u00fc";
        job.message.body = bodies[i];
        ASSERT_TRUE(Process(process_, job)) << job.ErrorText();
        EXPECT_EQ(job.certificateProblem, "self-signed certificate");
        const auto kept = Kept(i + 1);
        EXPECT_EQ(kept["secure"], "True");
        EXPECT_EQ(kept["sender"], "ann@example.com");
        EXPECT_EQ(kept["recipients"], "bob@example.com,eva@example.com");
        EXPECT_EQ(kept["from"], "\"J\u00fcrgen \\\"J\\\" B\u00f6hm\" <ann@example.com>");
        EXPECT_EQ(kept["to"], "bob@example.com, \"M\u00fcller, Eva\" <eva@example.com>");
        EXPECT_EQ(kept["subject"], job.message.subject);
        EXPECT_EQ(kept["headers"],
                  "MIME-Version,From,To,Subject,Date,X-Mailer,Message-ID,"
                  "Content-Transfer-Encoding,Content-Type");
        if (i == 3) continue;  // the reader has another sign for bytes that are no UTF-8
        std::string body = bodies[i], got = kept["body"];
        std::erase(body, '\r');
        std::erase(got, '\r');
        EXPECT_EQ(got, body);
    }
}

TEST_F(RealServer, AttachmentsArriveWithTheirNames) {
    std::string bytes;
    for (int i = 0; i < 100000; ++i) bytes += static_cast<char>(i * 7 + i / 256);
    const std::string names[] = {"order 1.pdf", "B\u00e4ume \"neu\" 50%.csv", "empty"};
    auto job = Job();
    job.message.subject = "Order";
    job.message.body = "See there.";
    for (const std::string& name : names) {
        folder_.WriteFile("files/" + name, name == "empty" ? "" : bytes);
        job.message.attachments.push_back(folder_.File("files/" + name));
    }
    ASSERT_TRUE(Process(process_, job)) << job.ErrorText();
    const auto kept = Kept(1);
    EXPECT_EQ(kept["body"], "See there.");
    EXPECT_EQ(kept[names[0]], EncodeBase64(bytes));
    EXPECT_EQ(kept[names[1]], EncodeBase64(bytes));
    EXPECT_EQ(kept[names[2]], "");
}

TEST_F(RealServer, TheCertificateIsCheckedWhereItMatters) {
    struct LCase {
        const char *store, *host;
        bool mustVerify, isSent;
    };
    const std::string own = folder_.File("cert.pem");
    const LCase kCases[] = {
        {"/dev/null", "localhost", false, true},
        {"/dev/null", "localhost", true, false},
        {own.c_str(), "localhost", true, true},
        {own.c_str(), "127.0.0.1", true, false},  // not what it was made for
    };
    for (const LCase& one : kCases) {
        const LScopedEnvironment store("SSL_CERT_FILE", one.store);
        auto job = Job();
        job.account.server = one.host + (":" + folder_.ReadFile("port"));
        job.account.verifyTls = one.mustVerify;
        EXPECT_EQ(Process(process_, job), one.isSent) << one.store << " " << one.host;
        EXPECT_EQ(job.ErrorText(),
                  one.isSent ? "" : "Could not create secure connection to server.");
    }
}

TEST_F(RealServer, TheGreetingThatIsWantedAfterTlsIsGivenWithoutAPasswordToo) {
    auto job = Job();
    job.account.authenticate = false;
    EXPECT_TRUE(Process(process_, job)) << job.ErrorText();
    EXPECT_EQ(Kept(1)["secure"], "True");
}

TEST_F(RealServer, AWrongPasswordAndAMissingTlsAreToldApart) {
    auto wrong = Job();
    wrong.account.password = "guess";
    EXPECT_FALSE(Process(process_, wrong));
    EXPECT_TRUE(wrong.ErrorText().starts_with(
        "Email authentication username or password not accepted (334): "))
        << wrong.ErrorText();
    auto plain = Job();
    plain.account.useTls = false;
    EXPECT_FALSE(Process(process_, plain));
    EXPECT_EQ(plain.ErrorText(),
              "Encryption required for requested Email server. Please check your Email Settings.");
    EmailSMTPVerifyProcess verify;
    static_cast<EmailSMTPSendProcess&>(verify) = Job();
    EXPECT_TRUE(Process(process_, verify)) << verify.ErrorText();
    EXPECT_FALSE(FileExists(folder_.File("1.json"))) << "nothing was sent";
}

}  // namespace
