// The program itself, run as a child in the home of the test.
#pragma once

#include <functional>
#include <string>
#include <vector>

#include "tests/support/LChildProcess.h"
#include "tests/support/LTempFolder.h"

// Starts at once, with the test's environment; what it writes is kept in files of the home.
class LServiceProcess {
public:
    LServiceProcess(const LTempHome& home, const std::vector<std::string>& arguments);

    int Id() const { return child_.Id(); }
    void Signal(int signal) const;
    // The exit status, or minus the signal that ended it; -1000 when it has not ended in time.
    int WaitFor(int withinMs);
    std::string Output() const { return home_.ReadFile(output_); }
    std::string Errors() const { return home_.ReadFile(errors_); }
    // Waits until it takes control connections.
    bool IsReady() const;

    // How often its threads have gone to sleep so far.
    long CountSleeps() const;

private:
    const LTempHome& home_;
    const std::string output_, errors_;
    LChildProcess child_;
};

// Tries until it holds, for a few seconds.
bool Becomes(const std::function<bool()>& condition, int withinMs = 20000);
