// Where the program keeps its things on this machine. No path ends with "/".
#pragma once

#include <string>
#include <string_view>

// Names the program towards the launcher and in the sandbox container's path.
inline constexpr std::string_view kBundleIdentifier = "org.quillmarsh.StockManager";

// The platform's absolute folders ("/Users/...", "/var/lib/...") stand below $QUILLMARSH_ROOT when
// that is set, so that a test can stand in for them. Other paths are returned as they are.
std::string PlatformPath(std::string_view absolutePath);

// $LOGNAME, or $USER when that is empty or missing; empty when both are.
std::string LogonUserName();

// $HOME, or the home of the user that runs the process when that is empty.
std::string HomeFolder();

// The user's application data folder of the program: $XDG_DATA_HOME/Quillmarsh, by default
// ~/.local/share/Quillmarsh. Not created here.
std::string GetUserDataFolderApp();

// The same for a process that has these values; either may be empty.
std::string UserDataFolderAppOf(const std::string& xdgDataHome, const std::string& home);

// The shared data folder: the sandbox container's when that exists, otherwise the sub-folder
// "Shared" of the user's application data folder, created with its parents when missing. The text
// is the same when it cannot be created; what is opened below it then fails on its own.
std::string GetSharedDataFolderApp();

// $XDG_CONFIG_HOME/Quillmarsh, by default ~/.config/Quillmarsh. Not created here.
std::string GetUserConfigFolderApp();

// $TMPDIR, or /tmp.
std::string GetTemporaryFolder();

// The full path of the running executable; empty when the system does not tell.
std::string ExecutablePath();
