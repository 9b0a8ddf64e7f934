#include "orders/RecurringOrders.h"

#include <gtest/gtest.h>
#include <unistd.h>

#include <algorithm>
#include <atomic>
#include <cerrno>
#include <thread>
#include <tuple>
#include <vector>

#include "orders/LOrderSender.h"
#include "orders/LPOrderList.h"
#include "orders/LRecurringClock.h"
#include "orders/OrderTotals.h"
#include "orders/RecurringSchedule.h"
#include "platform/FileIo.h"
#include "tests/orders/LOrderShop.h"
#include "tests/support/LChildProcess.h"
#include "tests/support/LFailNthFileCall.h"
#include "tests/support/LScriptedUserInterface.h"

namespace {

// A zone with clock changes, some of them at midnight (Santiago).
class LZone {
public:
    explicit LZone(const std::string& name) : zone_("TZ", name) { ::tzset(); }
    ~LZone() = default;
    LZone(const LZone&) = delete;
    LZone& operator=(const LZone&) = delete;

private:
    LScopedEnvironment zone_;
};

LDate Day(std::string_view text) { return LDate::FromStored(text).value(); }
std::time_t Noon(std::string_view day) { return StartOfLocalDay(Day(day)) + 43200; }

TEST(RecurringSchedule, TheNextDayFollowsTheInterval) {
    struct Case {
        const char *last, *next;
        int interval;
        const char* why;
    };
    constexpr Case kCases[] = {
        {"2026-03-01", "2026-03-08", 0, "weekly"},
        {"2026-03-22", "2026-03-29", 0, "over a clock change in spring"},
        {"2026-10-18", "2026-11-01", 1, "over one in autumn"},
        {"2026-12-25", "2027-01-08", 1, "fortnightly, into a new year"},
        {"2026-03-27", "2026-04-27", 2, "monthly"},
        {"2026-03-28", "2026-04-30", 2, "from the 28th it is the month's end"},
        {"2026-08-31", "2026-09-30", 2, "a shorter month"},
        {"2026-09-30", "2026-10-31", 2, "and the end of the longer one behind it"},
        {"2024-01-31", "2024-02-28", 2, "February has 28 days in a leap year too"},
        {"2024-02-29", "2024-03-31", 2, "a run on the leap day"},
        {"2026-12-15", "2027-01-15", 2, "into a new year"},
        {"2026-11-15", "2027-01-15", 3, "bimonthly"},
        {"2026-11-30", "2027-02-28", 4, "quarterly"},
        {"2026-08-29", "2027-02-28", 5, "6 monthly"},
        {"2024-02-29", "2025-02-28", 6, "annually"},
        {"2024-12-31", "2025-12-31", 6, "annually at a year's end"},
        {"2024-02-29", "2026-02-28", 7, "2 years"},
        {"2026-12-05", "2028-12-05", 7, "2 years from a December"},
        {"2026-04-30", "2028-04-30", 7, "2 years, the real month's end"},
    };
    for (const char* zone : {"UTC", "Europe/Berlin", "America/Santiago", "Australia/Lord_Howe"}) {
        const LZone local(zone);
        for (const Case& c : kCases) {
            EXPECT_EQ(NextRecurringDay(Day(c.last), c.interval), Day(c.next)) << zone << c.why;
        }
        // Each day begins on that day, at midnight where there is one.
        for (LDate day{2026, 1, 1}; day < LDate{2027, 1, 1}; day = day.AddDays(1)) {
            const int64_t start = StartOfLocalDay(day);
            EXPECT_EQ(LDate::FromTime(start), day) << zone;
            EXPECT_LT(LDate::FromTime(start - 1), day) << zone;
        }
    }
    EXPECT_FALSE(NextRecurringDay(Day("2026-01-01"), -1) || NextRecurringDay(Day("2026-01-01"), 8));
}

TEST(RecurringSchedule, DueFromItsStartOrNever) {
    LPOrder recurring;
    EXPECT_EQ(LRecurringOrderGetDueDate(recurring), kNeverDue);
    recurring.SetString("RecurStart", "2026-05-01");
    EXPECT_EQ(LRecurringOrderGetDueDate(recurring), StartOfLocalDay(Day("2026-05-01")));
    recurring.SetString("RecurLast", "2026-05-03");
    EXPECT_EQ(LRecurringOrderGetDueDate(recurring), StartOfLocalDay(Day("2026-06-03")));
    recurring.SetString("RecurLast", "soon");
    EXPECT_EQ(LRecurringOrderGetDueDate(recurring), kNeverDue);
    EXPECT_FALSE(IsDueAt(kNeverDue, kNeverDue + 1)) << "never is never, also after 2038";
}

// Remembers what it was given; works or fails as told.
class LTestDispatch final : public LOrderDispatch {
public:
    bool works = true;
    std::vector<std::string> calls;

