// Takes the shared data over from where the previous version kept them.
#pragma once

#include <string>

#include "platform/LUserInterface.h"

// Once for each user, before anything reads a setting: copies the old shared folder of the platform
// ("/var/lib/Quillmarsh", or below "Tervin Software" there) into the user's own, tells the user
// when that replaced data of before, and leaves the file ".SharedFolderMigrated" so as not to do it
// again. The data that were there are kept as "Shared.backup" and the time. Where the disk refuses,
// the folder stays as it was, the log says why, and the next start tries again. Two processes that
// start at the same moment do it once.
void LFileMigrateSharedSettings(LUserInterface& ui);

// Leaves that file in `sharedFolder` at once: the data there were put there on purpose, and no
// later start may replace them. False when the disk refuses.
bool LFileMarkSharedFolderMigrated(const std::string& sharedFolder);
