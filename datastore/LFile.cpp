#include "datastore/LFile.h"

#include <fcntl.h>
#include <linux/fs.h>
#include <sys/ioctl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <array>
#include <cerrno>
#include <chrono>
#include <cstdio>
#include <filesystem>
#include <string_view>
#include <thread>

#include "datastore/FolderTreeCopy.h"
#include "platform/FileIo.h"
#include "platform/FileLock.h"
#include "platform/LFileDescriptor.h"

namespace {

constexpr auto kRenamePause = std::chrono::milliseconds(100);

bool IsDotFile(std::string_view path) {
    const size_t name = path.rfind('/') + 1;
    return name < path.size() && path[name] == '.';
}

// Reads until the buffer is full or the file ends.
ssize_t FillFrom(int fd, std::array<char, 65536>& buffer) {
    size_t used = 0;
    while (used < buffer.size()) {
        const ssize_t got = ::read(fd, buffer.data() + used, buffer.size() - used);
        if (got < 0 && errno == EINTR) continue;
        if (got < 0) return -1;
        if (got == 0) break;
        used += static_cast<size_t>(got);
    }
    return static_cast<ssize_t>(used);
}

// The lock of a file that fits into one piece, as every record does, is given back before the
// slower half, the writing, begins.
bool CopyBytes(LFileDescriptor source, int target) {
    std::array<char, 65536> buffer;
    for (;;) {
        const ssize_t got = FillFrom(source.Get(), buffer);
        if (got < 0) return false;
        const auto count = static_cast<size_t>(got);
        const bool isEnd = count < buffer.size();
        if (isEnd) source.Close();
        if (!WriteAll(target, {buffer.data(), count})) return false;
        if (isEnd) return true;
    }
}

void ClearFileFlags(int fd) {
    int flags = 0;
    constexpr int kLocking = FS_IMMUTABLE_FL | FS_APPEND_FL | FS_NODUMP_FL;
    if (::ioctl(fd, FS_IOC_GETFLAGS, &flags) != 0 || (flags & kLocking) == 0) return;
    flags &= ~kLocking;
    ::ioctl(fd, FS_IOC_SETFLAGS, &flags);
}

bool FinishCopy(int target, const struct stat& source, LCopyTimes times) {
    ClearFileFlags(target);
    if (::fchmod(target, (source.st_mode & 0777) | S_IRUSR | S_IWUSR) != 0) return false;
    if (times == LCopyTimes::kNew) return true;
    const std::array<timespec, 2> stored{source.st_atim, source.st_mtim};
    return ::futimens(target, stored.data()) == 0;
}

bool IsFolderItself(const std::string& path) {
    struct stat status {};
    return ::lstat(path.c_str(), &status) == 0 && S_ISDIR(status.st_mode);
}

bool MoveFolderAcross(const std::string& from, const std::string& to) {
    if (::mkdir(to.c_str(), 0777) != 0) return false;
    ProcessCopyFolderTree copy(from, to, LCopyTimes::kKeep);
    if (!copy.Run(nullptr)) {
        const int error = errno;
        LFile::RemoveFolderTree(to);
        errno = error;
        return false;
    }
    return LFile::RemoveFolderTree(from);
}

bool MoveAcross(const std::string& from, const std::string& to) {
    if (::rmdir(to.c_str()) != 0 && errno != ENOENT) return false;
    if (IsFolderItself(from)) return MoveFolderAcross(from, to);
    return LFile::CopyFile(from, to, LCopyTimes::kKeep) == LCopyResult::kCopied &&
           ::unlink(from.c_str()) == 0;
}

bool MoveOnce(const std::string& from, const std::string& to) {
    // The system would let a file give way to a file.
    if (FileExists(to) && !IsFolderItself(to)) {
        errno = EEXIST;
        return false;
    }
    return std::rename(from.c_str(), to.c_str()) == 0 || (errno == EXDEV && MoveAcross(from, to));
}

}  // namespace

bool LFile::TestFolderWritable(const std::string& folder) {
    return FolderExists(folder) && ::access(folder.c_str(), W_OK | X_OK) == 0;
}

LCopyResult LFile::CopyFile(const std::string& source, const std::string& target,
                            LCopyTimes times) {
    // Non-blocking matters only where a pipe has taken the file's place.
    LFileDescriptor from(::open(source.c_str(), O_RDONLY | O_CLOEXEC | O_NONBLOCK));
    if (!from.IsOpen()) return errno == ENOENT ? LCopyResult::kVanished : LCopyResult::kFailed;
    if (!IsDotFile(source)) flocktimed(from.Get(), LFileLockKind::kShared);
    struct stat status {};
    if (::fstat(from.Get(), &status) != 0) return LCopyResult::kFailed;

    const LFileDescriptor to(
        ::open(target.c_str(), O_WRONLY | O_CREAT | O_TRUNC | O_CLOEXEC | O_NOFOLLOW, 0600));
    if (!to.IsOpen()) return LCopyResult::kFailed;
    if (CopyBytes(std::move(from), to.Get()) && FinishCopy(to.Get(), status, times)) {
        return LCopyResult::kCopied;
    }
    const int error = errno;
    ::unlink(target.c_str());
    errno = error;
    return LCopyResult::kFailed;
}

bool LFile::RenameFile(const std::string& from, const std::string& to, int timeoutMs) {
    const auto end = std::chrono::steady_clock::now() + std::chrono::milliseconds(timeoutMs);
    while (!MoveOnce(from, to)) {
        if (std::chrono::steady_clock::now() + kRenamePause > end) return false;
        std::this_thread::sleep_for(kRenamePause);
    }
    return true;
}

bool LFile::RemoveFolderTree(const std::string& folder) {
    std::error_code error;
    std::filesystem::remove_all(folder, error);
    if (error) errno = error.value();
    return !error;
}
