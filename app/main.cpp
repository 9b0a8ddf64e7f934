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

#include "datastore/SharedFolderMigration.h"
#include "platform/HangDetector.h"
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

// Before there is any window: what an operation tells the user goes to the terminal or the log.
class LConsole final : public LUserInterface {
public:
    std::string Ask(std::string_view, std::string_view, const std::vector<std::string>&) override {
        return {};
    }
    void Inform(std::string_view title, std::string_view text) override {
        std::cerr << title << ": " << text << "\n";
    }
    std::optional<std::string> PickFolder(std::string_view) override { return std::nullopt; }
    std::optional<std::string> PickSaveFile(std::string_view, std::string_view) override {
        return std::nullopt;
    }
    bool RunProcess(std::string_view, const std::function<bool(LProcessInterface&)>&) override {
        return false;
    }
};

}  // namespace

int main(int argc, char** argv) {
    LUnixAppInitCommon();
    const LHangDetectorThread named("MAIN");
    LConsole console;
    LFileMigrateSharedSettings(console);
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
