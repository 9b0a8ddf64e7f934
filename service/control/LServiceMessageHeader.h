// What stands before every message on the control pipe, and the numbers that it may carry.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>

// Both ends run on one machine, so the bytes are in its own order (little-endian where we run).
struct [[gnu::packed]] LServiceMessageHeader {
    uint16_t magic = 0;   // kServiceMagic, or the connection ends
    uint16_t type = 0;    // an eServiceMessageType, with kServiceNoPayload or without
    uint32_t code = 0;    // command, notification, result of a reply, or level of a log line
    uint32_t length = 0;  // payload bytes that follow; with kServiceNoPayload none follows
    uint32_t tag = 0;     // request number; of a notification the size, of a log line the cut
};
static_assert(sizeof(LServiceMessageHeader) == 16);

inline constexpr uint16_t kServiceMagic = 0x1234;
// Set in the type when the sender had a length but no data: the receiver gets a null pointer.
inline constexpr uint16_t kServiceNoPayload = 0x8000;

enum eServiceMessageType : uint16_t {
    kServiceCommand = 1,        // no reply
    kServiceCommandResult = 2,  // answered by a reply that carries a result
    kServiceCommandData = 3,    // answered by a reply that carries a result and data
    kServiceNotification =
        17,               // service to every client; tag: size of the data as the sender had it
    kServiceReply = 18,   // tag: that of the request
    kServiceLogLine = 19  // text1, NUL, text2, NUL; tag: where text2 begins
};

// Codes of commands and notifications.
enum eServiceCode : uint32_t {
    kServiceRestartWebServer = 1,
    // Told about changed web settings, the engine does nothing and the desktop then sends
    // kServiceRestartWebServer: that is how it has always been.
    kServiceWebSettingsChanged = 0x1000005,
    kServiceRunWebRouting = 0x100000c,
    kServiceStartSoon = 0x100000d,
    kServiceStopSoon = 0x100000e,
    kServiceActivityQuery = 0x100000f,
    kServiceVersionQuery = 0x1000010
};

// Desktop and service fit together when this text is the same; sent with its terminating NUL.
inline constexpr std::string_view kServiceVersion = "5.00EN";
inline constexpr std::string_view kServicePipeName = "quillmarshd";
inline constexpr std::string_view kServiceProcessName = "QuillmarshAgent";

// The bytes of one message: header and payload. `header.length` is sent as it stands.
std::string ServiceMessage(const LServiceMessageHeader& header, std::string_view payload = {});
