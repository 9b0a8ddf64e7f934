#include "service/email/LMailConnection.h"

#include <sys/socket.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <cstring>

#include "platform/CaseFolding.h"

namespace {

constexpr int kSliceMs = 100;
constexpr size_t kPieceBytes = 16 * 1024;
constexpr size_t kReceiveBytes = 4096;
constexpr size_t kMaxReplyBytes = 64 * 1024;  // no server has that much to say

constexpr char kTimedOut[] = "The mail server does not answer.";
constexpr char kClosed[] = "The mail server closed the connection.";
constexpr char kCancelled[] = "Sending was cancelled.";

int CodeOf(std::string_view line) {
    constexpr size_t kDigits = 3;
    if (line.size() < kDigits) return 0;
    int code = 0;
    for (const char byte : line.substr(0, kDigits)) {
        if (byte < '0' || byte > '9') return 0;
        code = code * 10 + (byte - '0');
    }
    return code;
}

bool HasMoreLines(std::string_view line) {
    return CodeOf(line) != 0 && line.size() > 3 && line[3] == '-';
}

std::string TextOf(std::string_view line) {
    std::string text(line.substr(std::min<size_t>(line.size(), CodeOf(line) == 0 ? 0 : 4)));
    for (char& byte : text) {
        if (static_cast<unsigned char>(byte) < ' ' || byte == 0x7F) byte = ' ';
    }
    return text;
}

}  // namespace

bool LMailConnection::Fail(std::string problem) {
    problem_ = std::move(problem);
    Close();
    return false;
}

void LMailConnection::Close() {
    tls_.reset();
    socket_.Close();
    received_.clear();
}

bool LMailConnection::WaitFor(short events, const LDeadline& deadline) {
    while (!process_.IsCancelled()) {
        const int left = deadline.RemainingMs();
        pollfd entry{socket_.Get(), events, 0};
        const int ready = PollUntil(&entry, 1, LDeadline(std::min(left, kSliceMs)));
        if (ready > 0) return true;
        if (ready < 0) return Fail(std::strerror(errno));
        if (left <= kSliceMs) return Fail(kTimedOut);
    }
    return Fail(kCancelled);
}

bool LMailConnection::Connect(const std::vector<LNetworkAddress>& addresses, int timeoutMs) {
    const LDeadline deadline(timeoutMs);
    problem_ = kTimedOut;
    for (size_t i = 0; i < addresses.size(); ++i) {
        const int share = deadline.RemainingMs() / static_cast<int>(addresses.size() - i);
        if (ConnectTo(addresses[i], share)) return true;
        if (process_.IsCancelled()) return Fail(kCancelled);
    }
    return false;
}

bool LMailConnection::ConnectTo(const LNetworkAddress& address, int timeoutMs) {
    Close();
    socket_ = LFileDescriptor(
        ::socket(address.storage.ss_family, SOCK_STREAM | SOCK_NONBLOCK | SOCK_CLOEXEC, 0));
    if (!socket_.IsOpen()) return Fail(std::strerror(errno));
    const auto* const to = reinterpret_cast<const sockaddr*>(&address.storage);
    if (::connect(socket_.Get(), to, address.size) == 0) return true;
    if (errno != EINPROGRESS && errno != EINTR) return Fail(std::strerror(errno));
    if (!WaitFor(POLLOUT, LDeadline(timeoutMs))) return false;
    int error = 0;
    socklen_t size = sizeof error;
    ::getsockopt(socket_.Get(), SOL_SOCKET, SO_ERROR, &error, &size);
    return error == 0 || Fail(std::strerror(error));
}

bool LMailConnection::SendRaw(std::string_view bytes, const LDeadline& deadline) {
    while (!bytes.empty()) {
        if (!WaitFor(POLLOUT, deadline)) return false;
        const ssize_t count =
            ::send(socket_.Get(), bytes.data(), bytes.size(), MSG_NOSIGNAL | MSG_DONTWAIT);
        if (count < 0 && errno != EAGAIN && errno != EINTR) {
            problem_ = std::strerror(errno);  // the server may have said why: left open to be read
            return false;
        }
        if (count > 0) bytes.remove_prefix(static_cast<size_t>(count));
    }
    return true;
}

bool LMailConnection::FlushTls(const LDeadline& deadline) {
    return SendRaw(tls_->TakeOutput(), deadline);
}

