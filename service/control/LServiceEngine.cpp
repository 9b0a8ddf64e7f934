#include "service/control/LServiceEngine.h"

#include <memory>

#include "service/control/LServiceControl.h"
#include "service/control/LServiceControlConnection.h"
#include "service/control/LServiceLog.h"
#include "service/control/LServiceMessageHeader.h"

namespace {

constexpr uint32_t kEventClass = FourLetterCode("LSnc");
constexpr uint32_t kEventKind = FourLetterCode("LSnk");
constexpr uint32_t kEventDescriptor = FourLetterCode("LSso");

// A descriptor that is a source of the main loop for a while.
class LScopedSource {
public:
    LScopedSource(LRunLoop& loop, int descriptor) : loop_(loop), descriptor_(descriptor) {
        loop_.AddSource(descriptor_, {kEventClass, kEventKind, kEventDescriptor, descriptor_});
    }
    ~LScopedSource() { loop_.RemoveSource(descriptor_); }
    LScopedSource(const LScopedSource&) = delete;
    LScopedSource& operator=(const LScopedSource&) = delete;

private:
    LRunLoop& loop_;
    int descriptor_;
};

}  // namespace

LServiceEngineBase::LServiceEngineBase()
    : routing_([this] { EvEngineNotify(kServiceRunWebRouting, nullptr, 0); }) {
    SetServiceLogSink([this](std::string_view text1, std::string_view text2, int level) {
        Log(text1, text2, level);
    });
}

void LServiceEngineBase::StartEngine() {
    SetServiceControlTarget(
        [this](uint32_t code, const void* data, uint32_t size) { Control(code, data, size); });
    SetServiceWebRouting([this] { routing_.Start(); });
    engineRuns_ = true;
    EngineStart();
}

void LServiceEngineBase::Stop() {
    // First the signal alone: it ends the listener as well as every send that waits for a client.
    // The connections stay until the engine has said good-bye through them.
    RequestStop();
    if (engineRuns_) EngineStop();
    engineRuns_ = false;
    SetServiceControlTarget(nullptr);
    SetServiceWebRouting(nullptr);
    routing_.StopAndJoin();
    SetServiceLogSink(nullptr);
    StopAndJoin();
    connections_.StopAll();
}

void LServiceEngineBase::NewConnection(LFileDescriptor pipe) {
    auto connection = std::make_unique<LServiceControlConnection>(*this, std::move(pipe));
    // Without a descriptor or a thread to spare the client finds itself disconnected.
    if (connection->IsValid()) connections_.Start(std::move(connection));
}

void LServiceEngineBase::AddNotifyConnection(LServiceControlConnection& connection) {
    {
        const LRecursiveMutexLock listLock(connectionListMutex_);
        const LRecursiveMutexLock notifyLock(notifyMutex_);
        notifyList_.push_front(&connection);
    }
    WakeUp();
}

void LServiceEngineBase::RemoveNotifyConnection(LServiceControlConnection& connection) {
    const LRecursiveMutexLock listLock(connectionListMutex_);
    const LRecursiveMutexLock notifyLock(notifyMutex_);
    notifyList_.remove(&connection);
}

void LServiceEngineBase::WakeUp() { wake_.Set(); }

void LServiceEngineBase::Wait() {
    const int stopDescriptor = StopSignal().ReadDescriptor();
    const LScopedSource wakeSource(loop_, wake_.ReadDescriptor());
    const LScopedSource stopSource(loop_, stopDescriptor);
    for (;;) {
        HandleWakeUp();
        const std::optional<LEvent> event = loop_.WaitNextEvent();
        if (!event)
            return LServiceLog("The service cannot wait for events any more", {}, kLogError);
        if (!HandleEvent(*event)) return;
    }
}

bool LServiceEngineBase::HandleEvent(const LEvent& event) {
    if (event.eventClass != kEventClass || event.kind != kEventKind) {
        DispatchEvent(event);
        return true;
    }
    return event.parameter != StopSignal().ReadDescriptor();
}

void LServiceEngineBase::HandleWakeUp() {
    if (!wake_.IsSet()) return;
    wake_.Reset();  // before looking: who comes from now on sets it again
    HandlePendingMessages();
    RunQueuedControls();
}

void LServiceEngineBase::HandlePendingMessages() {
    const LRecursiveMutexLock lock(connectionListMutex_);
    for (LServiceControlConnection* connection : notifyList_) connection->HandlePendingMessages();
}

void LServiceEngineBase::RunQueuedControls() {
    std::vector<QueuedControl> queued;
    {
        const LMutexLock lock(queueMutex_);
        queued.swap(queue_);
    }
    for (const QueuedControl& control : queued) {
        if (IsStopRequested()) return;
        EngineControl(control.code, control.data ? control.data->data() : nullptr, control.size);
    }
}

void LServiceEngineBase::Control(uint32_t code, const void* data, uint32_t size) {
    if (std::this_thread::get_id() == mainThread_) return EngineControl(code, data, size);
    QueuedControl control{code, std::nullopt, size};
    if (data != nullptr) control.data.emplace(static_cast<const char*>(data), size);
    {
        const LMutexLock lock(queueMutex_);
        queue_.push_back(std::move(control));
    }
    WakeUp();
}

void LServiceEngineBase::SendToAll(std::string_view message) {
    const LRecursiveMutexLock lock(notifyMutex_);
    for (LServiceControlConnection* connection : notifyList_) connection->SendCom(message);
}

void LServiceEngineBase::EvEngineNotify(uint32_t code, const void* data, uint32_t size) {
    const std::string_view payload = data != nullptr
                                         ? std::string_view(static_cast<const char*>(data), size)
                                         : std::string_view();
    SendToAll(ServiceMessage(
        {kServiceMagic, kServiceNotification, code, static_cast<uint32_t>(payload.size()), size},
        payload));
}

void LServiceEngineBase::Log(std::string_view text1, std::string_view text2, int level) {
    std::string payload(text1);
    payload.append(1, '\0').append(text2).append(1, '\0');
    SendToAll(ServiceMessage(
        {kServiceMagic, kServiceLogLine, static_cast<uint8_t>(level),
         static_cast<uint32_t>(payload.size()), static_cast<uint32_t>(text1.size() + 1)},
        payload));
}
