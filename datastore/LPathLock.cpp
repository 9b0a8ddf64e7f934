#include "datastore/LPathLock.h"

#include <algorithm>
#include <array>

namespace {

// So long a thread may be overtaken. Some hundred turns fit into it.
constexpr std::chrono::milliseconds kPatience(1);
constexpr std::chrono::milliseconds kTimeout(kLockTimeoutMs);

}  // namespace

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

bool LPathLock::ConflictsWith(const LPathLock& other) const {
    const bool bothRead = kind_ == LFileLockKind::kShared && other.kind_ == LFileLockKind::kShared;
    return pathHash_ == other.pathHash_ && !bothRead;
}

bool LPathLock::IsDue() const { return Clock::now() - start_ >= kPatience; }

// Whether nobody stands in the way: nobody who works, and nobody who waits in front. A new one
// passes those whose patience is not yet at its end.
bool LPathLock::MayGo(const Stripe& stripe, Arrival arrival) const {
    bool isInFront = true;
    for (const LPathLock* other = stripe.first; other != nullptr; other = other->next_) {
        if (other == this) {
            isInFront = false;
        } else if (ConflictsWith(*other)) {
            if (other->goes_) return false;
            if (isInFront && (arrival == Arrival::kWaiting || other->IsDue())) return false;
        }
    }
    return true;
}

LPathLock::LPathLock(size_t pathHash, LFileLockKind kind) : pathHash_(pathHash), kind_(kind) {
    Enter(StripeOf(pathHash));
}

LPathLock::~LPathLock() { Leave(StripeOf(pathHash_)); }

void LPathLock::Enter(Stripe& stripe) {
    std::unique_lock lock(stripe.mutex);
    LPathLock** last = &stripe.first;
    while (*last != nullptr) last = &(*last)->next_;
    *last = this;
    goes_ = MayGo(stripe, Arrival::kNew);
    if (!goes_) WaitForTurn(stripe, lock);
}

void LPathLock::WaitForTurn(const Stripe& stripe, std::unique_lock<std::mutex>& lock) {
    start_ = Clock::now();
    Clock::time_point now = start_;
    while (!goes_ && now - start_ < kTimeout) {
        turn_.wait_until(lock, start_ + (now - start_ < kPatience ? kPatience : kTimeout));
        now = Clock::now();
        if (MayGo(stripe, Arrival::kWaiting)) goes_ = true;
    }
    goes_ = true;
    const auto waitedMs = std::chrono::duration_cast<std::chrono::milliseconds>(now - start_);
    remainingMs_ = static_cast<int>((kTimeout - std::min(waitedMs, kTimeout)).count());
}

// Whose patience has ended is served now. Another one is woken to see for itself, if nobody passes
// it meanwhile.
void LPathLock::Leave(Stripe& stripe) {
    const std::lock_guard lock(stripe.mutex);
    LPathLock** at = &stripe.first;
    while (*at != this) at = &(*at)->next_;
    *at = next_;
    for (LPathLock* waiter = stripe.first; waiter != nullptr; waiter = waiter->next_) {
        if (waiter->goes_ || !ConflictsWith(*waiter)) continue;
        if (!waiter->MayGo(stripe, Arrival::kWaiting)) continue;
        if (waiter->IsDue()) {
            waiter->goes_ = true;
        } else if (waiter->wasWoken_) {
            continue;
        }
        waiter->wasWoken_ = true;
        waiter->turn_.notify_one();
    }
}
