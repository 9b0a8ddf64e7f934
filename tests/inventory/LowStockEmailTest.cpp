#include "inventory/LowStockEmail.h"

#include <gtest/gtest.h>
#include <sys/stat.h>

#include <cerrno>
#include <chrono>
#include <filesystem>
#include <optional>
#include <thread>

#include "datastore/Businesses.h"
#include "datastore/UserSettings.h"
#include "inventory/MovementLock.h"
#include "inventory/SendEmailThread.h"
#include "service/email/SendEmailBackground.h"
#include "tests/inventory/LTestBusiness.h"
#include "tests/support/LFailNthFileCall.h"

namespace {

// A business whose mail program keeps each message as a file.
class LowStockEmail : public testing::Test {
protected:
    LowStockEmail() {
        business_.Home().WriteFile("sendmail", "#!/bin/sh\ncat >\"$HOME/mails/$$\"\n");
        EXPECT_EQ(::chmod(business_.Home().File("sendmail").c_str(), 0755), 0);
        business_.Home().WriteFile("mails/.keep", "");
        EXPECT_TRUE(LUserSettingSetString("Email", "UseSendMail", "1"));
        EXPECT_TRUE(LUserSettingSetString("Email", "ReplyToEmail", "ann@example.com"));
        path_.emplace("PATH", business_.Home().Path() + ":/usr/bin:/bin");
        EXPECT_TRUE(sender_.Start());
    }
    std::string AddFlagged(std::string_view code, std::string_view stock) const {
        return business_.Add("Items", {{"Name", code},
                                       {"LocationsAndQuantities", stock},
                                       {"CheckWaringEmail", "1"},
                                       {"SendWaringEmail", "1"}});
    }
    // All that was sent, once the sender has nothing more to do.
    std::string Mails() const {
        while (sender_.WaitingCount() > 0)
            std::this_thread::sleep_for(std::chrono::milliseconds(5));
        std::string out;
        for (const auto& file :
             std::filesystem::directory_iterator(business_.Home().File("mails"))) {
            out += business_.Home().ReadFile("mails/" + file.path().filename().string());
        }
        return out;
    }
    std::string Flag(const std::string& key) const {
        return business_.Stored("Items", key, "SendWaringEmail");
    }
    static size_t Count(const std::string& text, const std::string& part) {
        size_t count = 0;
        for (size_t at = 0; (at = text.find(part, at)) != std::string::npos; ++at) ++count;
        return count;
    }

