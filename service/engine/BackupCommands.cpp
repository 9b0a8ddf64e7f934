#include "service/engine/BackupCommands.h"

#include <signal.h>
#include <sys/socket.h>

#include <cerrno>
#include <chrono>
#include <filesystem>
#include <thread>

#include "datastore/Backup.h"
#include "datastore/BackupContents.h"
#include "datastore/LBackgroundService.h"
#include "service/control/LNamedPipeRef.h"
#include "service/control/LServiceControl.h"
#include "service/control/LServiceEngineProxy.h"
#include "service/control/LServiceMessageHeader.h"

namespace {

// The service as it is reached through its control pipe.
class LPipedService final : public LBackgroundService {
public:
    explicit LPipedService(std::ostream& out) : out_(out) {}

    bool IsRunning() override { return ProcessId() > 0; }

    bool Stop() override {
        const pid_t id = ProcessId();
        if (id <= 0) return true;
        LServiceEngineProxyTemporary proxy;
        if (!proxy.Start() || proxy.ControlWithResult(kServiceStopSoon) == 0) return false;
        proxy.Stop();
        const bool hasEnded = WaitForEnd(id);
        if (hasEnded) out_ << "The service was stopped.\n";
        return hasEnded;
    }

    bool Start() override {
        if (const auto& startSoon = GetServiceLauncher().startSoon) startSoon();
        const bool runs = IsRunning();
        out_ << (runs ? "The service runs again.\n" : "Please start the service again.\n");
        return runs;
    }

private:
    // Of whoever listens at the pipe; 0 for nobody.
    static pid_t ProcessId() {
        const LFileDescriptor pipe =
            LNamedPipeRef::Open(LNamedPipeRef::MakeFilePath(kServicePipeName));
        ucred peer{};
        socklen_t size = sizeof peer;
        if (!pipe.IsOpen()) return 0;
        return ::getsockopt(pipe.Get(), SOL_SOCKET, SO_PEERCRED, &peer, &size) == 0 ? peer.pid : 0;
    }

    static bool WaitForEnd(pid_t id) {
        constexpr auto kPatience = std::chrono::seconds(60);
        constexpr auto kPause = std::chrono::milliseconds(50);
        const auto end = std::chrono::steady_clock::now() + kPatience;
        while (::kill(id, 0) == 0 || errno == EPERM) {
            if (std::chrono::steady_clock::now() > end) return false;
            std::this_thread::sleep_for(kPause);
        }
        return true;
    }

    std::ostream& out_;
};

// A user who has said yes and named the folder on the command line.
class LCommandLineUser final : public LUserInterface {
public:
    LCommandLineUser(std::string folder, std::ostream& out)
        : folder_(std::move(folder)), out_(out) {}

    std::string Ask(std::string_view title, std::string_view,
                    const std::vector<std::string>& buttons) override {
        // Only whether to restore has been answered; there is no other folder to pick.
        return title == "Confirm Restore" ? buttons.front() : buttons.back();
    }
    void Inform(std::string_view, std::string_view text) override {
        out_ << text << "\n";
        lastTold_ = text;
    }
    std::optional<std::string> PickFolder(std::string_view) override { return folder_; }
    std::optional<std::string> PickSaveFile(std::string_view, std::string_view) override {
        return std::nullopt;
    }
    bool RunProcess(std::string_view title,
                    const std::function<bool(LProcessInterface&)>& process) override {
        out_ << title << "..." << std::endl;
        LQuietProcess quiet;
        return process(quiet);
    }

    const std::string& LastTold() const { return lastTold_; }

private:
    class LQuietProcess final : public LProcessInterface {
        void SetStatus(std::string_view) override {}
        void SetProgress(double) override {}
        bool IsCancelled() const override { return false; }
    };

    const std::string folder_;
    std::ostream& out_;
    std::string lastTold_;
};

}  // namespace

std::string LBackupFromCommandLine(const std::string& destination, std::ostream& out) {
    LCommandLineUser user(destination, out);
    const LBackupResult result = LBackupFolder(user, destination);
    if (!result.error.IsNone()) {
        return result.error.message.empty() ? "cannot make a backup" : result.error.message;
    }
    out << ReadBackupContents(result.folder).Summary() << "Backup: " << result.folder << "\n";
    return {};
}

std::string LRestoreFromCommandLine(const std::string& folder, std::ostream& out) {
    LCommandLineUser user(folder, out);
    LPipedService service(out);
    std::string problem;
    const bool wasGood = LRestoreFolder(user, service, folder, [&](const std::string& chosen) {
        const LBackupContents contents = ReadBackupContents(chosen);
        problem = contents.Problem();
        if (problem.empty()) out << contents.Summary();
        return problem.empty();
    });
    if (!problem.empty()) return problem;
    if (!wasGood) return "The folder lies inside the data folder that it would replace.";
    return user.LastTold() == "The data was restored successfully." ? "" : user.LastTold();
}
