// Sending one message: what is to be sent and how, and what came of it.
#pragma once

#include <cstdint>
#include <functional>
#include <string>
#include <vector>

#include "platform/LUserInterface.h"
#include "service/email/EmailLookups.h"
#include "service/email/EmailMessage.h"
#include "service/email/EmailSettings.h"

enum class LSendMode { kServer, kDirect, kSendMail, kDesktopMail };

// The patience of the dialogue and the ports it tries, in milliseconds.
struct LSmtpLimits {
    int connectMs = 60000;
    int replyMs = 40000;
    int commandMs = 20000;
    uint16_t submissionPort = 587;  // of a mail server
    uint16_t relayPort = 25;        // tried after the one above, and of mail exchangers
};

// How mail goes out; the message's fields are not touched by it.
struct LSmtpAccount {
    LSendMode mode = LSendMode::kServer;
    std::string server;  // with its port, if it has one
    std::string sender;  // "ReplyToEmail"; may be empty, of several the first one sends
    bool useTls = false;
    bool verifyTls = false;  // a certificate that cannot be verified stops the sending
    bool authenticate = false;
    std::string userName, password;
};
// A password goes to the user's own server only, never to a stranger's exchanger.
LSmtpAccount SmtpAccountOf(const LEmailSettings& settings);

// Why some recipients did not get the message.
struct LSendFailure {
    std::string recipients;  // a list of addresses
    std::string title;       // may be empty
    std::string text;
    bool isTemporary = false;  // worth another try later
};

class EmailSMTPSendProcess {
public:
    LSmtpAccount account;
    LEmailMessage message;  // `to` are the recipients; `from` is filled from the account if empty
    // The addresses still to be sent to, when the message reached some of its recipients before;
    // otherwise all of `message.to`.
    std::vector<std::string> recipients;

    LSmtpLimits limits;
    // Where the exchangers of a domain are asked for; empty: the system's name servers.
    std::function<LExchangers(const std::string& domain)> findExchangers;

    // The results of Process.
    std::vector<LSendFailure> failures;
    std::string certificateProblem;  // of the last server; empty when all is well

    // Of the first failure.
    std::string ErrorTitle() const { return failures.empty() ? "" : failures.front().title; }
    std::string ErrorText() const { return failures.empty() ? "" : failures.front().text; }
};

// The dialogue of sending up to the authentication, with nothing sent.
class EmailSMTPVerifyProcess : public EmailSMTPSendProcess {};

// Sends the message; true when all recipients got it. Tells where it stands: progress 0.1 when
// connected, 0.95 when the message was accepted. Any thread; a cancelled process ends within a
// tenth of a second.
bool Process(LProcessInterface& process, EmailSMTPSendProcess& job);
bool Process(LProcessInterface& process, EmailSMTPVerifyProcess& job);
