#include "service/agent/LServiceAgent.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <chrono>
#include <cstring>
#include <functional>
#include <thread>
#include <vector>

#include "platform/FileIo.h"
#include "platform/Folders.h"
#include "platform/LFileDescriptor.h"
#include "platform/LSilentProcess.h"
#include "platform/LTempFile.h"
#include "platform/PollDeadline.h"
#include "service/agent/AgentLaunchers.h"
#include "service/agent/FileDigest.h"
#include "service/agent/LLaunchd.h"
#include "service/control/LNamedPipeRef.h"
#include "service/control/LServiceControl.h"
#include "service/control/LServiceEngineProxy.h"
#include "service/control/LServiceLog.h"
#include "service/control/LServiceMessageHeader.h"
#include "service/control/LServiceQueries.h"
#include "web/server/LWebletServer.h"

namespace {

constexpr int kPollMs = 100;
constexpr int kPatienceMs = 30000;
constexpr int kEndMs = 10000;  // of a service that has agreed to end
constexpr size_t kPieceBytes = size_t{1} << 18;
// Still this program when its file was replaced or removed by an update.
constexpr char kOwnExecutable[] = "/proc/self/exe";

LUserInterface* parentWindow = nullptr;

bool RunUnderProgress(const char* title, const std::function<bool(LProcessInterface&)>& process) {
    if (parentWindow != nullptr) return parentWindow->RunProcess(title, process);
    LSilentProcess none;
    return process(none);
}

// False when the user or our patience ended it first.
bool PollUntilTrue(LProcessInterface& process, std::string_view status,
                   const std::function<bool()>& condition, int patienceMs) {
    const LDeadline deadline(patienceMs);
    process.SetStatus(status);
    while (!condition()) {
        if (process.IsCancelled() || deadline.RemainingMs() == 0) return false;
        std::this_thread::sleep_for(std::chrono::milliseconds(kPollMs));
    }
    return true;
}

// A process that runs but does not listen yet could not be told anything.
bool RunsAndListens() {
    return LServiceIsRunning() &&
           LNamedPipeRef::Open(LNamedPipeRef::MakeFilePath(kServicePipeName)).IsOpen();
}

bool LoadProcess(LProcessInterface& process) {
    return LServiceAgent::Load() &&
           PollUntilTrue(process, "Starting the web server...", RunsAndListens, kPatienceMs);
}

bool HasEnded() { return !LServiceIsRunning(); }

bool UnloadProcess(LProcessInterface& process) {
    const bool taken = ChooseAgentLauncher()->Unload();
    return (taken || HasEnded()) &&
           PollUntilTrue(process, "Stopping the web server...", HasEnded, kPatienceMs);
}

// Through a temporary proxy where this process has none that is connected. 0 when nobody answers.
uint32_t Ask(uint32_t code) {
    const LServiceEngineProxyHandle handle;
    return handle.Proxy().ControlWithResult(code);
}

// Appears under its name whole, so that a running service keeps its file and a start never meets
// half of one.
bool CopyOwnExecutable(const std::string& path) {
    const LFileDescriptor own(::open(kOwnExecutable, O_RDONLY | O_CLOEXEC));
    LTempFile copy(path, 0755);
    std::vector<char> piece(kPieceBytes);
    while (own.IsOpen() && copy.IsOpen()) {
        const ssize_t count = ::read(own.Get(), piece.data(), piece.size());
        if (count < 0 && errno == EINTR) continue;
        if (count == 0) return copy.Commit();
        if (count < 0 || !copy.Write({piece.data(), static_cast<size_t>(count)})) return false;
    }
    return false;
}

bool HoldsOwnExecutable(const std::string& path) {
    const auto copy = Md5OfFile(path);
    return copy && copy == Md5OfFile(kOwnExecutable);
}

}  // namespace

std::string LServiceAgent::GetInstallFolder() {
    return PlatformPath("/Users/" + LogonUserName() + "/Library/Tervin Software/Quillmarsh/");
}

std::string LServiceAgent::GetLaunchAgentsFolder() { return LLaunchd::GetUserLaunchAgentsFolder(); }

bool LServiceAgent::Install() {
    const auto launcher = ChooseAgentLauncher();
    if (!MakeFolderTree(launcher->InstallFolder(), 0700) ||
        !CopyOwnExecutable(launcher->AgentPath())) {
        LServiceLog("cannot install the service as",
                    launcher->AgentPath() + ": " + std::strerror(errno), kLogError);
    }
    launcher->Register();
    return true;
}

bool LServiceAgent::IsInstalled() {
    const auto launcher = ChooseAgentLauncher();
    return FolderExists(launcher->InstallFolder()) && FileExists(launcher->AgentPath()) &&
           HoldsOwnExecutable(launcher->AgentPath()) && launcher->IsRegistered();
}

bool LServiceAgent::Load() { return ChooseAgentLauncher()->Load(); }

// Two blanks: that is how the title has always been.
bool LServiceAgent::Unload() {
    return RunUnderProgress("Stopping the  web server.", UnloadProcess);
}

bool LServiceAgent::WaitUntilEnded() {
    LSilentProcess none;
    return PollUntilTrue(none, {}, HasEnded, kEndMs);
}

bool LServiceAgent::Uninstall() {
    if (parentWindow != nullptr && !Unload()) return false;
    if (!LWebletServer::EnableWebletServer(false)) {
        LServiceLog("cannot store that the web server is turned off", {}, kLogError);
        LServiceStopSoon();  // which storing it would have done
    }
    ChooseAgentLauncher()->Unregister();
    return true;
}

void LServiceAgent::Start() {
    if (LServiceIsRunningAndActiveAndMatchingVersionString()) return;
    // Read first: stopping the old service turns the setting off.
    const bool enabled = LWebletServer::IsWebletServerEnabled();
    if (LServiceIsRunning()) {
        LServiceStop();
        if (!WaitUntilEnded()) Unload();
    }
    LWebletServer::EnableWebletServer(enabled);
}

void LServiceAgent::SetParentWindow(LUserInterface* window) { parentWindow = window; }

std::string LServiceAgent::Describe() {
    const auto launcher = ChooseAgentLauncher();
    return "The service is installed (" + launcher->Name() + ": " + launcher->AgentPath() + "). " +
           launcher->WhenItStarts();
}

void LServiceStart() { LServiceAgent::Start(); }

void LServiceStop() {
    if (LServiceIsRunning()) LWebletServer::EnableWebletServer(false);
}

void LServiceStartSoon() {
    if (LServiceIsRunning() || Ask(kServiceStartSoon) != 0) return;
    if (!LServiceAgent::IsInstalled()) LServiceAgent::Install();
    RunUnderProgress("Starting the web server.", LoadProcess);
}

void LServiceStopSoon() {
    if (!LServiceIsRunning() || Ask(kServiceStopSoon) != 0) return;
    LServiceAgent::Unload();
}

int LServiceInstall() { return LServiceAgent::Install() ? 0 : 1; }

int LServiceUninstall() { return LServiceAgent::Uninstall() ? 0 : 1; }

int LServiceReinstall() { return 0; }

void UseServiceAgentAsLauncher() { SetServiceLauncher({LServiceStartSoon, LServiceStopSoon}); }
