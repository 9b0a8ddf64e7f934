#include "tests/service/control/LPipeClient.h"

#include <poll.h>
#include <sys/socket.h>

#include <array>

#include "platform/FileIo.h"
#include "platform/PollDeadline.h"
#include "platform/SocketIo.h"

LPipeClient::LPipeClient(const std::string& path) : socket_(ConnectUnix(path)) {}

bool LPipeClient::Send(std::string_view bytes) const {
    const LSignalObject never;
    return SendServiceMessage(socket_.Get(), bytes, never, 100) == LSendResult::kSent;
}

bool LPipeClient::Send(uint16_t type, uint32_t code, std::string_view payload, uint32_t tag) const {
    return Send(ServiceMessage(
        {kServiceMagic, type, code, static_cast<uint32_t>(payload.size()), tag}, payload));
}

bool LPipeClient::SendHeader(const LServiceMessageHeader& header) const {
    return Send(ServiceMessage(header));
}

std::optional<LServiceMessageIn> LPipeClient::Read() const {
    const LSignalObject never;
    LServiceMessageIn message;
    if (WaitReadable(socket_.Get(), never, kPatienceMs) != LSocketResult::kOk) return std::nullopt;
    if (!ReceiveServiceMessage(socket_.Get(), message, never)) return std::nullopt;
    return message;
}

std::optional<LServiceMessageIn> LPipeClient::ReadType(uint16_t type) const {
    std::optional<LServiceMessageIn> message;
    do {
        message = Read();
    } while (message && message->header.type != type);
    return message;
}

bool LPipeClient::IsHungUp(int withinMs) const {
    const LDeadline deadline(withinMs);
    const LSignalObject never;
    std::array<char, 4096> bytes{};
    while (WaitReadable(socket_.Get(), never, deadline.RemainingMs()) == LSocketResult::kOk) {
        if (::recv(socket_.Get(), bytes.data(), bytes.size(), MSG_DONTWAIT) <= 0) return true;
    }
    return false;
}

std::optional<uint32_t> LPipeClient::Ask(uint32_t code) const {
    if (!Send(kServiceCommandResult, code)) return std::nullopt;
    const auto reply = ReadReply();
    return reply ? std::optional<uint32_t>(reply->header.code) : std::nullopt;
}
