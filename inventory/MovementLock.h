// Keeps movements of one business apart: an item's locations share one field, so a quantity change
// is a read, a change and a save that must not interleave with another.
#pragma once

#include <string>

#include "platform/FileLock.h"

class LProfile;

// Held while it lives: first a queue inside the process (threads are served in the order in which
// they came), then a lock on the file ".movements" beside the list folders (processes). Waits for
// `timeoutMs` at most for both together, then goes ahead without. The same thread may hold it
// several times over. It goes on the thread that made it, those of one thread in reverse order.
//
// Record locks are taken inside it and never the other way round. Whatever waits for a person (a
// question, a message) must not be done while it is held.
class LMovementLock {
public:
    explicit LMovementLock(const LProfile& profile, int timeoutMs = kLockTimeoutMs);
    ~LMovementLock();
    LMovementLock(const LMovementLock&) = delete;
    LMovementLock& operator=(const LMovementLock&) = delete;

    // False when somebody else was moving stock all that time: what can wait had better.
    bool IsTurn() const { return isTurn_; }

private:
    std::string folder_;
    bool isTurn_ = false;
};
