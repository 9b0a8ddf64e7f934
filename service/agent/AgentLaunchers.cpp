#include "service/agent/AgentLaunchers.h"

#include <signal.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <cstring>

#include "platform/ChildProgram.h"
#include "platform/FileIo.h"
#include "platform/Folders.h"
#include "service/agent/LLaunchd.h"
#include "service/agent/LServiceAgent.h"
#include "service/agent/SystemdUnit.h"
#include "service/control/LServiceLog.h"
#include "service/control/LServiceQueries.h"

namespace {

constexpr int kProbeMs = 3000;
constexpr int kCommandMs = 30000;
constexpr int kStartMs = 15000;
constexpr off_t kMaxLogBytes = off_t{1} << 20;
// What the service writes once it can be talked to.
constexpr std::string_view kReadyMarker = "<STOP_PIPE_BLOCKING>";

bool Failed(const std::string& what, const std::string& path) {
    LServiceLog("cannot " + what, path + ": " + std::strerror(errno), kLogError);
    return false;
}

// Beside the data, but outside of the shared folder, which backups copy and restores replace.
std::string PrivateInstallFolder() { return GetUserDataFolderApp() + "/Agent/"; }

// Services that nobody manages end as the system ends any program.
bool TerminateServices() {
    bool done = true;
    for (const int process : LServiceProcesses()) done = ::kill(process, SIGTERM) == 0 && done;
    return done;
}

class LLaunchdLauncher final : public LAgentLauncher {
public:
    std::string Name() const override { return "launchd"; }
    std::string WhenItStarts() const override {
        return "'launchctl load \"" + PlistPath() + "\"' starts it.";
    }
    std::string InstallFolder() const override { return LServiceAgent::GetInstallFolder(); }
    bool Register() const override {
        LPlist plist;
        plist.SetValue("Label", AgentLabel());
        plist.SetValue("ProgramArguments", LPlist::LTexts{AgentPath(), "-service"});
        plist.SetValue("OnDemand", false);
        plist.SetValue("RunAtLoad", false);
        std::string path = PlistPath();
        return LLaunchd::WriteToUserLaunchAgentsFolder(plist, path) || Failed("write", path);
    }
    bool IsRegistered() const override { return FileExists(PlistPath()); }
    void Unregister() const override {}  // the files stay, the launcher starts nothing by itself
    bool Load() const override { return LLaunchd::LaunchdLoad(PlistPath()); }
    bool Unload() const override { return LLaunchd::LaunchdRemove(AgentLabel()); }

private:
    static std::string PlistPath() {
        return LServiceAgent::GetLaunchAgentsFolder() + AgentLabel() + ".plist";
    }
};

class LSystemdLauncher final : public LAgentLauncher {
public:
    std::string Name() const override { return "systemd"; }
    std::string WhenItStarts() const override {
        return "It starts at log-in; 'systemctl --user start quillmarsh' starts it now.";
    }
    std::string InstallFolder() const override { return PrivateInstallFolder(); }
    bool Register() const override {
        if (!WriteSystemdUnit(AgentPath())) return Failed("write", SystemdUnitPath());
        return Control("daemon-reload") && Control("enable", kSystemdUnitName);
    }
    // The text also says which program is started, and on which data.
    bool IsRegistered() const override {
        return ReadFile(SystemdUnitPath()) == SystemdUnitText(AgentPath());
    }
    void Unregister() const override {
        Control("disable", kSystemdUnitName);
        ::unlink(SystemdUnitPath().c_str());
        Control("daemon-reload");
        ::unlink(AgentPath().c_str());
    }
    bool Load() const override { return Control("start", kSystemdUnitName); }
    // A service that was started by hand is none of the manager's.
    bool Unload() const override {
        Control("stop", kSystemdUnitName);
        return TerminateServices();
    }
    static bool Answers() {
        return RunProgram({"systemctl", "--user", "show-environment"}, kProbeMs) == 0;
    }

private:
    static bool Control(const std::string& verb, std::string_view unit = {}) {
        std::vector<std::string> words{"systemctl", "--user", verb};
        if (!unit.empty()) words.emplace_back(unit);
        if (RunProgram(words, kCommandMs) == 0) return true;
        LServiceLog("systemctl --user " + verb, "failed", kLogError);
        return false;
    }
};

class LDirectLauncher final : public LAgentLauncher {
public:
    std::string Name() const override { return "direct start"; }
    std::string WhenItStarts() const override {
        return "'" + AgentPath() + " -service' starts it.";
    }
    std::string InstallFolder() const override { return PrivateInstallFolder(); }
    bool Register() const override { return true; }  // nobody reads anything
    bool IsRegistered() const override { return true; }
    void Unregister() const override { ::unlink(AgentPath().c_str()); }
    bool Load() const override {
        const std::string log = InstallFolder() + "service.log";
        struct stat status {};
        if (::stat(log.c_str(), &status) == 0 && status.st_size > kMaxLogBytes) {
            ::rename(log.c_str(), (log + ".old").c_str());
        }
        if (StartDetachedProgram({AgentPath(), "-service"}, log, kReadyMarker, kStartMs)) {
            return true;
        }
        LServiceLog("The service did not start, see", log, kLogError);
        return false;
    }
    bool Unload() const override { return TerminateServices(); }
};

}  // namespace

std::string AgentLabel() { return std::string(kBundleIdentifier) + ".agent"; }

std::unique_ptr<LAgentLauncher> ChooseAgentLauncher() {
    if (LLaunchd::IsAvailable()) return std::make_unique<LLaunchdLauncher>();
    if (LSystemdLauncher::Answers()) return std::make_unique<LSystemdLauncher>();
    return std::make_unique<LDirectLauncher>();
}
