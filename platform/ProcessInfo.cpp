#include "platform/ProcessInfo.h"

#include <dirent.h>
#include <sys/prctl.h>
#include <sys/resource.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <charconv>
#include <memory>

#include "platform/FileIo.h"

namespace {

constexpr size_t kMaxProcessName = 15;

struct CloseFolder {
    void operator()(DIR* folder) const { ::closedir(folder); }
};

bool IsOwnUsers(const std::string& processFolder) {
    struct stat status {};
    return ::stat(processFolder.c_str(), &status) == 0 && status.st_uid == ::geteuid();
}

// Whether a line "17 (name) S ..." of /proc is that of a process `name` which has not ended. One
// that has ended but was not yet collected by its parent (Z) runs no more.
bool IsRunningAs(const std::string& line, std::string_view name) {
    const size_t open = line.find('(');
    const size_t close = line.rfind(')');  // the name may hold brackets of its own
    if (open == std::string::npos || close == std::string::npos || close + 2 >= line.size()) {
        return false;
    }
    const char state = line[close + 2];
    return line.substr(open + 1, close - open - 1) == name && state != 'Z' && state != 'X';
}

}  // namespace

void SetProcessName(std::string_view name) {
    const std::string text(name.substr(0, kMaxProcessName));
    ::prctl(PR_SET_NAME, text.c_str());
}

std::vector<int> FindProcesses(std::string_view name) {
    const std::string wanted(name.substr(0, kMaxProcessName));
    std::vector<int> ids;
    const std::unique_ptr<DIR, CloseFolder> folder(::opendir("/proc"));
    if (folder == nullptr) return ids;
    while (const dirent* entry = ::readdir(folder.get())) {
        const std::string_view text = entry->d_name;
        int id = 0;
        const auto parsed = std::from_chars(text.data(), text.data() + text.size(), id);
        if (parsed.ptr != text.data() + text.size() || id == ::getpid()) continue;
        const std::string process = std::string("/proc/").append(text);
        const auto line = ReadFile(process + "/stat");
        if (line && IsRunningAs(*line, wanted) && IsOwnUsers(process)) ids.push_back(id);
    }
    return ids;
}

std::optional<std::string> EnvironmentOf(int processId, std::string_view variable) {
    const auto text = ReadFile("/proc/" + std::to_string(processId) + "/environ");
    std::string_view rest = text ? std::string_view(*text) : std::string_view();
    while (!rest.empty()) {
        const std::string_view entry = rest.substr(0, rest.find('\0'));
        rest.remove_prefix(std::min(entry.size() + 1, rest.size()));
        if (entry.starts_with(variable) && entry.substr(variable.size()).starts_with('=')) {
            return std::string(entry.substr(variable.size() + 1));
        }
    }
    return std::nullopt;
}

std::string HostName() {
    std::array<char, 257> name{};
    if (::gethostname(name.data(), name.size() - 1) != 0 || name[0] == '\0') return "localhost";
    return name.data();
}

void RaiseOpenFilesLimit(unsigned long count) {
    rlimit limit{};
    if (::getrlimit(RLIMIT_NOFILE, &limit) != 0 || limit.rlim_cur >= count) return;
    limit.rlim_cur = std::min<rlim_t>(count, limit.rlim_max);
    ::setrlimit(RLIMIT_NOFILE, &limit);
}
