// A second process where a test means two.
#pragma once

#include <sys/types.h>

#include <functional>

// Runs `work` in a forked child; its result is the child's exit status. The child ends without
// running the parent's destructors or exit handlers. Fork before the test starts threads.
class LChildProcess {
public:
    explicit LChildProcess(const std::function<int()>& work);
    ~LChildProcess();  // kills and collects a child that still runs
    LChildProcess(const LChildProcess&) = delete;
    LChildProcess& operator=(const LChildProcess&) = delete;

    pid_t Id() const { return id_; }
    // The exit status, or minus the signal that ended it.
    int Wait();
    // Ends it as a power cut would.
    void Kill();

private:
    pid_t id_;
};
