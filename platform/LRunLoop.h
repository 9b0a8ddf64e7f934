// The event loop of a main thread: descriptors that become readable turn into posted events.
#pragma once

#include <cstdint>
#include <deque>
#include <optional>
#include <vector>

#include "platform/LMutex.h"
#include "platform/LSignalObject.h"

class LDeadline;

// A four-letter code such as 'LSnc', first letter in the high byte.
constexpr uint32_t FourLetterCode(const char (&text)[5]) {
    uint32_t code = 0;
    for (int i = 0; i < 4; ++i) code = code << 8 | static_cast<unsigned char>(text[i]);
    return code;
}

struct LEvent {
    uint32_t eventClass = 0;
    uint32_t kind = 0;
    uint32_t parameterName = 0;
    long parameter = 0;
};

// One thread waits, any thread posts (but no signal handler: set a signal that is a source). The
// sources are looked at whenever no posted event is left, so that one which stays readable neither
// piles up events nor holds others back; whoever handles its event must read or reset what made it
// readable.
class LRunLoop {
public:
    // While `descriptor` is readable, each look at the sources posts `event` once. The descriptor
    // stays the caller's and must be removed before it is closed. Only on the waiting thread.
    void AddSource(int descriptor, const LEvent& event);
    void RemoveSource(int descriptor);

    void Post(const LEvent& event);
    // The next event in the order of posting; nothing after `timeoutMs` (-1: no limit).
    std::optional<LEvent> WaitNextEvent(int timeoutMs = -1);

private:
    struct Source {
        int descriptor;
        LEvent event;
    };
    std::optional<LEvent> TakeFirst();
    int PollSources(const LDeadline& deadline);  // as PollUntil

    std::vector<Source> sources_;
    LSignalObject posted_;
    LMutex mutex_;
    std::deque<LEvent> queue_ L_GUARDED_BY(mutex_);
};
