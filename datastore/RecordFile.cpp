#include "datastore/RecordFile.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <cstring>
#include <new>

namespace {

constexpr size_t kTooLarge = size_t{1} << 32;

LFileDescriptor OpenWithoutAccessTime(int folder, const char* path, int flags) {
    flags |= O_CLOEXEC | O_NOCTTY | O_NONBLOCK;
    int fd = ::openat(folder, path, flags | O_NOATIME, 0666);
    // Only the owner of a file may leave its access time alone.
    if (fd < 0 && errno == EPERM) fd = ::openat(folder, path, flags, 0666);
    return LFileDescriptor(fd);
}

bool WriteAt(int fd, std::string_view text, size_t at) {
    while (!text.empty()) {
        const ssize_t written = ::pwrite(fd, text.data(), text.size(), static_cast<off_t>(at));
        if (written < 0 && errno == EINTR) continue;
        if (written <= 0) return false;
        text.remove_prefix(static_cast<size_t>(written));
        at += static_cast<size_t>(written);
    }
    return true;
}

bool CutAt(int fd, size_t size) { return ::ftruncate(fd, static_cast<off_t>(size)) == 0; }

}  // namespace

LFileDescriptor OpenRecordToRead(int folder, const char* path) {
    return OpenWithoutAccessTime(folder, path, O_RDONLY);
}

LFileDescriptor OpenRecordToWrite(const char* path) {
    return OpenWithoutAccessTime(AT_FDCWD, path, O_RDWR | O_CREAT);
}

// One read tells the size of most files: it leaves room in the buffer.
bool LFileText::Read(int fd) {
    large_ = nullptr;
    ssize_t got = 0;
    do {
        got = ::read(fd, small_.data(), small_.size());
    } while (got < 0 && errno == EINTR);
    size_ = got < 0 ? 0 : static_cast<size_t>(got);
    if (size_ < small_.size()) return got >= 0;
    return ReadLarge(fd);
}

bool LFileText::ReadLarge(int fd) {
    struct stat status {};
    if (::fstat(fd, &status) != 0) return false;
    const size_t wanted = status.st_size < 0 ? 0 : static_cast<size_t>(status.st_size);
    if (wanted >= kTooLarge) {
        size_ = 0;
        countsAsEmpty_ = true;
        return true;
    }
    if (wanted <= small_.size()) return true;
    large_.reset(new (std::nothrow) char[wanted]);
    if (large_ == nullptr) return false;
    std::memcpy(large_.get(), small_.data(), size_);
    while (size_ < wanted) {
        const ssize_t got = ::read(fd, large_.get() + size_, wanted - size_);
        if (got < 0 && errno == EINTR) continue;
        if (got < 0) return false;
        if (got == 0) break;  // cut meanwhile by somebody without the lock
        size_ += static_cast<size_t>(got);
    }
    return true;
}

// Where the text gets shorter it is written with a tail of "&" over the rest of the old one and the
// tail is cut off then: to a reader of record texts it is nothing, so there is no moment at which
// the file holds a mixture of both.
bool ReplaceRecordText(int fd, LTextBuffer& text, const LFileText& old) {
    const size_t size = text.View().size(), oldSize = old.View().size();
    text.Extend(oldSize, '&');
    if (!WriteAt(fd, text.View(), 0)) {
        if (WriteAt(fd, old.View(), 0) && !old.CountsAsEmpty()) CutAt(fd, oldSize);
        return false;
    }
    if (size < oldSize || old.CountsAsEmpty()) CutAt(fd, size);
    return true;
}
