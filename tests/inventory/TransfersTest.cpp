// Moving stock between locations: requested, sent, received, cancelled.
#include "inventory/Transfers.h"

#include <gtest/gtest.h>

#include <atomic>
#include <cerrno>
#include <thread>

#include "inventory/ItemDelete.h"
#include "inventory/MasterRecords.h"
#include "inventory/StockQuantities.h"
#include "tests/inventory/LTestShop.h"
#include "tests/support/LChildProcess.h"
#include "tests/support/LFailNthFileCall.h"
#include "tests/support/LScriptedUserInterface.h"

namespace {

class Transfers : public ::testing::Test {
protected:
    // 5 of BOLT and 6 of NUT lie at Main, nothing at Yard; KIT is made of 2 BOLT and 3 NUT.
    Transfers() {
        yard_ = shop_.AddLocation("Yard");
        bolt_ = shop_.AddItem("BOLT", 5);
        nut_ = shop_.AddItem("NUT", 6);
        kit_ = shop_.AddBuiltItem("KIT", "\"BOLT/2\",\"NUT/3\",");
    }

    std::string Request(const std::vector<LTransferLineInput>& lines) const {
        LTransfer transfer;
        const LTransferError error =
            LTransferRequest(shop_.profile, transfer, {"Main", "Yard", lines, "note"}, kAnn);
        EXPECT_EQ(error.message, "");
        return transfer.GetPrimaryKey();
    }
    std::string Send(const std::string& id, LShortage shortage = LShortage::kRefuse) const {
        return LTransferSend(shop_.profile, id, kAnn, shortage);
    }
    std::string Stored(const std::string& id, const char* field) const {
        LTransfer transfer;
        return LTransferList(shop_.profile).Open(transfer, id) ? transfer.GetString(field) : "none";
    }
    // What lies at Main and at Yard: "BOLT 5/0 NUT 6/0".
    std::string Stock() const {
        const auto number = [&](const char* code, const char* location) {
            return std::to_string(static_cast<int>(shop_.Stock(code, location)));
        };
        return "BOLT " + number("BOLT", "Main") + "/" + number("BOLT", "Yard") + " NUT " +
               number("NUT", "Main") + "/" + number("NUT", "Yard");
    }

