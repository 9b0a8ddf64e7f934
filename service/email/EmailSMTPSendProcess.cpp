#include "service/email/EmailSMTPSendProcess.h"

#include <ctime>

#include "platform/NetworkAddresses.h"
#include "service/email/EmailAddress.h"
#include "service/email/MailPrograms.h"
#include "service/email/SmtpDialogue.h"

namespace {

// One run of Process.
class LSendRun {
public:
    LSendRun(LProcessInterface& process, EmailSMTPSendProcess& job)
        : process_(process), job_(job) {}

    bool Send();
    bool Verify();

private:
    bool Prepare();
    bool TakeRecipients();
    bool TakeSender();
    bool BuildText();
    void SendByServer(const LMailServer& server);
    void SendDirect();
    void SendDirectTo(const std::string& recipient);
    void HandOver(LHandOver result, std::string problem);
    bool ConnectToServer(LSmtpDialogue& dialogue, const LMailServer& server);
    bool ConnectToExchanger(LSmtpDialogue& dialogue, const std::vector<std::string>& hosts);
    bool VerifyWay();
    LExchangers FindExchangers(const std::string& domain);
    LMailServer Server() const;
    bool IsDialogue() const {
        return job_.account.mode == LSendMode::kServer || job_.account.mode == LSendMode::kDirect;
    }

    bool Fail(std::string text, bool isTemporary = false) {
        return Fail({JoinAddresses(task_.recipients), {}, std::move(text), isTemporary});
    }
    bool Fail(LSendFailure failure) {
        job_.failures.push_back(std::move(failure));
        return false;
    }

