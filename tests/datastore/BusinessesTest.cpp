#include "datastore/Businesses.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <set>

#include "datastore/BusinessSelect.h"
#include "datastore/LProfile.h"
#include "platform/Folders.h"
#include "tests/support/LScriptedUserInterface.h"
#include "tests/support/LTempFolder.h"

namespace {

const std::string kMultiBus = "data/Quillmarsh/Shared/MultiBus/";

std::string NewBusiness(const std::string& name) {
    const std::string folder = CreateNewBusiness().value_or("");
    LProfile profile(folder);
    LRecord company;
    profile.OpenSettings(company, "Company");
    company.SetString("Name", name);
    return folder;
}

std::multiset<int> Numbers(LBusinessFilter filter = LBusinessFilter::kListed) {
    std::multiset<int> numbers;
    for (const LBusiness& business : ListBusinesses(filter)) numbers.insert(business.number);
    return numbers;
}

TEST(Businesses, ANewOneTakesTheSmallestFreeNumber) {
    const LTempHome home;
    EXPECT_EQ(CreateNewBusiness(), home.File(kMultiBus + "1"));
    EXPECT_EQ(CreateNewBusiness(), home.File(kMultiBus + "2"));
    EXPECT_EQ(CreateNewBusiness(), home.File(kMultiBus + "3"));
    std::filesystem::remove(home.File(kMultiBus + "1"));
    EXPECT_EQ(CreateNewBusiness(), home.File(kMultiBus + "1"));
    home.WriteFile(kMultiBus + "4", "a file in the way");
    EXPECT_EQ(CreateNewBusiness(), home.File(kMultiBus + "5"));
}

TEST(Businesses, AreFoundByName) {
    const LTempHome home;
    EXPECT_TRUE(SetBusinessName(0, "Head Office"));
    NewBusiness("Äpfel & Birnen");
    const std::string second = NewBusiness("Second");
    EXPECT_EQ(GetBusinessNumber("Head Office"), 0);
    EXPECT_EQ(GetBusinessNumber("Äpfel & Birnen"), 1);
    EXPECT_EQ(GetBusinessNumber("second"), -1) << "letter case counts here";
    EXPECT_TRUE(IsBusinessValid("äPFEL & birnen")) << "but not here";
    EXPECT_FALSE(IsBusinessValid("Third"));
    EXPECT_EQ(FindBusinessFolder("Second"), second);
    EXPECT_EQ(GetBusinessName(0), "Head Office");
    EXPECT_EQ(GetBusinessName(-1), "");
    EXPECT_EQ(GetBusinessFolder(0), GetSharedDataFolderApp());
    EXPECT_EQ(GetBusinessFolder(-1), "");
    EXPECT_FALSE(std::filesystem::exists(home.File(kMultiBus + "3"))) << "asking makes nothing";
}

TEST(Businesses, ADeletedOneIsHiddenUntilItIsBack) {
    const LTempHome home;
    NewBusiness("One");
    NewBusiness("Two");
    ASSERT_TRUE(SetBusinessDeleted(1, true));
    EXPECT_EQ(Numbers(), (std::multiset{0, 2}));
    EXPECT_EQ(Numbers(LBusinessFilter::kWithDeleted), (std::multiset{0, 1, 2}));
    EXPECT_FALSE(IsBusinessValid("One"));
    EXPECT_EQ(GetBusinessNumber("One"), -1);
    EXPECT_EQ(GetBusinessName(1), "One");
    ASSERT_TRUE(SetBusinessDeleted(1, false));
    EXPECT_TRUE(IsBusinessValid("One"));
    EXPECT_EQ(home.ReadFile(kMultiBus + "1/Misc/Company.dat"), "Name=One&Deleted=0");
    EXPECT_FALSE(SetBusinessDeleted(9, true));
    EXPECT_FALSE(SetBusinessName(-1, "x"));
}

TEST(Businesses, AreAddedHiddenAndOpenedInTheChooser) {
    const LTempHome home;
    LProfile profile;
    LScriptedUserInterface ui;
    const auto expect = [&](std::vector<std::string> rows, const std::string& row,
                            const std::string& button) {
        ui.ExpectAsk("Select Business", "Choose a business.", std::move(rows), row);
        if (!row.empty()) {
            ui.ExpectAsk("Select Business", row, {"Open", "Add", "Delete or Undelete"}, button);
        }
    };
    expect({"Default business"}, "Default business", "Add");
    expect({"Default business", "Business 1"}, "Business 1", "Delete or Undelete");
    expect({"Default business", "Business 1 (deleted)"}, "", "");
    EXPECT_FALSE(LMultipleBusinessSelect(ui, profile));
    EXPECT_EQ(profile.DatabaseFolder(), GetBusinessFolder(0));
    EXPECT_FALSE(IsBusinessValid("Business 1"));

    expect({"Default business", "Business 1 (deleted)"}, "Business 1 (deleted)",
           "Delete or Undelete");
    expect({"Default business", "Business 1"}, "Business 1", "Open");
    EXPECT_TRUE(LMultipleBusinessSelect(ui, profile));
    EXPECT_EQ(profile.DatabaseFolder(), GetBusinessFolder(1));
    EXPECT_EQ(profile.BusinessName(), "Business 1");
}

TEST(Businesses, OtherThingsInTheFolderAreNone) {
    const LTempHome home;
    NewBusiness("One");
    for (const char* name : {"1 copy", "backup", "01", "-1", "+2", "99999999999", "2x"}) {
        std::filesystem::create_directories(home.File(kMultiBus + name));
    }
    home.WriteFile(kMultiBus + "7", "a file");
    EXPECT_EQ(Numbers(), (std::multiset{0, 1}));
}

}  // namespace
