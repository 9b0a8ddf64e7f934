#include "service/engine/BackupCommands.h"

#include "datastore/Backup.h"
#include "datastore/BackupContents.h"
#include "platform/Folders.h"
#include "platform/LSilentProcess.h"
#include "service/agent/AgentBackgroundService.h"

namespace {

// Tells on the way what happens to the service.
class LToldService final : public LBackgroundService {
public:
    explicit LToldService(std::ostream& out) : out_(out) {}

    bool IsRunning() override { return service_.IsRunning(); }
    bool Stop() override {
        const bool hasEnded = service_.Stop();
        out_ << (hasEnded ? "The service was stopped.\n" : "The service does not stop.\n");
        return hasEnded;
    }
    bool Start() override {
        const bool runs = service_.Start();
        out_ << (runs ? "The service runs again.\n" : "Please start the service again.\n");
        return runs;
    }

private:
    LAgentBackgroundService service_;
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
        LSilentProcess quiet;
        return process(quiet);
    }

    const std::string& LastTold() const { return lastTold_; }

private:
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
    LToldService service(out);
    std::string problem;
    const bool wasGood = LRestoreFolder(user, service, folder, [&](const std::string& chosen) {
        const LBackupContents contents = ReadBackupContents(chosen);
        problem = contents.Problem();
        if (problem.empty()) out << contents.Summary();
        return problem.empty();
    });
    if (!problem.empty()) return problem;
    if (!wasGood) return "The folder lies inside the data folder that it would replace.";
    if (user.LastTold().empty()) {
        return "Nothing was restored: the data could be moved away only late. They lie in the "
               "newest of the numbered folders of " +
               GetUserDataFolderApp() + ".";
    }
    return user.LastTold() == "The data was restored successfully." ? "" : user.LastTold();
}
