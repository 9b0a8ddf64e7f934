#include "platform/Folders.h"

#include <pwd.h>
#include <unistd.h>

#include <array>
#include <cstdlib>
#include <vector>

#include "platform/FileIo.h"

namespace {

constexpr std::string_view kAppFolder = "/Quillmarsh";

std::string Environment(const char* name) {
    const char* value = std::getenv(name);
    return value == nullptr ? std::string() : value;
}

std::string WithoutTrailingSlash(std::string path) {
    while (path.size() > 1 && path.back() == '/') path.pop_back();
    return path;
}

bool IsBelow(std::string_view path, std::string_view folder) {
    return path.substr(0, folder.size()) == folder &&
           (path.size() == folder.size() || path[folder.size()] == '/');
}

std::string HomeFromUserDatabase() {
    passwd entry{};
    passwd* found = nullptr;
    std::vector<char> buffer(16384);
    const int error = ::getpwuid_r(::getuid(), &entry, buffer.data(), buffer.size(), &found);
    if (error != 0 || found == nullptr || *entry.pw_dir == '\0') return "/";
    return entry.pw_dir;
}

// The base directory rules: a relative path in these variables is ignored.
std::string BaseFolder(const std::string& folder, const std::string& home,
                       std::string_view defaultBelowHome) {
    if (!folder.empty() && folder.front() == '/') return WithoutTrailingSlash(folder);
    const std::string base = home.empty() ? HomeFromUserDatabase() : home;
    return WithoutTrailingSlash(base).append(defaultBelowHome);
}

std::string ContainerSharedFolder(const std::string& user) {
    return PlatformPath(std::string("/Users/")
                            .append(user)
                            .append("/Library/Containers/")
                            .append(kBundleIdentifier)
                            .append("/Data/Library/Application Support")
                            .append(kAppFolder)
                            .append("/Shared"));
}

}  // namespace

std::string PlatformPath(std::string_view absolutePath) {
    std::string path(absolutePath);
    if (!IsBelow(path, "/Users") && !IsBelow(path, "/var/lib")) return path;
    const std::string root = Environment("QUILLMARSH_ROOT");
    return root.empty() || root == "/" ? path : WithoutTrailingSlash(root) + path;
}

std::string LogonUserName() {
    const std::string name = Environment("LOGNAME");
    return name.empty() ? Environment("USER") : name;
}

std::string HomeFolder() {
    const std::string home = Environment("HOME");
    return WithoutTrailingSlash(home.empty() ? HomeFromUserDatabase() : home);
}

std::string GetUserDataFolderApp() {
    return UserDataFolderAppOf(Environment("XDG_DATA_HOME"), Environment("HOME"));
}

std::string UserDataFolderAppOf(const std::string& xdgDataHome, const std::string& home) {
    return BaseFolder(xdgDataHome, home, "/.local/share").append(kAppFolder);
}

std::string GetSharedDataFolderApp() {
    const std::string user = LogonUserName();
    if (!user.empty()) {
        std::string container = ContainerSharedFolder(user);
        if (FolderExists(container)) return container;
    }
    std::string folder = GetUserDataFolderApp() + "/Shared";
    MakeFolderTree(folder, 0777);
    return folder;
}

std::string GetUserConfigFolderApp() {
    return BaseFolder(Environment("XDG_CONFIG_HOME"), Environment("HOME"), "/.config")
        .append(kAppFolder);
}

std::string GetTemporaryFolder() {
    const std::string folder = Environment("TMPDIR");
    return folder.empty() ? "/tmp" : WithoutTrailingSlash(folder);
}

std::string ExecutablePath() {
    std::array<char, 4096> path{};
    const ssize_t size = ::readlink("/proc/self/exe", path.data(), path.size());
    if (size <= 0 || static_cast<size_t>(size) == path.size()) return {};  // perhaps cut
    return {path.data(), static_cast<size_t>(size)};
}