bool LMailConnection::Send(std::string_view text, int timeoutMs) {
    if (!socket_.IsOpen()) return false;
    while (!text.empty()) {
        const LDeadline deadline(timeoutMs);
        const std::string_view piece = text.substr(0, kPieceBytes);
        text.remove_prefix(piece.size());
        if (tls_ == nullptr) {
            if (!SendRaw(piece, deadline)) return false;
        } else if (tls_->Write(piece) != LTlsResult::kDone) {
            return Fail(kClosed);
        } else if (!FlushTls(deadline)) {
            return false;
        }
    }
    return true;
}

bool LMailConnection::ReceiveRaw(std::string& out, const LDeadline& deadline) {
    std::array<char, kReceiveBytes> buffer;
    for (;;) {
        if (!WaitFor(POLLIN, deadline)) return false;
        const ssize_t count = ::recv(socket_.Get(), buffer.data(), buffer.size(), MSG_DONTWAIT);
        if (count > 0) {
            out.append(buffer.data(), static_cast<size_t>(count));
            return true;
        }
        if (count == 0) return Fail(kClosed);
        if (errno != EAGAIN && errno != EINTR) return Fail(std::strerror(errno));
    }
}

// Adds to what was received, deciphered where TLS is on.
bool LMailConnection::ReceiveMore(const LDeadline& deadline) {
    if (tls_ == nullptr) return ReceiveRaw(received_, deadline);
    std::array<char, kReceiveBytes> buffer;
    for (;;) {
        size_t got = 0;
        const LTlsResult result = tls_->Read(buffer.data(), buffer.size(), got);
        received_.append(buffer.data(), got);
        if (got > 0) return true;
        if (result != LTlsResult::kNeedsInput) return Fail(kClosed);
        std::string raw;
        if (!FlushTls(deadline) || !ReceiveRaw(raw, deadline)) return false;
        tls_->Feed(raw);
    }
}

bool LMailConnection::StartTls(const std::string& host, int timeoutMs) {
    const LDeadline deadline(timeoutMs);
    if (!received_.empty()) return Fail("The mail server spoke before the connection was secure.");
    auto tls = LTlsSession::Create(host);
    if (tls == nullptr) return Fail("OpenSSL could not be used.");
    for (;;) {
        const LTlsResult result = tls->Handshake();
        // Also an alert that tells the server why not.
        if (!SendRaw(tls->TakeOutput(), deadline)) return false;
        if (result == LTlsResult::kDone) break;
        if (result != LTlsResult::kNeedsInput) return Fail("The TLS handshake failed.");
        std::string raw;
        if (!ReceiveRaw(raw, deadline)) return false;
        tls->Feed(raw);
    }
    tls_ = std::move(tls);
    return true;
}

std::string LMailConnection::CertificateProblem() const {
    return tls_ == nullptr ? std::string() : tls_->CertificateProblem();
}

// Takes one line without its end, cut; `budgetBytes` is what the reply may still cost.
bool LMailConnection::ReceiveLine(std::string& line, const LDeadline& deadline,
                                  size_t& budgetBytes) {
    line.clear();
    for (;;) {
        const size_t end = received_.find('\n');
        const size_t taken = end == std::string::npos ? received_.size() : end + 1;
        const size_t room = kMaxReplyLine - line.size();
        line.append(received_, 0, std::min({taken, end, room}));
        received_.erase(0, taken);
        if (taken > budgetBytes) return Fail("The mail server's reply has no end.");
        budgetBytes -= taken;
        if (end != std::string::npos) break;
        if (!ReceiveMore(deadline)) return false;
    }
    if (line.ends_with('\r')) line.pop_back();
    return true;
}

bool LMailConnection::ReceiveReply(LMailReply& reply, int timeoutMs) {
    reply = {};
    if (!socket_.IsOpen()) return false;
    const LDeadline deadline(timeoutMs);
    size_t budgetBytes = kMaxReplyBytes;
    std::string line;
    do {
        if (!ReceiveLine(line, deadline, budgetBytes)) return false;
        reply.offersStartTls = reply.offersStartTls || ContainsIgnoringCase(line, "STARTTLS");
    } while (HasMoreLines(line));
    reply.code = CodeOf(line);
    reply.text = TextOf(line);
    return true;
}
