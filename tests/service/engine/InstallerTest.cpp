#include <gtest/gtest.h>

#include <sstream>

#include "datastore/Businesses.h"
#include "datastore/UserSettings.h"
#include "inventory/LItem.h"
#include "inventory/StockHistory.h"
#include "inventory/StockQuantities.h"
#include "platform/LSilentProcess.h"
#include "service/engine/InstallerMain.h"
#include "service/engine/SampleShop.h"
#include "service/link/LinkSettings.h"
#include "tests/support/LTempFolder.h"
#include "web/accounts/LAppWebAccount.h"

namespace {

struct LRun {
    int status;
    std::string out, error;
};

LRun Install(const std::vector<std::string>& options, const std::string& input = "") {
    std::istringstream in(input);
    std::ostringstream out, error;
    const int status = LInstallerMain(options, in, out, error);
    return {status, out.str(), error.str()};
}

TEST(Installer, RefusesWhatItDoesNotUnderstandBeforeItChangesAnything) {
    const std::vector<std::pair<std::vector<std::string>, std::string>> kCases{
        {{"--colour"}, "unknown option --colour"},
        {{"--business"}, "--business wants a value"},
        {{"--business", "  "}, "--business wants a name"},
        {{"--business", "Shop", "--admin", "nobody"}, "--admin wants an e-mail address"},
        {{"--business", "Shop", "--port", "0"}, "--port wants a number from 1 to 65535"},
        {{"--business", "Shop", "--port", "65536"}, "--port wants a number from 1 to 65535"},
        {{"--business", "Shop", "--port", "80x"}, "--port wants a number from 1 to 65535"},
        {{"--business", "Shop", "--web", "yes"}, "--web wants on or off"},
        {{"--business", "Shop", "--link", "yes"}, "--link wants on or off"},
        {{"--restore", "/tmp"}, "--restore replaces all data: confirm with --yes"},
        {{"--business", "Shop", "--yes"}, "--yes goes with --restore"},
        {{"--backup", "/tmp", "--sample"}, "--backup goes with nothing else"},
        {{"--business", "Shop", "--password-stdin"},
         "the password must have a minimum of 6 characters"},
    };
    for (const auto& [options, problem] : kCases) {
        const LTempHome home;
        const LRun run = Install(options, "short\n");
        EXPECT_EQ(run.status, 1) << problem;
        EXPECT_EQ(run.error, "quillmarsh -installer: " + problem + "\n");
        EXPECT_EQ(home.FileCount(), 0) << problem;
    }
}

TEST(Installer, MakesAShopThatItsOwnerCanLogOnTo) {
    const LTempHome home;
    const LRun run = Install({"--business", "Corner Shop", "--admin", "Ann@Example.com",
                              "--password-stdin", "--port", "8080", "--web", "on"},
                             "  correct horse \n");
    EXPECT_EQ(run.status, 0) << run.error;
    EXPECT_EQ(run.out.find("correct horse"), std::string::npos) << "a given password is not shown";
    EXPECT_EQ(GetBusinessName(0), "Corner Shop");
    EXPECT_TRUE(LWebAccountValidateLogon("ann@example.com", "correct horse"));
    EXPECT_EQ(LUserSettingGetString("WebServer", "Port", ""), "8080");
    EXPECT_EQ(LUserSettingGetString("WebServer", "Enabled", ""), "1");
}

TEST(Installer, ChangesOnlyWhatItIsToldTo) {
    const LTempHome home;
    ASSERT_EQ(Install({}).status, 0);
    EXPECT_EQ(GetBusinessName(0), kDefaultBusinessName);
    LAppWebAccount account;
    ASSERT_TRUE(OpenWebAccount(account, kDefaultAdministrator));
    const std::string password = account.GetString("Password");
    EXPECT_GE(password.size(), 12U);
    account.Invalidate();

    EXPECT_EQ(Install({"--port", "9000"}).status, 0);
    EXPECT_EQ(GetBusinessName(0), kDefaultBusinessName);
    EXPECT_TRUE(LWebAccountValidateLogon(kDefaultAdministrator, password));
    EXPECT_EQ(LUserSettingGetString("WebServer", "Enabled", "none"), "none");

    EXPECT_EQ(Install({"--password-stdin"}, "another one").status, 0);
    EXPECT_TRUE(LWebAccountValidateLogon(kDefaultAdministrator, "another one"));
}

TEST(Installer, AUserBecomesAnAdministratorAndKeepsThePassword) {
    const LTempHome home;
    LNewAccount bob;
    bob.email = "bob@example.com";
    bob.password = "secret word";
    bob.displayName = "Bob";
    bob.enabled = false;
    ASSERT_TRUE(LAppWebAccountCreate(bob));
    EXPECT_EQ(Install({"--admin", "bob@example.com"}).status, 0);
    LAppWebAccount account;
    ASSERT_TRUE(OpenWebAccount(account, "bob@example.com"));
    EXPECT_TRUE(account.IsEnabled());
    EXPECT_EQ(account.Role(), LAccountRole::kAdministrator);
    EXPECT_EQ(account.GetString("DisplayName"), "Bob");
    EXPECT_EQ(account.GetString("Password"), "secret word");
}

TEST(Installer, TurnsThePartnerLinkOnWithACodeThatItShowsOnce) {
    const LTempHome home;
    const LRun on = Install({"--link", "on", "--web", "on"});
    const std::string code = ReadLinkSettings(LProfile()).code;
    ASSERT_EQ(code.size(), 20U) << on.error;
    EXPECT_NE(on.out.find("Access code (shown only now): " + code + "\n"), std::string::npos);
    EXPECT_EQ(Install({"--link", "off", "--help"}).status, 0);
    EXPECT_EQ(Install({"--link", "on"}).out.find(code), std::string::npos);
    EXPECT_EQ(ReadLinkSettings(LProfile()).code, code);
    EXPECT_EQ(Install({"--link", "off"}).out, "Partner link: off\n");
    EXPECT_FALSE(ReadLinkSettings(LProfile()).isOn);
}

// Every item's stock is what its history rows add up to.
TEST(SampleShop, ItsStockAgreesWithItsHistory) {
    const LTempHome home;
    const LProfile profile;
    const LDate today{2026, 3, 1};
    const LSampleResult result = FillSampleShop(profile, today);
    ASSERT_EQ(result.problem, "");
    EXPECT_GE(result.items, 150);
    EXPECT_EQ(result.suppliers, 6);
    EXPECT_EQ(result.customers, 12);
    EXPECT_EQ(result.orders, 3);

    std::map<std::string, double> moved;
    LSilentProcess process;
    LHistoryFilter all;
    all.from = today.AddDays(-100);
    all.to = today;
    const auto add = [&](double sign) {
        return [&moved, &profile, sign](const LHistoryRow& row) {
            moved[row.itemCode + "@" + row.fields[kHistoryLocation]] +=
                sign * ReadHistoryQuantity(profile, row.fields[kHistoryQuantity]).value_or(1e9);
        };
    };
    EXPECT_EQ(LFillReceiveHistoryList(profile, all, process, add(1)), "");
    EXPECT_EQ(LFillSellHistoryList(profile, all, process, add(-1)), "");

    const LNameMap locations(profile, "Locations");
    int low = 0;
    LAppDataBaseList<LItem>(profile.Store(), "Items").ForEach([&](const LItem& item) {
        for (const auto& entry :
             ParseLocationAndQuantities(item.GetView("LocationsAndQuantities"))) {
            const std::string where(locations.Name(entry.location));
            EXPECT_DOUBLE_EQ(entry.quantity, moved[item.GetString("Name") + "@" + where]);
            EXPECT_GE(entry.quantity, 0);
            if (entry.idealQuantity > 0 && entry.warnQuantity >= entry.quantity) ++low;
        }
        return true;
    });
    EXPECT_GT(low, 5);
    EXPECT_EQ(FillSampleShop(profile, today).problem, "the business already has items");
}

TEST(Installer, BacksUpAndRestoresWithoutAScreen) {
    const LTempHome home;
    const LTempFolder place;
    ASSERT_EQ(Install({"--business", "Shop", "--sample"}).status, 0);
    const LRun backup = Install({"--backup", place.Path()});
    ASSERT_EQ(backup.status, 0) << backup.error;
    EXPECT_NE(backup.out.find("Business: Shop\n"), std::string::npos) << backup.out;
    const size_t start = backup.out.find("Backup: ") + 8;
    const std::string folder = backup.out.substr(start, backup.out.size() - start - 1);

    ASSERT_TRUE(SetBusinessName(0, "Other"));
    const LRun wrong = Install({"--restore", place.Path(), "--yes"});
    EXPECT_EQ(wrong.status, 1);
    EXPECT_EQ(wrong.error, "quillmarsh -installer: This folder holds no backup.\n");
    EXPECT_EQ(GetBusinessName(0), "Other");

    const LRun restore = Install({"--restore", folder, "--yes"});
    EXPECT_EQ(restore.status, 0) << restore.error;
    EXPECT_EQ(GetBusinessName(0), "Shop");
}

}  // namespace
