// The per-user launcher of launch agents, driven by its command "launchctl".
#pragma once

#include <string>

#include "service/agent/LPlist.h"

struct LLaunchd {
    // Whether this machine has it.
    static bool IsAvailable();

    // "/Users/NAME/Library/LaunchAgents/".
    static std::string GetUserLaunchAgentsFolder();
    // Writes the property list into that folder, made with mode 0700 when missing, as the file
    // named after its "Label" with the extension ".plist"; `path` receives the full path. False
    // when it has no label, which must be a plain file name, or the disk refuses; errno tells why.
    [[nodiscard]] static bool WriteToUserLaunchAgentsFolder(const LPlist& plist, std::string& path);

    // Run "launchctl load" (or "unload", "remove"). True when it said that it did.
    static bool LaunchdLoad(const std::string& path);
    static bool LaunchdUnload(const std::string& path);
    static bool LaunchdRemove(const std::string& label);
};