    bool Print(const LProfile&, const LPOrder& order) override {
        return Note("print " + order.GetPrimaryKey());
    }
    bool Email(const LProfile&, const LPOrder& order, std::string_view address) override {
        return Note("email " + order.GetPrimaryKey() + " " + std::string(address));
    }
    bool Fax(const LProfile&, const LPOrder& order, std::string_view number) override {
        return Note("fax " + order.GetPrimaryKey() + " " + std::string(number));
    }

private:
    bool Note(std::string text) {
        calls.push_back(std::move(text));
        return works;
    }
};

class RecurringOrders : public ::testing::Test {
protected:
    std::string AddTemplate(LOrderShop::Fields fields, int64_t unitValue = 100) {
        LPOrder recurring;
        EXPECT_TRUE(LOrderCreateRecurring(shop.profile, recurring));
        recurring.SetString("Supplier", supplier);
        for (const auto& [name, value] : fields) recurring.SetString(name, value);
        AddLine(recurring, {2, unitValue, "GST", "5/", 2, item});
        recurring.SetItemDescription(0, "%period%: rent, %period%");
        return recurring.GetPrimaryKey();
    }
    // Each recorded order's date and first line, in the order of their numbers.
    std::vector<std::string> Orders(int first = 10000) const {
        std::vector<std::string> texts;
        LPOrder order;
        for (int n = first; shop.profile.Orders().Open(order, std::to_string(n)); ++n) {
            texts.push_back(order.GetString("Date") + ", " + order.GetItemDescription(0));
        }
        return texts;
    }
    bool RunAll(std::string_view day) {
        LRecurringOrderRunAllData data{shop.profile, dispatch, Noon(day)};
        LScriptedUserInterface ui;
        const bool isDone = RunRecurringOrders(ui, data);
        told.clear();
        for (const auto& shown : ui.Informed()) told.push_back(shown.text);
        return isDone;
    }

