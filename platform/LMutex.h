// Mutexes that Clang's thread-safety analysis understands; other compilers see plain mutexes.
#pragma once

#include <chrono>
#include <condition_variable>
#include <mutex>

#if defined(__clang__)
#define L_THREAD_ANNOTATION(x) __attribute__((x))
#else
#define L_THREAD_ANNOTATION(x)
#endif
#define L_CAPABILITY(x) L_THREAD_ANNOTATION(capability(x))
#define L_SCOPED_CAPABILITY L_THREAD_ANNOTATION(scoped_lockable)
#define L_GUARDED_BY(x) L_THREAD_ANNOTATION(guarded_by(x))
#define L_REQUIRES(...) L_THREAD_ANNOTATION(requires_capability(__VA_ARGS__))
#define L_EXCLUDES(...) L_THREAD_ANNOTATION(locks_excluded(__VA_ARGS__))
#define L_ACQUIRE(...) L_THREAD_ANNOTATION(acquire_capability(__VA_ARGS__))
#define L_RELEASE(...) L_THREAD_ANNOTATION(release_capability(__VA_ARGS__))
#define L_NO_THREAD_SAFETY_ANALYSIS L_THREAD_ANNOTATION(no_thread_safety_analysis)

// `Mutex` is std::mutex or std::recursive_mutex.
template <typename Mutex>
class L_CAPABILITY("mutex") LBasicMutex {
public:
    void Lock() L_ACQUIRE() { mutex_.lock(); }
    void Unlock() L_RELEASE() { mutex_.unlock(); }
    Mutex& Native() { return mutex_; }

private:
    Mutex mutex_;
};

using LMutex = LBasicMutex<std::mutex>;
using LRecursiveMutex = LBasicMutex<std::recursive_mutex>;

// Holds a mutex for as long as it lives.
template <typename Mutex>
class L_SCOPED_CAPABILITY LBasicMutexLock {
public:
    explicit LBasicMutexLock(LBasicMutex<Mutex>& mutex) L_ACQUIRE(mutex) : mutex_(mutex) {
        mutex_.Lock();
    }
    ~LBasicMutexLock() L_RELEASE() { mutex_.Unlock(); }
    LBasicMutexLock(const LBasicMutexLock&) = delete;
    LBasicMutexLock& operator=(const LBasicMutexLock&) = delete;

private:
    LBasicMutex<Mutex>& mutex_;
};

using LMutexLock = LBasicMutexLock<std::mutex>;
using LRecursiveMutexLock = LBasicMutexLock<std::recursive_mutex>;
