#include "platform/Folders.h"

#include <gtest/gtest.h>
#include <sys/stat.h>
#include <unistd.h>

#include <filesystem>

#include "tests/support/LTempFolder.h"

namespace fs = std::filesystem;

TEST(Folders, FollowTheBaseDirectoryVariables) {
    const LScopedEnvironment home("HOME", "/home/ada/");
    struct Case {
        const char *data, *config, *expectedData, *expectedConfig, *why;
    };
    const Case kCases[] = {
        {"/d", "/c/", "/d/Quillmarsh", "/c/Quillmarsh", "set, with or without the last slash"},
        {"", "", "/home/ada/.local/share/Quillmarsh", "/home/ada/.config/Quillmarsh", "empty"},
        {"d", "../c", "/home/ada/.local/share/Quillmarsh", "/home/ada/.config/Quillmarsh",
         "a relative path counts as none"},
    };
    for (const Case& c : kCases) {
        const LScopedEnvironment data("XDG_DATA_HOME", c.data);
        const LScopedEnvironment config("XDG_CONFIG_HOME", c.config);
        EXPECT_EQ(GetUserDataFolderApp(), c.expectedData) << c.why;
        EXPECT_EQ(GetUserConfigFolderApp(), c.expectedConfig) << c.why;
    }
}

TEST(Folders, TheSharedFolderIsMadeForAllBelowPrivateParents) {
    const LTempHome home;
    const mode_t mask = ::umask(0);
    const std::string shared = GetSharedDataFolderApp();
    ::umask(mask);
    EXPECT_EQ(shared, home.File("data/Quillmarsh/Shared"));
    EXPECT_EQ(fs::status(shared).permissions(), fs::perms(0777));
    EXPECT_EQ(fs::status(home.File("data/Quillmarsh")).permissions(), fs::perms(0700));
}
