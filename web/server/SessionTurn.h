// Whose turn it is among the requests of this process that work on one session.
#pragma once

#include <string>

#include "platform/FileLock.h"

// Asked before the file lock, which is tried in growing pauses of a third of a second and more: a
// browser asks for several things at once, and each would sleep although the other was done long
// ago. Here the next one goes on at once. Used by one thread; never take two turns of one session
// on one thread.
class LSessionTurn {
public:
    LSessionTurn() = default;
    ~LSessionTurn() { Release(); }
    LSessionTurn(const LSessionTurn&) = delete;
    LSessionTurn& operator=(const LSessionTurn&) = delete;

    // Waits until no exclusive turn (for an exclusive one: no turn at all) of session `id` is held,
    // at most `timeoutMs`. Returns how many of them are left; after 0 there is no turn.
    int Take(const std::string& id, LFileLockKind kind, int timeoutMs);
    void Release();

private:
    std::string id_;  // empty: no turn
    LFileLockKind kind_ = LFileLockKind::kShared;
};
