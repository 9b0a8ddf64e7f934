#include "platform/LRunLoop.h"

#include <algorithm>

#include "platform/PollDeadline.h"

void LRunLoop::AddSource(int descriptor, const LEvent& event) {
    sources_.push_back({descriptor, event});
}

void LRunLoop::RemoveSource(int descriptor) {
    std::erase_if(sources_, [=](const Source& source) { return source.descriptor == descriptor; });
}

void LRunLoop::Post(const LEvent& event) {
    const LMutexLock lock(mutex_);
    queue_.push_back(event);
    posted_.Set();
}

std::optional<LEvent> LRunLoop::TakeFirst() {
    const LMutexLock lock(mutex_);
    if (queue_.empty()) {
        posted_.Reset();
        return std::nullopt;
    }
    const LEvent event = queue_.front();
    queue_.pop_front();
    return event;
}

int LRunLoop::PollSources(const LDeadline& deadline) {
    std::vector<pollfd> entries{{posted_.ReadDescriptor(), POLLIN, 0}};
    for (const Source& source : sources_) entries.push_back({source.descriptor, POLLIN, 0});
    const int ready = PollUntil(entries.data(), entries.size(), deadline);
    for (size_t i = 0; ready > 0 && i < sources_.size(); ++i) {
        if (entries[i + 1].revents != 0) Post(sources_[i].event);
    }
    return ready;
}

std::optional<LEvent> LRunLoop::WaitNextEvent(int timeoutMs) {
    const LDeadline deadline(timeoutMs);
    for (;;) {
        if (auto event = TakeFirst()) return event;
        if (PollSources(deadline) <= 0) return TakeFirst();
    }
}
