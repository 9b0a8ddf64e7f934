// Tells what came into and went out of some folders since it was last asked.
#pragma once

#include <cstdint>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "platform/LFileDescriptor.h"
#include "platform/LMutex.h"

struct LFolderChange {
    std::string name;
    bool came = false;  // otherwise it went
};

// One watch of the system for all folders: each costs as little as a file name. Any thread.
class LFolderWatches {
public:
    class Watch;  // of one folder; ends when the last pointer to it goes

    // Of the process. A forked child begins with none: it would steal the parent's events.
    static LFolderWatches& OfProcess();

    // Null where nothing can be watched: a file system whose changes may be made on another
    // machine, or no watches left. `folder` is open.
    std::shared_ptr<Watch> Start(int folder) L_EXCLUDES(mutex_);
    // Adds what changed since the last call, in its order. False when something may have been
    // missed or the folder itself was moved or removed: the watch is of no more use then.
    [[nodiscard]] bool Take(Watch& watch, std::vector<LFolderChange>& changes) L_EXCLUDES(mutex_);

private:
    bool IsOwnProcess() L_REQUIRES(mutex_);
    void ReadEvents() L_REQUIRES(mutex_);
    void Deliver(int id, uint32_t mask, std::string_view name) L_REQUIRES(mutex_);
    void End(const Watch& watch) L_EXCLUDES(mutex_);
    void Break() L_REQUIRES(mutex_);

    LMutex mutex_;
    int process_ L_GUARDED_BY(mutex_) = 0;
    LFileDescriptor events_ L_GUARDED_BY(mutex_);
    std::vector<Watch*> watches_
        L_GUARDED_BY(mutex_);  // two may share an id: one folder, two paths
};
