// Non-blocking sockets with time budgets, and waits that a stop signal ends.
#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>

#include "platform/LFileDescriptor.h"
#include "platform/LSignalObject.h"

enum class LSocketResult { kOk, kStopped, kFailed };

// Makes `fd` non-blocking and close-on-exec.
bool PrepareSocket(int fd);

// Waits until `fd` can be read (or written), at most `timeoutMs` (-1: no limit). kStopped when
// `stop` is set first, kFailed after the time or on an error; a peer that has gone counts as
// readable, so that the read tells.
LSocketResult WaitReadable(int fd, const LSignalObject& stop, int timeoutMs = -1);
LSocketResult WaitWritable(int fd, const LSignalObject& stop, int timeoutMs);

// Receives exactly `size` bytes within `timeoutMs` in all (-1: no limit). kFailed when the peer
// closes first.
LSocketResult ReceiveExactly(int fd, void* buffer, size_t size, const LSignalObject& stop,
                             int timeoutMs);

// Accepts one waiting connection, non-blocking and close-on-exec. Not open when none could be had;
// errno tells why.
LFileDescriptor AcceptSocket(int listening);

// A Unix-domain stream socket listening at `path` (cut to 104 bytes): a stale file there is removed
// first, the socket file gets mode 0777. Not open on failure.
LFileDescriptor ListenUnix(const std::string& path, int backlog);
// Connected, non-blocking, close-on-exec; not open when nothing listens at `path`.
LFileDescriptor ConnectUnix(const std::string& path);
