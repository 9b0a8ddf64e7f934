// A client of the control pipe that says exactly the bytes it is told to.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

#include "platform/LFileDescriptor.h"
#include "service/control/ServiceMessageIo.h"

inline constexpr int kPatienceMs = 20000;  // for what must come; a failing test is slow, not wrong

class LPipeClient {
public:
    explicit LPipeClient(const std::string& path);  // connects
    explicit LPipeClient(LFileDescriptor socket) : socket_(std::move(socket)) {}

    bool IsConnected() const { return socket_.IsOpen(); }
    bool Send(std::string_view bytes) const;
    bool Send(uint16_t type, uint32_t code, std::string_view payload = {}, uint32_t tag = 0) const;
    // A header alone, whatever it announces.
    bool SendHeader(const LServiceMessageHeader& header) const;

    // The next message; nothing when the service hung up or nothing came in time.
    std::optional<LServiceMessageIn> Read() const;
    // The next reply; other messages before it are passed over.
    std::optional<LServiceMessageIn> ReadReply() const { return ReadType(kServiceReply); }
    std::optional<LServiceMessageIn> ReadType(uint16_t type) const;
    // Whether the service hangs up in time; what it still sends is passed over.
    bool IsHungUp(int withinMs = kPatienceMs) const;
    // The result of a type-2 command.
    std::optional<uint32_t> Ask(uint32_t code) const;

private:
    LFileDescriptor socket_;
};
