// When the service looks for recurring orders that are due.
#pragma once

#include <ctime>
#include <optional>

// At the first question, whenever another local day has begun, and an hour after the look before.
// A clock that is set, in either direction, or a machine that slept brings the next look forward,
// never pushes it away for more than an hour; looking more often than needed places nothing twice.
class LRecurringClock {
public:
    static constexpr int kHourSeconds = 3600;
    static constexpr int kLongestWaitMs = 60000;  // so that a clock that was set is noticed soon

    // True counts as a look.
    bool IsTimeToLook(std::time_t now);
    // How long to wait before asking again: up to the next local midnight, a minute at most.
    static int WaitMs(std::time_t now);

private:
    std::optional<std::time_t> lastLook_;
};
