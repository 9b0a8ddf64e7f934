// The SMTP dialogue (RFC 5321, RFC 3207, AUTH LOGIN) with one server.
#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "service/email/EmailSMTPSendProcess.h"
#include "service/email/LMailConnection.h"

// Where to, from whom and for whom.
struct LSmtpTask {
    std::string server;  // its name, for TLS and for messages
    std::string sender;  // the bare address
    std::vector<std::string> recipients;
    std::string localHost;
    std::string_view text;  // ready for the wire
};

// One message over one connection. One thread at a time.
class LSmtpDialogue {
public:
    LSmtpDialogue(LProcessInterface& process, EmailSMTPSendProcess& job, const LSmtpTask& task)
        : process_(process), job_(job), task_(task), connection_(process) {}

    // Looks the host up and connects; the greeting is yet to come. `Failure` tells after false.
    [[nodiscard]] bool Connect(const std::string& host, uint16_t port);
    // The server's greeting. False: another server may be tried.
    [[nodiscard]] bool ReadGreeting();
    // Greeting, TLS and authentication.
    [[nodiscard]] bool LogIn();
    [[nodiscard]] bool SendMessage();
    void Quit();

    const LSendFailure& Failure() const { return failure_; }

private:
    bool Command(std::string_view text);  // and its reply; false: the failure is set
    bool Greet();
    bool SendGreeting();
    bool SecureConnection();
    bool ReportCertificate();
    bool Authenticate();
    bool AuthenticateWithPassword();
    bool SendSender();
    bool SendRecipients();
    bool SendText();
    bool RefusedText();

    bool Fail(std::string text);  // by the last reply
    bool FailGeneral();           // by the last reply, or by the connection when there was none
    bool FailToConnect(bool isTemporary);

    LProcessInterface& process_;
    EmailSMTPSendProcess& job_;
    const LSmtpTask& task_;
    LMailConnection connection_;
    LMailReply reply_;
    bool hasReply_ = false;  // of the last command
    bool offersTls_ = false;
    LSendFailure failure_;
};
