#include "service/control/LPipeListener.h"

#include <fcntl.h>
#include <unistd.h>

#include <cerrno>
#include <cstring>

#include "platform/FileLock.h"
#include "platform/SocketIo.h"
#include "service/control/LNamedPipeRef.h"
#include "service/control/LServiceLog.h"

namespace {

constexpr int kBacklog = 5;
constexpr int kStartLockTimeoutMs = 1000;
constexpr int kShortagePauseMs = 1000;

std::string FolderOf(const std::string& path) { return path.substr(0, path.rfind('/') + 1); }

// Nothing is wrong with the listening socket itself.
bool IsShortage(int error) {
    return error == EMFILE || error == ENFILE || error == ENOBUFS || error == ENOMEM;
}
bool HasClientGone(int error) { return error == EAGAIN || error == ECONNABORTED; }

}  // namespace

void LPipeListener::SetPath(const std::string& path) {
    path_ = path.substr(0, kMaxSocketPathBytes);
    pathWasCut_ = path_ != path;
}

bool LPipeListener::WaitUntilListening() const { return settled_.Wait() && listens_; }

void LPipeListener::ThreadFunction() {
    if (Listen()) {
        listens_ = true;
        settled_.Set();
        AcceptClients();
        RemoveOwnPath();
        listening_.Close();
    }
    RequestStop();
    settled_.Set();
}

bool LPipeListener::Listen() {
    // Two services that start at the same moment look and bind one after the other.
    const LFileDescriptor folder(
        ::open(FolderOf(path_).c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC));
    if (folder.IsOpen()) flocktimed(folder.Get(), LFileLockKind::kExclusive, kStartLockTimeoutMs);
    if (LNamedPipeRef::Open(path_).IsOpen()) {
        LServiceLog("The service already runs, another process answers at", path_, kLogWarning);
        return false;
    }
    return BindAtPath();
}

bool LPipeListener::BindAtPath() {
    struct stat found {};
    const bool somethingThere = ::lstat(path_.c_str(), &found) == 0;
    // What a cut path happens to name may be anything, and a stale file would be removed.
    const bool mayReplace = !somethingThere || !pathWasCut_ || S_ISSOCK(found.st_mode);
    errno = ENAMETOOLONG;
    if (mayReplace) listening_ = ListenUnix(path_, kBacklog);
    if (listening_.IsOpen() && ::lstat(path_.c_str(), &bound_) == 0) return true;
    LServiceLog("Cannot take control connections at", path_ + ": " + std::strerror(errno),
                kLogError);
    listening_.Close();
    return false;
}

void LPipeListener::AcceptClients() {
    while (WaitReadable(listening_.Get(), StopSignal()) == LSocketResult::kOk && AcceptOne()) {
    }
}

bool LPipeListener::AcceptOne() {
    LFileDescriptor client = AcceptSocket(listening_.Get());
    if (client.IsOpen()) {
        shortageTold_ = false;
        NewConnection(std::move(client));
        return true;
    }
    const int error = errno;
    if (HasClientGone(error)) return true;
    if (!shortageTold_) {
        LServiceLog("Cannot accept a control connection:", std::strerror(error), kLogError);
    }
    if (!IsShortage(error)) return false;
    // A crowd of web clients that has used up the descriptors must not cost us the service.
    shortageTold_ = true;
    StopSignal().Wait(kShortagePauseMs);
    return true;
}

void LPipeListener::RemoveOwnPath() const {
    struct stat now {};
    const bool isOurs = ::lstat(path_.c_str(), &now) == 0 && now.st_dev == bound_.st_dev &&
                        now.st_ino == bound_.st_ino;
    if (isOurs) ::unlink(path_.c_str());
}
