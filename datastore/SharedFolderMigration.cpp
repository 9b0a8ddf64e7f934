#include "datastore/SharedFolderMigration.h"

#include <fcntl.h>
#include <sys/stat.h>

#include <array>
#include <cerrno>
#include <cstdio>
#include <cstring>
#include <ctime>
#include <string>

#include "datastore/FolderTreeCopy.h"
#include "datastore/LFile.h"
#include "platform/FileIo.h"
#include "platform/FileLock.h"
#include "platform/Folders.h"
#include "platform/LFileDescriptor.h"

namespace {

constexpr std::string_view kMarker = "/.SharedFolderMigrated";

// The previous version moved once itself; where its first place is still there, it is in use.
std::string OldSharedFolder() {
    const std::string old = PlatformPath("/var/lib/Tervin Software/Quillmarsh");
    return FolderExists(old) ? old : PlatformPath("/var/lib/Quillmarsh");
}

// "Shared.backup2026-3-9-14.5.0": local time, no leading zeros.
std::string BackupName() {
    const std::time_t now = std::time(nullptr);
    std::tm parts{};
    ::localtime_r(&now, &parts);
    std::array<char, 96> text{};
    std::snprintf(text.data(), text.size(), "Shared.backup%d-%d-%d-%d.%d.%d", parts.tm_year + 1900,
                  parts.tm_mon + 1, parts.tm_mday, parts.tm_hour, parts.tm_min, parts.tm_sec);
    return text.data();
}

std::string SystemReason() { return std::strerror(errno); }

// The copy is made beside its place and only moved there when it is whole. Returns what stood in
// the way; empty when nothing did.
std::string Import(const std::string& oldFolder, const std::string& newFolder,
                   const std::string& backup) {
    const std::string copy = newFolder + ".importing";
    LFile::RemoveFolderTree(copy);  // of a start that was cut short
    if (::mkdir(copy.c_str(), 0777) != 0) return SystemReason();
    ProcessCopyFolderTree process(oldFolder, copy, LCopyTimes::kKeep);
    std::string problem = process.Run(nullptr) ? "" : process.Problem();
    // With the marker in it: were it made afterwards and failed, the next start would import again
    // over what the user has changed meanwhile.
    if (problem.empty() && !LFileMarkSharedFolderMigrated(copy)) problem = SystemReason();
    if (problem.empty() && !backup.empty() && !LFile::RenameFile(newFolder, backup, 0)) {
        problem = SystemReason();
    }
    if (problem.empty() && !LFile::RenameFile(copy, newFolder, 0)) {
        problem = SystemReason();
        // Should that fail too, the backup still has all of it.
        if (!backup.empty() && !LFile::RenameFile(backup, newFolder, 0)) problem += " (twice)";
    }
    if (!problem.empty()) LFile::RemoveFolderTree(copy);
    return problem;
}

void Migrate(const std::string& dataFolder, const std::string& newFolder, LUserInterface& ui) {
    const std::string oldFolder = OldSharedFolder();
    if (!FolderExists(oldFolder)) {
        MakeFolderTree(newFolder, 0777);
        LFileMarkSharedFolderMigrated(newFolder);
        return;
    }
    const bool replaces = FolderExists(newFolder);
    const std::string backup = replaces ? dataFolder + "/" + BackupName() : "";
    const std::string problem = Import(oldFolder, newFolder, backup);
    if (!problem.empty()) {
        std::fprintf(stderr, "cannot import the data of the previous version from %s: %s\n",
                     oldFolder.c_str(), problem.c_str());
        return;
    }
    if (replaces) {
        ui.Inform("Importing",
                  "Successfully imported your data from the previous version of Quillmarsh Stock "
                  "Manager");
    }
}

}  // namespace

void LFileMigrateSharedSettings(LUserInterface& ui) {
    const std::string dataFolder = GetUserDataFolderApp();
    const std::string newFolder = dataFolder + "/Shared";
    const auto isDone = [&] { return FileExists(newFolder + std::string(kMarker)); };
    if (isDone() || !MakeFolderTree(dataFolder, 0700)) return;
    const LFileDescriptor turn(::open(dataFolder.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC));
    if (turn.IsOpen()) flocktimed(turn.Get(), LFileLockKind::kExclusive);
    if (!isDone()) Migrate(dataFolder, newFolder, ui);
}

bool LFileMarkSharedFolderMigrated(const std::string& sharedFolder) {
    const std::string path = sharedFolder + std::string(kMarker);
    const LFileDescriptor marker(::open(path.c_str(), O_WRONLY | O_CREAT | O_CLOEXEC, 0666));
    if (marker.IsOpen()) flocktimed(marker.Get(), LFileLockKind::kExclusive);
    return marker.IsOpen();
}
