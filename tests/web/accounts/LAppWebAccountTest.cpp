#include "web/accounts/LAppWebAccount.h"

#include <thread>

#include "tests/web/accounts/AccountsFixture.h"

namespace {

TEST(LWebAccount, LocksAfterSixFailuresUntilTwentyMinutesAfterTheLast) {
    struct LStep {
        std::time_t after;  // the first failure
        const char* password;
        LLogonResult result;
        const char* why;
    };
    constexpr std::time_t kStart = 1700000000;
    constexpr LStep kSteps[] = {
        {0, "wrong", LLogonResult::kWrongPassword, "1"},
        {100, "Right", LLogonResult::kWrongPassword, "2: letter case counts"},
        {200, "right ", LLogonResult::kWrongPassword, "3: blanks count"},
        {300, "", LLogonResult::kWrongPassword, "4"},
        {400, "righ", LLogonResult::kWrongPassword, "5"},
        {1500, "rightx", LLogonResult::kWrongPassword, "6: less than 20 minutes after the fifth"},
        {1501, "right", LLogonResult::kLocked, "even with the right one"},
        {2699, "right", LLogonResult::kLocked, "the last second"},
        {2700, "right", LLogonResult::kOk, "20 minutes after the sixth"},
        {2701, "wrong", LLogonResult::kWrongPassword, "counted from one again"},
        {2702, "right", LLogonResult::kOk, "far from locked"},
    };
    LWebAccount account;
    account.SetString("Password", "right");
    for (const LStep& step : kSteps) {
        EXPECT_EQ(account.ValidateLogon(step.password, kStart + step.after), step.result)
            << step.why;
    }
    EXPECT_EQ(account.GetString("LogonFailures"), "0");
    EXPECT_EQ(account.GetString("LogonFailTime"), "0");
}

TEST(LWebAccount, FailuresFarApartDoNotAddUp) {
    LWebAccount account;
    account.SetString("Password", "right");
    for (std::time_t now = 1700000000; now < 1700020000; now += 1200) {
        EXPECT_EQ(account.ValidateLogon("wrong", now), LLogonResult::kWrongPassword);
        EXPECT_EQ(account.GetInt("LogonFailures", 0), 1);
    }
}

TEST(LWebAccount, MangledCountersDoNoHarm) {
    for (const char* number : {"", "x", "-9223372036854775808", "9223372036854775807", "1e99"}) {
        LWebAccount account;
        account.SetString("Password", "right");
        account.SetString("LogonFailTime", number);
        account.SetString("LogonFailures", number);
        account.ValidateLogon("wrong", 1700000000);
        account.ValidateLogon("right", 1700000000);
    }
}

class LAppWebAccounts : public LAccountsTest {};

TEST_F(LAppWebAccounts, GuessesSentAtOnceAreAllCounted) {
    std::vector<std::thread> guessers;
    for (int i = 0; i < 6; ++i) {
        guessers.emplace_back(
            [] { EXPECT_FALSE(LWebAccountValidateLogon("Boss@Example.com", "wrong")); });
    }
    for (std::thread& guesser : guessers) guesser.join();
    EXPECT_EQ(Stored("boss@example.com", "LogonFailures"), "6");
    EXPECT_FALSE(LWebAccountValidateLogon("boss@example.com", "password")) << "locked";
    EXPECT_FALSE(LWebAccountValidateLogon("nobody@example.com", "password"));
}

TEST_F(LAppWebAccounts, AllowedBusinessesAreNamedInStoredOrder) {
    MakeAccount("ann@example.com", LAccountRole::kUser, {1, 0, 7});
    LAppWebAccount account;
    ASSERT_TRUE(OpenWebAccount(account, "ann@example.com"));
    std::string list;
    account.GetProfiles(list);
    EXPECT_EQ(list, "Second,First & Co") << "one that does not exist is left out";
    EXPECT_EQ(account.GetString("ProfileIDs"), "1,0,7,");
    account.SetString("ProfileIDs", "x,,1,-1,99999999999,1z,");
    EXPECT_EQ(account.ProfileIds(), std::vector<int>{1}) << "mangled by hand";
}

}  // namespace
