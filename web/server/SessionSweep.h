// Session files that have had their time.
#pragma once

#include <ctime>
#include <string>
#include <string_view>

// The first second at which the session file `name`, last changed at `changed`, is to go: after 7
// days without a change, a remembered session ("l...") after 182.5 days.
std::time_t SessionDueTime(std::string_view name, std::time_t changed);

// Deletes every "*.sess" file in `folder` that is due. Any thread, before every session is loaded.
// The folder is watched where the system can, so that usually nothing need be listed.
void SweepSessionFiles(const std::string& folder);

// The same for a request that loads no session, in one system call: of the folder that was swept
// last. False, at most once a second, when SweepSessionFiles has to do it: the folder may be
// another by now, or cannot be watched.
[[nodiscard]] bool SweepWatchedSessionFiles();
