#include "inventory/MovementLock.h"

#include <fcntl.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <chrono>
#include <condition_variable>
#include <deque>
#include <map>
#include <mutex>
#include <string>
#include <thread>
#include <utility>
#include <vector>

#include "datastore/LProfile.h"
#include "platform/FileLock.h"
#include "platform/LFileDescriptor.h"
#include "platform/LMutex.h"

namespace {

using Clock = std::chrono::steady_clock;

// A thread that comes again at once may pass those in front of which nobody has waited this long
// yet: waking another thread for every single change would halve what all of them get done.
constexpr std::chrono::milliseconds kDueAfter(1);
// So often it is looked whether the lock file still lies at its path; that costs more than the
// lock.
constexpr std::chrono::milliseconds kLookAgainAfter(100);

// The queue of one business's threads inside this process.
class LMovementQueue {
public:
    // Waits for its turn; false when `deadline` came first.
    bool Enter(Clock::time_point deadline) {
        std::unique_lock lock(mutex_);
        if (!isBusy_ && !IsFirstDue()) return isBusy_ = true;
        Waiter self;
        waiting_.push_back(&self);
        const bool hasTurn = self.turn.wait_until(lock, deadline, [&] {
            return self.isAdmitted || (!isBusy_ && waiting_.front() == &self);
        });
        if (!self.isAdmitted) std::erase(waiting_, &self);
        if (hasTurn) isBusy_ = true;
        return hasTurn;
    }
    // Hands over to the thread that has waited longest when it is due, so that none starves.
    void Leave() {
        const std::lock_guard lock(mutex_);
        isBusy_ = IsFirstDue();
        if (waiting_.empty()) return;
        Waiter& first = *waiting_.front();
        first.isAdmitted = isBusy_;
        if (isBusy_) waiting_.pop_front();
        first.turn.notify_one();  // under the mutex: the waiter goes with its signal
    }

    // The open lock file of that business, for whoever has the turn. It is kept, and opened anew
    // when it was removed (a restored business) or another file stands there now, and in a forked
    // child, which would share its parent's lock otherwise. -1 when it cannot be opened.
    int LockFile(const std::string& folder, Clock::time_point now) {
        if (IsStillTheOne(folder, now)) return file_.Get();
        file_ = LFileDescriptor(::open(PathIn(folder).c_str(), O_RDWR | O_CREAT | O_CLOEXEC, 0666));
        struct stat status {};
        if (!file_.IsOpen() || ::fstat(file_.Get(), &status) != 0) return -1;
        inode_ = status.st_ino;
        device_ = status.st_dev;
        owner_ = ::getpid();
        lookedAt_ = now;
        return file_.Get();
    }

private:
    static std::string PathIn(const std::string& folder) { return folder + "/.movements"; }
    bool IsStillTheOne(const std::string& folder, Clock::time_point now) {
        struct stat status {};
        if (owner_ != ::getpid() || !file_.IsOpen() || ::fstat(file_.Get(), &status) != 0 ||
            status.st_nlink == 0) {
            return false;
        }
        if (now - lookedAt_ < kLookAgainAfter) return true;
        lookedAt_ = now;
        return ::stat(PathIn(folder).c_str(), &status) == 0 && status.st_ino == inode_ &&
               status.st_dev == device_;
    }
    struct Waiter {
        std::condition_variable turn;
        Clock::time_point since = Clock::now();
        bool isAdmitted = false;
    };
    bool IsFirstDue() const {
        return !waiting_.empty() && Clock::now() - waiting_.front()->since >= kDueAfter;
    }

    std::mutex mutex_;  // guards the next two
    bool isBusy_ = false;
    std::deque<Waiter*> waiting_;
    LFileDescriptor file_;  // this and the rest belong to whoever has the turn
    ino_t inode_ = 0;
    dev_t device_ = 0;
    pid_t owner_ = 0;
    Clock::time_point lookedAt_;
};

// One for each business that this process has moved stock of; they stay.
LMovementQueue& QueueOf(const std::string& folder) {
    static LMutex mutex;
    static std::map<std::string, LMovementQueue> queues;
    const LMutexLock lock(mutex);
    return queues[folder];
}

// Short pauses and many attempts. The doubling pauses of the record locks would let a process that
// is at it without a break win every time, until the other goes ahead unlocked and loses a change.
bool LockFileUntil(int fd, Clock::time_point deadline) {
    constexpr std::chrono::microseconds kLongestPause(2000);
    for (std::chrono::microseconds pause(50);; pause = std::min(2 * pause, kLongestPause)) {
        if (::flock(fd, LOCK_EX | LOCK_NB) == 0) return true;
        if (errno != EWOULDBLOCK && errno != EINTR) return false;
        if (Clock::now() + pause >= deadline) return false;
        std::this_thread::sleep_for(pause);
    }
}

// What one thread holds of one business.
struct LHeldMovement {
    std::string folder;
    LMovementQueue* queue = nullptr;  // none: went ahead without its turn
    int lockedFile = -1;              // the queue's
    bool isTurn = false;              // nobody else was at it to the end of the wait
    int depth = 1;
};
thread_local std::vector<LHeldMovement> heldMovements;

LHeldMovement Acquire(const std::string& folder, int timeoutMs) {
    const Clock::time_point now = Clock::now();
    const Clock::time_point deadline = now + std::chrono::milliseconds(timeoutMs);
    LMovementQueue& queue = QueueOf(folder);
    if (!queue.Enter(deadline)) return {folder};
    const int file = queue.LockFile(folder, now);
    const bool isLocked = file >= 0 && LockFileUntil(file, deadline);
    // Where the file cannot be had or locked at all, nobody else can have it either.
    const bool isOthers = file >= 0 && !isLocked && (errno == EWOULDBLOCK || errno == EINTR);
    return {folder, &queue, isLocked ? file : -1, !isOthers};
}

}  // namespace

LMovementLock::LMovementLock(const LProfile& profile, int timeoutMs)
    : folder_(profile.DatabaseFolder()) {
    for (LHeldMovement& held : heldMovements) {
        if (held.folder != folder_) continue;
        ++held.depth;
        isTurn_ = held.isTurn;
        return;
    }
    heldMovements.push_back(Acquire(folder_, timeoutMs));
    isTurn_ = heldMovements.back().isTurn;
}

LMovementLock::~LMovementLock() {
    const auto held = std::find_if(heldMovements.begin(), heldMovements.end(),
                                   [&](const LHeldMovement& h) { return h.folder == folder_; });
    if (--held->depth > 0) return;
    // First the file: the next thread of this process asks for it at once.
    if (held->lockedFile >= 0) ::flock(held->lockedFile, LOCK_UN);
    if (held->queue != nullptr) held->queue->Leave();
    heldMovements.erase(held);
}
