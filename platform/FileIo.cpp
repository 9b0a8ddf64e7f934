#include "platform/FileIo.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>

#include "platform/LFileDescriptor.h"

namespace {

constexpr size_t kSmallestRead = 4096;
// A size that the system tells is a hint only: a sparse file may claim any.
constexpr size_t kLargestHint = size_t{1} << 20;

size_t FirstReadSize(int fd) {
    struct stat status {};
    if (::fstat(fd, &status) != 0 || status.st_size <= 0) return kSmallestRead;
    const auto size = static_cast<size_t>(status.st_size);
    return size < kLargestHint ? size + 1 : kLargestHint;  // one more, to see the end at once
}

ssize_t ReadOnce(int fd, char* buffer, size_t size) {
    ssize_t count = 0;
    do {
        count = ::read(fd, buffer, size);
    } while (count < 0 && errno == EINTR);
    return count;
}

std::string ParentOf(const std::string& path) {
    const size_t slash = path.rfind('/');
    return slash == std::string::npos ? std::string() : path.substr(0, slash);
}

}  // namespace

bool WriteAll(int fd, std::string_view text) {
    while (!text.empty()) {
        const ssize_t count = ::write(fd, text.data(), text.size());
        if (count < 0 && errno == EINTR) continue;
        if (count < 0) return false;
        if (count == 0) {
            errno = ENOSPC;  // a device that takes nothing would keep us here for ever
            return false;
        }
        text.remove_prefix(static_cast<size_t>(count));
    }
    return true;
}

bool ReadAll(int fd, std::string& out) {
    size_t used = 0;
    out.resize(FirstReadSize(fd));
    for (;;) {
        const ssize_t count = ReadOnce(fd, out.data() + used, out.size() - used);
        if (count > 0) used += static_cast<size_t>(count);
        if (count <= 0) {
            out.resize(used);
            return count == 0;
        }
        if (used == out.size()) out.resize(used * 2 + kSmallestRead);
    }
}

std::optional<std::string> ReadFile(const std::string& path) {
    // Non-blocking changes nothing for a file, but a pipe without a writer then does not hold us.
    const LFileDescriptor file(::open(path.c_str(), O_RDONLY | O_CLOEXEC | O_NONBLOCK));
    std::string text;
    if (!file.IsOpen() || !ReadAll(file.Get(), text)) return std::nullopt;
    return text;
}

bool FileExists(const std::string& path) {
    struct stat status {};
    return ::lstat(path.c_str(), &status) == 0;
}

bool FolderExists(const std::string& path) {
    struct stat status {};
    return ::stat(path.c_str(), &status) == 0 && S_ISDIR(status.st_mode);
}

bool MakeFolderTree(const std::string& path, unsigned mode) {
    if (path.size() > 1 && path.back() == '/') {
        return MakeFolderTree(path.substr(0, path.size() - 1), mode);
    }
    if (FolderExists(path)) return true;
    if (::mkdir(path.c_str(), mode) == 0) return true;
    if (errno == ENOENT) {
        const std::string parent = ParentOf(path);
        if (parent.empty() || !MakeFolderTree(parent, 0700)) return false;
        if (::mkdir(path.c_str(), mode) == 0) return true;
    }
    return errno == EEXIST && FolderExists(path);  // another process was quicker
}
