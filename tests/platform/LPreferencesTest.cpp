#include "platform/LPreferences.h"

#include <gtest/gtest.h>
#include <sys/stat.h>

#include <cerrno>
#include <thread>

#include "platform/ProcessInfo.h"
#include "platform/TextLimits.h"
#include "tests/support/LChildProcess.h"
#include "tests/support/LFailNthFileCall.h"
#include "tests/support/LTempFolder.h"

namespace {

class LPreferences : public ::testing::Test {
protected:
    void WriteByHand(std::string_view text) { home_.WriteFile(Name(), text); }
    std::string FileText() const { return home_.ReadFile(Name()); }
    static std::string Name(std::string_view suffix = "") {
        return "config/Quillmarsh/UserSettings." + HostName() + ".json" + std::string(suffix);
    }

    LTempHome home_;
};

// Sets a key for each of `count` numbers; 0 when all could be stored.
int SetMany(const std::string& prefix, int count) {
    for (int i = 0; i < count; ++i) {
        if (!PreferencesSet(prefix + "/" + std::to_string(i), "x")) return 1;
    }
    return 0;
}

}  // namespace

TEST_F(LPreferences, KeepTextsInAPrivateFile) {
    EXPECT_EQ(PreferencesGet("WebServer/Port"), std::nullopt);
    EXPECT_TRUE(PreferencesDelete("WebServer/Port"));
    EXPECT_EQ(home_.FileCount(), 0) << "reading and forgetting leave no file";

    ASSERT_TRUE(PreferencesSet("WebServer/Port", "1097"));
    ASSERT_TRUE(PreferencesSet("Email/Name", "Zoë \"Z\"\n\x01"));
    ASSERT_TRUE(PreferencesSet("Empty", ""));
    EXPECT_EQ(PreferencesGet("WebServer/Port"), "1097");
    EXPECT_EQ(PreferencesGet("Email/Name"), "Zoë \"Z\"\n\x01");
    EXPECT_EQ(PreferencesGet("Empty"), "");

    struct stat status {};
    ASSERT_EQ(::stat(home_.File(Name()).c_str(), &status), 0);
    EXPECT_EQ(status.st_mode & 0777, 0600u);
    ASSERT_EQ(::stat(home_.File("config/Quillmarsh").c_str(), &status), 0);
    EXPECT_EQ(status.st_mode & 0777, 0700u);

    ASSERT_TRUE(PreferencesDelete("WebServer/Port"));
    EXPECT_EQ(PreferencesGet("WebServer/Port"), std::nullopt);
    EXPECT_EQ(PreferencesGet("Empty"), "");
}

TEST_F(LPreferences, AFileEditedByHandIsReadKindly) {
    WriteByHand(R"({"Zone/Last": "z", "WebServer/Port": 8080, "WebServer/Enabled": true,
        "Off": false, "Rate": 1.5, "Nothing": null, "Many": [1, 2], "Twice": "a", "Twice": "b"})");
    EXPECT_EQ(PreferencesGet("WebServer/Port"), "8080");
    EXPECT_EQ(PreferencesGet("WebServer/Enabled"), "1");
    EXPECT_EQ(PreferencesGet("Off"), "0");
    EXPECT_EQ(PreferencesGet("Rate"), "1.5");
    EXPECT_EQ(PreferencesGet("Nothing"), std::nullopt);
    EXPECT_EQ(PreferencesGet("Many"), std::nullopt);
    EXPECT_EQ(PreferencesGet("Twice"), "b");

    ASSERT_TRUE(PreferencesSet("WebServer/Enabled", "0"));
    EXPECT_EQ(PreferencesGet("WebServer/Enabled"), "0");
    const std::string text = FileText();
    EXPECT_LT(text.find("Zone/Last"), text.find("WebServer/Port")) << "the order is the writer's";
    EXPECT_NE(text.find("Many"), std::string::npos) << "what we cannot use is kept";
}

