// A wake-up between threads that poll() can wait for.
#pragma once

#include <atomic>
#include <new>

#include "platform/LFileDescriptor.h"

// An event counter of the system that is readable while the signal is set. One descriptor, not the
// two of a pipe: every web connection has a signal, and thousands of them must fit below the limit
// on open files. Any thread may use it at any time.
class LSignalObject {
public:
    LSignalObject();  // not set; terminates the program when no descriptor can be had
    // For what is made while the program serves strangers, who may use the descriptors up: has to
    // be asked whether it IsValid. An invalid one is never set.
    explicit LSignalObject(std::nothrow_t);
    LSignalObject(const LSignalObject&) = delete;
    LSignalObject& operator=(const LSignalObject&) = delete;

    bool IsValid() const { return event_.IsOpen(); }
    // Also allowed inside a signal handler. Setting it twice is setting it once.
    void Set() const;
    void Reset() const;
    bool IsSet() const;
    // Waits until it is set; false after `timeoutMs` without that (-1: no limit).
    bool Wait(int timeoutMs = -1) const;
    int ReadDescriptor() const { return event_.Get(); }  // only for poll()

private:
    LFileDescriptor event_;
    // The system's calls order nothing in the language's eyes: what was written before Set is seen
    // behind a Wait that found the signal through this.
    mutable std::atomic<unsigned> sets_{0};
    static_assert(std::atomic<unsigned>::is_always_lock_free);  // for signal handlers
};
