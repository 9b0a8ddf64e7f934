#include "platform/LFolderMonitor.h"

#include <sys/inotify.h>
#include <unistd.h>

#include <array>
#include <cerrno>

#include "platform/SocketIo.h"

namespace {

constexpr uint32_t kGone = IN_DELETE_SELF | IN_MOVE_SELF;
constexpr uint32_t kChange =
    IN_CREATE | IN_DELETE | IN_MOVED_FROM | IN_MOVED_TO | IN_CLOSE_WRITE | IN_ONLYDIR;
constexpr int kBurstMs = 200;   // how long changes are gathered into one
constexpr int kReturnMs = 500;  // how often a missing folder is looked for

}  // namespace

LFolderMonitor::LFolderMonitor(LSignalChangeEvent signalChange)
    : LThread("LFolderMonitor"), signalChange_(std::move(signalChange)) {}

bool LFolderMonitor::StartMonitor(const std::string& path) {
    if (path.empty() || IsRunning()) return false;
    StopMonitor();
    path_ = path;
    return WatchPath() && Start();
}

void LFolderMonitor::StopMonitor() {
    StopAndJoin();
    events_.Close();
}

// The folders above are watched only for going away, the upper ones first: one that is replaced
// meanwhile is either seen to go, or the folder below it is looked up in its successor.
bool LFolderMonitor::WatchPath() {
    events_ = LFileDescriptor(::inotify_init1(IN_NONBLOCK | IN_CLOEXEC));
    if (!events_.IsOpen()) return false;
    for (size_t end = path_.find('/', 1); end != std::string::npos;
         end = path_.find('/', end + 1)) {
        ::inotify_add_watch(events_.Get(), path_.substr(0, end).c_str(), kGone | IN_ONLYDIR);
    }
    return ::inotify_add_watch(events_.Get(), path_.c_str(), kChange | kGone) >= 0;
}

void LFolderMonitor::ThreadFunction() {
    for (;;) {
        const LNews news = WaitForNews();
        if (news == LNews::kNone || IsStopRequested()) return;
        signalChange_(path_);
        if (news != LNews::kFolderGone) continue;
        if (!WaitForFolder()) return;
        signalChange_(path_);
    }
}

// False when told to stop.
bool LFolderMonitor::WaitForFolder() {
    while (!WatchPath()) {
        if (StopSignal().Wait(kReturnMs)) return false;
    }
    return true;
}

LFolderMonitor::LNews LFolderMonitor::WaitForNews() {
    for (;;) {
        if (WaitReadable(events_.Get(), StopSignal()) != LSocketResult::kOk) return LNews::kNone;
        LNews news = ReadNews();
        if (news == LNews::kNone) continue;
        if (news == LNews::kChanged && !StopSignal().Wait(kBurstMs)) {
            if (ReadNews() == LNews::kFolderGone) news = LNews::kFolderGone;
        }
        return news;
    }
}

// All that has happened so far.
LFolderMonitor::LNews LFolderMonitor::ReadNews() {
    alignas(inotify_event) std::array<char, 4096> buffer;
    LNews news = LNews::kNone;
    for (;;) {
        const ssize_t got = ::read(events_.Get(), buffer.data(), buffer.size());
        if (got < 0 && errno == EINTR) continue;
        if (got <= 0) return news;
        for (size_t at = 0; at < static_cast<size_t>(got);) {
            const auto* event = reinterpret_cast<const inotify_event*>(buffer.data() + at);
            at += sizeof(inotify_event) + event->len;
            if ((event->mask & (kGone | IN_IGNORED | IN_UNMOUNT)) != 0) {
                news = LNews::kFolderGone;
            } else if (news == LNews::kNone) {
                news = LNews::kChanged;
            }
        }
    }
}
