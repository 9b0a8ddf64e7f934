// The accounts of those who work with the program in a browser, shared by all businesses.
#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "web/accounts/LWebAccount.h"

// As stored in "Priviligies".
enum class LAccountRole { kAdministrator = 1, kUser = 2, kViewer = 3 };

class LAppWebAccount : public LWebAccount {
public:
    const std::string& Email() const { return GetPrimaryKey(); }
    bool IsEnabled() const { return GetBool("Enabled", false); }
    bool IsAdministrator() const { return GetBool("Administrator", false); }
    // An administrator's account without a role counts as kAdministrator, any other number that is
    // none of the three as kViewer, which can change nothing.
    LAccountRole Role() const;
    void SetRole(LAccountRole role);  // "Administrator" follows

    // The numbers of the businesses it may open, in stored order.
    std::vector<int> ProfileIds() const;
    void SetProfileIds(const std::vector<int>& numbers);
    // By its name; administrators may open all.
    bool MayOpenBusiness(std::string_view name) const;
    // The names of the allowed businesses that exist; as one text, comma separated.
    std::vector<std::string> AllowedBusinessNames() const;
    void GetProfiles(std::string& list) const;
};

class LAppWebAccountList : public LAppDataBaseList<LAppWebAccount> {
public:
    LAppWebAccountList() : LAppDataBaseList(LFileStoreDataStoreAppFolder(), "Accounts") {}
};

// The key of an account: the address without blanks around it, in lower case.
std::string WebAccountKey(std::string_view email);

// Opens the account of that address (any letter case). False when there is none.
[[nodiscard]] bool OpenWebAccount(LAppWebAccount& account, std::string_view email);

// True only when the account exists, is not locked and the password is right. Counts failures.
// Requests of this process take turns, so that guesses sent at once are all counted.
[[nodiscard]] bool LWebAccountValidateLogon(std::string_view email, std::string_view password,
                                            std::time_t now = std::time(nullptr));
bool LWebAccountDelete(std::string_view email);

// What a new account starts with; the installer and the account dialog make accounts alike.
struct LNewAccount {
    std::string email, password, displayName;
    LAccountRole role = LAccountRole::kUser;
    std::vector<int> profileIds;  // 0: the default business
    int lastUsedProfileId = -1;   // where the first logon leads; -1: to the choice of business
    bool enabled = true;
};
// Makes or replaces the account of that address. False when it could not be stored.
[[nodiscard]] bool LAppWebAccountCreate(const LNewAccount& input);
