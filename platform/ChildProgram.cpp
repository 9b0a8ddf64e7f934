#include "platform/ChildProgram.h"

#include <fcntl.h>
#include <signal.h>
#include <spawn.h>
#include <sys/stat.h>
#include <sys/syscall.h>
#include <sys/wait.h>
#include <unistd.h>

#include <array>
#include <cerrno>
#include <cstdlib>

#include "platform/LFileDescriptor.h"
#include "platform/PollDeadline.h"

extern char** environ;

namespace {

std::vector<char*> Pointers(std::vector<std::string>& words) {
    std::vector<char*> pointers;
    for (std::string& word : words) pointers.push_back(word.data());
    pointers.push_back(nullptr);
    return pointers;
}

bool IsExecutableFile(const std::string& path) {
    struct stat status {};
    return ::stat(path.c_str(), &status) == 0 && S_ISREG(status.st_mode) &&
           ::access(path.c_str(), X_OK) == 0;
}

// We ignore the signal of a broken pipe; another program must not inherit that.
class LSpawnSettings {
public:
    LSpawnSettings() {
        ::posix_spawn_file_actions_init(&actions_);
        for (const int fd : {STDIN_FILENO, STDOUT_FILENO, STDERR_FILENO}) {
            ::posix_spawn_file_actions_addopen(&actions_, fd, "/dev/null", O_RDWR, 0);
        }
        sigset_t pipe;
        ::sigemptyset(&pipe);
        ::sigaddset(&pipe, SIGPIPE);
        ::posix_spawnattr_init(&attributes_);
        ::posix_spawnattr_setsigdefault(&attributes_, &pipe);
        ::posix_spawnattr_setflags(&attributes_, POSIX_SPAWN_SETSIGDEF);
    }
    ~LSpawnSettings() {
        ::posix_spawn_file_actions_destroy(&actions_);
        ::posix_spawnattr_destroy(&attributes_);
    }
    LSpawnSettings(const LSpawnSettings&) = delete;
    LSpawnSettings& operator=(const LSpawnSettings&) = delete;

    pid_t Spawn(std::vector<std::string> words) const {
        pid_t id = -1;
        const std::vector<char*> pointers = Pointers(words);
        const int error =
            ::posix_spawnp(&id, pointers[0], &actions_, &attributes_, pointers.data(), environ);
        return error == 0 ? id : -1;
    }

private:
    posix_spawn_file_actions_t actions_;
    posix_spawnattr_t attributes_;
};

int Collect(pid_t id) {
    int status = 0;
    while (::waitpid(id, &status, 0) < 0) {
        if (errno != EINTR) return -1;
    }
    return WIFEXITED(status) ? WEXITSTATUS(status) : -1;
}

// Runs in the child of a process that may have other threads: system calls only.
[[noreturn]] void BecomeProgram(char* const* words, int output, int errors) {
    ::setsid();
    const pid_t again = ::fork();  // the program is to be nobody's child
    if (again != 0) ::_exit(again < 0 ? 1 : 0);
    ::signal(SIGPIPE, SIG_DFL);
    ::dup2(::open("/dev/null", O_RDONLY), STDIN_FILENO);
    ::dup2(output, STDOUT_FILENO);
    ::dup2(errors, STDERR_FILENO);
    ::close_range(STDERR_FILENO + 1, ~0U, CLOSE_RANGE_CLOEXEC);
    if (::chdir("/") != 0) ::_exit(126);
    ::execv(words[0], words);
    ::_exit(127);
}

bool ReadsMarker(int output, std::string_view marker, int timeoutMs) {
    const LDeadline deadline(timeoutMs);
    std::string text;
    std::array<char, 256> piece{};
    while (text.find(marker) == std::string::npos) {
        pollfd entry{output, POLLIN, 0};
        if (PollUntil(&entry, 1, deadline) <= 0) return false;
        const ssize_t count = ::read(output, piece.data(), piece.size());
        if (count == 0 || (count < 0 && errno != EINTR)) return false;
        if (count > 0) text.append(piece.data(), static_cast<size_t>(count));
    }
    return true;
}

}  // namespace

std::string FindOnPath(std::string_view name) {
    const char* value = std::getenv("PATH");
    std::string_view folders = value == nullptr ? "" : value;
    while (!folders.empty()) {
        const std::string_view folder = folders.substr(0, folders.find(':'));
        folders.remove_prefix(std::min(folder.size() + 1, folders.size()));
        std::string path = std::string(folder).append("/").append(name);
        if (!folder.empty() && IsExecutableFile(path)) return path;
    }
    return {};
}

int RunProgram(const std::vector<std::string>& words, int timeoutMs, const LSignalObject* stop) {
    const pid_t id = LSpawnSettings().Spawn(words);
    if (id < 0) return -1;
    const LFileDescriptor end(static_cast<int>(::syscall(SYS_pidfd_open, id, 0)));
    // The system skips an entry whose descriptor is negative.
    const int stopDescriptor = stop == nullptr ? -1 : stop->ReadDescriptor();
    std::array<pollfd, 2> entries{{{end.Get(), POLLIN, 0}, {stopDescriptor, POLLIN, 0}}};
    if (end.IsOpen()) {
        PollUntil(entries.data(), entries.size(), LDeadline(timeoutMs));
        if (entries[0].revents == 0) ::kill(id, SIGKILL);
    }
    return Collect(id);
}

bool StartDetachedProgram(const std::vector<std::string>& words, const std::string& logPath,
                          std::string_view marker, int timeoutMs) {
    std::vector<std::string> copies = words;
    const std::vector<char*> pointers = Pointers(copies);
    const LFileDescriptor errors(
        ::open(logPath.c_str(), O_WRONLY | O_CREAT | O_APPEND | O_CLOEXEC, 0600));
    std::array<int, 2> ends{};
    if (!errors.IsOpen() || ::pipe2(ends.data(), O_CLOEXEC) != 0) return false;
    const LFileDescriptor output(ends[0]);
    LFileDescriptor input(ends[1]);
    const pid_t id = ::fork();
    if (id == 0) BecomeProgram(pointers.data(), input.Get(), errors.Get());
    input.Close();
    return id > 0 && Collect(id) == 0 && ReadsMarker(output.Get(), marker, timeoutMs);
}
