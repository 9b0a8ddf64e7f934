#include "service/control/LServiceEngineProxy.h"

#include <sys/socket.h>

#include <algorithm>
#include <atomic>

#include "service/control/LNamedPipeRef.h"
#include "service/control/LServiceControl.h"
#include "service/control/LServiceLog.h"

namespace {

std::atomic<LServiceEngineProxy*> currentProxy{nullptr};

std::string_view AsBytes(const void* data, uint32_t size) {
    if (data == nullptr) return {};
    return {static_cast<const char*>(data), size};
}

}  // namespace

LServiceEngineProxy::LServiceEngineProxy(LEngineNotifyHandler* owner, LMainThreadPoster post,
                                         LServiceProxyTimes times)
    : owner_(owner),
      post_(std::move(post)),
      times_(times),
      path_(LNamedPipeRef::MakeFilePath(kServicePipeName)),
      previous_(currentProxy.exchange(this)) {}

LServiceEngineProxy::~LServiceEngineProxy() {
    LServiceEngineProxy* self = this;
    currentProxy.compare_exchange_strong(self, previous_);
    Stop();
}

LServiceEngineProxy* LServiceEngineProxy::Instance() { return currentProxy; }

bool LServiceEngineProxy::IsConnected() const {
    const LMutexLock lock(socketMutex_);
    return socket_.IsOpen();
}

bool LServiceEngineProxy::Start() {
    if (!OpenSocket()) return false;
    // It runs already where it was trying to connect again.
    reader_.Start(kThreadPriorityBehind);
    if (reader_.IsRunning()) return true;
    DropSocket();
    return false;
}

bool LServiceEngineProxy::ServiceStart() {
    if (IsConnected() || Start()) return true;
    if (const auto& startSoon = GetServiceLauncher().startSoon) startSoon();
    if (Start()) return true;
    LServiceLog("Unable to start the background service!.", {}, kLogError);
    return false;
}

void LServiceEngineProxy::Stop() {
    reader_.StopAndJoin();
    DropSocket();
}

bool LServiceEngineProxy::OpenSocket() {
    const LMutexLock lock(socketMutex_);
    if (!socket_.IsOpen()) socket_ = LNamedPipeRef::Open(path_);
    return socket_.IsOpen();
}

void LServiceEngineProxy::DropSocket() {
    const LMutexLock lock(socketMutex_);
    socket_.Close();
    const LMutexLock replyLock(replyMutex_);
    if (reply_.isAwaited) replied_.Set();  // it cannot come any more
}

void LServiceEngineProxy::ReadUntilStopped() {
    for (;;) {
        while (ReceiveMessage()) {
        }
        DropSocket();
        if (!Reconnect()) return;
    }
}

bool LServiceEngineProxy::Reconnect() {
    while (!reader_.StopSignal().Wait(times_.reconnectMs)) {
        if (OpenSocket()) return true;
    }
    return false;
}

bool LServiceEngineProxy::ReceiveMessage() {
    int fd = -1;
    {
        const LMutexLock lock(socketMutex_);
        fd = socket_.Get();
    }
    LServiceMessageIn message;
    if (!ReceiveServiceMessage(fd, message, reader_.StopSignal(), times_.payloadMs)) return false;
    HandleMessage(std::move(message));
    return true;
}

void LServiceEngineProxy::HandleMessage(LServiceMessageIn message) {
    switch (message.header.type) {
        case kServiceNotification:
            return HandleNotification(std::move(message));
        case kServiceReply:
            return HandleReply(std::move(message));
        case kServiceLogLine:
            return HandleLogLine(std::move(message));
        default:
            return;
    }
}

void LServiceEngineProxy::HandleNotification(LServiceMessageIn message) {
    Post([this, message = std::move(message)] {
        // The tag tells the size where no data came; where data came, only what is there counts.
        const uint32_t size = message.payload ? message.header.length : message.header.tag;
        EvQueuedNotifyData(message.header.code, message.Data(), size);
    });
}

void LServiceEngineProxy::HandleReply(LServiceMessageIn message) {
    const LMutexLock lock(replyMutex_);
    // The asker of any other has given up.
    if (!reply_.isAwaited || message.header.tag != reply_.awaitedTag) return;
    reply_.isAwaited = false;
    reply_.result = message.header.code;
    reply_.data = std::move(message.payload).value_or("");
    replied_.Set();
}

