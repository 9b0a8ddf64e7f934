#include "platform/ChildProgram.h"

#include <gtest/gtest.h>

#include "tests/support/LTempFolder.h"

TEST(ChildProgram, TellsHowTheProgramEnded) {
    struct Case {
        std::vector<std::string> words;
        int status;
        const char* why;
    };
    for (const Case& row : {Case{{"true"}, 0, "did it"}, Case{{"sh", "-c", "exit 3"}, 3, "failed"},
                            Case{{"no-such-program"}, -1, "is not there"},
                            Case{{"sh", "-c", "kill -9 $$"}, -1, "was ended"},
                            Case{{"sleep", "30"}, -1, "lasted too long"},
                            Case{{"test", "$HOME;`id`\"", "=", "$HOME;`id`\""}, 0, "no shell"}}) {
        EXPECT_EQ(RunProgram(row.words, 2000), row.status) << row.why;
    }
    LSignalObject stop;
    stop.Set();
    EXPECT_EQ(RunProgram({"sleep", "1000"}, -1, &stop), -1);
}

TEST(ChildProgram, ADetachedProgramIsAwaitedUntilItIsReady) {
    const LTempFolder folder;
    const std::string log = folder.File("log");
    const auto start = [&](const std::string& script, int timeoutMs) {
        return StartDetachedProgram({FindOnPath("sh"), "-c", script}, log, "<READY>", timeoutMs);
    };
    EXPECT_TRUE(
        start("echo one >&2; printf 'a<REA'; sleep 0.1; printf 'DY>'; echo two >&2", 10000));
    EXPECT_FALSE(start("printf '<READ>'", 10000)) << "ended without the marker";
    EXPECT_FALSE(start("exec 2>&-; sleep 5", 100)) << "too late";
    EXPECT_FALSE(StartDetachedProgram({folder.File("none")}, log, "<READY>", 10000));
    EXPECT_EQ(folder.ReadFile("log").substr(0, 4), "one\n");
}
