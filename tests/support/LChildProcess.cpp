#include "tests/support/LChildProcess.h"

#include <signal.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cerrno>

LChildProcess::LChildProcess(const std::function<int()>& work) : id_(::fork()) {
    if (id_ == 0) ::_exit(work());
}

LChildProcess::~LChildProcess() { Kill(); }

int LChildProcess::Wait() {
    if (id_ <= 0) return -1;
    int status = 0;
    while (::waitpid(id_, &status, 0) < 0 && errno == EINTR) {
    }
    id_ = -1;
    return WIFEXITED(status) ? WEXITSTATUS(status) : -WTERMSIG(status);
}

void LChildProcess::Kill() {
    if (id_ <= 0) return;
    ::kill(id_, SIGKILL);
    Wait();
}
