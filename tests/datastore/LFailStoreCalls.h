// The store's own system calls, failing where a test wants it.
#pragma once

enum class LStoreCall { kAny, kOpenat, kRead, kPwrite, kLinkat, kAddWatch };

// While it lives, the `n`-th call (from 1) of that kind fails with `error`, and so does every later
// one with `n` = 0, counted from the first. One at a time; nothing but the store may run meanwhile.
class LFailStoreCalls {
public:
    LFailStoreCalls(LStoreCall call, int n, int error);
    ~LFailStoreCalls();
    LFailStoreCalls(const LFailStoreCalls&) = delete;
    LFailStoreCalls& operator=(const LFailStoreCalls&) = delete;
    bool Fired() const;
};
