#include "datastore/LFolderWatches.h"

#include <linux/magic.h>
#include <sys/inotify.h>
#include <sys/vfs.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <cerrno>

namespace {

constexpr uint32_t kCame = IN_CREATE | IN_MOVED_TO;
constexpr uint32_t kWent = IN_DELETE | IN_MOVED_FROM;
constexpr uint32_t kFolderItself = IN_DELETE_SELF | IN_MOVE_SELF;
// So many changes of a folder that nobody asks about are kept; listing it again is as quick then.
constexpr size_t kMaxChanges = 4096;

// Where every change passes through this machine's kernel, so that a watch sees it.
bool IsLocalFileSystem(int folder) {
    constexpr std::array<unsigned long, 7> kLocal{
        EXT4_SUPER_MAGIC, XFS_SUPER_MAGIC,       BTRFS_SUPER_MAGIC, TMPFS_MAGIC,
        F2FS_SUPER_MAGIC, OVERLAYFS_SUPER_MAGIC, 0x2FC12FC1 /* ZFS */};
    struct statfs status {};
    if (::fstatfs(folder, &status) != 0) return false;
    return std::find(kLocal.begin(), kLocal.end(), static_cast<unsigned long>(status.f_type)) !=
           kLocal.end();
}

}  // namespace

class LFolderWatches::Watch {
public:
    Watch(LFolderWatches& owner, int folderId) : id(folderId), owner_(owner) {}
    ~Watch() { owner_.End(*this); }
    Watch(const Watch&) = delete;
    Watch& operator=(const Watch&) = delete;

    // Guarded by the owner's mutex.
    const int id;
    bool isBroken = false;
    std::vector<LFolderChange> changes;

private:
    LFolderWatches& owner_;
};

LFolderWatches& LFolderWatches::OfProcess() {
    static LFolderWatches watches;
    return watches;
}

bool LFolderWatches::IsOwnProcess() { return process_ == ::getpid(); }

// Nothing is known any more about any folder.
void LFolderWatches::Break() {
    for (Watch* watch : watches_) {
        watch->isBroken = true;
        watch->changes = {};
    }
}

std::shared_ptr<LFolderWatches::Watch> LFolderWatches::Start(int folder) {
    if (!IsLocalFileSystem(folder)) return nullptr;
    const LMutexLock lock(mutex_);
    if (!IsOwnProcess()) {
        Break();
        watches_.clear();
        events_.Close();
        process_ = ::getpid();
    }
    if (!events_.IsOpen()) {
        events_ = LFileDescriptor(::inotify_init1(IN_NONBLOCK | IN_CLOEXEC));
        if (!events_.IsOpen()) return nullptr;
    }
    // Through the descriptor: what lies at the folder's path may be another one by now.
    const std::string source = "/proc/self/fd/" + std::to_string(folder);
    const int id = ::inotify_add_watch(events_.Get(), source.c_str(),
                                       kCame | kWent | kFolderItself | IN_ONLYDIR);
    if (id < 0) return nullptr;
    auto watch = std::make_shared<Watch>(*this, id);
    watches_.push_back(watch.get());
    return watch;
}

bool LFolderWatches::Take(Watch& watch, std::vector<LFolderChange>& changes) {
    const LMutexLock lock(mutex_);
    if (!IsOwnProcess()) return false;
    ReadEvents();
    if (watch.isBroken) return false;
    std::move(watch.changes.begin(), watch.changes.end(), std::back_inserter(changes));
    watch.changes.clear();
    return true;
}

void LFolderWatches::ReadEvents() {
    constexpr size_t kLargestEvent = sizeof(inotify_event) + 256;
    alignas(inotify_event) std::array<char, 4096> buffer;
    for (;;) {
        const ssize_t got = ::read(events_.Get(), buffer.data(), buffer.size());
        if (got < 0 && errno == EINTR) continue;
        if (got < 0 && errno == EAGAIN) return;
        if (got <= 0) return Break();
        for (size_t at = 0; at < static_cast<size_t>(got);) {
            const auto* event = reinterpret_cast<const inotify_event*>(buffer.data() + at);
            at += sizeof(inotify_event) + event->len;
            Deliver(event->wd, event->mask, event->len == 0 ? "" : event->name);
        }
        // Had there been more, it would have been given.
        if (static_cast<size_t>(got) <= buffer.size() - kLargestEvent) return;
    }
}

void LFolderWatches::Deliver(int id, uint32_t mask, std::string_view name) {
    if ((mask & IN_Q_OVERFLOW) != 0) return Break();
    for (Watch* watch : watches_) {
        if (watch->id != id || watch->isBroken) continue;
        if ((mask & (kCame | kWent)) == 0 || watch->changes.size() == kMaxChanges) {
            watch->isBroken = true;
            watch->changes = {};
        } else {
            watch->changes.push_back({std::string(name), (mask & kCame) != 0});
        }
    }
}

void LFolderWatches::End(const Watch& watch) {
    const LMutexLock lock(mutex_);
    std::erase(watches_, &watch);
    const bool isShared = std::any_of(watches_.begin(), watches_.end(),
                                      [&](const Watch* other) { return other->id == watch.id; });
    // In a forked child the system's watch is still the parent's.
    if (!isShared && IsOwnProcess()) ::inotify_rm_watch(events_.Get(), watch.id);
}
