// The other end of the control pipe: how the desktop, or any program beside the service, talks to
// it.
#pragma once

#include <cstdint>
#include <functional>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "platform/LFileDescriptor.h"
#include "platform/LMutex.h"
#include "platform/LSignalObject.h"
#include "platform/LThread.h"
#include "service/control/ServiceMessageIo.h"

// The owner's side of a proxy. Called on the main thread.
class LEngineNotifyHandler {
public:
    virtual ~LEngineNotifyHandler() = default;
    // `data` may be null with any size.
    virtual void EvEngineNotify(uint32_t code, const void* data, uint32_t size) = 0;
    // A log line of the service, for the status display.
    virtual void EvServiceLog(const std::string& text1, const std::string& text2, int level) = 0;
};

// Runs a piece of work on the main thread soon; any thread may call.
using LMainThreadPoster = std::function<void(std::function<void()>)>;

struct LServiceProxyTimes {
    int replyMs = 10000;
    int payloadMs = 10000;
    int reconnectMs = 100;
};

// Made, started, stopped and destroyed on the main thread; the newest is the process's current one
// and gives way to the one before when it goes. Its own thread reads what the service sends, and
// connects again when the service has gone. Control and its sisters may be called by any thread but
// that one.
class LServiceEngineProxy {
public:
    // `owner` may be null, and must outlive the proxy. Without `post` what the service sends of its
    // own accord is dropped, and Notify acts at once.
    LServiceEngineProxy(LEngineNotifyHandler* owner, LMainThreadPoster post,
                        LServiceProxyTimes times = {});
    ~LServiceEngineProxy();
    LServiceEngineProxy(const LServiceEngineProxy&) = delete;
    LServiceEngineProxy& operator=(const LServiceEngineProxy&) = delete;

    static LServiceEngineProxy* Instance();  // null when there is none

    // Connects to a running service. False when nobody answers; nothing runs then.
    bool Start();
    // As Start, but has the launcher start the service where nobody answers; when that does not
    // help either, the log says so. Nothing when connected.
    bool ServiceStart();
    void Stop();
    bool IsConnected() const;

    // Sends a command that has no reply. Nothing when not connected. With `data` null and a size
    // only the size is sent.
    void Control(uint32_t code, const void* data = nullptr, uint32_t size = 0);
    // Sends a command and waits for its result. 0 when not connected, when the service goes away or
    // when no reply came in time.
    uint32_t ControlWithResult(uint32_t code, const void* data = nullptr, uint32_t size = 0);
    // As before; the reply's data replaces `out`, which is empty when there was none.
    uint32_t ControlWithReturnData(uint32_t code, const void* data, uint32_t size,
                                   std::vector<unsigned char>& out);

    // A notification of the process's own, handled on the main thread like one of the service:
    // kServiceStartSoon starts the service first, kServiceStopSoon lets it go afterwards.
    void Notify(uint32_t code);

private:
    struct Reply {
        uint32_t awaitedTag = 0;
        bool isAwaited = false;
        uint32_t result = 0;
        std::string data;
    };
    // A member, not a base: deriving classes need not know that a thread works on them.
    class Reader final : public LThread {
    public:
        explicit Reader(LServiceEngineProxy& proxy)
            : LThread("LServiceEngineProxy"), proxy_(proxy) {}
        ~Reader() override { StopAndJoin(); }

    private:
        void ThreadFunction() override { proxy_.ReadUntilStopped(); }
        LServiceEngineProxy& proxy_;
    };
    void ReadUntilStopped();
    bool ReceiveMessage();
    void HandleMessage(LServiceMessageIn message);
    void HandleReply(LServiceMessageIn message);
    void HandleLogLine(LServiceMessageIn message);
    void HandleNotification(LServiceMessageIn message);
    bool Reconnect();
    bool OpenSocket();
    void DropSocket();
    void Post(std::function<void()> work);
    void EvQueuedNotifyData(uint32_t code, const void* data, uint32_t size);

    uint32_t Request(uint16_t type, uint32_t code, const void* data, uint32_t size,
                     std::vector<unsigned char>* out);
    // Numbers the message and sends it; a reply is awaited when `awaits`.
    bool SendRequest(uint16_t type, uint32_t code, const void* data, uint32_t size, bool awaits);

    LEngineNotifyHandler* const owner_;
    const LMainThreadPoster post_;
    const LServiceProxyTimes times_;
    const std::string path_;
    LServiceEngineProxy* const previous_;
    // Work that is posted but not yet run must find out that the proxy has gone.
    const std::shared_ptr<const bool> alive_ = std::make_shared<const bool>(true);

    LMutex requestMutex_;  // one request at a time; taken before the other two
    mutable LMutex socketMutex_;
    // Only the proxy's thread, and the owner when that does not run, takes the socket away.
    LFileDescriptor socket_ L_GUARDED_BY(socketMutex_);
    uint32_t requestCount_ L_GUARDED_BY(socketMutex_) = 0;
    LMutex replyMutex_;  // taken after socketMutex_
    Reply reply_ L_GUARDED_BY(replyMutex_);
    LSignalObject replied_;
    Reader reader_{*this};  // last: it works on all of the above
};

// Lives for one errand.
class LServiceEngineProxyTemporary final : public LServiceEngineProxy {
public:
    LServiceEngineProxyTemporary() : LServiceEngineProxy(nullptr, nullptr) {}
};

// For as long as it lives there is a current proxy: the process's own when that is connected,
// otherwise a temporary one that has tried to connect. Only on the main thread.
class LServiceEngineProxyHandle {
public:
    LServiceEngineProxyHandle();
    LServiceEngineProxy& Proxy() const { return *LServiceEngineProxy::Instance(); }

private:
    std::unique_ptr<LServiceEngineProxyTemporary> temporary_;
};
