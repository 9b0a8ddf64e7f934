#include "inventory/HistoryFile.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <filesystem>
#include <functional>

#include "platform/FileIo.h"
#include "platform/FileLock.h"

namespace {

constexpr std::string_view kExtension = ".csv";
constexpr off_t kMaxFileBytes = off_t{256} << 20;  // a million rows in a day would be half of it

// Where this thread's last append ended, behind a whole row. A look at the last byte costs as much
// as half a write, so the lines of one sale do without.
struct LKnownEnd {
    size_t pathHash = 0;
    off_t end = -1;
    friend bool operator==(const LKnownEnd&, const LKnownEnd&) = default;
};
thread_local LKnownEnd knownEnd;

LFileLockKind LockKind(LHistoryAccess access) {
    return access == LHistoryAccess::kRead ? LFileLockKind::kShared : LFileLockKind::kExclusive;
}

int OpenForAppending(const std::string& path) {
    // Positioned at the end by the system itself, so that rows stay whole even when the lock could
    // not be had.
    constexpr int kFlags = O_RDWR | O_CREAT | O_APPEND | O_CLOEXEC;
    const int fd = ::open(path.c_str(), kFlags, 0666);
    if (fd >= 0 || errno != ENOENT) return fd;
    // Asked for only now: the folder is there on all days but the first.
    if (!MakeFolderTree(path.substr(0, path.rfind('/')))) return -1;
    return ::open(path.c_str(), kFlags, 0666);
}

int OpenExisting(const std::string& path, LHistoryAccess access) {
    const int mode = access == LHistoryAccess::kRead ? O_RDONLY : O_RDWR;
    // Non-blocking, so that a pipe put there does not hold us.
    return ::open(path.c_str(), mode | O_CLOEXEC | O_NONBLOCK);
}

int OpenHistory(const std::string& path, LHistoryAccess access) {
    if (path.empty()) return -1;
    return access == LHistoryAccess::kAppend ? OpenForAppending(path) : OpenExisting(path, access);
}

bool WriteAt(int fd, size_t position, std::string_view text) {
    return ::lseek(fd, static_cast<off_t>(position), SEEK_SET) >= 0 && WriteAll(fd, text);
}

bool CutAt(int fd, size_t size) { return ::ftruncate(fd, static_cast<off_t>(size)) == 0; }

// Takes back what a failed write left behind `end`, unless others have written there meanwhile.
void CutPartialRow(int fd, off_t end, size_t written) {
    struct stat status {};
    const off_t expected = end + static_cast<off_t>(written);
    if (::fstat(fd, &status) == 0 && status.st_size == expected) {
        CutAt(fd, static_cast<size_t>(end));
    }
}

}  // namespace

std::string HistoryFolder(const LProfile& profile, std::string_view name) {
    return profile.DatabaseFolder() + "/" + std::string(name);
}

std::vector<std::string> HistoryFileNames(const LProfile& profile, std::string_view folder) {
    std::vector<std::string> names;
    std::error_code error;
    std::filesystem::directory_iterator entry(HistoryFolder(profile, folder), error);
    for (; !error && entry != std::filesystem::directory_iterator(); entry.increment(error)) {
        std::string name = entry->path().filename().string();
        std::error_code ignored;  // what cannot be looked at is no file for us
        if (name.size() > kExtension.size() && name.ends_with(kExtension) &&
            entry->is_regular_file(ignored)) {
            names.push_back(std::move(name));
        }
    }
    std::sort(names.begin(), names.end());
    return names;
}

std::string HistoryFilePath(const LProfile& profile, std::string_view folder, const LDate& date) {
    if (!LDate::Make(date.year, date.month, date.day)) return {};
    std::string path = HistoryFolder(profile, folder);
    path += '/';
    path += date.ToStored();
    path += kExtension;
    return path;
}

LHistoryFile::LHistoryFile(const std::string& path, LHistoryAccess access)
    : pathHash_(std::hash<std::string>{}(path)),
      turn_(pathHash_, LockKind(access)),
      fd_(OpenHistory(path, access)) {
    if (!fd_.IsOpen()) return;
    const bool isLocked = flocktimed(fd_.Get(), LockKind(access), turn_.RemainingMs());
    if (!isLocked && access == LHistoryAccess::kRewrite) fd_.Close();
}

bool LHistoryFile::Read(std::string& text) const {
    struct stat status {};
    if (!fd_.IsOpen() || ::fstat(fd_.Get(), &status) != 0 || !S_ISREG(status.st_mode) ||
        status.st_size > kMaxFileBytes) {
        return false;
    }
    return ::lseek(fd_.Get(), 0, SEEK_SET) == 0 && ReadAll(fd_.Get(), text);
}

bool LHistoryFile::IsInMidLine(off_t end) const {
    if (knownEnd == LKnownEnd{pathHash_, end}) return false;
    char last = '\n';
    return end > 0 && ::pread(fd_.Get(), &last, 1, end - 1) == 1 && last != '\n';
}

bool LHistoryFile::Append(std::string_view rows) const {
    if (!fd_.IsOpen()) return false;
    const off_t end = ::lseek(fd_.Get(), 0, SEEK_END);
    if (end < 0) return false;
    std::string onOwnLine;
    if (IsInMidLine(end)) {  // an editor left the last line open, or a crash
        onOwnLine = kHistoryLineEnd;
        onOwnLine += rows;
        rows = onOwnLine;
    }
    ssize_t written = 0;
    do {
        written = ::write(fd_.Get(), rows.data(), rows.size());
    } while (written < 0 && errno == EINTR);
    if (written == static_cast<ssize_t>(rows.size())) {
        knownEnd = {pathHash_, end + written};
        return true;
    }
    if (written > 0) CutPartialRow(fd_.Get(), end, static_cast<size_t>(written));
    return false;
}

bool LHistoryFile::Replace(std::string_view oldText, std::string_view newText) const {
    if (!fd_.IsOpen()) return false;
    // What makes the file longer goes first: it alone needs space on the disk, and until it is
    // there nothing old has been touched.
    const size_t oldSize = oldText.size();
    if (newText.size() > oldSize && !WriteAt(fd_.Get(), oldSize, newText.substr(oldSize))) {
        CutAt(fd_.Get(), oldSize);
        return false;
    }
    const size_t end = std::min(oldSize, newText.size());
    const std::string_view within = newText.substr(0, end);
    const auto changed = static_cast<size_t>(
        std::mismatch(within.begin(), within.end(), oldText.begin()).first - within.begin());
    if (WriteAt(fd_.Get(), changed, within.substr(changed)) &&
        (end == oldSize || CutAt(fd_.Get(), end))) {
        return true;
    }
    if (WriteAt(fd_.Get(), 0, oldText)) CutAt(fd_.Get(), oldSize);
    return false;
}
