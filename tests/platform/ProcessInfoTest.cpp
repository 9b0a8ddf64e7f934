#include "platform/ProcessInfo.h"

#include <gtest/gtest.h>
#include <unistd.h>

#include <algorithm>
#include <chrono>
#include <thread>

#include "platform/LSignalObject.h"
#include "tests/support/LChildProcess.h"

namespace {

bool Finds(const std::string& name, pid_t id) {
    const std::vector<int> found = FindProcesses(name);
    return std::find(found.begin(), found.end(), id) != found.end();
}

}  // namespace

TEST(ProcessInfo, FindsAProcessByItsNameWhileItRuns) {
    // Brackets and blanks, because the system's own list uses them around names.
    const std::string name = "a) S (" + std::to_string(::getpid() % 100000) + "longer than shown";
    const LSignalObject isNamed;
    const LSignalObject mayEnd;
    LChildProcess child([&] {
        SetProcessName(name);
        isNamed.Set();
        const bool foundItself = Finds(name, ::getpid());
        mayEnd.Wait(10000);
        return foundItself ? 1 : 0;
    });
    ASSERT_TRUE(isNamed.Wait(5000));
    EXPECT_TRUE(Finds(name, child.Id()));
    EXPECT_FALSE(Finds(name.substr(0, 10), child.Id())) << "the whole name counts";

    mayEnd.Set();
    for (int i = 0; i < 1000 && Finds(name, child.Id()); ++i) {
        std::this_thread::sleep_for(std::chrono::milliseconds(5));
    }
    EXPECT_FALSE(Finds(name, child.Id())) << "ended, though nobody has collected it yet";
    EXPECT_EQ(child.Wait(), 0);
}
