// The program's entry: reads the command line and calls one role.

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <clocale>
#include <csignal>
#include <cstdio>
#include <iostream>
#include <string>
#include <vector>

#include "platform/ProcessInfo.h"
#include "service/engine/InstallerMain.h"
#include "service/engine/ServiceMain.h"

namespace {

constexpr unsigned long kOpenFiles = 4096;

// A file or socket opened under one of the three standard numbers would be taken for it later.
void KeepStandardDescriptorsTaken() {
    int fd = 0;
    do {
        fd = ::open("/dev/null", O_RDWR);
    } while (fd >= 0 && fd <= STDERR_FILENO);
    if (fd >= 0) ::close(fd);
}

void LUnixAppInitCommon() {
    KeepStandardDescriptorsTaken();
    // Every file is made with the mode that it is meant to have.
    ::umask(0);
    // Characters only: numbers and dates are written by the program's own rules, and neither a
    // record nor an HTTP header may change with the user's language.
    std::setlocale(LC_CTYPE, "");
    // A client that has gone is noticed by the failing write.
    ::signal(SIGPIPE, SIG_IGN);
    RaiseOpenFilesLimit(kOpenFiles);
}

int DesktopMain() {
    std::fputs(
        "quillmarsh: this build has no desktop program; 'quillmarsh -service' runs the "
        "service and 'quillmarsh -installer' sets it up\n",
        stderr);
    return 1;
}

}  // namespace

int main(int argc, char** argv) {
    LUnixAppInitCommon();
    std::vector<std::string> arguments(argv, argv + argc);
    if (!arguments.empty()) arguments.erase(arguments.begin());  // the program itself
    if (arguments.empty()) return DesktopMain();

    const std::string role = arguments.front();
    arguments.erase(arguments.begin());
    if (role == "-service") return arguments.empty() ? ServiceMain() : ServiceHelper(arguments);
    if (role == "-installer") {
        return LInstallerMain(arguments, std::cin, std::cout, std::cerr) == 0 ? 0 : 1;
    }
    return DesktopMain();
}
