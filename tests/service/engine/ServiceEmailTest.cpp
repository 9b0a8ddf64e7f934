// The e-mails that the service sends by itself, from the program as it is to a mail program.
#include <gtest/gtest.h>
#include <netinet/in.h>
#include <sys/socket.h>
#include <sys/stat.h>

#include <csignal>
#include <filesystem>

#include "datastore/LProfile.h"
#include "datastore/UserSettings.h"
#include "platform/FileIo.h"
#include "platform/LFileDescriptor.h"
#include "tests/service/engine/LServiceProcess.h"

namespace {

class ServiceEmail : public testing::Test {
protected:
    ServiceEmail() {
        home_.WriteFile("sendmail",
                        "#!/bin/sh\ncat >\"$HOME/new\" && mv \"$HOME/new\" \"$HOME/m$$\"\n");
        EXPECT_EQ(::chmod(home_.File("sendmail").c_str(), 0755), 0);
        EXPECT_TRUE(LUserSettingSetString("Service", "Delay", "0"));
        EXPECT_TRUE(LUserSettingSetString("Email", "UseSendMail", "1"));
        EXPECT_TRUE(LUserSettingSetString("Email", "ReplyToEmail", "shop@example.com"));
    }
    void SetPort() {
        const LFileDescriptor socket(::socket(AF_INET, SOCK_STREAM, 0));
        address_.sin_family = AF_INET;
        address_.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
        socklen_t size = sizeof address_;
        auto* const any = reinterpret_cast<sockaddr*>(&address_);
        ASSERT_EQ(::bind(socket.Get(), any, size), 0);
        ASSERT_EQ(::getsockname(socket.Get(), any, &size), 0);
        ASSERT_TRUE(
            LUserSettingSetString("WebServer", "Port", std::to_string(ntohs(address_.sin_port))));
    }
    // The answer to a submitted dialog; empty while nobody serves.
    std::string Submit(const std::string& page, const std::string& fields) const {
        const LFileDescriptor socket(::socket(AF_INET, SOCK_STREAM, 0));
        const std::string body = fields + "&submit=  OK  ";
        std::string answer;
        if (::connect(socket.Get(), reinterpret_cast<const sockaddr*>(&address_),
                      sizeof address_) == 0 &&
            WriteAll(socket.Get(), "POST /" + page +
                                       " HTTP/1.1\r\nHost: localhost\r\nConnection: close\r\n"
                                       "Content-Length: " +
                                       std::to_string(body.size()) + "\r\n\r\n" + body)) {
            (void)ReadAll(socket.Get(), answer);
        }
        return answer;
    }
    // The mail that holds `text`; empty when none does.
    std::string MailWith(const std::string& text) const {
        for (const auto& file : std::filesystem::directory_iterator(home_.Path())) {
            if (!file.path().filename().string().starts_with('m')) continue;
            const std::string mail = ReadFile(file.path().string()).value_or("");
            if (mail.find(text) != std::string::npos) return mail;
        }
        return {};
    }

    LTempHome home_;
    LScopedEnvironment path_{"PATH", home_.Path() + ":/usr/bin:/bin"};
    sockaddr_in address_{};
};

TEST_F(ServiceEmail, LowStockAndALostPasswordAreMailed) {
    LServiceProcess installer(home_, {"-installer", "--admin", "boss@example.com", "--web", "on"});
    ASSERT_EQ(installer.WaitFor(60000), 0) << installer.Errors();
    SetPort();
    const LProfile business;
    LRecord item;
    business.Items().CreateNewRecord(item);
    item.SetString("Name", "Bolt");
    item.SetString("LocationsAndQuantities", "\"1/1/5/9\",");
    item.SetString("CheckWaringEmail", "1");
    item.SetString("SendWaringEmail", "1");
    ASSERT_TRUE(item.Flush());

    LServiceProcess service(home_, {"-service"});
    EXPECT_TRUE(Becomes([this] { return !MailWith("To: shop@example.com").empty(); }))
        << service.Errors();
    EXPECT_NE(MailWith("item Bolt quantity goes down to warning.").find("Location: Main\n"),
              std::string::npos);

    std::string answer;
    ASSERT_TRUE(Becomes([&] {
        answer = Submit("lostpassword", "101=boss%40example.com");
        return !answer.empty();
    }));
    EXPECT_NE(answer.find("'lostpasswordsent'"), std::string::npos) << answer;
    std::string mail;
    ASSERT_TRUE(Becomes([&] { return !(mail = MailWith("To: boss@example.com")).empty(); }))
        << service.Errors();
    EXPECT_NE(mail.find("Subject: Quillmarsh Stock Manager: Logon Details\n"), std::string::npos);
    const size_t password = mail.find("    Password: ") + 14;
    answer = Submit("logon", "101=boss%40example.com&102=" + mail.substr(password, 8));
    EXPECT_NE(answer.find("window.location = 'main'"), std::string::npos) << mail << answer;
    EXPECT_EQ(service.Errors().find(mail.substr(password, 8)), std::string::npos)
        << "the log must not tell it";
    service.Signal(SIGTERM);
    EXPECT_EQ(service.WaitFor(12000), 0);
}

}  // namespace
