#include "service/email/SmtpDialogue.h"

#include <algorithm>

#include "service/email/EmailAddress.h"
#include "service/email/MimeEncoding.h"

namespace {

constexpr int kQuitMs = 2000;  // a courtesy: the message has been accepted
constexpr int kLastWordMs = 2000;
constexpr char kNotSecure[] = "Could not create secure connection to server.";

enum LReplyCode {
    kReady = 220,
    kAuthenticated = 235,
    kOk = 250,
    kWillForward = 251,
    kGoOn = 334,
    kSendText = 354,
    kBadSequence = 503,
    kNoSuchParameter = 504,
    kEncryptionRequired = 530,
    kMailboxUnavailable = 550,
    kTooLarge = 552,
    kRejected = 554
};

bool IsTemporaryCode(int code) { return code >= 400 && code < 500; }

std::string Quoted(std::string_view text) { return "\"" + std::string(text) + "\""; }

}  // namespace

bool LSmtpDialogue::Fail(std::string text) {
    failure_ = {JoinAddresses(task_.recipients), {}, std::move(text), IsTemporaryCode(reply_.code)};
    connection_.Close();
    return false;
}

bool LSmtpDialogue::FailGeneral() {
    const std::string reason = hasReply_ ? reply_.text : connection_.Problem();
    const int code = hasReply_ ? reply_.code : 0;
    Fail(
        "Error while trying to send email. Email address may be wrong or your SMTP server may "
        "require a username or password. Please check address again and see Email Settings. (" +
        std::to_string(code) + "): " + reason);
    failure_.isTemporary = !hasReply_ || IsTemporaryCode(code);
    return false;
}

bool LSmtpDialogue::FailToConnect(bool isTemporary) {
    Fail("Unable to connect to mail server " + Quoted(task_.server) + " when sending an email to " +
         Quoted(JoinAddresses(task_.recipients)) + ".");
    failure_.title = "Mail server not responding";
    failure_.isTemporary = isTemporary;
    return false;
}

bool LSmtpDialogue::Connect(const std::string& host, uint16_t port) {
    process_.SetStatus("Connecting to server");
    const LDeadline deadline(job_.limits.connectMs);
    std::vector<LNetworkAddress> addresses;
    const LLookupResult found =
        ResolveHost(host, port, process_, deadline.RemainingMs(), addresses);
    if (found != LLookupResult::kFound) return FailToConnect(found != LLookupResult::kNone);
    if (!connection_.Connect(addresses, deadline.RemainingMs())) return FailToConnect(true);
    process_.SetProgress(0.1);
    process_.SetStatus("Connected to server");
    return true;
}

bool LSmtpDialogue::ReadGreeting() {
    hasReply_ = connection_.ReceiveReply(reply_, job_.limits.replyMs);
    if (hasReply_ && reply_.code == kReady) return true;
    return FailToConnect(!hasReply_ || IsTemporaryCode(reply_.code));
}

bool LSmtpDialogue::Command(std::string_view text) {
    hasReply_ = false;
    reply_ = {};
    hasReply_ = connection_.Send(std::string(text) + "\r\n", job_.limits.commandMs) &&
                connection_.ReceiveReply(reply_, job_.limits.replyMs);
    return hasReply_ || FailGeneral();
}

bool LSmtpDialogue::SendGreeting() {
    return Command((job_.account.userName.empty() ? "HELO " : "EHLO ") + task_.localHost);
}

bool LSmtpDialogue::Greet() {
    if (!SendGreeting()) return false;
    offersTls_ = reply_.offersStartTls;
    if (reply_.code == kOk) return true;
    const std::string recipients = JoinAddresses(task_.recipients);
    if (reply_.code == kNoSuchParameter) {
        return Fail(
            "Mail host server error (HELO not accepted, error code 504) for destination email " +
            recipients + " - usually this means the email address is not valid.");
    }
    return Fail("Mail host server error (HELO not accepted): " + std::to_string(reply_.code) +
                " emailto: " + recipients);
}

// The dialogue goes on without a second greeting. A server that wants one says 503 to the next
// command, which is then given again after it.
bool LSmtpDialogue::SecureConnection() {
    if (!job_.account.useTls) return true;
    if (!offersTls_) return !job_.account.verifyTls || Fail(kNotSecure);
    if (!Command("STARTTLS")) return false;
    if (reply_.code != kReady) return Fail(kNotSecure);
    if (!connection_.StartTls(task_.server, job_.limits.replyMs)) {
        process_.SetStatus(connection_.Problem());
        Fail(kNotSecure);
        failure_.isTemporary = true;
        return false;
    }
    return ReportCertificate();
}

