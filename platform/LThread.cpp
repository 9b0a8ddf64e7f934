#include "platform/LThread.h"

#include <pthread.h>
#include <sched.h>
#include <unistd.h>

#include <algorithm>
#include <cassert>
#include <system_error>

namespace {

constexpr size_t kMaxThreadName = 15;

#if defined(__SANITIZE_ADDRESS__) || defined(__SANITIZE_THREAD__)
constexpr size_t kDetachedStackBytes = 0;  // the sanitizers make frames larger: the default
#else
// One thread per web connection: thousands of default stacks would reserve many gigabytes, while
// the documents that a page can ask for still need room to be drawn.
constexpr size_t kDetachedStackBytes = size_t{512} * 1024;
#endif

void NameThisThread(const std::string& name) {
    ::pthread_setname_np(::pthread_self(), name.substr(0, kMaxThreadName).c_str());
}

bool StartDetached(void* (*entry)(void*), void* argument) {
    pthread_attr_t attributes;
    if (::pthread_attr_init(&attributes) != 0) return false;
    ::pthread_attr_setdetachstate(&attributes, PTHREAD_CREATE_DETACHED);
    if (kDetachedStackBytes != 0) ::pthread_attr_setstacksize(&attributes, kDetachedStackBytes);
    pthread_t thread{};
    const bool started = ::pthread_create(&thread, &attributes, entry, argument) == 0;
    ::pthread_attr_destroy(&attributes);
    return started;
}

struct LEntryArgument {
    LDetachedThreadGroup* group;
    LDetachedThread* thread;
};

}  // namespace

LThread::LThread(std::string name) : name_(std::move(name)) {}

LThread::~LThread() {
    assert(!thread_.joinable());  // too late: what the thread works on is gone already
    StopAndJoin();
}

bool LThread::Start(int priority) {
    if (running_) return false;
    if (thread_.joinable()) Join();
    running_ = true;
    try {
        thread_ = std::thread([this, priority] {
            NameThisThread(name_);
            systemId_ = ::gettid();
            SetPriority(priority);
            ThreadFunction();
            systemId_ = 0;
            running_ = false;
        });
    } catch (const std::system_error&) {
        running_ = false;
        return false;
    }
    return true;
}

void LThread::SetPriority(int priority) const {
    const sched_param none{};
    const int policy = priority < kThreadPriorityNormal ? SCHED_BATCH : SCHED_OTHER;
    if (const int id = systemId_) ::sched_setscheduler(id, policy, &none);
}

int LThread::PriorityOfCaller() {
    return ::sched_getscheduler(0) == SCHED_BATCH ? kThreadPriorityBehind : kThreadPriorityNormal;
}

void LThread::Join() {
    thread_.join();
    stop_.Reset();
}

void LThread::StopAndJoin() {
    if (!thread_.joinable()) return;
    RequestStop();
    Join();
}

void* LDetachedThreadGroup::ThreadEntry(void* argument) {
    const std::unique_ptr<LEntryArgument> owned(static_cast<LEntryArgument*>(argument));
    const LEntryArgument entry = *owned;
    NameThisThread(entry.thread->Name());
    entry.group->Run(*entry.thread);
    return nullptr;
}

void LDetachedThreadGroup::Run(LDetachedThread& thread) {
    thread.ThreadFunction();
    DestroyTaken(Take(thread));
}

bool LDetachedThreadGroup::Start(std::unique_ptr<LDetachedThread> thread) {
    if (!thread->StopSignal().IsValid()) return false;
    LDetachedThread& member = *thread;
    auto argument = std::make_unique<LEntryArgument>(LEntryArgument{this, &member});
    {
        const LRecursiveMutexLock lock(mutex_);
        if (stoppers_ > 0) return false;
        members_.insert(members_.begin(), std::move(thread));
    }
    if (StartDetached(ThreadEntry, argument.get())) {
        (void)argument.release();  // the new thread's now
        return true;
    }
    DestroyTaken(Take(member));
    return false;
}

std::unique_ptr<LDetachedThread> LDetachedThreadGroup::Take(const LDetachedThread& thread) {
    const LRecursiveMutexLock lock(mutex_);
    const auto found = std::find_if(members_.begin(), members_.end(),
                                    [&](const auto& member) { return member.get() == &thread; });
    assert(found != members_.end());
    std::unique_ptr<LDetachedThread> taken = std::move(*found);
    members_.erase(found);
    ++taken_;
    return taken;
}

void LDetachedThreadGroup::DestroyTaken(std::unique_ptr<LDetachedThread> thread) {
    thread.reset();
    // Told inside the lock, and nothing touched after it: a waiting destructor goes on at once.
    // Only by the last, or the one that waits would be woken by each of thousands.
    const LRecursiveMutexLock lock(mutex_);
    --taken_;
    if (members_.size() + taken_ == 0) ended_.notify_all();
}

void LDetachedThreadGroup::RequestStopAll() {
    const LRecursiveMutexLock lock(mutex_);
    for (const auto& member : members_) member->RequestStop();
}

// The wait gives the mutex up and takes it again in a way the analysis cannot follow.
void LDetachedThreadGroup::StopAll() L_NO_THREAD_SAFETY_ANALYSIS {
    std::unique_lock<std::recursive_mutex> lock(mutex_.Native());
    ++stoppers_;
    RequestStopAll();
    ended_.wait(lock,
                [this]() L_NO_THREAD_SAFETY_ANALYSIS { return members_.size() + taken_ == 0; });
    --stoppers_;
}

size_t LDetachedThreadGroup::Count() const {
    const LRecursiveMutexLock lock(mutex_);
    return members_.size() + taken_;
}
