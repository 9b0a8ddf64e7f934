#include "service/control/ServiceMessageIo.h"

#include <sys/socket.h>

#include <algorithm>
#include <cerrno>
#include <new>

#include "platform/PollDeadline.h"
#include "platform/SocketIo.h"

namespace {

constexpr size_t kFirstPieceBytes = 8192;
constexpr int kBudgetPerSlice = 2;
constexpr int kSmallestBudget = 3;

bool WaitForRoom(int fd, const LSignalObject& stop, int& budget, int sliceMs) {
    while (budget >= kSmallestBudget) {
        const LSocketResult result = WaitWritable(fd, stop, sliceMs);
        if (result != LSocketResult::kFailed) return result == LSocketResult::kOk;
        budget -= kBudgetPerSlice;
    }
    return false;
}

// Every piece at most doubles what has arrived.
bool ReceiveGrowing(int fd, size_t length, std::string& payload, const LSignalObject& stop,
                    const LDeadline& deadline) {
    LSocketResult result = LSocketResult::kOk;
    while (result == LSocketResult::kOk && payload.size() < length) {
        const size_t have = payload.size();
        const size_t piece = std::min(length - have, std::max(kFirstPieceBytes, have));
        payload.resize(have + piece);
        result = ReceiveExactly(fd, payload.data() + have, piece, stop, deadline.RemainingMs());
    }
    return result == LSocketResult::kOk;
}

}  // namespace

LSendResult SendServiceMessage(int fd, std::string_view message, const LSignalObject& stop,
                               int budget, int sliceMs) {
    size_t sent = 0;
    while (sent < message.size()) {
        const ssize_t count =
            ::send(fd, message.data() + sent, message.size() - sent, MSG_DONTWAIT | MSG_NOSIGNAL);
        if (count > 0) {
            sent += static_cast<size_t>(count);
        } else if (errno == EINTR) {
            continue;
        } else if (errno != EAGAIN || !WaitForRoom(fd, stop, budget, sliceMs)) {
            return sent == 0 ? LSendResult::kNothingSent : LSendResult::kPartlySent;
        }
    }
    return LSendResult::kSent;
}

bool ReceiveServiceMessage(int fd, LServiceMessageIn& message, const LSignalObject& stop,
                           int payloadTimeoutMs) {
    message = {};
    LServiceMessageHeader& header = message.header;
    if (ReceiveExactly(fd, &header, sizeof header, stop, -1) != LSocketResult::kOk) return false;
    if (header.magic != kServiceMagic) return false;
    if ((header.type & kServiceNoPayload) != 0) {
        header.type &= static_cast<uint16_t>(~kServiceNoPayload);
        return true;
    }
    if (header.length == 0) return true;
    if (header.length > kMaxPayloadBytes) return false;
    message.payload.emplace();
    try {
        return ReceiveGrowing(fd, header.length, *message.payload, stop,
                              LDeadline(payloadTimeoutMs));
    } catch (const std::bad_alloc&) {
        return false;
    }
}
