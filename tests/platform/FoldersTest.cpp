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

TEST(Folders, PlatformFoldersStandBelowTheTestRoot) {
    const LScopedEnvironment root("QUILLMARSH_ROOT", "/tmp/root/");
    EXPECT_EQ(PlatformPath("/Users/ada/Library"), "/tmp/root/Users/ada/Library");
    EXPECT_EQ(PlatformPath("/var/lib"), "/tmp/root/var/lib");
    EXPECT_EQ(PlatformPath("/var/library/x"), "/var/library/x");
    EXPECT_EQ(PlatformPath("/UsersOf"), "/UsersOf");
    EXPECT_EQ(PlatformPath("/home/ada"), "/home/ada");
    const LScopedEnvironment noRoot("QUILLMARSH_ROOT", "");
    EXPECT_EQ(PlatformPath("/Users/ada"), "/Users/ada");
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

TEST(Folders, AContainerThatExistsHoldsTheSharedFolder) {
    const LTempHome home;
    const LScopedEnvironment logname("LOGNAME", "ada");
    const std::string container = home.File(
        "root/Users/ada/Library/Containers/org.quillmarsh.StockManager/Data/Library/"
        "Application Support/Quillmarsh/Shared");
    EXPECT_NE(GetSharedDataFolderApp(), container);
    EXPECT_FALSE(fs::exists(container)) << "never made here";
    fs::create_directories(container);
    EXPECT_EQ(GetSharedDataFolderApp(), container);
}
