#include "datastore/SharedSettings.h"

#include <gtest/gtest.h>

#include <cerrno>
#include <filesystem>
#include <pugixml.hpp>
#include <thread>

#include "tests/support/LChildProcess.h"
#include "tests/support/LFailNthFileCall.h"
#include "tests/support/LTempFolder.h"

namespace {

const std::string kFile = "data/Quillmarsh/Shared/SharedSettings.xml";

TEST(SharedSettings, AreElementsOfSections) {
    const LTempHome home;
    EXPECT_EQ(LSharedSettingGetString("Link", "Key", "none"), "none");
    EXPECT_FALSE(std::filesystem::exists(home.File(kFile))) << "reading makes no file";
    EXPECT_TRUE(LSharedSettingSetString("Link", "Key", "a"));
    EXPECT_TRUE(LSharedSettingSetString("Other", "Key", "b"));
    EXPECT_TRUE(LSharedSettingSetString("Link", "More", "<&\"'\n\t\x01 \u00E4"));
    EXPECT_TRUE(LSharedSettingSetString("Link", "Key", "c"));
    EXPECT_EQ(LSharedSettingGetString("Link", "Key", ""), "c");
    EXPECT_EQ(LSharedSettingGetString("Other", "Key", ""), "b");
    EXPECT_EQ(LSharedSettingGetString("Link", "More", ""), "<&\"'\n\t\x01 \u00E4");
}

TEST(SharedSettings, NamesThatAreNoElementsAreRefused) {
    const LTempHome home;
    ASSERT_TRUE(LSharedSettingSetString("A", "b", "1"));
    const std::string before = home.ReadFile(kFile);
    for (const std::string& name :
         {std::string(), std::string("a b"), std::string("1a"), std::string("a/><x"),
          std::string("a\0", 2), std::string("-")}) {
        EXPECT_FALSE(LSharedSettingSetString("A", name, "x")) << name;
        EXPECT_FALSE(LSharedSettingSetString(name, "b", "x")) << name;
        EXPECT_EQ(LSharedSettingGetString("A", name, "d"), "d") << name;
    }
    EXPECT_EQ(home.ReadFile(kFile), before);
}

TEST(SharedSettings, ADamagedFileIsMetWithoutHarm) {
    for (const std::string& text :
         {std::string(), std::string("no xml"), std::string("<A><b value="),
          std::string("<A><b value='1'/>"), std::string(100000, '<'), std::string("\0\0\0\0", 4),
          std::string("<!DOCTYPE A [<!ENTITY")}) {
        const LTempHome home;
        home.WriteFile(kFile, text);
        LSharedSettingGetString("A", "b", "d");
        EXPECT_TRUE(LSharedSettingSetString("A", "c", "2"));
        EXPECT_EQ(LSharedSettingGetString("A", "c", "d"), "2");
    }
    const LTempHome home;
    std::filesystem::create_directories(home.File(kFile));
    EXPECT_EQ(LSharedSettingGetString("A", "b", "d"), "d");
    EXPECT_FALSE(LSharedSettingSetString("A", "b", "1"));
    LSharedSettingsSave(pugi::xml_document());
}

TEST(SharedSettings, ChangesOfSeveralProcessesAndThreadsAreAllKept) {
    const LTempHome home;
    const auto write = [](const std::string& name) {
        for (int i = 0; i < 25; ++i) {
            if (!LSharedSettingSetString("S", name + std::to_string(i), "1")) return 1;
        }
        return 0;
    };
    LChildProcess one([&] { return write("One"); });
    LChildProcess two([&] { return write("Two"); });
    {
        const std::jthread three([&] { write("Three"); });
        const std::jthread four([&] { write("Four"); });
    }
    EXPECT_EQ(one.Wait(), 0);
    EXPECT_EQ(two.Wait(), 0);
    for (const std::string name : {"One", "Two", "Three", "Four"}) {
        for (int i = 0; i < 25; ++i) {
            EXPECT_EQ(LSharedSettingGetString("S", name + std::to_string(i), ""), "1") << name << i;
        }
    }
}

TEST(SharedSettings, AFullDiskLeavesTheOldOrTheNewText) {
    for (int n = 1;; ++n) {
        const LTempHome home;
        ASSERT_TRUE(LSharedSettingSetString("A", "keep", "1"));
        ASSERT_TRUE(LSharedSettingSetString("A", "b", "old"));
        bool saved = false, fired = false;
        {
            const LFailNthFileCall fault(n, ENOSPC);
            saved = LSharedSettingSetString("A", "b", "a longer new value");
            fired = fault.Fired();
        }
        EXPECT_EQ(LSharedSettingGetString("A", "b", ""), saved ? "a longer new value" : "old") << n;
        EXPECT_EQ(LSharedSettingGetString("A", "keep", ""), "1") << n;
        if (!fired) break;
    }
}

}  // namespace
