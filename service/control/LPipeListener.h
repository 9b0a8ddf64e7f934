// The thread that accepts clients at a named pipe.
#pragma once

#include <sys/stat.h>

#include <atomic>
#include <string>

#include "platform/LFileDescriptor.h"
#include "platform/LThread.h"

// Started once. At most one process listens at a path: a socket file that nobody answers at is
// stale and gives way, one that somebody answers at is left alone. However the thread ends, its
// stop signal is set then, so that whoever waits on the signal learns of it; the log has the
// reason.
class LPipeListener : public LThread {
public:
    LPipeListener() : LThread("LPipeListener") {}

    void SetPath(const std::string& path);  // before Start; cut as socket paths are
    const std::string& Path() const { return path_; }
    // After a successful Start: waits until clients can connect; false when it will not come to
    // that.
    bool WaitUntilListening() const;

protected:
    // On the listener's thread; takes the client over.
    virtual void NewConnection(LFileDescriptor pipe) = 0;
    void ThreadFunction() override;

private:
    bool Listen();
    bool BindAtPath();
    void AcceptClients();
    bool AcceptOne();
    void RemoveOwnPath() const;

    std::string path_;
    bool pathWasCut_ = false;
    LFileDescriptor listening_;
    struct stat bound_ {};       // the socket file as it was made
    bool shortageTold_ = false;  // one log line for each time that descriptors ran out
    std::atomic<bool> listens_{false};
    LSignalObject settled_;  // it listens, or never will
};
