#include "web/server/SessionSweep.h"

#include <dirent.h>
#include <fcntl.h>
#include <linux/magic.h>
#include <sys/inotify.h>
#include <sys/stat.h>
#include <sys/vfs.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <atomic>
#include <cstring>
#include <limits>
#include <memory>

#include "platform/LFileDescriptor.h"
#include "platform/LMutex.h"

namespace {

constexpr std::time_t kSessionSeconds = 604800;              // 7 days
constexpr std::time_t kRememberedSessionSeconds = 15768000;  // 182.5 days
constexpr std::time_t kNever = std::numeric_limits<std::time_t>::max();

// Not IN_MODIFY: a change makes a file younger, and so never due sooner than is known.
constexpr uint32_t kWatchedEvents =
    IN_CREATE | IN_MOVED_TO | IN_ATTRIB | IN_DELETE_SELF | IN_MOVE_SELF | IN_ONLYDIR;
constexpr uint32_t kFolderEvents =
    IN_DELETE_SELF | IN_MOVE_SELF | IN_IGNORED | IN_UNMOUNT | IN_Q_OVERFLOW;

bool IsSessionFile(std::string_view name) { return name.ends_with(".sess"); }

// Elsewhere another machine may change the folder without the watch telling.
bool IsLocalFileSystem(const std::string& folder) {
    struct statfs status {};
    if (::statfs(folder.c_str(), &status) != 0) return false;
    constexpr std::array<unsigned long, 6> kLocal{EXT4_SUPER_MAGIC,  XFS_SUPER_MAGIC,
                                                  BTRFS_SUPER_MAGIC, TMPFS_MAGIC,
                                                  F2FS_SUPER_MAGIC,  OVERLAYFS_SUPER_MAGIC};
    const auto type = static_cast<unsigned long>(status.f_type);
    return std::find(kLocal.begin(), kLocal.end(), type) != kLocal.end();
}

// Deletes the file when it is due. Returns when it will be; never, when it is gone.
std::time_t SweepFile(int folder, const char* name, std::time_t now) {
    struct stat status {};
    if (!IsSessionFile(name) || ::fstatat(folder, name, &status, AT_SYMLINK_NOFOLLOW) != 0) {
        return kNever;
    }
    const std::time_t due = SessionDueTime(name, status.st_mtime);
    if (now < due) return due;
    ::unlinkat(folder, name, 0);
    return kNever;
}

class LSessionSweeper {
public:
    void Sweep(const std::string& folder) {
        struct stat status {};
        const bool isThere = ::stat(folder.c_str(), &status) == 0;  // others need not wait for it
        const LMutexLock lock(mutex_);
        const std::time_t now = std::time(nullptr);
        const bool isWatched = isThere && IsWatched(folder, status);
        lastCompared_ = now;
        if (isWatched && TakeEvents(now) && now < nextDue_) return;
        if (!isWatched || !watch_.IsOpen()) Watch(folder);  // first: it tells what a listing misses
        SweepAll(folder, now);
    }

    bool SweepWatched() {
        if (isBusy_.test_and_set()) return true;
        const bool done = LookAtWatch(std::time(nullptr));
        isBusy_.clear();
        return done;
    }

private:
    // Once a second somebody has to compare the folders too.
    bool LookAtWatch(std::time_t now) {
        const LMutexLock lock(mutex_);
        if (lastCompared_ != now) return lastCompared_ = now, false;
        if (!watch_.IsOpen()) return true;
        if (!TakeEvents(now)) return false;
        if (now >= nextDue_) SweepAll(folder_, now);
        return true;
    }

    struct LFolderClose {
        void operator()(DIR* folder) const { ::closedir(folder); }
    };

    // Whether the folder of that path, which has this status, is still the one that is watched: a
    // restored data folder takes its place.
    bool IsWatched(const std::string& folder, const struct stat& status) L_REQUIRES(mutex_) {
        return watch_.IsOpen() && folder == folder_ && status.st_dev == device_ &&
               status.st_ino == inode_;
    }

    void Watch(const std::string& folder) L_REQUIRES(mutex_) {
        watch_.Close();
        struct stat status {};
        if (!IsLocalFileSystem(folder) || ::stat(folder.c_str(), &status) != 0) return;
        LFileDescriptor watch(::inotify_init1(IN_NONBLOCK | IN_CLOEXEC));
        if (!watch.IsOpen()) return;
        if (::inotify_add_watch(watch.Get(), folder.c_str(), kWatchedEvents) < 0) return;
        watch_ = std::move(watch);
        folder_ = folder;
        device_ = status.st_dev;
        inode_ = status.st_ino;
    }

    // Looks at the files that have been told about. False when the folder must be listed again.
    bool TakeEvents(std::time_t now) L_REQUIRES(mutex_) {
        alignas(inotify_event) std::array<char, 1024> buffer;  // small: it is on every stack
        for (;;) {
            const ssize_t count = ::read(watch_.Get(), buffer.data(), buffer.size());
            if (count <= 0) return true;
            const LFileDescriptor folder(
                ::open(folder_.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC));
            for (ssize_t at = 0; at < count;) {
                const auto* event = reinterpret_cast<const inotify_event*>(buffer.data() + at);
                at += static_cast<ssize_t>(sizeof(inotify_event) + event->len);
                if ((event->mask & kFolderEvents) != 0 || !folder.IsOpen()) {
                    watch_.Close();
                    return false;
                }
                if (event->len == 0) continue;
                nextDue_ = std::min(nextDue_, SweepFile(folder.Get(), event->name, now));
            }
        }
    }

    void SweepAll(const std::string& folder, std::time_t now) L_REQUIRES(mutex_) {
        nextDue_ = kNever;
        const std::unique_ptr<DIR, LFolderClose> listing(::opendir(folder.c_str()));
        if (listing == nullptr) return;
        while (const dirent* entry = ::readdir(listing.get())) {
            nextDue_ = std::min(nextDue_, SweepFile(::dirfd(listing.get()), entry->d_name, now));
        }
    }

    std::atomic_flag isBusy_;  // a request without a session looks at the watch
    LMutex mutex_;
    // When the watched folder was last compared with the one that bears the name now.
    std::time_t lastCompared_ L_GUARDED_BY(mutex_) = 0;
    std::string folder_ L_GUARDED_BY(mutex_);
    dev_t device_ L_GUARDED_BY(mutex_) = 0;
    ino_t inode_ L_GUARDED_BY(mutex_) = 0;
    LFileDescriptor watch_ L_GUARDED_BY(mutex_);
    std::time_t nextDue_ L_GUARDED_BY(mutex_) = 0;  // the next file that the watch knows of
};

LSessionSweeper& Sweeper() {
    static LSessionSweeper sweeper;
    return sweeper;
}

}  // namespace

std::time_t SessionDueTime(std::string_view name, std::time_t changed) {
    // An ordinary session goes when it is more than its time old, a remembered one as soon as it is
    // not less.
    return name.starts_with('l') ? changed + kRememberedSessionSeconds
                                 : changed + kSessionSeconds + 1;
}

void SweepSessionFiles(const std::string& folder) { Sweeper().Sweep(folder); }

bool SweepWatchedSessionFiles() { return Sweeper().SweepWatched(); }