    LOrderShop shop;
    LTestDispatch dispatch;
    std::vector<std::string> told;
    std::string supplier =
        shop.Add("Suppliers", {{"Name", "Bolts"}, {"Email", "b@x.org"}, {"Fax", "123"}});
    std::string item = shop.Add("Items", {{"Name", "A"}, {"Value", "12345"}, {"CostDigits", "3"}});
};

TEST_F(RecurringOrders, EachMissedPeriodHasItsOrder) {
    shop.Settings("Tax", {{"TaxName1", "GST"}, {"TaxRate1", "10"}});
    const std::string id = AddTemplate({{"RecurStart", "2023-12-31"}, {"RecurReplaceText", "1"}});
    EXPECT_FALSE(LRecurringOrderTest(shop.profile, Noon("2023-12-30")));
    EXPECT_TRUE(LRecurringOrderTest(shop.profile, Noon("2023-12-31")));
    EXPECT_TRUE(RunAll("2023-12-30"));
    EXPECT_EQ(Orders().size(), 0U);

    EXPECT_TRUE(RunAll("2024-03-05"));
    EXPECT_EQ(Orders(),
              (std::vector<std::string>{
                  "2024-03-05, 2023-12-31 to 2023-12-31: rent, 2023-12-31 to 2023-12-31",
                  "2024-03-05, 2023-12-31 to 2024-01-31: rent, 2023-12-31 to 2024-01-31",
                  "2024-03-05, 2024-01-31 to 2024-03-05: rent, 2024-01-31 to 2024-03-05"}));
    EXPECT_EQ(shop.Stored("OrdersRecurring", id, "RecurLast"), "2024-03-05");
    EXPECT_TRUE(RunAll("2024-04-04"));
    EXPECT_TRUE(RunAll("2024-04-05"));
    EXPECT_TRUE(RunAll("2024-04-05"));
    EXPECT_EQ(Orders().size(), 4U) << "once";

    LPOrder order;
    ASSERT_TRUE(LPOrderOpen(shop.profile, order, "10003"));
    EXPECT_EQ(order.GetString("Receipt Date"), "2024-04-05");
    EXPECT_EQ(order.GetString("IsDraft"), "0");
    EXPECT_EQ(order.GetTotal(), 220) << "the rate of today, not the template's";
    EXPECT_EQ(order.GetString("Item1TaxRate"), "10/") << "which the order keeps";
    EXPECT_EQ(shop.Stored("OrdersRecurring", id, "Item1Description"), "%period%: rent, %period%");
}

// Whoever stops a long catching up finds the rest still due.
TEST_F(RecurringOrders, StoppedItGoesOnWhereItWas) {
    class LStopAfter final : public LProcessInterface {
    public:
        void SetStatus(std::string_view) override {}
        void SetProgress(double) override {}
        bool IsCancelled() const override { return ++asked > 3; }
        mutable int asked = 0;
    };
    const std::string id = AddTemplate({{"RecurStart", "2026-01-05"}, {"RecurInterval", "0"}});
    LStopAfter process;
    LRecurringOrderRunAllData data{shop.profile, dispatch, Noon("2026-02-04")};
    EXPECT_FALSE(Process(process, data));
    EXPECT_EQ(data.result.orderIds.size(), 2U);
    EXPECT_EQ(shop.Stored("OrdersRecurring", id, "RecurLast"), "2026-02-04");
    EXPECT_TRUE(LRecurringOrderTest(shop.profile, Noon("2026-02-04")));
    EXPECT_TRUE(RunAll("2026-02-04"));
    EXPECT_EQ(Orders().size(), 5U);
}

// Its order was stored, and the service killed before the template knew.
TEST_F(RecurringOrders, AKilledRunPlacesItsPeriodOnce) {
    const std::string id = AddTemplate({{"RecurStart", "2026-01-05"}, {"RecurAction", "1"}});
    ASSERT_TRUE(RunAll("2026-01-05"));
    EXPECT_EQ(shop.Stored("OrdersRecurring", id, "RecurPlacing"), "");
    for (const auto& [note, orders, why] :
         {std::tuple("10000 2026-01-05", 1U, "the next day it is known"),
          std::tuple("10000 2025-12-05", 2U, "an order of another period"),
          std::tuple("77 2026-01-05", 3U, "killed before the order was stored")}) {
        LPOrder recurring;
        ASSERT_TRUE(LRecurringPOrderList(shop.profile).Open(recurring, id));
        recurring.SetString("RecurLast", "");
        recurring.SetString("RecurPlacing", note);
        ASSERT_TRUE(recurring.Flush());
        EXPECT_TRUE(RunAll("2026-01-06"));
        EXPECT_EQ(Orders().size(), orders) << why;
        EXPECT_EQ(shop.Stored("OrdersRecurring", id, "RecurLast"), "2026-01-06");
        EXPECT_EQ(shop.Stored("OrdersRecurring", id, "RecurPlacing"), "");
    }
    EXPECT_EQ(dispatch.calls, (std::vector<std::string>{"print 10000", "print 10000", "print 10001",
                                                        "print 10002"}));
    EXPECT_EQ(shop.Stored("Orders", "10002", "RecurPlacing"), "");
}

// Killed while it prints the second of several missed periods, or just before the template knew
// that order, it goes on the next day: no period is left out and none comes twice.
TEST_F(RecurringOrders, KilledWhileCatchingUpItGoesOnWithTheNextPeriod) {
    class LKillingDispatch final : public LOrderDispatch {
    public:
        bool Print(const LProfile&, const LPOrder& order) override {
            if (order.GetPrimaryKey().back() == '1') ::_exit(9);
            return true;
        }
        bool Email(const LProfile&, const LPOrder&, std::string_view) override { return false; }
        bool Fax(const LProfile&, const LPOrder&, std::string_view) override { return false; }
    };
    const std::string id = AddTemplate({{"RecurStart", "2026-01-05"},
                                        {"RecurInterval", "0"},
                                        {"RecurAction", "1"},
                                        {"RecurReplaceText", "1"}});
    LChildProcess killed([this] {
        LKillingDispatch dies;
        LRecurringOrderRunAllData data{shop.profile, dies, Noon("2026-02-04")};
        LScriptedUserInterface ui;
        RunRecurringOrders(ui, data);
        return 0;
    });
    ASSERT_EQ(killed.Wait(), 9);
    EXPECT_EQ(shop.Stored("OrdersRecurring", id, "RecurLast"), "2026-02-04");
    EXPECT_EQ(shop.Stored("OrdersRecurring", id, "RecurServed"), "2026-01-12 2026-02-04");
    for (const char* placing : {"", "10001 2026-01-12"}) {
        LPOrder recurring;
        ASSERT_TRUE(LRecurringPOrderList(shop.profile).Open(recurring, id));
        recurring.SetString("RecurLast", "2026-02-04");
        recurring.SetString("RecurPlacing", placing);
        recurring.SetString("RecurServed",
                            (*placing ? "2026-01-05" : "2026-01-12") + std::string(" 2026-02-04"));
        ASSERT_TRUE(recurring.Flush());
        for (int n = 10002; n < 10005; ++n) shop.profile.Orders().Delete(std::to_string(n));
        EXPECT_TRUE(RunAll("2026-02-05"));
        EXPECT_TRUE(RunAll("2026-02-05"));
        std::vector<std::string> periods;
        LRecordedPOrderList(shop.profile).ForEach([&periods](const LPOrder& order) {
            EXPECT_FALSE(order.TestFieldExists("RecurServed"));
            periods.push_back(order.GetItemDescription(0).substr(0, 24));
            return true;
        });
        std::sort(periods.begin(), periods.end());
        EXPECT_EQ(periods,
                  (std::vector<std::string>{"2026-01-05 to 2026-01-05", "2026-01-05 to 2026-01-12",
                                            "2026-01-12 to 2026-01-19", "2026-01-19 to 2026-01-26",
                                            "2026-01-26 to 2026-02-05"}))
            << placing;
        EXPECT_EQ(shop.Stored("OrdersRecurring", id, "RecurServed"), "");
    }
}

TEST_F(RecurringOrders, PricesFollowTheItems) {
    const std::string id = AddTemplate({{"RecurStart", "2026-01-05"}, {"RecurUpdatePrices", "1"}});
    ASSERT_TRUE(RunAll("2026-01-05"));
    LPOrder order;
    ASSERT_TRUE(LPOrderOpen(shop.profile, order, "10000"));
    EXPECT_EQ(order.GetItemUnitCost(shop.profile, 0), (LMoney{12345, 3}));
    EXPECT_EQ(order.GetTotal(), 24690);
    EXPECT_EQ(order.GetItemDescription(0), "%period%: rent, %period%");
    EXPECT_EQ(shop.Stored("OrdersRecurring", id, "Item1UnitValue"), "100");
}

TEST_F(RecurringOrders, FailuresOfTheActionAreTold) {
    AddTemplate({{"RecurStart", "2026-01-05"}, {"RecurAction", "1"}});
    ASSERT_TRUE(RunAll("2026-01-05"));
    dispatch.works = false;
    AddTemplate({{"RecurStart", "2026-01-06"}, {"RecurAction", "2"}});
    EXPECT_FALSE(RunAll("2026-01-06"));
    EXPECT_EQ(told, std::vector<std::string>{
                        "Order 10001 may not have been emailed successfully.  Please open it "
                        "manually to send it."});
    AddTemplate({{"RecurStart", "2026-01-07"}, {"RecurAction", "3"}});
    EXPECT_FALSE(RunAll("2026-01-07"));
    AddTemplate({{"RecurStart", "2026-01-08"}, {"RecurAction", "99"}});
    EXPECT_TRUE(RunAll("2026-01-08"));
    EXPECT_EQ(dispatch.calls,
              (std::vector<std::string>{"print 10000", "email 10001 b@x.org", "fax 10002 123"}));
    LRecurringOrderRunData one{shop.profile, dispatch, "RCR1", Noon("2026-01-09")};
    LScriptedUserInterface ui;
    EXPECT_FALSE(RunRecurringOrders(ui, one));
    EXPECT_EQ(ui.Informed().at(0).text,
              "Order 10004 may not have printed successfully.  Please open it manually to print "
              "it.");
    EXPECT_EQ(shop.Stored("OrdersRecurring", "RCR1", "RecurLast"), "2026-01-09");
}

TEST_F(RecurringOrders, WhatCannotBeRecordedLeavesNothingBehind) {
    AddTemplate({{"RecurStart", "2026-01-05"}}, INT64_MAX);
    EXPECT_FALSE(RunAll("2026-01-05"));
    EXPECT_EQ(Orders().size(), 0U);
    EXPECT_EQ(shop.Stored("OrdersRecurring", "RCR1", "RecurLast"), "");

    ASSERT_TRUE(shop.profile.OrdersRecurring().Delete("RCR1"));
    int n = 0;
    for (bool hasFired = true; hasFired;) {
        const std::string id = AddTemplate({{"RecurStart", "2026-01-05"}});
        {
            const LFailNthFileCall fault(++n, ENOSPC);
            RunAll("2026-01-05");
            hasFired = fault.Fired();
        }
        RunAll("2026-01-05");  // an hour later, with room on the disk
        std::vector<std::string> orders;
        LRecordedPOrderList(shop.profile).ForEach([&orders](const LPOrder& order) {
            EXPECT_EQ(order.GetItemQty(0), 2) << "whole";
            orders.push_back(order.GetPrimaryKey());
            return true;
        });
        EXPECT_EQ(orders.size(), 1U) << "call " << n;
        for (const std::string& order : orders) shop.profile.Orders().Delete(order);
        ASSERT_TRUE(shop.profile.OrdersRecurring().Delete(id));
        ASSERT_LT(n, 200);
    }
}

TEST(RecurringClock, LooksHourlyAndAtMidnightWhateverTheClockDoes) {
    const LZone local("America/Santiago");  // its clocks change at midnight
    LRecurringClock clock;
    const std::time_t start = StartOfLocalDay(Day("2026-09-05")) + 23 * 3600;
    EXPECT_TRUE(clock.IsTimeToLook(start));
    EXPECT_FALSE(clock.IsTimeToLook(start + 3599));
    const std::time_t midnight = StartOfLocalDay(Day("2026-09-06"));  // 01:00, there is no 00:00
    EXPECT_EQ(LRecurringClock::WaitMs(midnight - 5), 5000);
    EXPECT_EQ(LRecurringClock::WaitMs(midnight), LRecurringClock::kLongestWaitMs);
    EXPECT_TRUE(clock.IsTimeToLook(midnight));
    EXPECT_FALSE(clock.IsTimeToLook(midnight + 60));
    EXPECT_TRUE(clock.IsTimeToLook(midnight + 3600));
    EXPECT_TRUE(clock.IsTimeToLook(midnight - 10)) << "set back into yesterday";
    EXPECT_TRUE(clock.IsTimeToLook(midnight - 86400 * 30)) << "set back by a month";
    EXPECT_FALSE(clock.IsTimeToLook(midnight - 86400 * 30 + 60));
}

TEST(OrderSender, HandsOutWhatTheSupplierNeeds) {
    LOrderShop shop;
    shop.Settings("Company", {{"Name", "Quill & Co"}});
    const std::string item = shop.Add("Items", {{"Name", "BOLT-8"}});
    LPOrder order;
    ASSERT_TRUE(LOrderCreateRecorded(shop.profile, order));
    order.SetString("Supplier", shop.Add("Suppliers", {{"Name", "Bolts"}, {"Address", "A\r\nB"}}));
    order.SetString("NotesIternal", "too dear");
    AddLine(order, {12, 250, "", "", 2, item});
    ASSERT_TRUE(LOrderSumTotals(shop.profile, order, LTaxRates::kPresent));

    std::string printed, mailed;
    int exitStatus = 0;
    LOrderSender sender(
        [&](const std::vector<std::string>& words, int) {
            EXPECT_EQ(words.size(), 5U);
            printed = words[2] + "|" + ReadFile(words[4]).value_or("no file");
            return exitStatus;
        },
        [&](std::string_view to, std::string_view subject, std::string_view body) {
            mailed = std::string(to).append("|").append(subject).append("|").append(body);
            return true;
        });
    EXPECT_TRUE(sender.Print(shop.profile, order));
    EXPECT_TRUE(sender.Email(shop.profile, order, "b@x.org"));
    for (const std::string& text : {printed, mailed}) {
        for (const char* part : {"Purchase Order 10000", "Quill & Co", "Bolts\n    A\n    B\n",
                                 "BOLT-8", "12.00 x ", "30.00"}) {
            EXPECT_NE(text.find(part), std::string::npos) << part << " in\n" << text;
        }
        EXPECT_EQ(text.find("too dear"), std::string::npos);
    }
    EXPECT_FALSE(sender.Email(shop.profile, order, "")) << "nobody to send to";
    exitStatus = 1;
    EXPECT_FALSE(sender.Print(shop.profile, order)) << "no printer";
    EXPECT_FALSE(LOrderSender().Print(shop.profile, order));
    EXPECT_FALSE(sender.Fax(shop.profile, order, "123"));
}

// Two services and a desktop wake up at the same midnight.
TEST_F(RecurringOrders, TwoServicesPlaceAPeriodOnce) {
    // Without a zone the C library reads it anew each time, under a lock that TSan cannot see.
    const LZone zone("UTC");
    for (int i = 0; i < 5; ++i) AddTemplate({{"RecurStart", "2026-01-05"}, {"RecurInterval", "0"}});
    const auto run = [this] {
        const LProfile profile(shop.profile.DatabaseFolder());
        LTestDispatch quiet;
        LRecurringOrderRunAllData data{profile, quiet, Noon("2026-01-20")};
        LScriptedUserInterface ui;
        RunRecurringOrders(ui, data);
    };
    LChildProcess other([&run] {
        run();
        return 0;
    });
    std::thread second(run);
    run();
    second.join();
    EXPECT_EQ(other.Wait(), 0);
    EXPECT_EQ(Orders().size(), 15U) << "three weeks of five templates";
}

}  // namespace
