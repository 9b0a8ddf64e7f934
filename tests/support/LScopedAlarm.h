// Signals that interrupt whatever waits.
#pragma once

#include <csignal>

// While it lives, SIGALRM rings every few milliseconds and does nothing but interrupt system calls.
// One at a time.
class LScopedAlarm {
public:
    LScopedAlarm();
    ~LScopedAlarm();
    LScopedAlarm(const LScopedAlarm&) = delete;
    LScopedAlarm& operator=(const LScopedAlarm&) = delete;

private:
    struct sigaction old_ {};
};
