// Locations: look-up, save with the history brought in line, refused deletes.
#include "inventory/Locations.h"

#include <gtest/gtest.h>

#include <cerrno>

#include "inventory/LItem.h"
#include "inventory/StockQuantities.h"
#include "tests/inventory/LTestShop.h"
#include "tests/support/LFailNthFileCall.h"
#include "tests/support/LScriptedUserInterface.h"

namespace {

using LTexts = std::vector<std::string>;

const char* const kConverting = "Converting Transaction Data";
const char* const kCancelling = "Cancelling Location name change...";

class Locations : public ::testing::Test {
protected:
    LFieldError<LLocationField> Save(const std::string& key, const std::string& name) {
        LLocation location;
        EXPECT_EQ(LLocationList(shop_.profile).Open(location, key), !key.empty());
        return LLocationSave(ui_, shop_.profile, location, {name, "1 Mill Lane\r\nLeeds"});
    }
    std::string NameOf(const std::string& key) const {
        LLocation location;
        EXPECT_TRUE(LLocationList(shop_.profile).Open(location, key));
        return location.GetString("Name");
    }
    void WriteHistory() const {
        shop_.WriteSellFile(kMonday, kMondayText);
        shop_.WriteSellFile(kTuesday, "1.00,1,$1.00,Shed,Smith,$1.00,\r\n");
        shop_.WriteSellFile(kWednesday, "2.00,1,$1.00,Main,Smith,$2.00,\r\n");
        shop_.home.WriteFile("shop/ReceiveHistory/2024-03-04.csv",
                             "5.00,1,$1.00,Main,Main,,$5.00,\r\n");
    }
    LTexts HistoryTexts() const {
        return {shop_.SellFile(kMonday), shop_.SellFile(kTuesday), shop_.SellFile(kWednesday),
                shop_.ReceiveFile(kMonday)};
    }
    // As editors and other programs may have left it: line ends, quotes and blank lines differ.
    const std::string kMondayText =
        "1.00,1,$1.00,Main,\"Smith\",$1.00,\"a, b\"\r\n"
        "\"2.00\", 1,$1.00,main,Smith,$2.00\n"
        "\n"
        "3.00,1,$1.00,\"Main\",Main,$3.00,x\n"
        "4.00,1,$1.00,Depot,Smith,$4.00,\r\n"
        "no row at all\r\n"
        "5.00,1,$1.00,Main Street,Smith,$5.00,\"two\r\nlines\"\r\n";
    LTestShop shop_;
    LScriptedUserInterface ui_;
};

TEST_F(Locations, NamesAreCheckedInTheseWords) {
    const std::string depot = shop_.AddLocation("Depot");
    const struct {
        std::string key, name, message;
    } kCases[] = {
        {"", "", "Please enter the location name."},
        {"", " \t", "Please enter the location name."},
        {"", "DEPOT", "A location with the same name already exists."},
        {"", " Main ", "A location with the same name already exists."},
        {depot, "", "Please enter the location name."},
        {depot, "main", "A location with the same name already exists."},
    };
    for (const auto& c : kCases) {
        const auto error = Save(c.key, c.name);
        EXPECT_EQ(error.message, c.message) << c.name;
        EXPECT_EQ(error.field, LLocationField::kName);
    }
    EXPECT_EQ(NameOf(depot), "Depot");
    EXPECT_TRUE(Save(depot, "DEPOT").IsNone()) << "its own name in another case";
    EXPECT_EQ(NameOf(depot), "DEPOT");
    EXPECT_TRUE(Save("", "Yard").IsNone());
}

TEST_F(Locations, ANewOneTouchesNoHistoryAndIsFoundIgnoringCase) {
    EXPECT_TRUE(Save("", "  \u00c4u\u00dferes Lager ").IsNone());
    EXPECT_TRUE(ui_.ProcessTitles().empty());
    LLocation found;
    ASSERT_TRUE(OpenLocation(LLocationList(shop_.profile), found, "\u00e4u\u00dferes LAGER"));
    EXPECT_EQ(found.GetString("Name"), "\u00c4u\u00dferes Lager");
    EXPECT_EQ(found.GetString("Address"), "1 Mill Lane\r\nLeeds");
    EXPECT_FALSE(OpenLocation(LLocationList(shop_.profile), found, "Lager"));
    EXPECT_FALSE(found.IsBound());
}

TEST_F(Locations, ARenameRewritesEachRowOfExactlyThatNameAndNoOtherByte) {
    WriteHistory();
    EXPECT_TRUE(Save("1", "main").IsNone()) << "only the case differs";
    EXPECT_EQ(shop_.SellFile(kMonday),
              "1.00,1,$1.00,main,Smith,$1.00,\"a, b\"\r\n"
              "\"2.00\", 1,$1.00,main,Smith,$2.00\n"
              "\n"
              "3.00,1,$1.00,main,Main,$3.00,x\r\n"
              "4.00,1,$1.00,Depot,Smith,$4.00,\r\n"
              "no row at all\r\n"
              "5.00,1,$1.00,Main Street,Smith,$5.00,\"two\r\nlines\"\r\n");
    EXPECT_EQ(shop_.SellFile(kTuesday), "1.00,1,$1.00,Shed,Smith,$1.00,\r\n");
    EXPECT_EQ(shop_.SellFile(kWednesday), "2.00,1,$1.00,main,Smith,$2.00,\r\n");
    EXPECT_EQ(shop_.ReceiveFile(kMonday), "5.00,1,$1.00,main,Main,,$5.00,\r\n");
    EXPECT_EQ(NameOf("1"), "main");
    EXPECT_EQ(ui_.ProcessTitles(), LTexts{kConverting});
    EXPECT_EQ(ui_.StatusTexts(),
              (LTexts{"Updating sales records for 2024-03-04.csv...",
                      "Updating sales records for 2024-03-05.csv...",
                      "Updating sales records for 2024-03-06.csv...",
                      "Updating receive records for 2024-03-04.csv...", "4 records modified"}));
}

TEST_F(Locations, TheConversionRunsAlsoWhenTheNameStays) {
    WriteHistory();
    EXPECT_TRUE(Save("1", "Main").IsNone());
    EXPECT_EQ(ui_.ProcessTitles(), LTexts{kConverting});
    EXPECT_EQ(ui_.StatusTexts().back(), "4 records modified");
    EXPECT_EQ(shop_.SellFile(kWednesday), "2.00,1,$1.00,Main,Smith,$2.00,\r\n");
}

TEST_F(Locations, ACancelledRenamePutsEveryByteBackAndSavesNothing) {
    WriteHistory();
    const LTexts before = HistoryTexts();
    for (size_t shown = 1; shown <= 4; ++shown) {
        LScriptedUserInterface ui;
        ui.CancelAfterStatus(shown);
        LLocation location;
        ASSERT_TRUE(LLocationList(shop_.profile).Open(location, "1"));
        const auto error = LLocationSave(ui, shop_.profile, location, {"Shed", ""});
        EXPECT_TRUE(error.failed);
        EXPECT_EQ(error.message, "");
        EXPECT_EQ(HistoryTexts(), before) << "cancelled after " << shown;
        EXPECT_EQ(ui.ProcessTitles(), (LTexts{kConverting, kCancelling}));
    }
    EXPECT_EQ(NameOf("1"), "Main");
}

TEST_F(Locations, ARowAppendedWhileARenameIsUndoneIsKept) {
    WriteHistory();
    const LTexts before = HistoryTexts();
    LSellRow row;
    row.itemId = "1";
    row.locationName = "Main";
    row.customer = "Jones";
    row.date = kMonday;
    ui_.OnStatus([&](std::string_view text) {
        if (text == "Updating sales records for 2024-03-05.csv...") {
            EXPECT_TRUE(CreateNewSellRecord(shop_.profile, row));
        }
    });
    ui_.CancelAfterStatus(3);
    EXPECT_TRUE(Save("1", "Shed").failed);
    EXPECT_EQ(shop_.SellFile(kMonday), before[0] + "0.00,1,$0.00,Main,Jones,$0.00,\r\n");
    EXPECT_EQ(shop_.SellFile(kWednesday), before[2]);
}

TEST_F(Locations, AFailureAtAnyMomentConvertsAllFilesOrNone) {
    WriteHistory();
    const LTexts before = HistoryTexts();
    int refusals = 0;
    for (int n = 1;; ++n) {
        WriteHistory();
        LLocation location;
        ASSERT_TRUE(LLocationList(shop_.profile).Open(location, "1"));
        location.SetString("Name", "Main");  // as it was before the last round
        location.Flush();
        const LFailNthFileCall fault(n, EIO);
        const auto error = LLocationSave(ui_, shop_.profile, location, {"Shed", ""});
        if (error.failed) {
            ++refusals;
            EXPECT_TRUE(error.message.starts_with("The history file 2024-03-0")) << error.message;
            EXPECT_EQ(HistoryTexts(), before) << "call " << n;
            EXPECT_EQ(NameOf("1"), "Main");
        } else {
            EXPECT_EQ(shop_.SellFile(kWednesday), "2.00,1,$1.00,Shed,Smith,$2.00,\r\n");
            EXPECT_EQ(shop_.ReceiveFile(kMonday), "5.00,1,$1.00,Shed,Main,,$5.00,\r\n");
        }
        if (!fault.Fired()) break;  // every call has had its turn
    }
    EXPECT_GE(refusals, 7) << "four files are read, three of them written";
}

TEST_F(Locations, NeededOnesAreNotDeletedAndTheOthersAre) {
    shop_.AddItem("BOLT", 7);
    const std::string depot = shop_.AddLocation("Depot"), yard = shop_.AddLocation("Yard"),
                      shed = shop_.AddLocation("Shed");
    LRecord order;
    shop_.profile.OrdersRecurring().CreateNewRecord(order, "RCR1");
    order.SetString("Location", depot);
    order.Flush();
    const char* const kQuestion = "Are you sure you want to delete the selected location(s)?";
    ui_.ExpectDelete("Delete Locations", kQuestion, "Cancel");
    EXPECT_FALSE(LLocationsDelete(ui_, shop_.profile, {yard}));
    ui_.ExpectDelete("Delete Locations", kQuestion);
    EXPECT_TRUE(LLocationsDelete(ui_, shop_.profile, {"1", yard, depot, "999", shed}));
    EXPECT_EQ(ui_.Informed(),
              (std::vector<LScriptedUserInterface::Shown>{
                  {"Delete Locations",
                   "You can not delete location Main because it may be referenced by items or "
                   "orders"},
                  {"Delete Locations",
                   "You can not delete location Depot because it may be referenced by items or "
                   "orders"}}));
    const LLocationList list(shop_.profile);
    EXPECT_TRUE(list.TestRecordExists("1") && list.TestRecordExists(depot));
    EXPECT_FALSE(list.TestRecordExists(yard) || list.TestRecordExists(shed));
}

}  // namespace
