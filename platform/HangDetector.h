// What the threads of this process are doing right now, for whoever looks into one that hangs.
#pragma once

#include <cstdint>
#include <string_view>

// Names the calling thread in the report for as long as it lives. Where too many threads are named
// already it does nothing. At most 7 bytes are kept of the name.
class LHangDetectorThread {
public:
    explicit LHangDetectorThread(std::string_view name);  // "MAIN", "WEBC"
    ~LHangDetectorThread();
    LHangDetectorThread(const LHangDetectorThread&) = delete;
    LHangDetectorThread& operator=(const LHangDetectorThread&) = delete;
};

// What the calling thread works on while it lives, if the thread is named; 47 bytes are kept.
class LHangDetectorStatus {
public:
    explicit LHangDetectorStatus(std::string_view status);
    ~LHangDetectorStatus();
    LHangDetectorStatus(const LHangDetectorStatus&) = delete;
    LHangDetectorStatus& operator=(const LHangDetectorStatus&) = delete;
};

// The control command that the main thread is dealing with; 0 when it is not.
void LHangDetectorSetCommand(uint32_t code);

// Writes a line for each named thread, its system id, name and status, and one for the command.
// Any thread, and any signal handler: a thread that hangs may hold any lock.
void LHangDetectorReport(int fd);
