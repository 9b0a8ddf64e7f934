#include "web/server/LWebletSessionData.h"

#include <fcntl.h>
#include <gtest/gtest.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <unistd.h>

#include <array>
#include <atomic>
#include <chrono>
#include <filesystem>
#include <optional>
#include <thread>

#include "platform/FileIo.h"
#include "tests/support/LTempFolder.h"
#include "web/server/SessionSweep.h"

namespace {

constexpr std::time_t kDay = 86400;

std::string SessionPath(const std::string& id) {
    return LWebletSessionData::Folder() + "/" + id + ".sess";
}

std::string NewSession(bool remember = false) {
    LWebletSessionData session;
    session.CreateNewSession(remember);
    session.SetString("user", "anna@shop.example");
    session.FlushSession();
    return session.Id();
}

// The first letter, an "a" for every other one, a "0" for the number at the end.
std::string Shape(const std::string& id) {
    std::string shape = id.substr(0, 1);
    for (const char c : id.substr(1)) {
        const bool isDigit = c >= '0' && c <= '9';
        if (isDigit && shape.back() == '0') continue;
        shape += isDigit ? '0' : c >= 'a' && c <= 'z' ? 'a' : '?';
    }
    return shape;
}

void MakeOlder(const std::string& path, std::time_t seconds) {
    const timespec then{std::time(nullptr) - seconds, 0};
    const std::array<timespec, 2> times{then, then};
    EXPECT_EQ(::utimensat(AT_FDCWD, path.c_str(), times.data(), 0), 0);
}

bool CanBeLoaded(const std::string& id) { return LWebletSessionData().LoadSession(id); }

TEST(SessionData, ANewSessionIsAFileNamedByItsId) {
    const LTempHome home;
    const std::string id = NewSession();
    EXPECT_EQ(Shape(id), "saaaaaaaa0") << id;
    EXPECT_EQ(ReadFile(SessionPath(id)), "user=anna%40shop.example");
    const std::string remembered = NewSession(true);
    EXPECT_EQ(Shape(remembered), "laaaaaaaa0");
    EXPECT_NE(remembered.substr(1, 8), id.substr(1, 8));
    EXPECT_EQ(std::stoul(remembered.substr(9)), std::stoul(id.substr(9)) + 1);

    struct stat status {};
    ASSERT_EQ(::stat(SessionPath(id).c_str(), &status), 0);
    EXPECT_EQ(status.st_mode & 0777, 0600u) << "an id is as good as a password";
    ASSERT_EQ(::stat(LWebletSessionData::Folder().c_str(), &status), 0);
    EXPECT_EQ(status.st_mode & 0777, 0700u);
}

TEST(SessionData, IsLoadedChangedAndDestroyed) {
    const LTempHome home;
    const std::string id = NewSession();
    LWebletSessionData session;
    ASSERT_TRUE(session.LoadSession(id));
    EXPECT_EQ(session.GetString("user"), "anna@shop.example");
    session.SetString("profile", "/data/a & b");
    session.DeleteField("user");
    session.FlushSession();
    EXPECT_EQ(ReadFile(SessionPath(id)), "profile=%2Fdata%2Fa%20%26%20b")
        << "shorter text, no rest";

    session.SetString("x", "y");
    session.Destroy();
    session.FlushSession();
    EXPECT_FALSE(session.IsLoaded());
    EXPECT_EQ(session.GetString("profile"), "");
    EXPECT_FALSE(FileExists(SessionPath(id)));
}

TEST(SessionData, NamesThatAreNoIdsAreNeverOpened) {
    const LTempHome home;
    const std::string id = NewSession();
    home.WriteFile("data/Quillmarsh/Shared/other.sess", "user=x");
    home.WriteFile("data/Quillmarsh/Shared/SessionData/A.sess", "user=x");
    const std::array<std::string, 8> kNames{"",           "../other",
                                            "..\\other",  "x/../" + id,
                                            "A",          std::string("s\0", 2) + id,
                                            id + ".sess", std::string(300, 'a')};
    for (const std::string& name : kNames) {
        LWebletSessionData session;
        EXPECT_FALSE(session.LoadSession(name)) << name;
        EXPECT_FALSE(session.IsLoaded());
        session.SetString("user", "x");  // stays with the request
        session.FlushSession();
    }
    EXPECT_FALSE(CanBeLoaded("sabcdefgh7"));
    EXPECT_EQ(home.FileCount(), 3);
}

TEST(SessionSweep, EveryKindOfSessionHasItsTime) {
    const LTempHome home;
    struct LCase {
        const char* name;
        std::time_t age;
        bool stays;
    };
    constexpr std::array<LCase, 8> kCases{{
        {"sordinary.sess", 604790, true},
        {"sold.sess", 604802, false},
        {"lremembered.sess", 30 * kDay, true},
        {"llast.sess", 15768000 - 60, true},
        {"lold.sess", 15768000, false},
        {"xunknown.sess", 8 * kDay, false},
        {"sother.txt", 8 * kDay, true},
        {"snew.sess", 0, true},
    }};
    for (const LCase& row : kCases) {
        home.WriteFile(std::string("data/Quillmarsh/Shared/SessionData/") + row.name, "a=b");
        MakeOlder(LWebletSessionData::Folder() + "/" + row.name, row.age);
    }
    CanBeLoaded("snone");
    for (const LCase& row : kCases) {
        EXPECT_EQ(FileExists(LWebletSessionData::Folder() + "/" + row.name), row.stays) << row.name;
    }
    EXPECT_EQ(SessionDueTime("s.sess", 1000), 1000 + 604801) << "more than seven days";
    EXPECT_EQ(SessionDueTime("l.sess", 1000), 1000 + 15768000) << "not less than half a year";
}

TEST(SessionSweep, SeesWhatHappensBetweenTwoLoads) {
    const LTempHome home;
    const std::string id = NewSession();
    ASSERT_TRUE(CanBeLoaded(id));
    MakeOlder(SessionPath(id), 8 * kDay);
    EXPECT_FALSE(CanBeLoaded(id)) << "made older in place";

    const std::string moved = NewSession();
    home.WriteFile("elsewhere", "a=b");
    MakeOlder(home.File("elsewhere"), 8 * kDay);
    std::filesystem::rename(home.File("elsewhere"), SessionPath("smoved0"));
    ASSERT_TRUE(CanBeLoaded(moved));
    EXPECT_FALSE(FileExists(SessionPath("smoved0"))) << "moved in from elsewhere";

    // A restored data folder takes the place of the one that was watched.
    const std::string folder = LWebletSessionData::Folder();
    std::filesystem::rename(folder, folder + ".old");
    home.WriteFile("data/Quillmarsh/Shared/SessionData/srestored0.sess", "a=b");
    MakeOlder(SessionPath("srestored0"), 8 * kDay);
    EXPECT_FALSE(CanBeLoaded("srestored0"));
    std::filesystem::remove_all(folder);
    EXPECT_FALSE(CanBeLoaded(moved));
    EXPECT_TRUE(CanBeLoaded(NewSession()));
}

TEST(SessionConcurrency, ChangesOfRequestsThatOverlapAreAllKept) {
    const LTempHome home;
    const std::string id = NewSession();
    constexpr int kThreads = 4;
    constexpr int kRounds = 50;
    std::vector<std::thread> threads;
    for (int t = 0; t < kThreads; ++t) {
        threads.emplace_back([&id, t] {
            for (int i = 0; i < kRounds; ++i) {
                LWebletSessionData session;
                EXPECT_TRUE(session.LoadSession(id));
                session.SetString("key" + std::to_string(t) + "_" + std::to_string(i), "1");
                session.FlushSession();
            }
        });
    }
    for (std::thread& thread : threads) thread.join();
    LWebletSessionData session;
    ASSERT_TRUE(session.LoadSession(id));
    for (int t = 0; t < kThreads; ++t) {
        for (int i = 0; i < kRounds; ++i) {
            EXPECT_TRUE(session.TestExists("key" + std::to_string(t) + "_" + std::to_string(i)));
        }
    }
}

TEST(SessionConcurrency, AReaderGoesOnAsSoonAsTheWriterIsDone) {
    const LTempHome home;
    const std::string id = NewSession();
    std::optional<LWebletSessionData> writer(std::in_place);
    ASSERT_TRUE(writer->LoadSession(id));
    writer->SetString("step", "done");
    std::atomic<bool> loaded{false};
    std::thread reader([&] {
        LWebletSessionData session;
        EXPECT_TRUE(session.LoadSession(id));
        loaded = true;
        EXPECT_EQ(session.GetString("step"), "done");
    });
    std::this_thread::sleep_for(std::chrono::milliseconds(100));
    EXPECT_FALSE(loaded);
    const auto start = std::chrono::steady_clock::now();
    writer.reset();
    reader.join();
    EXPECT_LT(std::chrono::steady_clock::now() - start, std::chrono::milliseconds(200))
        << "a pause of the file lock was slept";
}

TEST(SessionConcurrency, AnotherProcessSeesTheLock) {
    const LTempHome home;
    const std::string id = NewSession();
    const LFileDescriptor other(::open(SessionPath(id).c_str(), O_RDONLY | O_CLOEXEC));
    LWebletSessionData session;
    ASSERT_TRUE(session.LoadSession(id));
    EXPECT_EQ(::flock(other.Get(), LOCK_EX | LOCK_NB), 0) << "held only while loading";
    EXPECT_EQ(::flock(other.Get(), LOCK_UN), 0);
    session.SetString("a", "b");
    EXPECT_NE(::flock(other.Get(), LOCK_SH | LOCK_NB), 0) << "from the change to the flush";
    session.FlushSession();
    EXPECT_EQ(::flock(other.Get(), LOCK_EX | LOCK_NB), 0);
}

TEST(SessionConcurrency, ADestroyedSessionDoesNotComeBack) {
    const LTempHome home;
    const std::string id = NewSession();
    LWebletSessionData slow, logoff;
    ASSERT_TRUE(slow.LoadSession(id));
    ASSERT_TRUE(logoff.LoadSession(id));
    logoff.Destroy();
    slow.SetString("late", "1");
    slow.FlushSession();
    EXPECT_FALSE(FileExists(SessionPath(id)));
}

}  // namespace
