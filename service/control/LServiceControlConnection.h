// One client of the control pipe, inside the service.
#pragma once

#include <atomic>
#include <string_view>

#include "platform/LFileDescriptor.h"
#include "platform/LThread.h"
#include "service/control/ServiceMessageIo.h"

class LServiceEngineBase;

// The connection's own thread receives one message at a time, hands it to the service's main thread
// and waits until that has dealt with it. The payload is received here as well, so that a client
// that falls silent in the middle of a message keeps nobody else waiting; one that did not get its
// payload through in time has lost step, and its connection ends.
class LServiceControlConnection final : public LDetachedThread {
public:
    LServiceControlConnection(LServiceEngineBase& service, LFileDescriptor socket);

    // Whether the system had a descriptor for its signal; without one it must not be started.
    bool IsValid() const { return done_.IsValid(); }

    // Acts on the message that waits, if one does. On the main thread, under the service's
    // connection-list mutex, which keeps the connection from going.
    void HandlePendingMessages();
    // Sends a notification or a log line; a client that does not take it is cut off. Under the
    // service's notify mutex, as every send is.
    void SendCom(std::string_view message);

private:
    void ThreadFunction() override;
    bool LetMainThreadHandle();
    void Handle();
    void Reply(uint32_t code, std::string_view data = {});
    // The descriptor itself stays until the connection's thread, which may be waiting on it, ends.
    void CutOff();

    LServiceEngineBase& service_;
    const LFileDescriptor socket_;
    std::atomic<bool> isCutOff_{false};
    // The message belongs to the connection's thread while `pending_` is false, else to the main
    // thread.
    std::atomic<bool> pending_{false};
    LServiceMessageIn message_;
    LSignalObject done_{std::nothrow};
};
