// Notices what other processes write into the lists that a desktop shows.
#pragma once

#include <array>
#include <atomic>
#include <functional>
#include <memory>
#include <string>
#include <string_view>

#include "platform/LFolderMonitor.h"

// Watches the folders of the lists "Items", "Categories" and "Locations" of one database folder.
// Used on the main thread.
class LFolderMonitorEvents {
public:
    // `post` has work run on the main thread soon and may be called by any thread; `changed` is
    // called there with the path of the list folder, after this object has gone no more. As long
    // as one call for a folder waits to be run, no other is posted for it.
    LFolderMonitorEvents(std::function<void(std::function<void()>)> post,
                         std::function<void(const std::string& folder)> changed);
    ~LFolderMonitorEvents();
    LFolderMonitorEvents(const LFolderMonitorEvents&) = delete;
    LFolderMonitorEvents& operator=(const LFolderMonitorEvents&) = delete;

    // Watches this database folder instead of the one before; none when it is empty. False when
    // one of the lists cannot be watched; the others are. Missing list folders are made.
    bool SetDatabaseName(std::string_view databaseFolder);

private:
    struct LWatch;
    void EvFolderChanged(const std::shared_ptr<LWatch>& watch, const std::string& folder);

    const std::function<void(std::function<void()>)> post_;
    const std::function<void(const std::string&)> changed_;
    std::array<std::shared_ptr<LWatch>, 3> watches_;
};
