#include "datastore/LProfile.h"

#include <gtest/gtest.h>
#include <unistd.h>

#include <cerrno>
#include <filesystem>
#include <memory>
#include <sstream>

#include "datastore/CountryLocales.h"
#include "datastore/LogoCheck.h"
#include "platform/Folders.h"
#include "platform/LSignalObject.h"
#include "tests/support/LChildProcess.h"
#include "tests/support/LFailNthFileCall.h"
#include "tests/support/LTempFolder.h"

namespace {

const std::string kMisc = "data/Quillmarsh/Shared/Misc/";
const std::string kLocations = "data/Quillmarsh/Shared/Locations/";

// Writes "Options" before a profile is made, so that no first load happens.
void WriteOptions(const LTempHome& home, const std::string& fields) {
    home.WriteFile(kMisc + "Options.dat", "Init=1&" + fields);
}

TEST(FirstLoad, WritesTheSettingsOfTheMachinesLocale) {
    const LTempHome home;
    const LScopedEnvironment locale("LC_ALL", "en_IE.UTF-8");
    const LProfile profile;
    EXPECT_EQ(profile.DatabaseFolder(), home.File("data/Quillmarsh/Shared"));
    EXPECT_EQ(home.ReadFile(kMisc + "Options.dat"),
              "CurrencySymbol=%E2%82%AC&CurrencyOrder=0&CurrencyDigits=2&DecimalSymbol=."
              "&ThousandsSymbol=%2C&NumberOfDigitsAfterDecimalPoint=2&PaperSize=0&Init=1"
              "&DatabaseVersion=4");
    EXPECT_EQ(home.ReadFile(kMisc + "Order.dat"),
              "FooterText=Thank%20you%20for%20your%20business.");
    EXPECT_EQ(home.ReadFile(kMisc + "Tax.dat"),
              "TaxSystem=3&TaxName1=VAT%2821%25%29&TaxRate1=21.000000"
              "&TaxName2=VAT%2813.5%25%29&TaxRate2=13.500000"
              "&TaxName3=VAT%284.8%25%29&TaxRate3=4.800000&DefaultRate=1&TaxInclusive=0");
    EXPECT_EQ(home.ReadFile(kLocations + "1.dat"), "Name=Main");
    EXPECT_EQ(home.FileCount(), 4);
}

TEST(FirstLoad, EveryCountryGetsItsTaxes) {
    struct Case {
        const char *locale, *taxes;
        int paperSize;
    };
    // System, default rate, the three taxes, inclusive.
    constexpr Case kCases[] = {
        {"en_US", "0 0 Sales Tax 0 Sales Tax 2 0 Sales Tax 3 0 0", 2},
        {"fr_CA", "1 1 GST+PST 14 Sales Tax 2 0 Sales Tax 3 0 0", 2},
        {"fr_FR", "3 1 TVA(19,6%) 19.6 TVA(5,5%) 5.5 TVA(2,1%) 2.1 0", 0},
        {"es_ES", "2 1 IVA(16%) 16 IVA(7%) 7 IVA(4%) 7 0", 0},  // 7 under the name of 4 is meant
        {"en_GB", "2 1 VAT(15%) 17.5 VAT(5%) 5 Sales Tax 3 0 0", 0},  // so is 17.5 under 15
        {"C", "0 0 Sales Tax 0 Sales Tax 2 0 Sales Tax 3 0 0", 2},
    };
    for (const Case& c : kCases) {
        const LTempHome home;
        const LScopedEnvironment locale("LC_ALL", c.locale);
        const LProfile profile;
        LRecord tax, options;
        profile.OpenSettings(tax, "Tax");
        profile.OpenSettings(options, "Options");
        std::ostringstream taxes;
        taxes << tax.GetInt("TaxSystem", -1) << ' ' << tax.GetInt("DefaultRate", -1);
        for (const std::string n : {"1", "2", "3"}) {
            taxes << ' ' << tax.GetString("TaxName" + n) << ' ' << tax.GetFloat("TaxRate" + n, -1);
        }
        taxes << ' ' << tax.GetString("TaxInclusive");
        EXPECT_EQ(taxes.str(), c.taxes) << c.locale;
        EXPECT_EQ(options.GetInt("PaperSize", -1), c.paperSize) << c.locale;
    }
}

TEST(FirstLoad, OfSeveralProcessesMakesOneLocation) {
    for (int round = 0; round < 5; ++round) {
        const LTempHome home;
        const LSignalObject start;
        std::vector<std::unique_ptr<LChildProcess>> children;
        for (int i = 0; i < 6; ++i) {
            children.push_back(std::make_unique<LChildProcess>([&] {
                start.Wait();
                return LProfile().CurrencySymbol() == "$" ? 0 : 1;
            }));
        }
        start.Set();
        for (const auto& child : children) EXPECT_EQ(child->Wait(), 0);
        EXPECT_EQ(home.ReadFile(kLocations + "1.dat"), "Name=Main");
        EXPECT_EQ(home.FileCount(), 4);
    }
}

TEST(FirstLoad, KeepsLocationsAndWhatWasChangedSinceItWasCutShort) {
    for (const auto& [stored, tax] : {std::pair{"", "Sales Tax"}, {"Init=0", "Mine"}}) {
        const LTempHome home;
        home.WriteFile(kMisc + "Options.dat", stored);
        home.WriteFile(kMisc + "Tax.dat", "TaxName1=Mine&TaxInclusive=0");
        home.WriteFile(kLocations + "7.dat", "Name=Barn");
        const LProfile profile;
        LRecord record;
        profile.OpenSettings(record, "Tax");
        EXPECT_EQ(record.GetString("TaxName1"), tax);
        profile.OpenSettings(record, "Options");
        EXPECT_TRUE(record.GetBool("Init", false));
        EXPECT_EQ(home.FileCount(), 4) << "no second location beside the owner's";
    }
}

TEST(FirstLoad, IsNotTakenForNeededWhenTheOptionsCannotBeRead) {
    namespace fs = std::filesystem;
    const LTempHome home;
    WriteOptions(home, "CurrencySymbol=Mine");
    fs::permissions(home.Path(), fs::perms::all);
    for (const auto& entry : fs::recursive_directory_iterator(home.Path())) {
        fs::permissions(entry, entry.is_directory() ? fs::perms::all : fs::perms::none);
    }
    LChildProcess user([] {
        constexpr uid_t kNobody = 65534;  // root would read the file all the same
        if (::geteuid() == 0 && ::seteuid(kNobody) != 0) return 2;
        return LProfile().CurrencySymbol() == "$" ? 0 : 1;
    });
    EXPECT_EQ(user.Wait(), 0);
    EXPECT_EQ(home.FileCount(), 1) << "nothing was written beside it";
}

TEST(FirstLoad, CutShortByAFullDiskIsMadeUpForByTheNext) {
    for (int n = 1;; ++n) {
        const LTempHome home;
        const LScopedEnvironment locale("LC_ALL", "de_DE.UTF-8");
        bool fired = false;
        {
            const LFailNthFileCall fault(n, ENOSPC);
            const LProfile profile;
            fired = fault.Fired();
        }
        const LProfile profile;
        LRecord tax, order;
        profile.OpenSettings(tax, "Tax");
        profile.OpenSettings(order, "Order");
        EXPECT_EQ(tax.GetFloat("TaxRate1"), 19) << n;
        EXPECT_TRUE(order.TestFieldExists("FooterText")) << n;
        EXPECT_EQ(home.ReadFile(kLocations + "1.dat"), "Name=Main") << n;
        EXPECT_EQ(home.FileCount(), 4) << n;
        EXPECT_EQ(profile.DecimalSymbol(), ",") << n;
        if (!fired) break;
    }
}

TEST(Profile, SymbolsAreCutToTenBytesAndDigitsHeld) {
    const LTempHome home;
    WriteOptions(home,
                 "DecimalSymbol=abcdefghijkl&ThousandsSymbol=%C3%A4%C3%A4%C3%A4%C3%A4%C3%A4%C3%A4"
                 "&CurrencySymbol=KLMNOPQRSTUV&CurrencyDigits=-3"
                 "&NumberOfDigitsAfterDecimalPoint=2000000000");
    const LProfile profile;
    EXPECT_EQ(profile.DecimalSymbol(), "abcdefghij");
    EXPECT_EQ(profile.ThousandsSymbol(), "\u00E4\u00E4\u00E4\u00E4\u00E4");
    EXPECT_EQ(profile.CurrencySymbol(), "KLMNOPQRST");
    EXPECT_EQ(profile.CurrencyDigits(), 0);
    EXPECT_EQ(profile.DigitsAfterDecimalPoint(), 15);
    EXPECT_EQ(profile.FormatNumber(1.5, 1, true), "1abcdefghij5");
}

TEST(Profile, AnotherFolderIsAnotherBusiness) {
    const LTempHome home;
    std::filesystem::create_directory(home.File("other"));
    LProfile profile(home.File("other"));
    EXPECT_EQ(profile.DatabaseFolder(), home.File("other"));
    EXPECT_EQ(profile.Items().Folder().substr(0, home.File("other").size()), home.File("other"));
    EXPECT_TRUE(std::filesystem::exists(home.File("other/Misc/Options.dat")));

    for (const std::string& missing : {std::string(), home.File("gone")}) {
        profile.SetDatabaseName(home.File("other"));
        profile.SetDatabaseName(missing);
        EXPECT_EQ(profile.DatabaseFolder(), GetSharedDataFolderApp()) << missing;
        EXPECT_EQ(LProfile(missing).DatabaseFolder(), GetSharedDataFolderApp()) << missing;
    }
    EXPECT_FALSE(std::filesystem::exists(home.File("gone")));
}

TEST(LocaleDefaults, TheCurrencySymbolNeedsTheCountrysTimeZone) {
    const LScopedEnvironment locale("LC_ALL", "de_AT.UTF-8");
    {
        const LScopedEnvironment zone("TZ", "XXX-1");
        const LLocaleCurrencyProfile profile;
        EXPECT_EQ(profile.CurrencySymbol(), "\u20AC");
        EXPECT_EQ(profile.DecimalSymbol(), ",");
    }
    const LScopedEnvironment zone("TZ", "XXX+8");
    EXPECT_EQ(LLocaleCurrencyProfile().CurrencySymbol(), "");
    EXPECT_TRUE(IsEnglishLocaleInZone("US", 300));
    EXPECT_FALSE(IsEnglishLocaleInZone("US", -300));
    EXPECT_FALSE(IsEnglishLocaleInZone("", 0));
}

TEST(LogoCheck, RefusesWhatCannotBePrinted) {
    const LTempHome home;
    home.WriteFile("logo.png", "x");
    const std::string logo = home.File("logo.png");
    std::filesystem::create_symlink(logo, home.File("link.png"));
    std::filesystem::create_symlink(home.File("none.png"), home.File("dangling.png"));
    const std::string missing =
        "The logo image file does not exist. Please click on the Browse button and locate the "
        "file. If you do not want a logo leave the field entirely blank.";
    const std::string low = "Logo height must be positive and greater than ";
    const std::string high = "Logo height must be positive and less than ";
    struct Case {
        const char* units;
        std::string file, height, message;
    };
    const Case kCases[] = {
        {"0", "", "", ""},
        {"0", logo, "20.5", ""},
        {"1", logo, "1.5", ""},
        {"0", home.File("none.png"), "20", missing},
        {"0", home.Path(), "20", missing},
        {"0", home.File("dangling.png"), "20", missing},
        {"0", home.File("link.png"), "20", ""},
        {"0", logo, "", low + "5 mm"},
        {"0", logo, "200", high + "200 mm"},
        {"1", logo, "0.1", low + "0.2 in"},
    };
    for (const Case& c : kCases) {
        WriteOptions(home, std::string("MeasurementUnits=") + c.units);
        const auto error = CheckLogo(LProfile(), c.file, c.height);
        EXPECT_EQ(error.message, c.message);
        EXPECT_EQ(error.IsNone(), c.message.empty());
        if (error.IsNone()) continue;
        EXPECT_EQ(error.field, c.message == missing ? LLogoField::kFile : LLogoField::kHeight);
    }
}

}  // namespace
