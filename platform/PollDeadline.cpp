#include "platform/PollDeadline.h"

#include <algorithm>
#include <cerrno>

LDeadline::LDeadline(int timeoutMs)
    : never_(timeoutMs < 0),
      at_(std::chrono::steady_clock::now() + std::chrono::milliseconds(std::max(timeoutMs, 0))) {}

int LDeadline::RemainingMs() const {
    if (never_) return -1;
    const auto left =
        std::chrono::ceil<std::chrono::milliseconds>(at_ - std::chrono::steady_clock::now());
    return static_cast<int>(std::max<std::chrono::milliseconds::rep>(left.count(), 0));
}

int PollUntil(pollfd* entries, size_t count, const LDeadline& deadline) {
    int ready = 0;
    do {
        ready = ::poll(entries, count, deadline.RemainingMs());
    } while (ready < 0 && errno == EINTR);
    return ready;
}
