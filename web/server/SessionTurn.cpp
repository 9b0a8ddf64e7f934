#include "web/server/SessionTurn.h"

#include <algorithm>
#include <chrono>
#include <map>

#include "platform/LMutex.h"

namespace {

struct LHolders {
    int shared = 0;
    bool exclusive = false;

    bool Admits(LFileLockKind kind) const {
        return !exclusive && (kind == LFileLockKind::kShared || shared == 0);
    }
};

struct LTurns {
    std::mutex mutex;
    std::condition_variable released;
    std::map<std::string, LHolders> held;  // only sessions with a holder or a waiter
};

LTurns& Turns() {
    static LTurns turns;
    return turns;
}

void DropUnused(LTurns& turns, const std::string& id) {
    const auto found = turns.held.find(id);
    if (found == turns.held.end()) return;
    if (!found->second.exclusive && found->second.shared == 0) turns.held.erase(found);
}

}  // namespace

int LSessionTurn::Take(const std::string& id, LFileLockKind kind, int timeoutMs) {
    using std::chrono::milliseconds;
    Release();
    LTurns& turns = Turns();
    const auto end = std::chrono::steady_clock::now() + milliseconds(timeoutMs);
    std::unique_lock<std::mutex> lock(turns.mutex);
    // Looked up anew at every wake-up: the last holder takes the entry away.
    if (!turns.released.wait_until(lock, end, [&] { return turns.held[id].Admits(kind); })) {
        DropUnused(turns, id);
        return 0;
    }
    LHolders& holders = turns.held[id];
    if (kind == LFileLockKind::kShared) {
        ++holders.shared;
    } else {
        holders.exclusive = true;
    }
    id_ = id;
    kind_ = kind;
    const auto left = std::chrono::ceil<milliseconds>(end - std::chrono::steady_clock::now());
    return std::max(static_cast<int>(left.count()), 1);
}

void LSessionTurn::Release() {
    if (id_.empty()) return;
    LTurns& turns = Turns();
    const std::lock_guard<std::mutex> lock(turns.mutex);
    LHolders& holders = turns.held[id_];
    if (kind_ == LFileLockKind::kShared) {
        --holders.shared;
    } else {
        holders.exclusive = false;
    }
    DropUnused(turns, id_);
    id_.clear();
    turns.released.notify_all();
}
