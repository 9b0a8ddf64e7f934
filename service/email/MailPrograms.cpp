#include "service/email/MailPrograms.h"

#include <fcntl.h>
#include <poll.h>
#include <spawn.h>
#include <sys/socket.h>
#include <sys/wait.h>
#include <unistd.h>

#include <array>
#include <cerrno>
#include <csignal>
#include <cstring>

#include "platform/ChildProgram.h"
#include "platform/LFileDescriptor.h"
#include "platform/PollDeadline.h"

namespace {

constexpr int kBudgetMs = 60000;
constexpr int kSliceMs = 50;
constexpr int kTryAgainLater = 75;  // EX_TEMPFAIL of the mail programs
constexpr char kSendMail[] = "sendmail";
constexpr char kDesktopMail[] = "xdg-email";

// Empty when there is none. Mail programs often lie where only administrators look.
std::string FindProgram(const std::string& name) {
    std::string path = FindOnPath(name);
    for (const char* folder : {"/usr/sbin/", "/usr/lib/"}) {
        if (path.empty() && ::access((folder + name).c_str(), X_OK) == 0) path = folder + name;
    }
    return path;
}

// What a child is started with; gives the system's structures back.
class LSpawnSetup {
public:
    explicit LSpawnSetup(int input) {
        ::posix_spawn_file_actions_init(&actions_);
        ::posix_spawn_file_actions_adddup2(&actions_, input, STDIN_FILENO);
        ::posix_spawn_file_actions_addopen(&actions_, STDOUT_FILENO, "/dev/null", O_WRONLY, 0);
        ::posix_spawn_file_actions_addopen(&actions_, STDERR_FILENO, "/dev/null", O_WRONLY, 0);
        ::posix_spawnattr_init(&attributes_);
        sigset_t signals;
        ::sigemptyset(&signals);
        ::sigaddset(&signals, SIGPIPE);  // the service ignores it, programs must not
        ::posix_spawnattr_setsigdefault(&attributes_, &signals);
        ::posix_spawnattr_setflags(&attributes_, POSIX_SPAWN_SETSIGDEF);
    }
    ~LSpawnSetup() {
        ::posix_spawn_file_actions_destroy(&actions_);
        ::posix_spawnattr_destroy(&attributes_);
    }
    LSpawnSetup(const LSpawnSetup&) = delete;
    LSpawnSetup& operator=(const LSpawnSetup&) = delete;

    int Spawn(const std::string& program, char* const* arguments, pid_t& id) const {
        return ::posix_spawn(&id, program.c_str(), &actions_, &attributes_, arguments, environ);
    }

private:
    posix_spawn_file_actions_t actions_;
    posix_spawnattr_t attributes_;
};

// A running program; killed when it has not ended by itself.
class LProgram {
public:
    ~LProgram() {
        if (id_ <= 0) return;
        ::kill(id_, SIGKILL);
        Collect(0);
    }
    // Its standard input is the other end of a socket, which unlike a pipe never raises a signal.
    bool Start(const std::string& program, const std::vector<std::string>& arguments) {
        std::array<int, 2> ends{-1, -1};
        if (::socketpair(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0, ends.data()) != 0) return false;
        input_ = LFileDescriptor(ends[0]);
        const LFileDescriptor childEnd(ends[1]);
        std::vector<char*> list{const_cast<char*>(program.c_str())};
        for (const std::string& argument : arguments) {
            list.push_back(const_cast<char*>(argument.c_str()));
        }
        list.push_back(nullptr);
        errno = LSpawnSetup(childEnd.Get()).Spawn(program, list.data(), id_);
        if (errno != 0) id_ = -1;
        return errno == 0;
    }
    // Hands `text` over and closes. A program that does not read all of it is no error.
    bool Feed(std::string_view text, LProcessInterface& process, const LDeadline& deadline) {
        while (!text.empty()) {
            if (process.IsCancelled() || deadline.RemainingMs() == 0) return false;
            pollfd entry{input_.Get(), POLLOUT, 0};
            if (PollUntil(&entry, 1, LDeadline(kSliceMs)) == 0) continue;
            const ssize_t count =
                ::send(input_.Get(), text.data(), text.size(), MSG_NOSIGNAL | MSG_DONTWAIT);
            if (count < 0 && errno != EAGAIN && errno != EINTR) break;
            if (count > 0) text.remove_prefix(static_cast<size_t>(count));
        }
        input_.Close();
        return true;
    }
    bool WaitForEnd(LProcessInterface& process, const LDeadline& deadline) {
        while (!Collect(WNOHANG)) {
            if (process.IsCancelled() || deadline.RemainingMs() == 0) return false;
            ::poll(nullptr, 0, kSliceMs);
        }
        return true;
    }
    // -1 when a signal ended it.
    int ExitStatus() const { return WIFEXITED(status_) ? WEXITSTATUS(status_) : -1; }

private:
    bool Collect(int options) {
        pid_t ended = 0;
        do {
            ended = ::waitpid(id_, &status_, options);
        } while (ended < 0 && errno == EINTR);
        if (ended == 0) return false;
        id_ = -1;
        return true;
    }

