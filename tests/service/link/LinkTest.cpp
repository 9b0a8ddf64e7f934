#include <gtest/gtest.h>
#include <sys/stat.h>

#include <atomic>
#include <filesystem>

#include "datastore/Businesses.h"
#include "inventory/StockHistory.h"
#include "inventory/StockMovements.h"
#include "inventory/StockQuantities.h"
#include "service/link/LinkItemSync.h"
#include "service/link/LinkPages.h"
#include "service/link/LinkSettings.h"
#include "tests/support/LTestBrowser.h"
#include "web/server/LWebletScripts.h"

namespace {

class Link : public testing::Test {
protected:
    Link() {
        LWebletInstallScript("link-quantitychange", WLLinkQuantityChange);
        LWebletInstallScript("link-sync", WLLinkSync);
        LWebletInstallScript("link-locreq", WLLinkLocations);
        SetCode(profile_, "secret");
        AddItem("bolt", "A&B 10%", "\"1/50.00/5.00/20.00\",", 1);
        AddItem("1\" nail", "", "", 0);
    }
    static void SetCode(const LProfile& profile, const std::string& code) {
        ASSERT_TRUE(SaveLinkSettings(profile, {true, code}).IsNone());
    }
    void AddItem(const std::string& code, const std::string& description, const std::string& stock,
                 int tax) {
        LItem item;
        profile_.Items().CreateNewRecord(item);
        item.SetString("Name", code);
        item.SetString("Description", description);
        item.SetString("LocationsAndQuantities", stock);
        item.SetCost({150, 2});
        item.SetPrice({123456, 2});
        item.SetInt("TaxRate", tax);
    }
    // The whole raw answer; the client says a word after the greeting, so that nobody waits.
    std::string Ask(const std::string& page, const LTestFields& fields) {
        std::string address = page;
        for (const auto& [name, value] : fields) {
            address += (address == page ? "?" : "&") + name + "=" + EncodeText(value);
        }
        LTestBrowser browser(web_);
        const LFileDescriptor socket = browser.Send("GET", address, "");
        std::string answer;
        while (LTestBrowser::Receive(socket, answer, 20000)) {
            if (answer == "Connection Accepted\n") ::send(socket.Get(), "x", 1, MSG_NOSIGNAL);
            if (answer.ends_with("\r\n") && answer.find("\"\r\n") != std::string::npos) break;
        }
        return answer;
    }
    std::string Change(const std::string& item, const std::string& quantity) {
        return Ask("link-quantitychange",
                   {{"auth", "secret"}, {"loc", "Main"}, {"item", item}, {"qty", quantity}});
    }
    double StockOf(const std::string& code) {
        LItem item;
        EXPECT_TRUE(OpenItem(profile_, item, code));
        return GetItemsInStock(profile_, item, "Main");
    }

