// The connection to a mail server: text out, replies in, within time budgets, plain or with TLS.
#pragma once

#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "platform/LFileDescriptor.h"
#include "platform/LUserInterface.h"
#include "platform/PollDeadline.h"
#include "service/email/EmailLookups.h"
#include "service/email/LTlsSession.h"

inline constexpr size_t kMaxReplyLine = 257;  // what is longer is cut

struct LMailReply {
    int code = 0;                 // 0: the last line began with no code
    std::string text;             // of the last line, behind the code; no control characters
    bool offersStartTls = false;  // some line holds "STARTTLS"
};

// Waits are ended by a cancellation of `process` within a tenth of a second. After a failure the
// connection is of no more use and Problem() tells the reason. One thread at a time.
class LMailConnection {
public:
    explicit LMailConnection(LProcessInterface& process) : process_(process) {}

    // Tries the addresses in turn; those left share what is left of `timeoutMs`.
    [[nodiscard]] bool Connect(const std::vector<LNetworkAddress>& addresses, int timeoutMs);
    // Switches to TLS. Bytes that came ahead of it are refused: they could be anybody's.
    [[nodiscard]] bool StartTls(const std::string& host, int timeoutMs);
    bool IsSecure() const { return tls_ != nullptr; }
    // Empty when the server's certificate is in order.
    std::string CertificateProblem() const;

    // The time counts for each piece of a long text. After false a reply may still be there.
    [[nodiscard]] bool Send(std::string_view text, int timeoutMs);
    // A reply of one or more lines (RFC 5321 4.2.1), all of it within the time. False when none
    // came whole, or it grew beyond all measure.
    [[nodiscard]] bool ReceiveReply(LMailReply& reply, int timeoutMs);
    void Close();

    const std::string& Problem() const { return problem_; }

private:
    bool ConnectTo(const LNetworkAddress& address, int timeoutMs);
    bool WaitFor(short events, const LDeadline& deadline);
    bool SendRaw(std::string_view bytes, const LDeadline& deadline);
    bool FlushTls(const LDeadline& deadline);
    bool ReceiveMore(const LDeadline& deadline);
    bool ReceiveRaw(std::string& out, const LDeadline& deadline);
    bool ReceiveLine(std::string& line, const LDeadline& deadline, size_t& budgetBytes);
    bool Fail(std::string problem);

    LProcessInterface& process_;
    LFileDescriptor socket_;
    std::unique_ptr<LTlsSession> tls_;
    std::string received_;  // and not yet read as lines
    std::string problem_;
};
