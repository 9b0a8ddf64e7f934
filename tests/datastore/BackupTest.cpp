#include "datastore/Backup.h"

#include <gtest/gtest.h>
#include <signal.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <filesystem>
#include <fstream>

#include "datastore/BackupContents.h"
#include "datastore/LBackgroundService.h"
#include "datastore/LFile.h"
#include "datastore/LProfile.h"
#include "datastore/SharedFolderMigration.h"
#include "platform/Folders.h"
#include "tests/support/LChildProcess.h"
#include "tests/support/LFailNthFileCall.h"
#include "tests/support/LScriptedUserInterface.h"
#include "tests/support/LTempFolder.h"

namespace {

namespace fs = std::filesystem;
using LTree = std::map<std::string, std::string>;

constexpr char kConfirm[] =
    "The restore will erase all existing information before the backup data is loaded. Do you "
    "really want to restore the data?";
constexpr char kAgain[] = "Restore failed. Would you like to pick a different folder?";

// Every plain file below `folder`, by its path there.
LTree TreeOf(const std::string& folder) {
    LTree tree;
    std::error_code error;
    for (const auto& entry : fs::recursive_directory_iterator(folder, error)) {
        if (!entry.is_regular_file()) continue;
        std::ifstream file(entry.path());
        tree[entry.path().string().substr(folder.size() + 1)] =
            std::string(std::istreambuf_iterator<char>(file), {});
    }
    return tree;
}

// Folders that a restore has set aside: named by a number.
std::vector<std::string> SetAside() {
    std::vector<std::string> folders;
    for (const auto& entry : fs::directory_iterator(GetUserDataFolderApp())) {
        const std::string name = entry.path().filename().string();
        if (name.find_first_not_of("0123456789") == std::string::npos) {
            folders.push_back(entry.path().string());
        }
    }
    return folders;
}

class LFakeService final : public LBackgroundService {
public:
    std::string calls;
    bool stops = true;
    bool IsRunning() override { return true; }
    bool Stop() override { return calls += "stop ", stops; }
    bool Start() override { return calls += "start ", true; }
};

// A home with two businesses, and a second place that takes backups.
class Backup : public testing::Test {
protected:
    Backup() {
        LProfile profile;
        LRecord company;
        profile.OpenSettings(company, "Company");
        company.SetString("Name", "Shop & Sons");
        company.Flush();
        AddItem(profile, "old");
        home_.WriteFile("data/Quillmarsh/Shared/Sellhistory/2026-01-02.csv", "1,1,$2.00,Main\r\n");
        home_.WriteFile("data/Quillmarsh/Shared/MultiBus/1/Misc/Options.dat", "Init=1");
        EXPECT_TRUE(LFileMarkSharedFolderMigrated(shared_));
    }
    static void AddItem(const LProfile& profile, const std::string& code) {
        LRecord item;
        profile.Items().CreateNewRecord(item);
        item.SetString("Name", code);
    }
    std::string MakeBackup() {
        LScriptedUserInterface ui;
        const LBackupResult result = LBackupFolder(ui, place_.Path());
        EXPECT_TRUE(result.error.IsNone()) << result.error.message;
        EXPECT_EQ(ui.ProcessTitles(), std::vector<std::string>{"Back up Files"});
        return result.folder;
    }
    // A restore of `backup` up to the end of its dialogue.
    bool Restore(const std::string& backup, LScriptedUserInterface& ui, LFakeService& service) {
        ui.ExpectAsk("Confirm Restore", kConfirm, {"Restore from backup", "Don't restore"},
                     "Restore from backup");
        ui.ExpectPick("Restore Folder Name", backup);
        return LRestoreFolder(ui, service, place_.Path());
    }

