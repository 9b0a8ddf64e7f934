#include "datastore/Backup.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <array>
#include <cerrno>
#include <ctime>
#include <filesystem>
#include <vector>

#include "datastore/BackupContents.h"
#include "datastore/FolderTreeCopy.h"
#include "datastore/LBackgroundService.h"
#include "datastore/LFile.h"
#include "datastore/SharedFolderMigration.h"
#include "platform/FileIo.h"
#include "platform/Folders.h"
#include "platform/LFileDescriptor.h"

namespace {

constexpr mode_t kFolderMode = 0777;
constexpr int kRenameMs = 3000;
constexpr char kNotWritable[] =
    "Cannot write to the destination folder. Please check you have write access.";
constexpr char kRestoreButton[] = "Restore from backup";
constexpr char kPickButton[] = "Pick Folder";

std::string DateTimeText(std::time_t time) {
    std::tm local{};
    ::localtime_r(&time, &local);
    std::array<char, 32> text{};
    std::strftime(text.data(), text.size(), "%Y-%m-%d-%H%M%S", &local);
    return text.data();
}

// Makes the folder; another backup of the same second has the name already. Empty when it cannot.
std::string MakeBackupFolder(const std::string& destination) {
    const std::string name = destination + "/Quillmarsh-Backup-" + DateTimeText(std::time(nullptr));
    std::string folder = name;
    for (int number = 2; ::mkdir(folder.c_str(), kFolderMode) != 0; ++number) {
        if (errno != EEXIST) return {};
        folder = name + "-" + std::to_string(number);
    }
    return folder;
}

bool SetMark(const std::string& folder) {
    const std::string path = folder + "/" + kIncompleteBackupMark;
    return LFileDescriptor(::open(path.c_str(), O_WRONLY | O_CREAT | O_CLOEXEC, 0666)).IsOpen();
}

bool RemoveMark(const std::string& folder) {
    return ::unlink((folder + "/" + kIncompleteBackupMark).c_str()) == 0;
}

// Removes the folders below `folder` that hold no file: a copy that was stopped before its first
// file may have made some.
void RemoveEmptyFolders(const std::string& folder) {
    std::vector<std::string> folders;  // the inner ones behind those that they are in
    std::error_code error;
    for (std::filesystem::recursive_directory_iterator entry(folder, error), end;
         !error && entry != end; entry.increment(error)) {
        folders.push_back(entry->path().string());
    }
    for (auto inner = folders.rbegin(); inner != folders.rend(); ++inner) {
        ::rmdir(inner->c_str());  // what is no folder, or not empty, stays
    }
}

// Whether `folder` is the shared data folder or lies in it, links resolved.
bool IsInSharedData(const std::string& folder) {
    std::error_code error;
    const std::string inner = std::filesystem::weakly_canonical(folder, error).string() + "/";
    const std::string outer =
        std::filesystem::weakly_canonical(GetSharedDataFolderApp(), error).string() + "/";
    return inner.starts_with(outer);
}

LBackupResult RefuseDestination(std::string message) {
    return {LFieldError<LBackupField>::At(LBackupField::kDestination, std::move(message)), {}};
}

// The service rests while this lives, when it ran before.
class LServiceRest {
public:
    explicit LServiceRest(LBackgroundService& service)
        : service_(service), ran_(service.IsRunning()), rests_(!ran_ || service.Stop()) {}
    ~LServiceRest() {
        if (ran_) service_.Start();
    }
    LServiceRest(const LServiceRest&) = delete;
    LServiceRest& operator=(const LServiceRest&) = delete;

    bool Rests() const { return rests_; }

private:
    LBackgroundService& service_;
    const bool ran_, rests_;
};

// One restore, from the question to the last message.
class LRestore {
public:
    LRestore(LUserInterface& ui, LBackgroundService& service, const LBackupTest& validate)
        : ui_(ui), service_(service), validate_(validate), shared_(GetSharedDataFolderApp()) {}

