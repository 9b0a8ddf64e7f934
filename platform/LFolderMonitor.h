// Tells when something changes in a folder.
#pragma once

#include <functional>
#include <string>

#include "platform/LFileDescriptor.h"
#include "platform/LThread.h"

// Watches on a thread of its own. Changes that come close together are told once. A folder that is
// moved away or removed, itself or with one above it, counts as changed; the one that takes its
// place at the path is watched from then on, whenever it comes.
class LFolderMonitor final : public LThread {
public:
    // Called on the monitor's thread with the folder's path.
    using LSignalChangeEvent = std::function<void(const std::string& path)>;
    explicit LFolderMonitor(LSignalChangeEvent signalChange);
    ~LFolderMonitor() override { StopMonitor(); }

    // False when `path` is empty, the monitor is already started, or nothing can be watched there.
    bool StartMonitor(const std::string& path);
    void StopMonitor();  // also right when it was never started

private:
    enum class LNews { kNone, kChanged, kFolderGone };

    void ThreadFunction() override;
    bool WatchPath();
    bool WaitForFolder();
    LNews WaitForNews();
    LNews ReadNews();

    const LSignalChangeEvent signalChange_;
    std::string path_;
    LFileDescriptor events_;
};
