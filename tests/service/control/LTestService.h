// A service that runs inside a test.
#pragma once

#include <atomic>
#include <cstdint>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <thread>
#include <vector>

#include "platform/LMutex.h"
#include "platform/LSignalObject.h"
#include "service/control/LServiceEngine.h"
#include "tests/support/LTempFolder.h"

// What an engine was ordered to do.
struct LSeenControl {
    uint32_t code = 0;
    std::optional<std::string> data;  // none: the pointer was null
    uint32_t size = 0;
    std::thread::id thread;
};

// Remembers its orders.
class LTestEngine {
public:
    void Start();
    void Stop();
    void Control(uint32_t code, const void* data, uint32_t size);

    std::vector<LSeenControl> Seen();
    // The orders once there are `count`.
    std::vector<LSeenControl> WaitForSeen(size_t count);

private:
    LMutex mutex_;
    std::vector<LSeenControl> seen_ L_GUARDED_BY(mutex_);
};

// Runs on a thread of its own, which is the service's main thread, at the service's pipe in the
// home of the test.
class LTestService {
public:
    LTestService();
    ~LTestService();  // asks it to stop and waits
    LTestService(const LTestService&) = delete;
    LTestService& operator=(const LTestService&) = delete;

    static std::string Path();
    LServiceEngine<LTestEngine>& Service() { return *service_.load(); }
    LTestEngine& Engine() { return Service().GetEngine(); }
    std::thread::id MainThread() const { return thread_.get_id(); }
    // Whether Wait() came back by itself in time.
    bool HasEnded(int withinMs) const { return ended_.Wait(withinMs); }

private:
    void Run();

    // On the thread's stack; read and dropped through the atomics, which the sanitizer sees.
    std::atomic<LServiceEngine<LTestEngine>*> service_{nullptr};
    std::atomic<bool> isDone_{false};
    LSignalObject ready_, ended_, mayGo_;
    std::thread thread_;
};

// The lines that were logged while it lives.
class LLogRecorder {
public:
    LLogRecorder();
    ~LLogRecorder();
    bool Holds(const std::string& part);

private:
    LMutex mutex_;
    std::string lines_ L_GUARDED_BY(mutex_);
};

// Tries until it holds, for a few seconds.
bool Becomes(const std::function<bool()>& condition, int withinMs = 10000);

size_t CountDescriptors();
size_t CountThreads();