    pid_t id_ = -1;
    int status_ = 0;
    LFileDescriptor input_;
};

LHandOver RunWith(LProcessInterface& process, const std::string& name,
                  const std::vector<std::string>& arguments, std::string_view input,
                  std::string& problem) {
    const std::string path = FindProgram(name);
    if (path.empty()) {
        problem = "The program " + name + " is not installed.";
        return LHandOver::kFailed;
    }
    LProgram program;
    const LDeadline deadline(kBudgetMs);
    if (!program.Start(path, arguments)) {
        problem = "The program " + name + " could not be started: " + std::strerror(errno);
        return LHandOver::kTemporary;
    }
    if (!program.Feed(input, process, deadline) || !program.WaitForEnd(process, deadline)) {
        problem = "The program " + name + " does not come to an end.";
        return LHandOver::kTemporary;
    }
    if (program.ExitStatus() == 0) return LHandOver::kDone;
    problem = "The program " + name + " did not take the email (exit status " +
              std::to_string(program.ExitStatus()) + ").";
    return program.ExitStatus() == kTryAgainLater ? LHandOver::kTemporary : LHandOver::kFailed;
}

// As programs of this system write text.
std::string WithLineFeeds(std::string_view text) {
    std::string out(text);
    size_t size = 0;
    for (size_t i = 0; i < out.size(); ++i) {
        if (out[i] == '\r' && i + 1 < out.size() && out[i + 1] == '\n') continue;
        out[size++] = out[i];
    }
    out.resize(size);
    return out;
}

// "mailto:a@b.c,d@e.f" (RFC 6068): behind its scheme no address can be taken for an option.
std::string MailtoOf(const std::vector<std::string>& recipients) {
    constexpr std::string_view kEscaped = "%?&#/+";
    std::string out = "mailto:";
    for (size_t i = 0; i < recipients.size(); ++i) {
        if (i > 0) out += ',';
        for (const char byte : recipients[i]) {
            constexpr std::string_view kDigits = "0123456789ABCDEF";
            if (kEscaped.find(byte) == std::string_view::npos) {
                out += byte;
            } else {
                out += {'%', kDigits[static_cast<unsigned char>(byte) >> 4],
                        kDigits[static_cast<unsigned char>(byte) & 15]};
            }
        }
    }
    return out;
}

}  // namespace

bool HasSendMail() { return !FindProgram(kSendMail).empty(); }
bool HasDesktopMail() { return !FindProgram(kDesktopMail).empty(); }

LHandOver HandToSendMail(LProcessInterface& process, const std::string& sender,
                         const std::vector<std::string>& recipients, std::string_view text,
                         std::string& problem) {
    std::vector<std::string> arguments{"-i", "-f", sender, "--"};
    arguments.insert(arguments.end(), recipients.begin(), recipients.end());
    return RunWith(process, kSendMail, arguments, WithLineFeeds(text), problem);
}

LHandOver HandToDesktopMail(LProcessInterface& process, const LEmailMessage& message,
                            const std::vector<std::string>& recipients, std::string& problem) {
    std::vector<std::string> arguments{"--utf8"};
    // An option with an empty text is refused.
    if (!message.subject.empty()) arguments.insert(arguments.end(), {"--subject", message.subject});
    if (!message.body.empty()) arguments.insert(arguments.end(), {"--body", message.body});
    for (const std::string& path : message.attachments) {
        arguments.emplace_back("--attach");
        arguments.push_back(path);
    }
    arguments.push_back(MailtoOf(recipients));
    return RunWith(process, kDesktopMail, arguments, {}, problem);
}
