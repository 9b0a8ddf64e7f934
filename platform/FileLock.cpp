#include "platform/FileLock.h"

#include <sys/file.h>

#include <cerrno>
#include <ctime>

namespace {

bool TryLock(int fd, int operation) {
    int result = 0;
    do {
        result = ::flock(fd, operation | LOCK_NB);
    } while (result != 0 && errno == EINTR);
    return result == 0;
}

void SleepMs(long long ms) {
    timespec left{static_cast<time_t>(ms / 1000), static_cast<long>(ms % 1000 * 1000000)};
    while (::clock_nanosleep(CLOCK_MONOTONIC, 0, &left, &left) == EINTR) {
    }
}

}  // namespace

bool flocktimed(int fd, LFileLockKind kind, int timeoutMs) {
    const int operation = kind == LFileLockKind::kShared ? LOCK_SH : LOCK_EX;
    for (long long pauseMs = timeoutMs / 32 + 1;; pauseMs *= 2) {
        if (TryLock(fd, operation)) return true;
        if (errno != EWOULDBLOCK || pauseMs >= timeoutMs) return false;
        SleepMs(pauseMs);
    }
}