    const LTransferStep kAnn{"ann@example.com", kMonday}, kBob{"bob@example.com", kTuesday};
    LTestShop shop_;
    std::string yard_, bolt_, nut_, kit_;
};

TEST_F(Transfers, ARoundMovesTheStockAndLeavesItsRows) {
    const std::string id = Request({{"BOLT", "2"}, {"", ""}, {"KIT", "1"}});
    EXPECT_EQ(id, "TRF1");
    EXPECT_EQ(Stock(), "BOLT 5/0 NUT 6/0") << "asking moves nothing";
    EXPECT_EQ(Send(id), "");
    EXPECT_EQ(Stock(), "BOLT 1/0 NUT 3/0");
    EXPECT_EQ(Stored(id, "State"), "Sent");
    EXPECT_EQ(LTransferReceive(shop_.profile, id, kBob), "");
    EXPECT_EQ(Stock(), "BOLT 1/4 NUT 3/3");
    EXPECT_EQ(Stored(id, "ReceivedDate") + Stored(id, "ReceivedBy"), "2024-03-05bob@example.com");
    EXPECT_EQ(Stored(id, "InTransit"), "");

    const auto rows = [&](const char* sign, const char* location, const char* text) {
        const std::string end = std::string(",$0,") + location + ",,,$0,Transfer TRF1 " + text;
        return sign + ("2.00," + bolt_) + end + "\r\n" + sign + "1.00," + kit_ + end + "\r\n";
    };
    EXPECT_EQ(shop_.ReceiveFile(kMonday), rows("-", "Main", "to Yard"));
    EXPECT_EQ(shop_.ReceiveFile(kTuesday), rows("", "Yard", "from Main"));
}

TEST_F(Transfers, EachStepIsTakenOnceAndOnlyInItsState) {
    const std::string id = Request({{"BOLT", "2"}});
    EXPECT_EQ(LTransferReceive(shop_.profile, id, kBob), "Transfer TRF1 has not been sent yet.");
    EXPECT_EQ(Send(id), "");
    EXPECT_EQ(Send(id), "Transfer TRF1 has been sent already.");
    EXPECT_EQ(LTransferCancel(shop_.profile, id, kBob), "");
    EXPECT_EQ(Stock(), "BOLT 5/0 NUT 6/0") << "what was sent is back";
    EXPECT_EQ(LTransferReceive(shop_.profile, id, kBob),
              "Transfer TRF1 has been cancelled already.");
    EXPECT_EQ(LTransferCancel(shop_.profile, id, kBob),
              "Transfer TRF1 has been cancelled already.");
    const std::string second = Request({{"BOLT", "2"}});
    EXPECT_EQ(second, "TRF2");
    EXPECT_EQ(LTransferCancel(shop_.profile, second, kBob), "");
    EXPECT_EQ(Send("TRF9"), "This transfer has been deleted.");
    EXPECT_EQ(Stock(), "BOLT 5/0 NUT 6/0");
}

TEST_F(Transfers, AStepThatWasCutOffIsTold) {
    const std::string id = Request({{"BOLT", "2"}});
    EXPECT_EQ(Send(id), "");
    EXPECT_EQ(TransferInterruption(shop_.profile, id), "") << "done is done";
    LTransfer transfer;
    ASSERT_TRUE(LTransferList(shop_.profile).Open(transfer, id));
    transfer.SetString("Moving", "1");  // as a process leaves it that is killed before the stock
    ASSERT_TRUE(transfer.Flush());
    EXPECT_EQ(TransferInterruption(shop_.profile, id),
              "The last step of this transfer was interrupted. Compare the stock of its items at "
              "Main with what lies there: it may not have changed.");
    EXPECT_EQ(LTransferReceive(shop_.profile, id, kBob), "");
    EXPECT_EQ(TransferInterruption(shop_.profile, id), "") << "the next step was whole";
}

TEST_F(Transfers, WhatIsTypedIsCheckedInItsOrder) {
    struct Case {
        LTransferInput input;
        LTransferField field;
        int line;
        const char* message;
    };
    const Case kCases[] = {
        {{"", "", {}, ""},
         LTransferField::kFrom,
         -1,
         "Select the location that the stock comes from."},
        {{"Main", "Attic", {}, ""}, LTransferField::kTo, -1, "There is no location Attic."},
        {{"Main", "main", {}, ""},
         LTransferField::kTo,
         -1,
         "Select another location than the stock comes from."},
        {{"Main", "Yard", {{" ", ""}}, ""},
         LTransferField::kItem,
         0,
         "There are no items in your list."},
        {{"Main", "Yard", {{"BOLT", "1"}, {"", "2"}}, ""},
         LTransferField::kItem,
         1,
         "There are blank items in your list."},
        {{"Main", "Yard", {{"bolt", "1"}}, ""}, LTransferField::kItem, 0, "There is no item bolt."},
        {{"Main", "Yard", {{"BOLT", "0"}}, ""},
         LTransferField::kQuantity,
         0,
         "There are invalid quantity values in your list."},
    };
    for (const Case& c : kCases) {
        LTransfer transfer;
        const LTransferError error = LTransferRequest(shop_.profile, transfer, c.input, kAnn);
        EXPECT_EQ(error.message, c.message);
        EXPECT_TRUE(error.field == c.field && error.line == c.line) << c.message;
    }
    EXPECT_TRUE(LTransferList(shop_.profile).IsEmpty());
}

TEST_F(Transfers, WhatCannotMoveMovesNothing) {
    const std::string shortOf = Request({{"NUT", "1"}, {"KIT", "3"}});
    EXPECT_EQ(Send(shortOf),
              "Item BOLT: 5.00 in stock at Main, 6.00 needed.\n"
              "Item NUT: 6.00 in stock at Main, 10.00 needed.");
    EXPECT_EQ(Stock(), "BOLT 5/0 NUT 6/0");
    EXPECT_EQ(Send(shortOf, LShortage::kAllow), "");
    EXPECT_EQ(Stock(), "BOLT -1/0 NUT -4/0");

    shop_.AddBuiltItem("ODD", "\"BOLT/1\",\"GONE/1\",");
    shop_.AddBuiltItem("LOOP", "\"LOOP/1\",");
    EXPECT_EQ(Send(Request({{"BOLT", "1"}, {"ODD", "1"}}), LShortage::kAllow),
              "Component GONE of item ODD does not exist.");
    EXPECT_EQ(Send(Request({{"LOOP", "1"}}), LShortage::kAllow),
              "The bill of materials of item LOOP leads back to itself.");
    EXPECT_EQ(Stock(), "BOLT -1/0 NUT -4/0");
}

TEST_F(Transfers, WhatWasSentArrivesThoughTheBillHasChanged) {
    const std::string id = Request({{"KIT", "1"}});
    EXPECT_EQ(Send(id), "");
    LItem kit;
    ASSERT_TRUE(OpenItem(shop_.profile, kit, "KIT"));
    kit.SetString("BillOfMaterials", "\"BOLT/9\",");
    kit.Flush();
    EXPECT_EQ(LTransferReceive(shop_.profile, id, kBob), "");
    EXPECT_EQ(Stock(), "BOLT 3/2 NUT 3/3");
}

TEST_F(Transfers, WhatIsOnItsWayKeepsItsItemAndItsLocations) {
    Request({{"BOLT", "5"}});
    ASSERT_TRUE(shop_.profile.Items().Delete(kit_));
    LScriptedUserInterface ui;
    ui.ExpectDelete("Delete Locations",
                    "Are you sure you want to delete the selected location(s)?");
    EXPECT_FALSE(LLocationsDelete(ui, shop_.profile, {yard_}));
    ui.ExpectDelete("Delete Items", "Are you sure you want to delete the selected item(s)?");
    EXPECT_FALSE(LItemsDelete(ui, shop_.profile, {{"BOLT", "Main"}}));
    ASSERT_EQ(ui.Informed().size(), 2U);
    EXPECT_EQ(ui.Informed()[1].text,
              "Item BOLT cannot be deleted because it is referenced in a transaction.");
}

TEST_F(Transfers, TwoWhoPressTogetherMoveItOnce) {
    const std::string id = Request({{"BOLT", "2"}});
    LChildProcess other([&] {
        const LProfile profile(shop_.profile.DatabaseFolder());
        return LTransferSend(profile, id, kBob, LShortage::kAllow).empty() ? 1 : 0;
    });
    std::atomic<int> sent = 0;
    std::vector<std::thread> threads;
    for (int i = 0; i < 4; ++i) {
        threads.emplace_back([&] {
            const LProfile profile(shop_.profile.DatabaseFolder());
            if (LTransferSend(profile, id, kAnn, LShortage::kAllow).empty()) ++sent;
        });
    }
    for (std::thread& thread : threads) thread.join();
    EXPECT_EQ(sent + other.Wait(), 1);
    EXPECT_EQ(Stock(), "BOLT 3/0 NUT 6/0");
}

// Whichever call fails: the answer, the state and the history tell the same.
TEST_F(Transfers, AFullDiskNeverSaysSentOfWhatIsNot) {
    for (int n = 1; n < 100; ++n) {
        const std::string id = Request({{"BOLT", "2"}});
        std::string problem;
        bool hasFired = false;
        {
            const LFailNthFileCall fault(n, ENOSPC);
            problem = Send(id, LShortage::kAllow);
            hasFired = fault.Fired();
        }
        const bool isSent = Stored(id, "State") == "Sent";
        EXPECT_EQ(problem.empty(), isSent) << "call " << n << ": " << problem;
        const bool hasRow = shop_.ReceiveFile(kMonday).find(id + " to") != std::string::npos;
        EXPECT_EQ(hasRow, isSent) << "call " << n;
        if (!hasFired) return;
    }
    FAIL() << "no run got through";
}

}  // namespace
