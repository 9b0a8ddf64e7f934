#include "platform/LSignalObject.h"

#include <poll.h>
#include <sys/eventfd.h>
#include <unistd.h>

#include <cerrno>
#include <chrono>
#include <cstdint>
#include <cstdio>
#include <cstdlib>

#include "platform/PollDeadline.h"

LSignalObject::LSignalObject() : LSignalObject(std::nothrow) {
    if (IsValid()) return;
    std::perror("cannot make a signal object");
    std::abort();
}

LSignalObject::LSignalObject(std::nothrow_t) : event_(::eventfd(0, EFD_CLOEXEC | EFD_NONBLOCK)) {}

void LSignalObject::Set() const {
    const int error = errno;  // a signal handler must leave it alone
    const uint64_t one = 1;
    sets_.fetch_add(1, std::memory_order_release);
    // It can only fail when the counter is full, and then the signal is set.
    [[maybe_unused]] const ssize_t written = ::write(event_.Get(), &one, sizeof one);
    errno = error;
}

void LSignalObject::Reset() const {
    uint64_t count = 0;
    // It only fails when the counter is 0, and then nothing is set.
    [[maybe_unused]] const ssize_t size = ::read(event_.Get(), &count, sizeof count);
}

bool LSignalObject::IsSet() const { return Wait(0); }

bool LSignalObject::Wait(int timeoutMs) const {
    pollfd entry{event_.Get(), POLLIN, 0};
    if (!IsValid() || PollUntil(&entry, 1, LDeadline(timeoutMs)) <= 0) return false;
    static_cast<void>(sets_.load(std::memory_order_acquire));
    return true;
}
