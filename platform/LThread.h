// Threads with an owner, and threads that run by themselves but are still counted and stopped.
#pragma once

#include <atomic>
#include <condition_variable>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <thread>
#include <vector>

#include "platform/LMutex.h"
#include "platform/LSignalObject.h"

// A thread that belongs to an object. Derive, write ThreadFunction, and call StopAndJoin in the
// destructor of the deriving class: no thread outlives what it works on. Start, StopAndJoin and the
// destructor belong to the owner's thread; the rest may be called from any.
//
// Priorities are two: at kThreadPriorityBehind the system lets everything else go first. Any user
// may change between them, unlike between nice values, so a thread can be raised again.
inline constexpr int kThreadPriorityBehind = 4;
inline constexpr int kThreadPriorityNormal = 20;

class LThread {
public:
    explicit LThread(std::string name);  // shown by the system's tools, cut to 15 bytes there
    virtual ~LThread();
    LThread(const LThread&) = delete;
    LThread& operator=(const LThread&) = delete;

    // False when the thread runs already or cannot be made. May be called again for a thread that
    // has ended.
    bool Start(int priority = kThreadPriorityNormal);
    // Of the running thread, from any thread; nothing when it does not run.
    void SetPriority(int priority) const;
    static int PriorityOfCaller();
    // Asks the thread to end: its stop signal is set. Returns at once. Asked before Start, the
    // thread finds the signal set when it begins.
    void RequestStop() const { stop_.Set(); }
    // Also right for a thread that was never started. The stop signal is not set afterwards.
    void StopAndJoin();
    bool IsRunning() const { return running_; }
    bool IsStopRequested() const { return stop_.IsSet(); }
    const LSignalObject& StopSignal() const { return stop_; }
    const std::string& Name() const { return name_; }

protected:
    virtual void ThreadFunction() = 0;

private:
    void Join();

    std::string name_;
    LSignalObject stop_;
    std::atomic<bool> running_{false};
    std::atomic<int> systemId_{0};  // 0 while it does not run
    std::thread thread_;
};

// What a detached thread works on: derive, write ThreadFunction, hand it to a group.
class LDetachedThread {
public:
    explicit LDetachedThread(std::string name)
        : name_(std::move(name)), ownStop_(std::in_place, std::nothrow), stop_(*ownStop_) {}
    // Shares the stop signal of its owner, who only ever stops all its threads together: one
    // descriptor less for each. `stop` outlives the thread.
    LDetachedThread(std::string name, const LSignalObject& stop)
        : name_(std::move(name)), stop_(stop) {}
    virtual ~LDetachedThread() = default;
    LDetachedThread(const LDetachedThread&) = delete;
    LDetachedThread& operator=(const LDetachedThread&) = delete;

    void RequestStop() const { stop_.Set(); }
    bool IsStopRequested() const { return stop_.IsSet(); }
    const LSignalObject& StopSignal() const { return stop_; }
    const std::string& Name() const { return name_; }

    virtual void ThreadFunction() = 0;

private:
    std::string name_;
    const std::optional<LSignalObject> ownStop_;
    const LSignalObject& stop_;
};

// A group of detached threads: each member lives until its function returns and is then destroyed
// on its own thread, outside the group's lock. The group's destructor stops all members and waits
// for them, so what they work on must outlive the group. Any thread may call anything, but a member
// must not wait for itself in StopAll.
class LDetachedThreadGroup {
public:
    LDetachedThreadGroup() = default;
    ~LDetachedThreadGroup() { StopAll(); }
    LDetachedThreadGroup(const LDetachedThreadGroup&) = delete;
    LDetachedThreadGroup& operator=(const LDetachedThreadGroup&) = delete;

    // Takes the thread over and starts it. False when it cannot be made, for want of a thread or of
    // a descriptor for its stop signal, or while StopAll waits; it is then destroyed.
    bool Start(std::unique_ptr<LDetachedThread> thread);
    // Sets every member's stop signal; returns at once.
    void RequestStopAll();
    // RequestStopAll, then waits until every member has ended and been destroyed.
    void StopAll();
    size_t Count() const;

private:
    static void* ThreadEntry(void* argument);
    void Run(LDetachedThread& thread);
    // Takes `thread` out of the members; it still counts until DestroyTaken.
    std::unique_ptr<LDetachedThread> Take(const LDetachedThread& thread);
    void DestroyTaken(std::unique_ptr<LDetachedThread> thread);

    mutable LRecursiveMutex mutex_;
    std::condition_variable_any ended_;
    std::vector<std::unique_ptr<LDetachedThread>> members_ L_GUARDED_BY(mutex_);  // newest first
    size_t taken_ L_GUARDED_BY(mutex_) = 0;  // out of the members, not yet destroyed
    int stoppers_ L_GUARDED_BY(mutex_) = 0;  // calls of StopAll that wait
};