    LTempHome home_;
    LScopedEnvironment locale_{"LC_ALL", "en_US.UTF-8"};
    LProfile profile_;
    LTestWeb web_;
};

TEST_F(Link, AnswersInBareTextAndRefusesInFourBytes) {
    const auto change = [](LTestFields more) {
        LTestFields fields{{"auth", "secret"}};
        fields.insert(fields.end(), more.begin(), more.end());
        return fields;
    };
    const std::vector<std::tuple<std::string, LTestFields, std::string, std::string>> kCases{
        {"link-locreq", {}, "Conn", "no code"},
        {"link-locreq", {{"auth", "Secret"}}, "Conn", "codes are exact"},
        {"link-locreq", {{"auth", "secret"}}, "Main", "no line end"},
        {"link-quantitychange", change({{"test", "true"}}),
         "Quantity change failed -- no location provided.", "in full in a test"},
        {"link-quantitychange", change({{"test", "true"}, {"loc", "Attic"}}),
         "Quantity change failed -- invalid location name: Attic.", ""},
        {"link-quantitychange", change({{"test", "true"}, {"loc", "MAIN"}}),
         "Connection test successful.\n", ""},
        {"link-quantitychange", {{"auth", "x"}, {"test", "true"}}, "Conn", "also in a test"},
        {"link-quantitychange", change({{"loc", "Main"}, {"item", "bolt"}}), "Quan", "no qty"},
        {"link-quantitychange", change({{"loc", "Main"}, {"qty", "1"}}), "Quan", "no item"},
        {"link-quantitychange", change({{"item", "bolt"}, {"qty", "1"}}), "Quan", "no location"},
        {"link-quantitychange", change({{"loc", "Main"}, {"item", "BOLT"}, {"qty", "1"}}), "Quan",
         "unknown item"},
        {"link-quantitychange", change({{"loc", "Attic"}, {"item", "bolt"}, {"qty", "1"}}), "Quan",
         "unknown location"},
        {"link-quantitychange", change({{"loc", "Main"}, {"item", "bolt"}, {"qty", "0"}}), "Quan",
         "zero"},
        {"link-quantitychange", change({{"loc", "Main"}, {"item", "bolt"}, {"qty", "many"}}),
         "Quan", "no number"},
        {"link-sync", change({{"test", "true"}}), "Connection test successful.\n", ""},
    };
    for (const auto& [page, fields, answer, why] : kCases) {
        EXPECT_EQ(Ask(page, fields), answer) << page << " " << why;
    }
    EXPECT_EQ(StockOf("bolt"), 50);
    // A name in other letters is the same location, not a second entry.
    EXPECT_EQ(Ask("link-quantitychange",
                  change({{"loc", "mAIN"}, {"item", "bolt"}, {"qty", "-1,000.5"}})),
              "Quantity Change Successful\n");
    EXPECT_EQ(StockOf("bolt"), -950.5);
}

TEST_F(Link, FindsTheBusinessByItsCodeAlone) {
    const LProfile second(CreateNewBusiness().value()), third(CreateNewBusiness().value());
    EXPECT_EQ(SaveLinkSettings(second, {true, ""}).message.substr(0, 50),
              "Please enter an Access Authentication Code for acc");
    EXPECT_EQ(SaveLinkSettings(second, {true, "secret"}).message,
              "Please enter an Access Authentication Code that is unique to this business. This "
              "code is already in use by another business in Quillmarsh.");
    SetCode(second, "two");
    SetCode(second, "two");  // its own code is no other business's
    LRecord location;
    second.List("Locations").CreateNewRecord(location);
    location.SetString("Name", "Shed, rear");
    location.Flush();
    const auto places = [this](const std::string& code) {
        return Ask("link-locreq", {{"auth", code}});
    };
    const std::string both = places("two");  // in the store's order
    EXPECT_TRUE(both == "Main,Shed, rear" || both == "Shed, rear,Main") << both;
    LRecord options;
    second.OpenSettings(options, "Options");
    options.SetString("SyncAuthKey", "secret");
    options.Flush();
    EXPECT_EQ(places("secret"), "Main") << "the default business wins";
    SetCode(second, "two");
    ASSERT_TRUE(SetBusinessDeleted(1, true));
    EXPECT_EQ(places("two"), "Conn");
    ASSERT_TRUE(SaveLinkSettings(profile_, {false, "secret"}).IsNone());
    EXPECT_EQ(places("secret"), "Conn") << "turned off";
}

TEST_F(Link, TheItemFileIsAsItAlwaysWas) {
    const std::string answer = Ask("link-sync", {{"auth", "secret"}, {"loc", "main"}});
    EXPECT_EQ(answer.substr(0, 36), "Connection Accepted\nHTTP/1.1 200 OK\r");
    EXPECT_NE(answer.find(".csv\""), std::string::npos) << "a download";
    std::string body = answer.substr(answer.find("\r\n\r\n") + 4);
    const std::string bolt =
        "\"bolt\",\"$1.50\",\"$1,234.56\",\"A%26B%2010%25\",\"50.00\",\"1\",\"20.00\",\"5.00\"\r\n";
    const std::string nail =
        "\"1\"\" nail\",\"$1.50\",\"$1,234.56\",\"\",\"0.00\",,\"0.00\",\"0.00\"\r\n";
    EXPECT_TRUE(body == bolt + nail || body == nail + bolt) << body;

    // Only what has changed since: both record files are made an hour old, then one is touched.
    for (const char* name : {"1.dat", "2.dat"}) {
        const std::string path = profile_.Items().Folder() + "/" + name;
        std::filesystem::last_write_time(
            path, std::filesystem::file_time_type::clock::now() - std::chrono::hours(1));
    }
    const LTestFields since{{"auth", "secret"}, {"loc", "Main"}, {"sinceseconds", "60"}};
    EXPECT_EQ(Ask("link-sync", since), "No New Items\n");
    EXPECT_EQ(Change("bolt", "1"), "Quantity Change Successful\n");
    const std::string changed = Ask("link-sync", since);
    EXPECT_NE(changed.find("\"bolt\""), std::string::npos);
    EXPECT_EQ(changed.find("nail"), std::string::npos);
    EXPECT_EQ(INLinkItemSync(profile_, -1, "Main"), -1) << "a file that takes nothing";
    // The files go when their connections have gone.
    const auto filesLeft = [&] {
        size_t count = 0;
        for (const auto& entry : std::filesystem::directory_iterator(profile_.DatabaseFolder())) {
            if (entry.path().extension() == ".csv") ++count;
        }
        return count;
    };
    for (int i = 0; i < 1000 && filesLeft() != 0; ++i) {
        std::this_thread::sleep_for(std::chrono::milliseconds(10));
    }
    EXPECT_EQ(filesLeft(), 0U);
}

TEST_F(Link, ChangesOfManyPartnersAtOnceLoseNothing) {
    constexpr int kPartners = 8, kChanges = 200;
    std::atomic<int> done{0};
    std::vector<std::thread> partners;
    for (int i = 0; i < kPartners; ++i) {
        partners.emplace_back([&] {
            for (int n = 0; n < kChanges; ++n) {
                if (Change("bolt", "-1") == "Quantity Change Successful\n") ++done;
            }
        });
    }
    for (std::thread& partner : partners) partner.join();
    EXPECT_EQ(done, kPartners * kChanges);
    EXPECT_EQ(StockOf("bolt"), 50 - kPartners * kChanges);
}

// A day at the counter: the partner fetches all items, reports what it sells, while the shop sells
// too, and fetches what has changed.
TEST_F(Link, APartnersDayAddsUp) {
    constexpr int kSales = 250;
    EXPECT_NE(Ask("link-sync", {{"auth", "secret"}, {"loc", "Main"}}).find("\"50.00\""),
              std::string::npos);
    for (int i = 0; i < kSales; ++i) {
        ASSERT_EQ(Change("bolt", "-1"), "Quantity Change Successful\n");
        LSale sale;
        sale.customer = "Counter";
        sale.date = LDate::Today();
        sale.lines = {{"bolt", "Main", 2, {100, 2}}};
        int sold = 0;
        ASSERT_TRUE(LSellStock(profile_, sale, sold).IsNone());
    }
    const std::string changed =
        Ask("link-sync", {{"auth", "secret"}, {"loc", "Main"}, {"sinceseconds", "600"}});
    EXPECT_NE(changed.find("\"bolt\",\"$1.50\",\"$1,234.56\",\"A%26B%2010%25\",\"-700.00\""),
              std::string::npos)
        << changed;
    EXPECT_EQ(StockOf("bolt"), 50 - kSales * 3);
    // The partner keeps the history of its own sales; ours has the shop's.
    const std::string history =
        home_.ReadFile("data/Quillmarsh/Shared/Sellhistory/" + LDate::Today().ToStored() + ".csv");
    EXPECT_EQ(std::count(history.begin(), history.end(), '\n'), kSales);
}

}  // namespace