void LServiceEngineProxy::HandleLogLine(LServiceMessageIn message) {
    if (!message.payload || message.payload->size() < 2) return;
    std::string& payload = *message.payload;
    const size_t cut = std::clamp<size_t>(message.header.tag, 1, payload.size() - 1);
    payload[cut - 1] = '\0';
    payload.back() = '\0';
    // Each text ends at its first NUL, wherever the sender has put one.
    Post([this, text1 = std::string(payload.c_str()), text2 = std::string(payload.c_str() + cut),
          level = static_cast<int>(message.header.code)] {
        if (owner_ != nullptr) owner_->EvServiceLog(text1, text2, level);
    });
}

void LServiceEngineProxy::Post(std::function<void()> work) {
    if (!post_) return;
    post_([alive = std::weak_ptr(alive_), work = std::move(work)] {
        if (!alive.expired()) work();
    });
}

void LServiceEngineProxy::Notify(uint32_t code) {
    if (!post_) return EvQueuedNotifyData(code, nullptr, 0);
    Post([this, code] { EvQueuedNotifyData(code, nullptr, 0); });
}

void LServiceEngineProxy::EvQueuedNotifyData(uint32_t code, const void* data, uint32_t size) {
    if (code == kServiceStartSoon) ServiceStart();
    if (owner_ != nullptr) owner_->EvEngineNotify(code, data, size);
    if (code != kServiceStopSoon || !IsConnected()) return;
    Stop();
    if (const auto& stopSoon = GetServiceLauncher().stopSoon) stopSoon();
}

void LServiceEngineProxy::Control(uint32_t code, const void* data, uint32_t size) {
    SendRequest(kServiceCommand, code, data, size, false);
}

uint32_t LServiceEngineProxy::ControlWithResult(uint32_t code, const void* data, uint32_t size) {
    return Request(kServiceCommandResult, code, data, size, nullptr);
}

uint32_t LServiceEngineProxy::ControlWithReturnData(uint32_t code, const void* data, uint32_t size,
                                                    std::vector<unsigned char>& out) {
    out.clear();
    return Request(kServiceCommandData, code, data, size, &out);
}

bool LServiceEngineProxy::SendRequest(uint16_t type, uint32_t code, const void* data, uint32_t size,
                                      bool awaits) {
    const LMutexLock lock(socketMutex_);
    if (!socket_.IsOpen()) return false;
    if (data == nullptr && size != 0) type |= kServiceNoPayload;
    const LServiceMessageHeader header{kServiceMagic, type, code, size, ++requestCount_};
    if (awaits) {
        const LMutexLock replyLock(replyMutex_);
        replied_.Reset();
        reply_ = {header.tag, true, 0, {}};
    }
    const LSendResult result =
        SendServiceMessage(socket_.Get(), ServiceMessage(header, AsBytes(data, size)),
                           reader_.StopSignal(), kReplySendBudget);
    // After half a message the service would take the next one for the rest: connect anew.
    if (result == LSendResult::kPartlySent) ::shutdown(socket_.Get(), SHUT_RDWR);
    return result == LSendResult::kSent;
}

uint32_t LServiceEngineProxy::Request(uint16_t type, uint32_t code, const void* data, uint32_t size,
                                      std::vector<unsigned char>* out) {
    const LMutexLock turn(requestMutex_);
    if (!SendRequest(type, code, data, size, true)) return 0;
    reader_.SetPriority(LThread::PriorityOfCaller());  // whoever waits for it must not wait longer
    replied_.Wait(times_.replyMs);
    reader_.SetPriority(kThreadPriorityBehind);
    const LMutexLock lock(replyMutex_);
    reply_.isAwaited = false;
    if (out != nullptr) out->assign(reply_.data.begin(), reply_.data.end());
    return reply_.result;
}

LServiceEngineProxyHandle::LServiceEngineProxyHandle() {
    const LServiceEngineProxy* const current = LServiceEngineProxy::Instance();
    if (current != nullptr && current->IsConnected()) return;
    temporary_ = std::make_unique<LServiceEngineProxyTemporary>();
    temporary_->Start();
}
