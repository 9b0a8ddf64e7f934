#include "service/engine/ServiceMain.h"

#include <unistd.h>

#include <algorithm>
#include <array>
#include <atomic>
#include <csignal>
#include <cstdio>

#include "datastore/UserSettings.h"
#include "platform/HangDetector.h"
#include "platform/ProcessInfo.h"
#include "service/agent/LServiceAgent.h"
#include "service/control/LNamedPipeRef.h"
#include "service/control/LServiceEngine.h"
#include "service/control/LServiceLog.h"
#include "service/control/LServiceMessageHeader.h"
#include "service/engine/MainEngine.h"

namespace {

constexpr int kStartDelayMs = 1000;

std::atomic<LServiceEngineBase*> runningService{nullptr};
std::atomic<bool> endRequested{false};
static_assert(std::atomic<LServiceEngineBase*>::is_always_lock_free);

extern "C" void LServiceTermSignalHandler(int) {
    endRequested = true;
    if (const LServiceEngineBase* service = runningService) service->RequestStop();
}

void HandleSignal(int signal, void (*handler)(int)) {
    struct sigaction old {};
    ::sigaction(signal, nullptr, &old);
    // Whoever started us without Ctrl+C or with "nohup" meant it.
    if ((signal == SIGINT || signal == SIGHUP) && old.sa_handler == SIG_IGN) return;
    struct sigaction action {};
    action.sa_handler = handler;
    action.sa_flags = SA_RESTART;
    ::sigaction(signal, &action, nullptr);
}

// While it lives, the signals reach `service`; one that came earlier does so now.
class LSignalTarget {
public:
    explicit LSignalTarget(LServiceEngineBase& service) {
        runningService = &service;
        if (endRequested) service.RequestStop();
    }
    ~LSignalTarget() { runningService = nullptr; }
    LSignalTarget(const LSignalTarget&) = delete;
    LSignalTarget& operator=(const LSignalTarget&) = delete;
};

// For an installed helper that belongs to root; anybody else stays who they are.
void LSwitchToRoot() { [[maybe_unused]] const int ignored = ::setuid(0); }

// A parent that reads our output until it knows that we can be talked to waits for this marker.
void LServiceStopBlocking() {
    std::fputs("<STOP_PIPE_BLOCKING>", stdout);
    std::fflush(stdout);
}

// False when the service is to end already.
bool PassStartDelay(const LServiceEngineBase& service) {
    const int delayMs = std::max(LUserSettingGet<int>("Service", "Delay", kStartDelayMs), 0);
    return !service.StopSignal().Wait(delayMs);
}

void TellWhatIsInstalled() {
    if (!LServiceAgent::IsInstalled()) return;  // the log has the reason
    std::puts(LServiceAgent::Describe().c_str());
}

void ReportHang(int) { LHangDetectorReport(STDERR_FILENO); }

}  // namespace

int ServiceMain() {
    for (const int signal : {SIGTERM, SIGINT, SIGHUP}) {
        HandleSignal(signal, LServiceTermSignalHandler);
    }
    LSwitchToRoot();
    SetProcessName(kServiceProcessName);
    HandleSignal(SIGUSR1, ReportHang);

    LServiceEngine<MainEngine> service;
    const LSignalTarget target(service);
    service.SetPath(LNamedPipeRef::MakeFilePath(kServicePipeName));
    if (!service.Start()) {
        LServiceLog("Cannot start the service: the system has no thread to spare", {}, kLogError);
        return 0;
    }
    if (!service.WaitUntilListening()) return 0;  // the log has the reason
    LServiceStopBlocking();

    if (PassStartDelay(service)) {
        service.StartEngine();
        service.Wait();
    }
    service.Stop();
    return 0;
}

int ServiceHelper(const std::vector<std::string>& arguments) {
    LSwitchToRoot();
    UseServiceAgentAsLauncher();
    const std::string step = arguments.empty() ? "" : arguments.front();
    if (step == "-install") {
        LServiceInstall();
        TellWhatIsInstalled();
    } else if (step == "-uninstall") {
        LServiceUninstall();
        std::puts(LWebletServer::IsWebletServerEnabled()
                      ? "The service is no longer installed."
                      : "The service is no longer installed, and the web server is turned off.");
    } else if (step == "-reinstall") {
        LServiceReinstall();
    }
    return 0;
}