TEST_F(LPreferences, NoTextIsRefused) {
    ASSERT_TRUE(PreferencesSet("Latin", "caf\xe9"));
    EXPECT_EQ(PreferencesGet("Latin"), "caf\uFFFD");
    // A long key is cut in the middle of a character, and still finds its value.
    std::string key(kMaxSettingKeyBytes - 1, 'k');
    key.append("é");
    const std::string_view cut = CutText(key, kMaxSettingKeyBytes);
    ASSERT_TRUE(PreferencesSet(cut, "found"));
    EXPECT_EQ(PreferencesGet(cut), "found");
    ASSERT_TRUE(PreferencesDelete(cut));
    EXPECT_EQ(PreferencesGet(cut), std::nullopt);
}

TEST_F(LPreferences, ADamagedFileIsSetAsideBeforeItIsReplaced) {
    const std::string nested =
        "{\"a\":" + std::string(200000, '[') + std::string(200000, ']') + "}";
    const std::string kDamaged[] = {"{\"WebServer/Port\": \"1097\"",
                                    "[1, 2]",
                                    "\"text\"",
                                    "{\"a\": \"caf\xe9\"}",
                                    "{\"a\": 1} // mine",
                                    nested,
                                    "\x00\x01"};
    int setAside = 0;
    for (const std::string& damaged : kDamaged) {
        WriteByHand(damaged);
        EXPECT_EQ(PreferencesGet("a"), std::nullopt);
        ASSERT_TRUE(PreferencesDelete("a"));
        EXPECT_EQ(FileText(), damaged) << "nothing to delete, so nothing to write";
        ASSERT_TRUE(PreferencesSet("a", "new"));
        EXPECT_EQ(PreferencesGet("a"), "new");
        ++setAside;
        const std::string suffix = setAside == 1 ? "" : "." + std::to_string(setAside);
        EXPECT_EQ(home_.ReadFile(Name(".damaged" + suffix)), damaged);
    }
}

TEST_F(LPreferences, WhatCannotBeReadIsNotReplaced) {
    home_.WriteFile(Name("/inside"), "a folder has the file's name");
    EXPECT_EQ(PreferencesGet("a"), std::nullopt);
    EXPECT_FALSE(PreferencesSet("a", "1"));
    EXPECT_EQ(home_.ReadFile(Name("/inside")), "a folder has the file's name");
}

TEST_F(LPreferences, AFailureAtAnyMomentLeavesTheOldOrTheNewFile) {
    const std::string good = R"({"Port": "1097", "Other": "kept"})";
    for (const std::string& old : {good, std::string("{damaged")}) {
        for (const auto span : {LFaultSpan::kOnce, LFaultSpan::kOnward}) {
            for (int n = 1, fired = 1; fired != 0; ++n) {
                ASSERT_LT(n, 100);
                const LTempHome home;
                home.WriteFile(Name(), old);
                home.WriteFile(Name(".lock"), "");
                bool saved = false;
                {
                    const LFailNthFileCall fault(n, ENOSPC, span);
                    saved = PreferencesSet("Port", "8080");
                    fired = fault.Fired();
                }
                const bool isSetAside = saved && old != good;
                EXPECT_EQ(home.ReadFile(Name(".damaged")), isSetAside ? old : "") << n;
                EXPECT_EQ(home.FileCount(), isSetAside ? 3 : 2) << "call " << n;
                EXPECT_EQ(home.ReadFile(Name()) == old, !saved) << "call " << n;
                EXPECT_EQ(PreferencesGet("Other").has_value(), old == good) << "call " << n;
            }
        }
    }
}

TEST_F(LPreferences, WritersInProcessesAndThreadsLoseNothing) {
    constexpr int kEach = 8;
    LChildProcess first([] { return SetMany("first", kEach); });
    LChildProcess second([] { return SetMany("second", kEach); });
    std::thread other([] { EXPECT_EQ(SetMany("fourth", kEach), 0); });
    EXPECT_EQ(SetMany("third", kEach), 0);
    other.join();
    EXPECT_EQ(first.Wait(), 0);
    EXPECT_EQ(second.Wait(), 0);
    for (const std::string prefix : {"first", "second", "third", "fourth"}) {
        for (int i = 0; i < kEach; ++i) {
            EXPECT_EQ(PreferencesGet(prefix + "/" + std::to_string(i)), "x") << prefix << i;
        }
    }
}
