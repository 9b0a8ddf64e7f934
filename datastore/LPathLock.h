// Takes turns among the threads of this process before they ask for a file's lock.
#pragma once

#include <chrono>
#include <condition_variable>
#include <cstddef>
#include <mutex>

#include "platform/FileLock.h"

// The file locks alone would do, but a busy one costs a pause of 313 ms at the least where the
// holder needs 10 us. Threads therefore queue here first, readers of one file together. They are
// served in the order of their coming, except that one who has just begun to wait may be overtaken:
// waking a thread for every turn would cost more than the turn. After the store's lock time-out a
// thread goes ahead unserved, just as it does with the file lock; both waits together stay within
// that time. Hold nothing else of the kind meanwhile.
class LPathLock {
public:
    // `pathHash` stands for the file; two files of one hash merely wait for each other.
    LPathLock(size_t pathHash, LFileLockKind kind);
    ~LPathLock();
    LPathLock(const LPathLock&) = delete;
    LPathLock& operator=(const LPathLock&) = delete;

    int RemainingMs() const { return remainingMs_; }  // of the time-out, for the file lock

private:
    using Clock = std::chrono::steady_clock;
    struct Stripe;
    enum class Arrival { kNew, kWaiting };

    static Stripe& StripeOf(size_t pathHash);
    void Enter(Stripe& stripe);
    void WaitForTurn(const Stripe& stripe, std::unique_lock<std::mutex>& lock);
    void Leave(Stripe& stripe);
    bool MayGo(const Stripe& stripe, Arrival arrival) const;
    bool ConflictsWith(const LPathLock& other) const;
    bool IsDue() const;

    const size_t pathHash_;
    const LFileLockKind kind_;
    int remainingMs_ = kLockTimeoutMs;
    // Guarded by the stripe's mutex.
    bool goes_ = false;
    bool wasWoken_ = false;  // to look for itself; once is enough until it is due
    Clock::time_point start_;
    LPathLock* next_ = nullptr;
    std::condition_variable turn_;
};
