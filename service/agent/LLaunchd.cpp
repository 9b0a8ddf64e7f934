#include "service/agent/LLaunchd.h"

#include <cerrno>

#include "platform/ChildProgram.h"
#include "platform/FileIo.h"
#include "platform/Folders.h"

namespace {

constexpr int kPatienceMs = 20000;

bool Run(const char* verb, const std::string& what) {
    return RunProgram({"launchctl", verb, what}, kPatienceMs) == 0;
}

}  // namespace

bool LLaunchd::IsAvailable() { return !FindOnPath("launchctl").empty(); }

std::string LLaunchd::GetUserLaunchAgentsFolder() {
    return PlatformPath("/Users/" + LogonUserName() + "/Library/LaunchAgents/");
}

bool LLaunchd::WriteToUserLaunchAgentsFolder(const LPlist& plist, std::string& path) {
    std::string label;
    errno = EINVAL;
    if (!plist.GetValue("Label", label) || label.empty() || label.find('/') != std::string::npos) {
        return false;
    }
    const std::string folder = GetUserLaunchAgentsFolder();
    if (!MakeFolderTree(folder, 0700)) return false;
    path = folder + label + ".plist";
    return plist.WriteToFile(path);
}

bool LLaunchd::LaunchdLoad(const std::string& path) { return Run("load", path); }

bool LLaunchd::LaunchdUnload(const std::string& path) { return Run("unload", path); }

bool LLaunchd::LaunchdRemove(const std::string& label) { return Run("remove", label); }
