// Whole messages through the control pipe's sockets, with the patience that each side has.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

#include "platform/LSignalObject.h"
#include "service/control/LServiceMessageHeader.h"

inline constexpr int kReplySendBudget = 15000;  // replies and requests
inline constexpr int kNotifySendBudget = 1000;  // notifications and log lines
inline constexpr int kSendSliceMs = 200;
inline constexpr int kPayloadTimeoutMs = 10000;
// No command has a payload anywhere near it; who announces more is no client of ours.
inline constexpr uint32_t kMaxPayloadBytes = 64 * 1024 * 1024;

enum class LSendResult { kSent, kNothingSent, kPartlySent };

// Sends `message` without ever blocking in the socket: while it has no room, writability is waited
// for in slices. A slice without room lowers the budget by 2, whatever its length: a client may
// take its time, and 1000 stand for about 100 s of doing nothing. Below 3 the message is given up,
// as it is when `stop` is set or the peer has gone.
LSendResult SendServiceMessage(int fd, std::string_view message, const LSignalObject& stop,
                               int budget, int sliceMs = kSendSliceMs);

// A message as it was received. The mark of a message without payload is taken off the type.
struct LServiceMessageIn {
    LServiceMessageHeader header;
    std::optional<std::string> payload;

    const char* Data() const { return payload ? payload->data() : nullptr; }
};

// Waits without limit for a header, then at most `payloadTimeoutMs` for its payload, whose memory
// grows with the bytes that come and not with what was announced. False when the peer closed,
// `stop` was set, the magic is wrong, or the payload came late or is longer than kMaxPayloadBytes.
[[nodiscard]] bool ReceiveServiceMessage(int fd, LServiceMessageIn& message,
                                         const LSignalObject& stop,
                                         int payloadTimeoutMs = kPayloadTimeoutMs);
