#include "datastore/LKeyMemory.h"

#include <fcntl.h>
#include <linux/magic.h>
#include <sys/inotify.h>
#include <sys/stat.h>
#include <sys/vfs.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <vector>

#include "datastore/LFolderReader.h"

namespace {

constexpr uint32_t kCame = IN_CREATE | IN_MOVED_TO;
constexpr uint32_t kWent = IN_DELETE | IN_MOVED_FROM;
constexpr uint32_t kFolderItself = IN_DELETE_SELF | IN_MOVE_SELF;

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

// The folders asked for last, newest first. Each holds a watch, of which a user has about a
// hundred.
class LKeyMemories {
public:
    std::shared_ptr<LKeyMemory> Of(const std::string& path) {
        const LMutexLock lock(mutex_);
        // A child process shares its parent's watches and would steal their events.
        if (const pid_t process = ::getpid(); process != process_) {
            memories_.clear();
            process_ = process;
        }
        auto found = std::find_if(memories_.begin(), memories_.end(),
                                  [&](const auto& memory) { return memory->Path() == path; });
        if (found == memories_.end()) {
            if (memories_.size() == kMaxMemories) memories_.pop_back();
            found = memories_.insert(memories_.end(), std::make_shared<LKeyMemory>(path));
        }
        std::rotate(memories_.begin(), found, found + 1);
        return memories_.front();
    }

private:
    static constexpr size_t kMaxMemories = 16;
    LMutex mutex_;
    pid_t process_ L_GUARDED_BY(mutex_) = 0;
    std::vector<std::shared_ptr<LKeyMemory>> memories_ L_GUARDED_BY(mutex_);
};

LKeyMemories& Memories() {
    static LKeyMemories memories;
    return memories;
}

}  // namespace

uint64_t CreateNumberedRecord(const std::string& path, std::string_view text) {
    const LFileDescriptor folder(::open(path.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC));
    if (!folder.IsOpen()) return 0;
    LNewRecordFile file(folder.Get(), text);
    return Memories().Of(path)->Create(folder.Get(), file);
}

uint64_t LKeyMemory::Create(int folder, LNewRecordFile& file) {
    const LMutexLock lock(mutex_);
    Refresh(folder);
    for (uint64_t number = used_.SmallestFree();; number = used_.SmallestFree(number + 1)) {
        const std::string name = std::to_string(number) + ".dat";
        const LNewRecordFile::Result result = file.MakeAs(name.c_str());
        if (result == LNewRecordFile::Result::kFailed) return 0;
        used_.Add(number);
        if (result == LNewRecordFile::Result::kMade) return number;
    }
}

void LKeyMemory::Refresh(int folder) {
    const bool isSame = IsSameFolder(folder);
    if (isSame && watch_.IsOpen() && ApplyEvents()) return;
    // Watch first and list then: what happens in between is told by the watch.
    if (!isSame || !watch_.IsOpen()) StartWatch(folder);
    List(folder);
}

bool LKeyMemory::IsSameFolder(int folder) {
    struct stat status {};
    if (::fstat(folder, &status) != 0) return false;
    const bool isSame = status.st_dev == device_ && status.st_ino == inode_;
    device_ = status.st_dev;
    inode_ = status.st_ino;
    return isSame;
}

void LKeyMemory::StartWatch(int folder) {
    watch_.Close();
    if (!IsLocalFileSystem(folder)) return;
    LFileDescriptor watch(::inotify_init1(IN_NONBLOCK | IN_CLOEXEC));
    if (!watch.IsOpen()) return;
    // Through the descriptor: what lies at the path may be another folder by now.
    const std::string source = "/proc/self/fd/" + std::to_string(folder);
    if (::inotify_add_watch(watch.Get(), source.c_str(),
                            kCame | kWent | kFolderItself | IN_ONLYDIR) >= 0) {
        watch_ = std::move(watch);
    }
}

// False when the watch cannot vouch for the numbers any more.
bool LKeyMemory::ApplyEvents() {
    constexpr size_t kLargestEvent = sizeof(inotify_event) + 256;
    alignas(inotify_event) std::array<char, 4096> buffer;
    for (;;) {
        const ssize_t got = ::read(watch_.Get(), buffer.data(), buffer.size());
        if (got < 0 && errno == EINTR) continue;
        if (got < 0 && errno == EAGAIN) return true;
        if (got <= 0) return false;
        for (size_t at = 0; at < static_cast<size_t>(got);) {
            const auto* event = reinterpret_cast<const inotify_event*>(buffer.data() + at);
            at += sizeof(inotify_event) + event->len;
            if (!ApplyEvent(event->mask, event->len == 0 ? "" : event->name)) return false;
        }
        if (static_cast<size_t>(got) <= buffer.size() - kLargestEvent) return true;
    }
}

bool LKeyMemory::ApplyEvent(uint32_t mask, std::string_view name) {
    if ((mask & (kFolderItself | IN_IGNORED | IN_UNMOUNT)) != 0) watch_.Close();
    if ((mask & (kCame | kWent)) == 0) return false;  // also an overflow: events were lost
    if (const auto number = NumberOfFileName(name)) {
        (mask & kCame) != 0 ? used_.Add(*number) : used_.Remove(*number);
    }
    return true;
}

void LKeyMemory::List(int folder) {
    used_.Clear();
    LFolderReader reader(folder);
    while (const LFolderReader::Entry* entry = reader.Next()) {
        if (const auto number = NumberOfFileName(entry->name)) used_.Add(*number);
    }
}
