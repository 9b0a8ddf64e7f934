// Advisory file locks with the store's own patience.
#pragma once

enum class LFileLockKind { kShared, kExclusive };

inline constexpr int kLockTimeoutMs = 10000;

// Tries to lock the open file `fd`. While the lock is busy it pauses timeoutMs/32 + 1 ms, twice as
// long after every attempt, and gives up once the next pause would reach `timeoutMs` (with 10000:
// 313, 626, 1252, 2504 and 5008 ms). Interrupted pauses are resumed. Returns whether the lock was
// taken; it is released when the last descriptor of this opening is closed.
bool flocktimed(int fd, LFileLockKind kind, int timeoutMs = kLockTimeoutMs);
