#include "service/email/SendEmailBackground.h"

#include <algorithm>
#include <limits>

#include "platform/LSilentProcess.h"
#include "platform/SocketIo.h"
#include "service/email/EmailAddress.h"

namespace {

struct LSender {
    LMutex mutex;
    LEmailSendBackgroundThread* thread L_GUARDED_BY(mutex) = nullptr;
};
LSender& Sender() {
    static LSender sender;
    return sender;
}

struct LLogTarget {
    LMutex mutex;
    LEmailLog log L_GUARDED_BY(mutex);
};
LLogTarget& LogTarget() {
    static LLogTarget target;
    return target;
}

void Tell(const LEmailMessage& message, const std::string& recipients, const std::string& what,
          LEmailLogLevel level) {
    WriteEmailLog("E-mail \"" + message.subject + "\" to " + recipients + " " + what, level);
}

std::string ReasonOf(const LSendFailure& failure) {
    return failure.title.empty() ? failure.text : failure.title + ": " + failure.text;
}

}  // namespace

void SetEmailLog(LEmailLog log) {
    LLogTarget& target = LogTarget();
    const LMutexLock lock(target.mutex);
    target.log = std::move(log);
}

void WriteEmailLog(std::string_view line, LEmailLogLevel level) {
    LLogTarget& target = LogTarget();
    const LMutexLock lock(target.mutex);
    if (target.log) target.log(line, level);
}

bool LSendEmailBackground(std::string_view recipients, std::string_view subject,
                          std::string_view body, const std::vector<std::string>& attachments) {
    LSender& sender = Sender();
    const LMutexLock lock(sender.mutex);
    if (sender.thread == nullptr) return false;
    LEmailMessage message;
    message.to = recipients;
    message.subject = subject;
    message.body = body;
    message.attachments = attachments;
    return sender.thread->Queue(std::move(message));
}

LEmailSendBackgroundThread::LEmailSendBackgroundThread(LSendPlan plan)
    : LThread("LEmailSend"), plan_(std::move(plan)) {
    LSender& sender = Sender();
    const LMutexLock lock(sender.mutex);
    sender.thread = this;
}

LEmailSendBackgroundThread::~LEmailSendBackgroundThread() {
    {
        LSender& sender = Sender();
        const LMutexLock lock(sender.mutex);
        if (sender.thread == this) sender.thread = nullptr;
    }
    StopAndJoin();
}

bool LEmailSendBackgroundThread::Queue(LEmailMessage message) {
    message.date = std::time(nullptr);
    const LMutexLock lock(mutex_);
    if (hasEnded_ || jobs_.size() >= plan_.maxWaiting) return false;
    jobs_.push_back({std::move(message), {}, LClock::now(), 0});
    wake_.Set();
    return true;
}

size_t LEmailSendBackgroundThread::WaitingCount() const {
    const LMutexLock lock(mutex_);
    return jobs_.size() + (isSending_ ? 1 : 0);
}

// The first message whose time has come. Otherwise `waitMs` is how long the next one has, -1 when
// none waits.
bool LEmailSendBackgroundThread::TakeDue(LJob& job, int& waitMs) {
    const LMutexLock lock(mutex_);
    isSending_ = false;
    wake_.Reset();
    waitMs = -1;
    const auto next = std::min_element(jobs_.begin(), jobs_.end(),
                                       [](const LJob& a, const LJob& b) { return a.due < b.due; });
    if (next == jobs_.end()) return false;
    const auto now = LClock::now();
    if (next->due > now) {
        const auto left = std::chrono::ceil<std::chrono::milliseconds>(next->due - now).count();
        waitMs = static_cast<int>(std::min<int64_t>(left, std::numeric_limits<int>::max()));
        return false;
    }
    job = std::move(*next);
    jobs_.erase(next);
    isSending_ = true;
    return true;
}

void LEmailSendBackgroundThread::ThreadFunction() {
    while (!IsStopRequested()) {
        LJob job;
        int waitMs = -1;
        if (TakeDue(job, waitMs)) {
            Deliver(std::move(job));
        } else {
            WaitReadable(wake_.ReadDescriptor(), StopSignal(), waitMs);
        }
    }
    TellUnsent();
}

void LEmailSendBackgroundThread::Deliver(LJob job) {
    EmailSMTPSendProcess send;
    send.account = SmtpAccountOf(LoadEmailSettings());
    send.message = job.message;
    send.recipients = job.recipients;
    send.limits = plan_.limits;
    LSilentProcess process(StopSignal());
    const bool isSent = Process(process, send);
    ++job.tries;
    job.message = std::move(send.message);  // with the id that it keeps
    job.message.from.clear();               // the sender may be another one next time
    if (!send.certificateProblem.empty()) {
        WriteEmailLog(
            "The mail server's certificate could not be verified: " + send.certificateProblem,
            LEmailLogLevel::kWarning);
    }
    if (isSent) return Tell(job.message, job.message.to, "sent.", LEmailLogLevel::kInfo);
    TryAgain(std::move(job), send.failures);
}

// What is final goes to the log; what is temporary goes back into the queue, as long as there are
// tries left and the service runs.
void LEmailSendBackgroundThread::TryAgain(LJob job, const std::vector<LSendFailure>& failures) {
    job.recipients.clear();
    const bool hasTries = job.tries <= plan_.pauses.size();
    for (const LSendFailure& failure : failures) {
        if (failure.isTemporary && hasTries) {
            job.recipients.push_back(failure.recipients);
            if (IsStopRequested()) continue;
            Tell(job.message, failure.recipients,
                 "could not be sent yet (try " + std::to_string(job.tries) +
                     "): " + ReasonOf(failure),
                 LEmailLogLevel::kWarning);
        } else {
            Tell(job.message, failure.recipients, "was not sent: " + ReasonOf(failure),
                 LEmailLogLevel::kError);
        }
    }
    if (job.recipients.empty()) return;
    const LMutexLock lock(mutex_);
    job.due = LClock::now() + plan_.pauses[job.tries - 1];
    jobs_.push_back(std::move(job));
}

void LEmailSendBackgroundThread::TellUnsent() {
    std::deque<LJob> unsent;
    {
        const LMutexLock lock(mutex_);
        unsent.swap(jobs_);
        hasEnded_ = true;
        isSending_ = false;
    }
    for (const LJob& job : unsent) {
        const std::string to =  // the others got it
            job.recipients.empty() ? job.message.to : JoinAddresses(job.recipients);
        Tell(job.message, to, "was not sent: the service ends.", LEmailLogLevel::kError);
    }
}
