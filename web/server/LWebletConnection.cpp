#include "web/server/LWebletConnection.h"

#include <sys/socket.h>

#include <algorithm>
#include <cerrno>
#include <cstring>

namespace {

constexpr size_t kBufferBytes = 4096;
constexpr int kLastAnswerMs = 700;
constexpr int kLingerMs = 30000;
constexpr int kLingerSilenceMs = 2000;

// Takes `sent` bytes off the front. Returns how many pieces went completely.
size_t TakeSent(std::span<iovec> pieces, size_t sent) {
    size_t done = 0;
    while (done < pieces.size() && sent >= pieces[done].iov_len) sent -= pieces[done++].iov_len;
    if (sent > 0) {
        pieces[done].iov_base = static_cast<char*>(pieces[done].iov_base) + sent;
        pieces[done].iov_len -= sent;
    }
    return done;
}

ssize_t SendOnce(int socket, std::span<iovec> pieces) {
    msghdr message{};
    message.msg_iov = pieces.data();
    message.msg_iovlen = pieces.size();
    return ::sendmsg(socket, &message, MSG_DONTWAIT | MSG_NOSIGNAL);
}

bool MayTryAgain() { return errno == EAGAIN || errno == EINTR; }

}  // namespace

// The time of an operation. It begins to count at the first wait: most operations never wait.
class LWebletConnection::LBudget {
public:
    explicit LBudget(int ms) : ms_(ms) {}
    int RemainingMs() {
        if (!deadline_) deadline_.emplace(ms_);
        return deadline_->RemainingMs();
    }
    void Restart() { deadline_.reset(); }

private:
    int ms_;
    std::optional<LDeadline> deadline_;
};

LSocketResult LWebletConnection::WaitForInput(LBudget& budget) {
    hasAnswered_ = false;
    buffer_.reset();
    return WaitReadable(socket_.Get(), stop_, budget.RemainingMs());
}

// Receives into the empty buffer.
LSocketResult LWebletConnection::Fill(LBudget& budget) {
    if (hasAnswered_) {
        // A client that has just got its answer has not asked again yet.
        const LSocketResult wait = WaitForInput(budget);
        if (wait != LSocketResult::kOk) return wait;
    }
    for (;;) {
        if (!buffer_) buffer_ = std::make_unique_for_overwrite<char[]>(kBufferBytes);
        const ssize_t count = ::recv(socket_.Get(), buffer_.get(), kBufferBytes, MSG_DONTWAIT);
        if (count > 0) {
            start_ = 0;
            end_ = static_cast<size_t>(count);
            return LSocketResult::kOk;
        }
        if (count == 0 || !MayTryAgain()) return LSocketResult::kFailed;
        if (errno == EINTR) continue;
        const LSocketResult wait = WaitForInput(budget);
        if (wait != LSocketResult::kOk) return wait;
    }
}

LSocketResult LWebletConnection::ReadLine(std::string& line, size_t maxBytes, int timeoutMs) {
    line.clear();
    LBudget budget(timeoutMs);
    for (;;) {
        if (!HasUnreadInput()) {
            const LSocketResult filled = Fill(budget);
            if (filled != LSocketResult::kOk) return filled;
        }
        const std::string_view input(buffer_.get() + start_, end_ - start_);
        const size_t feed = input.find('\n');
        const size_t size = std::min(feed, input.size());
        if (size > maxBytes - line.size()) return LSocketResult::kFailed;
        line += input.substr(0, size);
        start_ += feed == std::string_view::npos ? size : size + 1;
        if (feed == std::string_view::npos) continue;
        if (line.ends_with('\r')) line.pop_back();
        return LSocketResult::kOk;
    }
}

LSocketResult LWebletConnection::ReadSome(std::span<char> out, size_t& count, int timeoutMs) {
    count = 0;
    LBudget budget(timeoutMs);
    if (!HasUnreadInput()) {
        const LSocketResult filled = Fill(budget);
        if (filled != LSocketResult::kOk) return filled;
    }
    count = std::min(out.size(), end_ - start_);
    std::memcpy(out.data(), buffer_.get() + start_, count);
    start_ += count;
    return LSocketResult::kOk;
}

