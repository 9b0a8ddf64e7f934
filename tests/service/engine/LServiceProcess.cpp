#include "tests/service/engine/LServiceProcess.h"

#include <fcntl.h>
#include <signal.h>
#include <sys/wait.h>
#include <unistd.h>

#include <atomic>
#include <chrono>
#include <filesystem>
#include <fstream>
#include <thread>

namespace {

std::string NewFileName(const char* kind) {
    static std::atomic<int> count{0};
    return std::string(kind) + std::to_string(++count);
}

int Execute(std::vector<std::string> arguments, const std::string& output,
            const std::string& errors) {
    // Tests that were started in the background would hand down that these are ignored.
    for (const int signal : {SIGINT, SIGHUP}) ::signal(signal, SIG_DFL);
    constexpr int kFlags = O_WRONLY | O_CREAT | O_APPEND;
    ::dup2(::open("/dev/null", O_RDONLY), STDIN_FILENO);
    ::dup2(::open(output.c_str(), kFlags, 0600), STDOUT_FILENO);
    ::dup2(::open(errors.c_str(), kFlags, 0600), STDERR_FILENO);
    arguments.insert(arguments.begin(), QUILLMARSH_PROGRAM);
    std::vector<char*> pointers;
    for (std::string& argument : arguments) pointers.push_back(argument.data());
    pointers.push_back(nullptr);
    ::execv(QUILLMARSH_PROGRAM, pointers.data());
    return 127;
}

}  // namespace

LServiceProcess::LServiceProcess(const LTempHome& home, const std::vector<std::string>& arguments)
    : home_(home),
      output_(NewFileName("output")),
      errors_(NewFileName("errors")),
      child_([&] { return Execute(arguments, home.File(output_), home.File(errors_)); }) {}

void LServiceProcess::Signal(int signal) const { ::kill(Id(), signal); }

int LServiceProcess::WaitFor(int withinMs) {
    const auto hasEnded = [this] {
        siginfo_t info{};
        return ::waitid(P_PID, static_cast<id_t>(Id()), &info, WEXITED | WNOHANG | WNOWAIT) == 0 &&
               info.si_pid != 0;
    };
    return Becomes(hasEnded, withinMs) ? child_.Wait() : -1000;
}

bool LServiceProcess::IsReady() const {
    return Becomes([this] { return !Output().empty(); });
}

long LServiceProcess::CountSleeps() const {
    long sum = 0;
    const std::string folder = "/proc/" + std::to_string(Id()) + "/task";
    for (const auto& task : std::filesystem::directory_iterator(folder)) {
        std::ifstream status(task.path() / "status");
        for (std::string word; status >> word;) {
            long count = 0;
            if (word == "voluntary_ctxt_switches:" && status >> count) sum += count;
        }
    }
    return sum;
}

bool Becomes(const std::function<bool()>& condition, int withinMs) {
    const auto end = std::chrono::steady_clock::now() + std::chrono::milliseconds(withinMs);
    while (!condition()) {
        if (std::chrono::steady_clock::now() > end) return false;
        std::this_thread::sleep_for(std::chrono::milliseconds(5));
    }
    return true;
}
