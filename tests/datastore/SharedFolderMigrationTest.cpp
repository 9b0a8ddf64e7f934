#include "datastore/SharedFolderMigration.h"

#include <gtest/gtest.h>

#include <cerrno>

#include "tests/support/LFailNthFileCall.h"
#include "tests/support/LScriptedUserInterface.h"
#include "tests/support/LTempFolder.h"

namespace {

namespace fs = std::filesystem;

constexpr char kNew[] = "data/Quillmarsh/Shared";
constexpr char kMarker[] = "data/Quillmarsh/Shared/.SharedFolderMigrated";
constexpr char kOldFile[] = "root/var/lib/Quillmarsh/Items/1.dat";

struct SharedFolderMigration : testing::Test {
    LTempHome home;
    LScriptedUserInterface ui;
    bool IsDone() const { return fs::exists(home.File(kMarker)); }
    std::string Read(const char* name) const { return home.ReadFile(std::string(kNew) + name); }
};

}  // namespace

TEST_F(SharedFolderMigration, WithoutOldDataItOnlyRemembersThatItLooked) {
    home.WriteFile("data/Quillmarsh/Shared/Items/1.dat", "new");
    LFileMigrateSharedSettings(ui);
    EXPECT_TRUE(IsDone());
    home.WriteFile(kOldFile, "too late");
    LFileMigrateSharedSettings(ui);
    EXPECT_EQ(Read("/Items/1.dat"), "new");
}

TEST_F(SharedFolderMigration, OldDataFillTheNewFolderWithoutAWord) {
    home.WriteFile(kOldFile, "old");
    home.WriteFile("root/var/lib/Tervin Software/Quillmarsh/Items/1.dat", "of the old place");
    LFileMigrateSharedSettings(ui);
    EXPECT_TRUE(IsDone());
    EXPECT_EQ(Read("/Items/1.dat"), "of the old place");
    EXPECT_EQ(home.ReadFile(kOldFile), "old") << "nothing is taken away";
    EXPECT_TRUE(ui.Informed().empty());
}

// Whichever call fails, or finds the folders on two devices: at the next start at the latest all is
// in its place, once.
TEST_F(SharedFolderMigration, DataOfBothAreKept) {
    bool fired = true;
    for (int n = 1; fired; ++n) {
        const LTempHome both;
        both.WriteFile(kOldFile, "old");
        both.WriteFile("data/Quillmarsh/Shared/Items/1.dat", "new");
        both.WriteFile("data/Quillmarsh/Shared.importing/half", "of a start that was cut short");
        LScriptedUserInterface told;
        {
            const LFailNthFileCall fault(n, EXDEV);
            LFileMigrateSharedSettings(told);
            fired = fault.Fired();
        }
        LFileMigrateSharedSettings(told);
        EXPECT_EQ(both.ReadFile("data/Quillmarsh/Shared/Items/1.dat"), "old") << n;
        int backups = 0;
        for (const auto& entry : fs::directory_iterator(both.File("data/Quillmarsh"))) {
            const std::string name = entry.path().filename();
            if (name == "Shared") continue;
            EXPECT_TRUE(name.starts_with("Shared.backup2")) << name;
            EXPECT_EQ(std::count(name.begin(), name.end(), '-'), 3) << name;
            EXPECT_EQ(std::count(name.begin(), name.end(), '.'), 3) << name;
            EXPECT_EQ(both.ReadFile("data/Quillmarsh/" + name + "/Items/1.dat"), "new") << name;
            ++backups;
        }
        EXPECT_EQ(backups, 1);
        const std::vector<LScriptedUserInterface::Shown> expected{
            {"Importing",
             "Successfully imported your data from the previous version of Quillmarsh Stock "
             "Manager"}};
        EXPECT_EQ(told.Informed(), expected);
    }
}

TEST_F(SharedFolderMigration, AFailureLeavesEverythingForTheNextStart) {
    home.WriteFile(kOldFile, "old");
    home.WriteFile("data/Quillmarsh/Shared/Items/1.dat", "new");
    for (int n = 1; n <= 4; ++n) {
        const LFailNthFileCall fault(n, ENOSPC, LFaultSpan::kOnward);
        LFileMigrateSharedSettings(ui);
        EXPECT_EQ(Read("/Items/1.dat"), "new") << n;
        EXPECT_FALSE(IsDone()) << n;
    }
    EXPECT_EQ(home.FileCount(), 2) << "nothing half copied remains";
    LFileMigrateSharedSettings(ui);
    EXPECT_EQ(Read("/Items/1.dat"), "old");
}