    LProcessInterface& process_;
    EmailSMTPSendProcess& job_;
    LSmtpTask task_;
    std::string text_;  // ready for the wire, or for another program
    bool verifyOnly_ = false;
};

bool LSendRun::TakeRecipients() {
    const std::string list =
        job_.recipients.empty() ? job_.message.to : JoinAddresses(job_.recipients);
    for (LEmailAddressListIterator it(list); it.IsValid(); it.Next()) {
        const std::string address = AddressWithAsciiDomain(it.Current().address);
        if (IsAddressSendable(address)) {
            task_.recipients.push_back(address);
        } else if (job_.account.mode == LSendMode::kDirect) {
            Fail({address, {}, "Invalid email address to send to: " + address, false});
        } else {
            task_.recipients = {list};
            return Fail("Invalid email address to send to: " + address);
        }
    }
    if (!task_.recipients.empty()) return true;
    return !job_.failures.empty() ? false : Fail("No recipients listed to receive email.");
}

bool LSendRun::TakeSender() {
    const LEmailAddressListIterator first(job_.account.sender);
    task_.sender = first.IsValid() ? AddressWithAsciiDomain(first.Current().address)
                                   : "Quillmarsh@" + task_.localHost;
    if (!IsAddressSendable(task_.sender)) {
        return Fail("Please enter a valid reply-to email address.");
    }
    if (job_.message.from.empty()) {
        job_.message.from = first.IsValid() ? job_.account.sender : task_.sender;
    }
    return true;
}

bool LSendRun::BuildText() {
    LEmailMessage& message = job_.message;
    if (message.date == 0) message.date = std::time(nullptr);
    if (message.id.empty()) message.id = NewMessageId(DomainOfAddress(task_.sender));
    std::string problem;
    auto text = BuildEmailMessage(message, problem);
    if (!text) return Fail(problem);
    text_ = IsDialogue() ? WithDotsDoubled(*text) : std::move(*text);
    task_.text = text_;
    return true;
}

bool LSendRun::Prepare() {
    if (!TakeRecipients()) return false;
    // Other programs keep what they are handed until there is one.
    if (IsDialogue() && !IsNetworkUp()) return Fail("The network is not available.", true);
    task_.localHost = LocalHostName(process_);
    return TakeSender();
}

LMailServer LSendRun::Server() const {
    return ParseMailServer(job_.account.server, job_.limits.submissionPort);
}

bool LSendRun::ConnectToServer(LSmtpDialogue& dialogue, const LMailServer& server) {
    if (dialogue.Connect(server.host, server.port)) return true;
    return server.port == job_.limits.submissionPort && !process_.IsCancelled() &&
           dialogue.Connect(server.host, job_.limits.relayPort);
}

void LSendRun::SendByServer(const LMailServer& server) {
    task_.server = server.host;
    if (server.host.empty()) {
        Fail({JoinAddresses(task_.recipients), "SMTP Server Address Required",
              "If you choose SMTP you must enter a server.", false});
        return;
    }
    if (!verifyOnly_) process_.SetStatus("To: " + JoinAddresses(task_.recipients));
    LSmtpDialogue dialogue(process_, job_, task_);
    const bool sent = ConnectToServer(dialogue, server) && dialogue.ReadGreeting() &&
                      dialogue.LogIn() && (verifyOnly_ || dialogue.SendMessage());
    if (!sent) {
        Fail(dialogue.Failure());
        return;
    }
    dialogue.Quit();
}

// In the order of preference, until one answers as a mail server does. When none does, the failure
// is final only if it is with all of them.
bool LSendRun::ConnectToExchanger(LSmtpDialogue& dialogue, const std::vector<std::string>& hosts) {
    LSendFailure failure;
    for (const std::string& host : hosts) {
        task_.server = host;
        if (dialogue.Connect(host, job_.limits.relayPort) && dialogue.ReadGreeting()) return true;
        const bool isTemporary = failure.isTemporary || dialogue.Failure().isTemporary;
        failure = dialogue.Failure();
        failure.isTemporary = isTemporary;
        if (process_.IsCancelled()) break;
    }
    return Fail(std::move(failure));
}

LExchangers LSendRun::FindExchangers(const std::string& domain) {
    if (job_.findExchangers) return job_.findExchangers(domain);
    return FindMailExchangers(domain, process_, job_.limits.connectMs);
}

void LSendRun::SendDirectTo(const std::string& recipient) {
    task_.recipients = {recipient};
    const std::string domain(DomainOfAddress(recipient));
    if (domain.empty()) {
        Fail("Invalid email address to send to: " + recipient);
        return;
    }
    if (!verifyOnly_) process_.SetStatus("To: " + recipient);
    const LExchangers exchangers = FindExchangers(domain);
    if (exchangers.hosts.empty()) {
        Fail({recipient, "Mail server not responding",
              "Unable to connect to mail server \"" + domain + "\" when sending an email to \"" +
                  recipient + "\".",
              exchangers.result != LLookupResult::kNone});
        return;
    }
    LSmtpDialogue dialogue(process_, job_, task_);
    if (!ConnectToExchanger(dialogue, exchangers.hosts)) return;
    if (!dialogue.LogIn() || (!verifyOnly_ && !dialogue.SendMessage())) {
        Fail(dialogue.Failure());
        return;
    }
    dialogue.Quit();
}

// Each recipient over a connection of its own; the failure of one does not hold up the others.
void LSendRun::SendDirect() {
    const std::vector<std::string> recipients = task_.recipients;
    for (const std::string& recipient : recipients) SendDirectTo(recipient);
}

void LSendRun::HandOver(LHandOver result, std::string problem) {
    if (result != LHandOver::kDone) {
        Fail(std::move(problem), result == LHandOver::kTemporary);
        return;
    }
    process_.SetProgress(0.95);
    process_.SetStatus("Email sent");
}

bool LSendRun::Send() {
    if (!Prepare() || !BuildText()) return false;
    std::string problem;
    switch (job_.account.mode) {
        case LSendMode::kServer:
            SendByServer(Server());
            break;
        case LSendMode::kDirect:
            SendDirect();
            break;
        case LSendMode::kSendMail:
            process_.SetStatus("To: " + JoinAddresses(task_.recipients));
            HandOver(HandToSendMail(process_, task_.sender, task_.recipients, text_, problem),
                     problem);
            break;
        case LSendMode::kDesktopMail:
            process_.SetStatus("To: " + JoinAddresses(task_.recipients));
            HandOver(HandToDesktopMail(process_, job_.message, task_.recipients, problem), problem);
            break;
    }
    return job_.failures.empty();
}

bool LSendRun::VerifyWay() {
    switch (job_.account.mode) {
        case LSendMode::kServer:
            SendByServer(Server());
            break;
        case LSendMode::kDirect:
            SendDirect();
            break;
        case LSendMode::kSendMail:
            return HasSendMail() || Fail("The program sendmail is not installed.");
        case LSendMode::kDesktopMail:
            return HasDesktopMail() || Fail("The program xdg-email is not installed.");
    }
    return job_.failures.empty();
}

bool LSendRun::Verify() {
    verifyOnly_ = true;
    return (!IsDialogue() || Prepare()) && VerifyWay();
}

}  // namespace

LSmtpAccount SmtpAccountOf(const LEmailSettings& settings) {
    LSmtpAccount account;
    if (!settings.useSmtpHost) {
        account.mode = settings.sendDirect     ? LSendMode::kDirect
                       : settings.useSendMail  ? LSendMode::kSendMail
                       : settings.useAppleMail ? LSendMode::kDesktopMail
                                               : LSendMode::kServer;
    }
    account.server = settings.mailSmtpHost;
    account.sender = settings.replyToEmail;
    account.useTls = settings.useSsl;
    account.verifyTls = settings.verifySsl;
    account.authenticate = settings.smtpAuthOn && account.mode == LSendMode::kServer;
    account.userName = settings.smtpUserName;
    account.password = settings.smtpPassword;
    return account;
}

bool Process(LProcessInterface& process, EmailSMTPSendProcess& job) {
    job.failures.clear();
    job.certificateProblem.clear();
    return LSendRun(process, job).Send();
}

bool Process(LProcessInterface& process, EmailSMTPVerifyProcess& job) {
    job.failures.clear();
    job.certificateProblem.clear();
    return LSendRun(process, job).Verify();
}