    LTempHome home_;
    LTempFolder place_;
    const std::string shared_ = GetSharedDataFolderApp();
};

TEST_F(Backup, CopiesTheTreeAndLeavesOutWhatIsNoFile) {
    home_.WriteFile("data/Quillmarsh/Shared/Items/locked.bmp", std::string(200000, 'x'));
    fs::permissions(shared_ + "/Items/locked.bmp", fs::perms::owner_read);
    fs::create_symlink(shared_, shared_ + "/Items/around");
    fs::create_symlink(shared_ + "/gone", shared_ + "/Items/nowhere");
    ASSERT_EQ(::mkfifo((shared_ + "/pipe").c_str(), 0600), 0);
    const std::string backup = MakeBackup();
    EXPECT_EQ(TreeOf(backup), TreeOf(shared_));
    EXPECT_FALSE(fs::exists(backup + "/pipe"));
    EXPECT_EQ(backup.rfind(place_.Path() + "/Quillmarsh-Backup-20", 0), 0U) << backup;
    EXPECT_NE(fs::status(backup + "/Items/locked.bmp").permissions() & fs::perms::owner_write,
              fs::perms::none);
    EXPECT_EQ(fs::last_write_time(backup + "/Items/1.dat"),
              fs::last_write_time(shared_ + "/Items/1.dat"));
    EXPECT_NE(MakeBackup(), backup) << "one second, two backups";
}

TEST_F(Backup, RefusesABadDestinationBeforeAnythingIsMade) {
    LScriptedUserInterface ui;
    const LBackupResult missing = LBackupFolder(ui, place_.File("missing"));
    EXPECT_EQ(missing.error.message,
              "Cannot write to the destination folder. Please check you have write access.");
    EXPECT_EQ(missing.error.field, LBackupField::kDestination);
    EXPECT_FALSE(LBackupFolder(ui, shared_ + "/Items").error.IsNone());
    EXPECT_TRUE(fs::is_empty(place_.Path()));
}

TEST_F(Backup, AFullDiskOrAStopLeavesNothingBehind) {
    const LTree before = TreeOf(shared_);
    int n = 1;
    for (;; ++n) {
        LScriptedUserInterface ui;
        LFailNthFileCall fault(n, ENOSPC, LFaultSpan::kOnward);
        const LBackupResult result = LBackupFolder(ui, place_.Path());
        if (!fault.Fired()) break;
        EXPECT_FALSE(result.error.IsNone()) << "call " << n;
        EXPECT_TRUE(fs::is_empty(place_.Path())) << "call " << n;
    }
    EXPECT_GT(n, 10);
    for (const size_t count : {0, 1, 3}) {
        LTempFolder other;
        LScriptedUserInterface ui;
        ui.CancelAfterStatus(count);
        EXPECT_FALSE(LBackupFolder(ui, other.Path()).error.IsNone());
        EXPECT_TRUE(fs::is_empty(other.Path()));
    }
    EXPECT_EQ(TreeOf(shared_), before);
}

TEST_F(Backup, OneThatWasKilledIsKnownAsIncomplete) {
    LChildProcess child([&] {
        LScriptedUserInterface ui;
        ui.OnStatus([](std::string_view name) {
            if (name.find("Items") != std::string_view::npos) ::raise(SIGKILL);
        });
        (void)LBackupFolder(ui, place_.Path());
        return 0;
    });
    EXPECT_EQ(child.Wait(), -SIGKILL);
    const std::string left = fs::directory_iterator(place_.Path())->path().string();
    EXPECT_TRUE(ReadBackupContents(left).isIncomplete);
    EXPECT_NE(ReadBackupContents(left).Problem(), "");
}

TEST_F(Backup, ContentsTellWhatIsInside) {
    const std::string backup = MakeBackup();
    LBackupContents contents = ReadBackupContents(backup);
    EXPECT_EQ(contents.Problem(), "");
    ASSERT_EQ(contents.businesses.size(), 2U);
    EXPECT_EQ(contents.businesses[0].name, "Shop & Sons");
    EXPECT_EQ(contents.businesses[0].records["Items"], 1U);
    EXPECT_EQ(contents.businesses[1].folder, "/MultiBus/1");
    EXPECT_GT(contents.newestChange, 0);

    EXPECT_NE(ReadBackupContents(place_.Path()).Problem(), "") << "a folder above a backup";
    std::ofstream(backup + "/Items/1.dat") << std::string(50, '\0');
    EXPECT_EQ(ReadBackupContents(backup).unreadable, std::vector<std::string>{"Items/1.dat"});
    contents.bytesNeeded = 3 << 20, contents.hasRoom = false;
    EXPECT_NE(contents.Problem().find("3 MB"), std::string::npos);
}

TEST_F(Backup, RestorePutsTheBackupInPlaceWhileTheServiceRests) {
    const std::string backup = MakeBackup();
    const LTree whole = TreeOf(backup);
    fs::remove(backup + "/.SharedFolderMigrated");  // as the previous version wrote it
    AddItem(LProfile(), "new");
    LScriptedUserInterface ui;
    LFakeService service;
    ui.OnStatus([&](std::string_view) { EXPECT_EQ(service.calls, "stop "); });
    EXPECT_TRUE(Restore(backup, ui, service));
    EXPECT_EQ(TreeOf(shared_), whole) << "else the next start would import other data over it";
    EXPECT_EQ(ui.ProcessTitles(), std::vector<std::string>{"Restore Files"});
    EXPECT_EQ(ui.Informed(), (std::vector<LScriptedUserInterface::Shown>{
                                 {"Data Restore Success", "The data was restored successfully."}}));
    EXPECT_EQ(service.calls, "stop start ");
    EXPECT_TRUE(SetAside().empty());
}

TEST_F(Backup, RestoreThatIsDeclinedOrGivenUpChangesNothing) {
    const LTree before = TreeOf(shared_);
    const std::string backup = MakeBackup();
    const LBackupTest refuse = [](const std::string&) { return false; };
    const std::vector<std::string> buttons{"Pick Folder", "No"};
    const auto ask = [](LScriptedUserInterface& ui, const std::string& answer) {
        ui.ExpectAsk("Confirm Restore", kConfirm, {"Restore from backup", "Don't restore"}, answer);
    };
    LFakeService service;
    {
        LScriptedUserInterface ui;
        ask(ui, "Don't restore");
        EXPECT_TRUE(LRestoreFolder(ui, service, ""));
    }
    {
        LScriptedUserInterface ui;
        ask(ui, "Restore from backup");
        ui.ExpectPick("Restore Folder Name", backup);
        ui.ExpectAsk("Error Restoring Data", kAgain, buttons, "Pick Folder");
        ui.ExpectPick("Restore Folder Name", std::nullopt);
        EXPECT_TRUE(LRestoreFolder(ui, service, "", refuse)) << "cancelled";
    }
    {
        LScriptedUserInterface ui;
        ask(ui, "Restore from backup");
        ui.ExpectPick("Restore Folder Name", shared_ + "/MultiBus/1");  // would move itself away
        ui.ExpectAsk("Error Restoring Data", kAgain, buttons, "No");
        EXPECT_FALSE(LRestoreFolder(ui, service, "")) << "given up";
    }
    EXPECT_EQ(service.calls, "");
    {
        LScriptedUserInterface ui;
        service.stops = false;
        EXPECT_TRUE(Restore(backup, ui, service));
        EXPECT_EQ(ui.Informed().at(0).title, "Data Restore Unsuccessful");
    }
    EXPECT_EQ(TreeOf(shared_), before);
}

TEST_F(Backup, RestoreStoppedBeforeTheFirstFilePutsTheDataBack) {
    const std::string backup = MakeBackup();
    AddItem(LProfile(), "new");
    const LTree before = TreeOf(shared_);
    for (const size_t count : {0, 1, 2}) {  // with 1 only folders have been made
        LScriptedUserInterface ui;
        LFakeService service;
        ui.CancelAfterStatus(count);
        EXPECT_TRUE(Restore(backup, ui, service));
        EXPECT_EQ(ui.Informed().at(0).text, "There was an error when restoring the data.");
        EXPECT_EQ(service.calls, "stop start ");
        EXPECT_TRUE(SetAside().empty());
        // Stopped later it leaves its part: the documented order of steps.
        EXPECT_EQ(TreeOf(shared_) == before, count < 2);
        EXPECT_EQ(TreeOf(shared_).size() == 1, count == 2);
    }
}

TEST_F(Backup, AnyFailingCallOfARestoreIsToldAndNeverMixesOldAndNew) {
    const std::string backup = MakeBackup();
    const LTree saved = TreeOf(backup);
    const LTree old{{"Misc/Options.dat", "Init=1"}, {"Items/9.dat", "Name=x"}};
    int n = 1;
    for (bool fired = true; fired; ++n) {
        fs::remove_all(shared_);
        for (const auto& [name, text] : old) {
            home_.WriteFile("data/Quillmarsh/Shared/" + name, text);
        }
        LScriptedUserInterface ui;
        LFakeService service;
        {
            LFailNthFileCall fault(n, ENOSPC);
            EXPECT_TRUE(Restore(backup, ui, service));
            fired = fault.Fired();
        }
        const LTree now = TreeOf(shared_);
        ASSERT_EQ(ui.Informed().size(), 1U);
        if (ui.Informed()[0].title == "Data Restore Success") {
            EXPECT_EQ(now, saved) << "call " << n;
        } else if (now != old) {
            EXPECT_TRUE(std::includes(saved.begin(), saved.end(), now.begin(), now.end())) << n;
        }
        EXPECT_EQ(service.calls, "stop start ");
        EXPECT_TRUE(SetAside().empty()) << "call " << n;
    }
    EXPECT_GT(n, 10);
}

TEST_F(Backup, ARestoreThatIsKilledLeavesTheOldDataWholeAside) {
    const std::string backup = MakeBackup();
    AddItem(LProfile(), "new");
    const LTree before = TreeOf(shared_);
    LChildProcess child([&] {
        LScriptedUserInterface ui;
        LFakeService service;
        int files = 0;
        ui.OnStatus([&](std::string_view) {
            if (++files == 3) ::raise(SIGKILL);
        });
        return Restore(backup, ui, service) ? 0 : 1;
    });
    EXPECT_EQ(child.Wait(), -SIGKILL);
    ASSERT_EQ(SetAside().size(), 1U);
    EXPECT_EQ(TreeOf(SetAside()[0]), before);
}

TEST_F(Backup, WorksAcrossFileSystems) {
    struct stat here {
    }, there{};
    if (::stat("/dev/shm", &there) != 0 || ::stat(shared_.c_str(), &here) != 0 ||
        here.st_dev == there.st_dev) {
        GTEST_SKIP() << "there is no second file system";
    }
    const std::string backup = MakeBackup();
    const std::string root = "/dev/shm/quillmarsh-test-" + std::to_string(::getpid());
    const LScopedEnvironment rootSet("QUILLMARSH_ROOT", root), user("LOGNAME", "tester");
    const std::string container = root + "/Users/tester/Library/Containers/" +
                                  std::string(kBundleIdentifier) +
                                  "/Data/Library/Application Support/Quillmarsh/Shared";
    fs::create_directories(container + "/Misc");
    ASSERT_EQ(GetSharedDataFolderApp(), container);
    std::ofstream(container + "/Misc/Options.dat") << "Init=1&Old=1";
    const LTree old = TreeOf(container);
    LFakeService service;
    {
        LScriptedUserInterface ui;
        ui.CancelAfterStatus(0);
        EXPECT_TRUE(Restore(backup, ui, service));
        EXPECT_EQ(TreeOf(container), old) << "came back across";
    }
    LScriptedUserInterface ui;
    EXPECT_TRUE(Restore(backup, ui, service));
    EXPECT_EQ(TreeOf(container), TreeOf(backup));
    EXPECT_TRUE(SetAside().empty());
    fs::remove_all(root);
}

// The two fields of a record are always saved together, so a torn copy would show.
TEST_F(Backup, WhileWritersAreBusyEveryRecordIsWhole) {
    constexpr int kRecords = 40;
    const auto write = [&](int seed) {
        const LFileStoreListBase list = LProfile().List("Customers");
        for (int round = seed;; ++round) {
            LRecord record;
            list.OpenAlways(record, "c" + std::to_string(round % kRecords));
            const std::string value(static_cast<size_t>(round % 700),
                                    static_cast<char>('a' + seed));
            record.SetString("Name", value);
            record.SetString("Notes", value);
        }
        return 0;
    };
    std::vector<std::unique_ptr<LChildProcess>> writers;
    for (int i = 0; i < 4; ++i) {
        writers.push_back(std::make_unique<LChildProcess>([&write, i] { return write(i); }));
    }
    ::usleep(300000);
    const std::string backup = MakeBackup();
    for (const auto& writer : writers) writer->Kill();

    LScriptedUserInterface ui;
    LFakeService service;
    ASSERT_TRUE(Restore(backup, ui, service));
    int records = 0;
    LAppDataBaseList<LRecord>(LProfile().Store(), "Customers").ForEach([&](const LRecord& record) {
        ++records;
        EXPECT_EQ(record.GetString("Name"), record.GetString("Notes"));
        return true;
    });
    EXPECT_EQ(records, kRecords);
    EXPECT_EQ(TreeOf(shared_), TreeOf(backup));
}

}  // namespace