    bool Run(std::string suggested) {
        if (!Confirm()) return true;
        for (;;) {
            const auto folder = ui_.PickFolderFrom("Restore Folder Name", suggested);
            if (!folder) return true;
            if (IsGood(*folder)) {
                Replace(*folder);
                return true;
            }
            if (!AskForAnother()) return false;
            suggested = *folder;
        }
    }

private:
    bool Confirm() {
        return ui_.Ask("Confirm Restore",
                       "The restore will erase all existing information before the backup data is "
                       "loaded. Do you really want to restore the data?",
                       {kRestoreButton, "Don't restore"}) == kRestoreButton;
    }

    bool IsGood(const std::string& folder) const {
        return !IsInSharedData(folder) && (!validate_ || validate_(folder));
    }

    bool AskForAnother() {
        return ui_.Ask("Error Restoring Data",
                       "Restore failed. Would you like to pick a different folder?",
                       {kPickButton, "No"}) == kPickButton;
    }

    void Replace(const std::string& backup) {
        const LServiceRest rest(service_);
        // Nothing is moved away under a service that writes.
        if (!rest.Rests()) return TellFailure();
        const std::string aside = GetUserDataFolderApp() + "/" + std::to_string(std::time(nullptr));
        MakeFolderTree(GetUserDataFolderApp());  // the shared data may lie elsewhere
        if (LFile::RenameFile(shared_, aside, kRenameMs)) return Load(backup, aside);
        // Nothing is restored when only this last attempt moves the data away: deliberately.
        if (!LFile::RenameFile(shared_, aside, 0)) TellFailure();
    }

    void Load(const std::string& backup, const std::string& aside) {
        if (::mkdir(shared_.c_str(), kFolderMode) != 0 && !FolderExists(shared_)) {
            (void)LFile::RenameFile(aside, shared_, kRenameMs);
            return TellFailure();
        }
        ProcessCopyFolderTree copy(backup, shared_, LCopyTimes::kNew);
        if (ui_.RunProcess("Restore Files",
                           [&](LProcessInterface& process) { return copy.Run(&process); })) {
            // A backup of the previous version, or one made by hand, comes without the mark.
            LFileMarkSharedFolderMigrated(shared_);
            ui_.Inform("Data Restore Success", "The data was restored successfully.");
        } else {
            // Succeeds only while the new folder is empty.
            if (copy.FilesCopied() == 0) RemoveEmptyFolders(shared_);
            (void)LFile::RenameFile(aside, shared_, 0);
            TellFailure();
        }
        // Either way nothing is kept aside: the order of these steps is the documented one.
        LFile::RemoveFolderTree(aside);
    }

    void TellFailure() {
        ui_.Inform("Data Restore Unsuccessful", "There was an error when restoring the data.");
    }

    LUserInterface& ui_;
    LBackgroundService& service_;
    const LBackupTest& validate_;
    const std::string shared_;
};

}  // namespace

LBackupResult LBackupFolder(LUserInterface& ui, const std::string& destination) {
    if (!LFile::TestFolderWritable(destination)) return RefuseDestination(kNotWritable);
    if (IsInSharedData(destination)) {
        return RefuseDestination("A backup inside the data folder would be lost with it.");
    }
    const std::string folder = MakeBackupFolder(destination);
    if (folder.empty()) return RefuseDestination(kNotWritable);

    ProcessCopyFolderTree copy(GetSharedDataFolderApp(), folder, LCopyTimes::kKeep);
    const bool isComplete =
        SetMark(folder) &&
        ui.RunProcess("Back up Files",
                      [&](LProcessInterface& process) { return copy.Run(&process); }) &&
        RemoveMark(folder);
    if (isComplete) return {{}, folder};
    LFile::RemoveFolderTree(folder);
    return {LFieldError<LBackupField>::General(copy.Problem()), {}};
}

bool LRestoreFolder(LUserInterface& ui, LBackgroundService& service,
                    const std::string& suggestedFolder, const LBackupTest& validate) {
    return LRestore(ui, service, validate).Run(suggestedFolder);
}
