#include "datastore/LPathLock.h"

#include <array>
#include <mutex>

// The queue of the files that share it: those who work and those who wait, in the order of their
// coming.
struct LPathLock::Stripe {
    std::mutex mutex;
    LPathLock* first = nullptr;
};

LPathLock::Stripe& LPathLock::StripeOf(size_t pathHash) {
    static std::array<Stripe, 64> stripes;
    return stripes[pathHash % stripes.size()];
}

// Whether nobody before `waiter` stands in its way.
bool LPathLock::MayGo(const Stripe& stripe, const LPathLock& waiter) {
    for (const LPathLock* other = stripe.first; other != &waiter; other = other->next_) {
        const bool bothRead =
            other->kind_ == LFileLockKind::kShared && waiter.kind_ == LFileLockKind::kShared;
        if (other->pathHash_ == waiter.pathHash_ && !bothRead) return false;
    }
    return true;
}

LPathLock::LPathLock(size_t pathHash, LFileLockKind kind) : pathHash_(pathHash), kind_(kind) {
    Stripe& stripe = StripeOf(pathHash);
    std::unique_lock lock(stripe.mutex);
    LPathLock** last = &stripe.first;
    while (*last != nullptr) last = &(*last)->next_;
    *last = this;
    goes_ = MayGo(stripe, *this);
    if (goes_) return;

    using Clock = std::chrono::steady_clock;
    const Clock::time_point start = Clock::now();
    turn_.wait_until(lock, start + std::chrono::milliseconds(kLockTimeoutMs),
                     [this] { return goes_; });
    const auto waited =
        std::chrono::duration_cast<std::chrono::milliseconds>(Clock::now() - start).count();
    remainingMs_ = waited >= kLockTimeoutMs ? 0 : kLockTimeoutMs - static_cast<int>(waited);
}

LPathLock::~LPathLock() {
    Stripe& stripe = StripeOf(pathHash_);
    const std::lock_guard lock(stripe.mutex);
    LPathLock** at = &stripe.first;
    while (*at != this) at = &(*at)->next_;
    *at = next_;
    for (LPathLock* waiter = stripe.first; waiter != nullptr; waiter = waiter->next_) {
        if (waiter->goes_ || !MayGo(stripe, *waiter)) continue;
        waiter->goes_ = true;
        waiter->turn_.notify_one();
    }
}