LClientWait LWebletConnection::WaitForClient(int timeoutMs) {
    if (HasUnreadInput()) return LClientWait::kSentMore;
    const LSocketResult wait = WaitReadable(socket_.Get(), stop_, timeoutMs);
    if (wait == LSocketResult::kStopped) return LClientWait::kStopped;
    if (wait == LSocketResult::kFailed) return LClientWait::kSilent;
    char byte = 0;
    const ssize_t count = ::recv(socket_.Get(), &byte, 1, MSG_PEEK | MSG_DONTWAIT);
    if (count > 0) return LClientWait::kSentMore;
    return count < 0 && MayTryAgain() ? LClientWait::kSilent : LClientWait::kGone;
}

LSocketResult LWebletConnection::ReadExactly(std::string& out, size_t size, int timeoutMs) {
    // Reserved, not filled: the pages are only taken from the system as the bytes come.
    out.reserve(out.size() + size);
    LBudget budget(timeoutMs);
    while (size > 0) {
        if (!HasUnreadInput()) {
            const LSocketResult filled = Fill(budget);
            if (filled != LSocketResult::kOk) return filled;
        }
        const size_t count = std::min(size, end_ - start_);
        out.append(buffer_.get() + start_, count);
        start_ += count;
        size -= count;
    }
    return LSocketResult::kOk;
}

LSocketResult LWebletConnection::ProcessSend(std::string_view text, int budgetMs) {
    iovec piece{const_cast<char*>(text.data()), text.size()};
    return SendPieces({&piece, 1}, budgetMs);
}

const LDeadline& LWebletConnection::LastAnswerEnd() {
    if (!lastAnswerEnd_) lastAnswerEnd_.emplace(kLastAnswerMs);
    return *lastAnswerEnd_;
}

// An answer that is under way when the server ends is finished, as far as the client takes it
// promptly: the page that ordered a restart is such a one.
LSocketResult LWebletConnection::WaitForRoom(LBudget& budget) {
    const LSocketResult wait = WaitWritable(socket_.Get(), stop_, budget.RemainingMs());
    if (wait != LSocketResult::kStopped) return wait;
    pollfd entry{socket_.Get(), POLLOUT, 0};
    return PollUntil(&entry, 1, LastAnswerEnd()) > 0 ? LSocketResult::kOk : LSocketResult::kStopped;
}

LSocketResult LWebletConnection::SendPieces(std::span<iovec> pieces, int pieceBudgetMs) {
    hasAnswered_ = true;
    LBudget budget(pieceBudgetMs);
    while (!pieces.empty()) {
        const ssize_t sent = SendOnce(socket_.Get(), pieces);
        if (sent >= 0) {
            const size_t done = TakeSent(pieces, static_cast<size_t>(sent));
            if (done > 0) budget.Restart();
            pieces = pieces.subspan(done);
            continue;
        }
        if (!MayTryAgain()) return LSocketResult::kFailed;
        if (errno == EINTR) continue;
        const LSocketResult wait = WaitForRoom(budget);
        if (wait != LSocketResult::kOk) return wait;
    }
    return LSocketResult::kOk;
}

void LWebletConnection::Close() {
    if (!socket_.IsOpen()) return;
    if (inputLeft_ || HasUnreadInput()) Linger();
    socket_.Close();
    buffer_.reset();
}

// Closing a socket with unread input resets the connection, and the reset overtakes the answer.
// So the rest is read and thrown away, until the client has seen the end or falls silent.
void LWebletConnection::Linger() {
    ::shutdown(socket_.Get(), SHUT_WR);
    const LDeadline end(kLingerMs);
    LSocketResult more = LSocketResult::kOk;
    while (more == LSocketResult::kOk && end.RemainingMs() > 0) {
        LBudget silence(kLingerSilenceMs);
        more = Fill(silence);
    }
}
