// The frame of the background service: listens for control clients, deals with their messages on
// the main thread, and passes notifications and log lines to them all.
#pragma once

#include <cstdint>
#include <forward_list>
#include <optional>
#include <string>
#include <string_view>
#include <thread>
#include <vector>

#include "platform/LMutex.h"
#include "platform/LRunLoop.h"
#include "platform/LSignalObject.h"
#include "platform/LThread.h"
#include "service/control/LPipeListener.h"
#include "service/control/LWebRoutingRunner.h"

class LServiceControlConnection;

// One at most in a process, made and destroyed on the main thread. It is the listener thread
// itself; that thread's stop signal is what ends the service, so RequestStop() asks the whole
// service to end: from any thread, and from a signal handler.
//
// Locks: the connection-list mutex is taken before the notify mutex wherever both are held. The
// list of connections changes only under both, so either is enough to read it.
class LServiceEngineBase : public LPipeListener {
public:
    LServiceEngineBase();
    ~LServiceEngineBase() override = default;  // the deriving class has called Stop

    // Starts the engine. From now on LServiceControl reaches it.
    void StartEngine();
    // The main loop: returns when the service is to end.
    void Wait();
    // Ends everything: the engine (if it was started), the listener, the connections. May be
    // called again. Log lines of the engine's end still reach the clients.
    void Stop();

    // Runs the engine's Control: at once on the main thread, otherwise soon, with a copy of the
    // data. `data` may be null with any size.
    void Control(uint32_t code, const void* data, uint32_t size);
    // To every connected client; `data` may be null with any size. Any thread.
    void EvEngineNotify(uint32_t code, const void* data, uint32_t size);
    void Log(std::string_view text1, std::string_view text2, int level);

    // Events of the main loop that are none of the service's own.
    LRunLoop& MainLoop() { return loop_; }
    size_t ConnectionCount() const { return connections_.Count(); }

    // For the connections.
    void AddNotifyConnection(LServiceControlConnection& connection);
    void RemoveNotifyConnection(LServiceControlConnection& connection);
    void WakeUp();
    LRecursiveMutex& NotifyMutex() { return notifyMutex_; }

protected:
    void NewConnection(LFileDescriptor pipe) override;
    virtual void EngineStart() = 0;
    virtual void EngineStop() = 0;
    virtual void EngineControl(uint32_t code, const void* data, uint32_t size) = 0;
    virtual void DispatchEvent(const LEvent&) {}

private:
    struct QueuedControl {
        uint32_t code;
        std::optional<std::string> data;
        uint32_t size;
    };
    void SendToAll(std::string_view message);
    void HandleWakeUp();
    void HandlePendingMessages();
    void RunQueuedControls();
    bool HandleEvent(const LEvent& event);  // false: it was the end

    const std::thread::id mainThread_ = std::this_thread::get_id();
    bool engineRuns_ = false;  // main thread only
    LRunLoop loop_;
    LSignalObject wake_;
    LRecursiveMutex connectionListMutex_, notifyMutex_;
    std::forward_list<LServiceControlConnection*> notifyList_;  // newest first
    LMutex queueMutex_;
    std::vector<QueuedControl> queue_ L_GUARDED_BY(queueMutex_);
    LWebRoutingRunner routing_;
    LDetachedThreadGroup connections_;  // last: its threads work on all of the above
};

// `Engine` has Start(), Stop() and Control(code, data, size), all called on the main thread only.
template <typename Engine>
class LServiceEngine final : public LServiceEngineBase {
public:
    ~LServiceEngine() override { Stop(); }
    Engine& GetEngine() { return engine_; }

private:
    void EngineStart() override { engine_.Start(); }
    void EngineStop() override { engine_.Stop(); }
    void EngineControl(uint32_t code, const void* data, uint32_t size) override {
        engine_.Control(code, data, size);
    }
    Engine engine_;
};
