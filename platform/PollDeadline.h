// Waiting on descriptors up to a moment, whatever interrupts the wait.
#pragma once

#include <poll.h>

#include <chrono>
#include <cstddef>

// The moment `timeoutMs` from now on the steady clock; never when that is negative.
class LDeadline {
public:
    explicit LDeadline(int timeoutMs);
    // What poll() takes: milliseconds left, rounded up; 0 when it has passed, -1 for never.
    int RemainingMs() const;

private:
    bool never_;
    std::chrono::steady_clock::time_point at_;
};

// poll() that goes on after an interruption by a signal. Returns how many entries are ready, 0
// after the deadline, -1 on an error.
int PollUntil(pollfd* entries, size_t count, const LDeadline& deadline);
