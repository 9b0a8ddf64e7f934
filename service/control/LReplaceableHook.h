// A function that may be replaced while other threads call it.
#pragma once

#include <functional>
#include <mutex>
#include <shared_mutex>

template <typename... Arguments>
class LReplaceableHook {
public:
    // Afterwards no thread is inside the old function. Not from inside it.
    void Set(std::function<void(Arguments...)> hook) {
        const std::unique_lock lock(mutex_);
        hook_ = std::move(hook);
    }
    bool IsSet() const {
        const std::shared_lock lock(mutex_);
        return hook_ != nullptr;
    }
    // False when there is nobody to call. Several threads may be inside at a time.
    bool Call(Arguments... arguments) const {
        const std::shared_lock lock(mutex_);
        if (!hook_) return false;
        hook_(arguments...);
        return true;
    }

private:
    mutable std::shared_mutex mutex_;
    std::function<void(Arguments...)> hook_;
};
