// A disk that fails at a chosen moment.
#pragma once

enum class LFaultSpan { kOnce, kOnward };

// While it lives, the `n`-th call (from 1) of open, write, fsync, ftruncate, mkdir, rename or
// eventfd that our own code makes in this program fails with `error`, and with kOnward so does
// every later one, as on a disk that is full and stays so. Calls of all threads count, also those
// that set a signal object. One at a time.
class LFailNthFileCall {
public:
    LFailNthFileCall(int n, int error, LFaultSpan span = LFaultSpan::kOnce);
    ~LFailNthFileCall();
    LFailNthFileCall(const LFailNthFileCall&) = delete;
    LFailNthFileCall& operator=(const LFailNthFileCall&) = delete;

    // Whether the call has come. A test that goes through n = 1, 2, 3 is done when it has not.
    bool Fired() const;
};
