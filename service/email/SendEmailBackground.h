// Messages that are sent beside other work, by a thread of their own that tries again.
#pragma once

#include <chrono>
#include <deque>
#include <functional>
#include <string>
#include <string_view>
#include <vector>

#include "platform/LMutex.h"
#include "platform/LThread.h"
#include "service/email/EmailSMTPSendProcess.h"

// Hands a message to the background sender of this process, which sends it by the e-mail settings
// as they are then. Attachments are read when it is sent. False when there is no sender, or too
// many messages wait already. Any thread; returns at once.
[[nodiscard]] bool LSendEmailBackground(std::string_view recipients, std::string_view subject,
                                        std::string_view body,
                                        const std::vector<std::string>& attachments = {});

// Where lines about sent and unsent messages go; empty: nowhere. Any thread; after the call no
// thread is inside the old one.
enum class LEmailLogLevel { kInfo, kWarning, kError };
using LEmailLog = std::function<void(std::string_view line, LEmailLogLevel level)>;
void SetEmailLog(LEmailLog log);
void WriteEmailLog(std::string_view line, LEmailLogLevel level);

// How patient the sender is.
struct LSendPlan {
    LSmtpLimits limits;
    // After each try that failed for a while; one more try than there are pauses.
    std::vector<std::chrono::milliseconds> pauses = {
        std::chrono::minutes(1), std::chrono::minutes(5), std::chrono::minutes(15),
        std::chrono::hours(1), std::chrono::hours(4)};
    size_t maxWaiting = 1000;
};

// While one lives (one at most in a process), LSendEmailBackground reaches it. Messages that have
// to wait for another try do not hold up others. Stopped, it ends within two seconds, also in the
// middle of a dialogue; what is not sent by then is named in the log and lost.
class LEmailSendBackgroundThread final : public LThread {
public:
    explicit LEmailSendBackgroundThread(LSendPlan plan = {});
    ~LEmailSendBackgroundThread() override;

    [[nodiscard]] bool Queue(LEmailMessage message);
    size_t WaitingCount() const;  // the one that is being sent counts too

private:
    using LClock = std::chrono::steady_clock;
    struct LJob {
        LEmailMessage message;
        std::vector<std::string> recipients;  // of another try
        LClock::time_point due;
        size_t tries = 0;
    };

    void ThreadFunction() override;
    bool TakeDue(LJob& job, int& waitMs);
    void Deliver(LJob job);
    void TryAgain(LJob job, const std::vector<LSendFailure>& failures);
    void TellUnsent();

    const LSendPlan plan_;
    LSignalObject wake_;
    mutable LMutex mutex_;
    std::deque<LJob> jobs_ L_GUARDED_BY(mutex_);
    bool isSending_ L_GUARDED_BY(mutex_) = false;
    bool hasEnded_ L_GUARDED_BY(mutex_) = false;  // takes no more
};
