// A running weblet with the account pages, a default business and an administrator.
#pragma once

#include "tests/support/LTestBrowser.h"
#include "web/accounts/LAppWebAccount.h"
#include "web/server/LWebletForm.h"
#include "web/server/LWebletScripts.h"

class LAccountsTest : public ::testing::Test {
protected:
    LAccountsTest();

    static void MakeAccount(const std::string& email, LAccountRole role,
                            const std::vector<int>& businesses, int lastUsed = 0);
    // One stored field of an account, read anew.
    static std::string Stored(const std::string& email, const std::string& field);
    static void Store(const std::string& email, const std::string& field, const std::string& value);
    LTestAnswer TryLogOn(LTestBrowser& browser, const std::string& email,
                         const std::string& password, bool remember = false);
    // A browser logged on as that account, whose password is "password".
    LTestBrowser LoggedOn(const std::string& email);
    std::string SessionFile(const LTestBrowser& browser) const;

    LTempHome home_;
    LTestWeb web_;
    std::string secondFolder_;  // of the business number 1, "Second"
};