    LTestBusiness business_;
    std::optional<LScopedEnvironment> path_;
    LEmailSendBackgroundThread sender_;
};

TEST_F(LowStockEmail, EachWatchedLocationThatIsLowHasItsMail) {
    const std::string store = business_.AddLocation("Store");
    const std::string low =
        AddFlagged("A-1", "\"1/5/5/20\",\"" + store + "/2.5/3/1\",\"1/9/5/20\",");
    const std::string unwatched = AddFlagged("B-1", "\"1/5/5/0\",");
    const std::string unwanted = business_.Add(
        "Items",
        {{"Name", "C-1"}, {"LocationsAndQuantities", "\"1/1/5/9\","}, {"SendWaringEmail", "1"}});
    const LProfile other(CreateNewBusiness().value());
    LItem item;
    other.Items().CreateNewRecord(item);
    item.SetString("Name", "D-1"), item.SetString("LocationsAndQuantities", "\"1/1/5/9\",");
    item.SetString("CheckWaringEmail", "1"), item.SetString("SendWaringEmail", "1");
    ASSERT_TRUE(item.Flush());
    for (const bool isDeleted : {true, false}) {
        ASSERT_TRUE(SetBusinessDeleted(1, isDeleted));
        SendEmailThread thread;
        ASSERT_TRUE(thread.Start());
        for (int i = 0; i < 1000 && (Flag(low) + Flag(unwatched) != "00"); ++i) {
            std::this_thread::sleep_for(std::chrono::milliseconds(5));
        }
        std::this_thread::sleep_for(std::chrono::milliseconds(200));
        thread.StopAndJoin();
        EXPECT_EQ(Count(Mails(), "item D-1 quantity"), isDeleted ? 0u : 1u);
    }
    const std::string mails = Mails();
    EXPECT_EQ(Count(mails, "Subject: Inventory warning: item A-1 quantity goes down to warning.\n"),
              2u)
        << mails;
    EXPECT_EQ(Count(mails,
                    "\n\n\nThe quantity of item A-1 has reached the warning level.\n\n"
                    "Quantity: 2.50\n\nWarning Quantity: 3.00\n\nLocation: Store\n\n"),
              1u);
    EXPECT_EQ(Count(mails, "Quantity: 5.00\n\nWarning Quantity: 5.00\n\nLocation: Main\n\n"), 1u);
    EXPECT_EQ(Count(mails, "To: ann@example.com\n"), 3u);
    EXPECT_EQ(Count(mails, "B-1") + Count(mails, "C-1"), 0u);
    EXPECT_EQ(Flag(unwatched) + Flag(unwanted), "01");
}

TEST_F(LowStockEmail, OnlyWhatChangedIsReadAgain) {
    for (int i = 0; i < 20; ++i) business_.AddItem("I" + std::to_string(i), "\"1/1/5/9\",");
    LFlaggedItems items(business_.Profile().DatabaseFolder());
    const auto go = [] { return false; };
    EXPECT_TRUE(items.Find(go).empty());
    EXPECT_EQ(items.ReadCount(), 20u);
    EXPECT_TRUE(items.Find(go).empty());
    EXPECT_EQ(items.ReadCount(), 20u) << "a file that has just changed may change again unseen";
    std::this_thread::sleep_for(std::chrono::milliseconds(2500));
    EXPECT_TRUE(items.Find(go).empty());
    EXPECT_TRUE(items.Find(go).empty());
    EXPECT_EQ(items.ReadCount(), 0u);
    const std::string key = AddFlagged("new", "\"1/1/5/9\",");
    EXPECT_EQ(items.Find(go), std::vector<std::string>{key});
    EXPECT_EQ(items.ReadCount(), 1u);
    EXPECT_TRUE(items.Find([] { return true; }).empty()) << "told to stop";
}

TEST_F(LowStockEmail, OnAFullDiskTheSameWarningIsNotSentTwice) {
    const std::string key = AddFlagged("A-1", "\"1/1/5/9\",");
    const LProfile& profile = business_.Profile();
    bool isDone = false;
    for (int n = 1; !isDone; ++n) {
        const LEmailSendBackgroundThread idle;  // only takes the message
        LWarnedItems warned;
        LItem item;
        ASSERT_TRUE(profile.Items().Open(item, key));
        item.SetString("SendWaringEmail", "1");
        ASSERT_TRUE(item.Flush());
        for (int pass = 0; pass < 2; ++pass) {
            const LFailNthFileCall fault(n, ENOSPC, LFaultSpan::kOnward);
            SendDueWarnings(profile, key, warned);
            if (pass == 0) isDone = !fault.Fired();
            EXPECT_EQ(warned.contains(key), Flag(key) == "1") << "call " << n;
        }
        SendDueWarnings(profile, key, warned);
        EXPECT_EQ(idle.WaitingCount(), 1u) << "call " << n;
        EXPECT_EQ(Flag(key), "0");
        EXPECT_TRUE(warned.empty());
    }
}

TEST_F(LowStockEmail, AStopDoesNotWaitForTheMovementsOfOthers) {
    const std::string key = AddFlagged("A-1", "\"1/1/5/9\",");
    SendEmailThread thread;
    const auto start = std::chrono::steady_clock::now();
    {
        const LMovementLock moving(business_.Profile());
        ASSERT_TRUE(thread.Start());
        std::this_thread::sleep_for(std::chrono::milliseconds(100));
        thread.StopAndJoin();
        EXPECT_LT(std::chrono::steady_clock::now() - start, std::chrono::seconds(2));
    }
    EXPECT_EQ(Flag(key), "1") << "it is still due";
    LWarnedItems warned;
    SendDueWarnings(business_.Profile(), key, warned);
    EXPECT_EQ(Flag(key), "0");
}

}  // namespace
