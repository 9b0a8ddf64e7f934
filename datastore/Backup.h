// Backup and restore: the whole shared data folder, with all businesses, to and from a folder of
// the user's choice.
#pragma once

#include <functional>
#include <string>

#include "platform/LUserInterface.h"

class LBackgroundService;

enum class LBackupField { kDestination };
struct LBackupResult {
    LFieldError<LBackupField> error;  // without a message when the user stopped it
    std::string folder;               // the new backup, after success
};
// Copies the shared data folder into a new folder of `destination`, named "Quillmarsh-Backup-" and
// the local date and time ("2026-11-21-105407"). The service may go on meanwhile: every record is
// copied whole. After an error nothing of the backup remains; a process that is killed leaves it
// marked as incomplete.
[[nodiscard]] LBackupResult LBackupFolder(LUserInterface& ui, const std::string& destination);

// Whether the chosen folder holds a backup that can be restored.
using LBackupTest = std::function<bool(const std::string& folder)>;

// Asks, lets the user pick a folder (starting at `suggestedFolder`), and replaces the shared data
// folder by what is in it while `service` rests. A folder inside the shared data folder is refused
// as `validate` refuses. Returns false only when the user gives up after a refused folder.
//
// The data of before are moved to a folder of the user's application data folder, named by the
// seconds since 1970, and deleted at the end. A copy that fails or is stopped before any file was
// written puts them back; one that fails later leaves its part and not them, which is how it has
// always been: have `validate` look closely. A process that is killed leaves them there, whole; so
// does a move that works only at its last attempt: nothing is restored then, and nothing told.
bool LRestoreFolder(LUserInterface& ui, LBackgroundService& service,
                    const std::string& suggestedFolder, const LBackupTest& validate = nullptr);
