#include "datastore/LFolderMonitorEvents.h"

#include "platform/FileIo.h"

namespace {

constexpr std::array<std::string_view, 3> kWatchedLists{"Items", "Categories", "Locations"};

}  // namespace

// Work that is posted may come to run after the watch was replaced, or after its owner has gone; it
// then finds `isCurrent` gone.
struct LFolderMonitorEvents::LWatch {
    std::unique_ptr<LFolderMonitor> monitor;
    std::atomic<bool> isPosted{false};
    bool isCurrent = true;  // main thread only
};

LFolderMonitorEvents::LFolderMonitorEvents(std::function<void(std::function<void()>)> post,
                                           std::function<void(const std::string&)> changed)
    : post_(std::move(post)), changed_(std::move(changed)) {}

LFolderMonitorEvents::~LFolderMonitorEvents() { SetDatabaseName({}); }

bool LFolderMonitorEvents::SetDatabaseName(std::string_view databaseFolder) {
    for (auto& watch : watches_) {
        if (watch == nullptr) continue;
        watch->monitor->StopMonitor();
        watch->isCurrent = false;
        watch.reset();
    }
    bool isComplete = true;
    for (size_t i = 0; i < kWatchedLists.size() && !databaseFolder.empty(); ++i) {
        const std::string folder = std::string(databaseFolder).append("/").append(kWatchedLists[i]);
        MakeFolderTree(folder);
        auto watch = std::make_shared<LWatch>();
        watch->monitor = std::make_unique<LFolderMonitor>(
            [this, weak = std::weak_ptr(watch)](const std::string& path) {
                if (const auto alive = weak.lock()) EvFolderChanged(alive, path);
            });
        isComplete = watch->monitor->StartMonitor(folder) && isComplete;
        watches_[i] = std::move(watch);
    }
    return isComplete;
}

// On the monitor's thread, which ends before this object does.
void LFolderMonitorEvents::EvFolderChanged(const std::shared_ptr<LWatch>& watch,
                                           const std::string& folder) {
    if (watch->isPosted.exchange(true)) return;
    post_([this, weak = std::weak_ptr(watch), folder] {
        const auto alive = weak.lock();
        if (alive == nullptr || !alive->isCurrent) return;
        alive->isPosted = false;  // before looking: what changes from now on is told again
        changed_(folder);
    });
}
