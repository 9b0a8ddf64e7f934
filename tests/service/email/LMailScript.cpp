#include "tests/service/email/LMailScript.h"

#include <arpa/inet.h>
#include <sys/socket.h>

#include <algorithm>
#include <array>

#include "platform/SocketIo.h"

LMailScript::LMailScript(std::vector<Replies> scripts)
    : LThread("LMailScript"),
      scripts_(std::move(scripts)),
      listening_(::socket(AF_INET, SOCK_STREAM | SOCK_CLOEXEC | SOCK_NONBLOCK, 0)) {
    sockaddr_in address{};
    address.sin_family = AF_INET;
    address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
    socklen_t size = sizeof address;
    auto* const any = reinterpret_cast<sockaddr*>(&address);
    if (::bind(listening_.Get(), any, size) == 0 && ::listen(listening_.Get(), 16) == 0 &&
        ::getsockname(listening_.Get(), any, &size) == 0) {
        port_ = ntohs(address.sin_port);
    }
    Start();
}

std::string LMailScript::Received(size_t n) const {
    const LMutexLock lock(mutex_);
    return n < received_.size() ? received_[n] : "(no connection)";
}

size_t LMailScript::ConnectionCount() const {
    const LMutexLock lock(mutex_);
    return received_.size();
}

void LMailScript::ThreadFunction() {
    while (WaitReadable(listening_.Get(), StopSignal()) == LSocketResult::kOk) {
        const LFileDescriptor client = AcceptSocket(listening_.Get());
        size_t n = 0;
        {
            const LMutexLock lock(mutex_);
            n = received_.size();
            received_.emplace_back();
        }
        Serve(client, scripts_[std::min(n, scripts_.size() - 1)]);
    }
}

void LMailScript::Serve(const LFileDescriptor& client, const Replies& replies) {
    for (size_t i = 0; i < replies.size(); ++i) {
        if (!Answer(client.Get(), replies[i])) return;
        const bool takesText = replies[i].starts_with("354");
        if (takesText && i + 1 < replies.size() && replies[i + 1].starts_with(kEarly)) {
            WaitReadable(client.Get(), StopSignal());
            Answer(client.Get(), replies[i + 1].substr(sizeof kEarly - 1));
            return;  // with most of the text unread
        }
        if (!ReceiveUpTo(client.Get(), takesText ? "\r\n.\r\n" : "\r\n")) return;
    }
}

bool LMailScript::Answer(int client, const std::string& reply) {
    if (reply == kHangUp) return false;
    if (reply == kStall) return true;
    std::string text = reply == kNonsense ? "\x01 what?\r\n" : reply + "\r\n";
    const bool isEndless = reply == kNoLineEnd || reply == kManyLines;
    if (isEndless) text = reply == kNoLineEnd ? std::string(1000, '2') : "250-more\r\n";
    do {
        const ssize_t count = ::send(client, text.data(), text.size(), MSG_NOSIGNAL);
        if (count < 0 && WaitWritable(client, StopSignal(), -1) != LSocketResult::kOk) return false;
        char byte = 0;
        if (isEndless && ::recv(client, &byte, 1, MSG_PEEK | MSG_DONTWAIT) == 0) return false;
        if (count < 0 && errno != EAGAIN) return false;
    } while (isEndless);
    return true;
}

bool LMailScript::ReceiveUpTo(int client, std::string_view end) {
    std::string text;
    while (!text.ends_with(end)) {
        std::array<char, 4096> buffer;
        if (WaitReadable(client, StopSignal()) != LSocketResult::kOk) return false;
        const ssize_t count = ::recv(client, buffer.data(), buffer.size(), 0);
        if (count <= 0) return false;
        text.append(buffer.data(), static_cast<size_t>(count));
        const LMutexLock lock(mutex_);
        received_.back().append(buffer.data(), static_cast<size_t>(count));
    }
    return true;
}