bool LSmtpDialogue::ReportCertificate() {
    job_.certificateProblem = connection_.CertificateProblem();
    if (job_.certificateProblem.empty()) return true;
    process_.SetStatus("The certificate of " + task_.server +
                       " could not be verified: " + job_.certificateProblem);
    return !job_.account.verifyTls || Fail(kNotSecure);
}

bool LSmtpDialogue::Authenticate() {
    if (!job_.account.authenticate || job_.account.userName.empty()) return true;
    if (!Command("AUTH LOGIN")) return false;
    if (reply_.code == kBadSequence) {
        if (!SendGreeting()) return false;
        if (reply_.code != kOk) return FailGeneral();
        if (!Command("AUTH LOGIN")) return false;
    }
    if (reply_.code == kEncryptionRequired) {
        return Fail(
            "Encryption required for requested Email server. Please check your Email Settings.");
    }
    return reply_.code == kGoOn ? AuthenticateWithPassword() : FailGeneral();
}

bool LSmtpDialogue::AuthenticateWithPassword() {
    if (!Command(EncodeBase64(job_.account.userName))) return false;
    if (reply_.code == kGoOn && !Command(EncodeBase64(job_.account.password))) return false;
    if (reply_.code == kAuthenticated) return true;
    // The code of the step before is what has always been shown here.
    return Fail("Email authentication username or password not accepted (334): " + reply_.text);
}

bool LSmtpDialogue::LogIn() { return Greet() && SecureConnection() && Authenticate(); }

bool LSmtpDialogue::SendSender() {
    const std::string command = "MAIL FROM:<" + task_.sender + ">";
    if (!Command(command)) return false;
    if (reply_.code == kBadSequence && connection_.IsSecure()) {
        if (!SendGreeting()) return false;
        if (reply_.code == kOk && !Command(command)) return false;
    }
    if (reply_.code == kOk) return true;
    return Fail(
        "Mail host server error (MAIL FROM not accepted). Please check your Email Settings. " +
        task_.sender + " - (" + std::to_string(reply_.code) + " - " + reply_.text + ")");
}

bool LSmtpDialogue::SendRecipients() {
    for (const std::string& recipient : task_.recipients) {
        if (!Command("RCPT TO:<" + recipient + ">")) return false;
        if (reply_.code != kOk && reply_.code != kWillForward) return FailGeneral();
    }
    return true;
}

bool LSmtpDialogue::RefusedText() {
    const std::string where =
        " emailto: " + JoinAddresses(task_.recipients) + " mailhost: " + task_.server;
    switch (reply_.code) {
        case kMailboxUnavailable:
            return Fail(
                "The recipient's email server does not allow email to be received in this manner.  "
                "Please use an SMTP account for sending email to this address." +
                where + " error: " + reply_.text);
        case kRejected:
            return Fail(
                "The recipient's email server rejected this email because of an unspecified "
                "reason.  Try using an SMTP account for sending email to this address.");
        case kTooLarge:
            return Fail("The email exceeds the size limits set for this account.");
        default:
            return Fail("Mail host server error (data terminator not accepted)" + where +
                        " error: " + std::to_string(reply_.code));
    }
}

bool LSmtpDialogue::SendText() {
    if (!Command("DATA")) return false;
    if (reply_.code != kSendText) return Fail("Mail host server error (DATA not accepted)");
    process_.SetStatus("Sending Message Text");
    hasReply_ = false;
    reply_ = {};
    const bool isWhole = connection_.Send(task_.text, job_.limits.commandMs);
    // A server that will have no more of it says so and hangs up in the middle.
    hasReply_ = connection_.ReceiveReply(
        reply_, isWhole ? job_.limits.replyMs : std::min(job_.limits.replyMs, kLastWordMs));
    if (!hasReply_ || (!isWhole && reply_.code == kOk)) return FailGeneral();
    return reply_.code == kOk || RefusedText();
}

bool LSmtpDialogue::SendMessage() {
    if (!SendSender() || !SendRecipients() || !SendText()) return false;
    process_.SetProgress(0.95);
    process_.SetStatus("Email sent");
    return true;
}

void LSmtpDialogue::Quit() {
    if (connection_.Send("QUIT\r\n", std::min(job_.limits.commandMs, kQuitMs))) {
        (void)connection_.ReceiveReply(reply_, std::min(job_.limits.replyMs, kQuitMs));
    }
    connection_.Close();
}
