#include "web/accounts/LAppWebAccount.h"

#include <algorithm>
#include <charconv>

#include "datastore/Businesses.h"
#include "datastore/CsvText.h"
#include "datastore/NumberText.h"
#include "platform/CaseFolding.h"
#include "platform/LMutex.h"

LAccountRole LAppWebAccount::Role() const {
    switch (GetInt("Priviligies", 0)) {
        case 1:
            return LAccountRole::kAdministrator;
        case 2:
            return LAccountRole::kUser;
        case 0:  // none stored: the older mark alone tells
            return IsAdministrator() ? LAccountRole::kAdministrator : LAccountRole::kViewer;
        default:
            return LAccountRole::kViewer;
    }
}

void LAppWebAccount::SetRole(LAccountRole role) {
    SetBool("Administrator", role == LAccountRole::kAdministrator);
    SetInt("Priviligies", static_cast<int>(role));
}

std::vector<int> LAppWebAccount::ProfileIds() const {
    std::vector<int> numbers;
    for (const std::string& text : ParseCsvRow(GetView("ProfileIDs"))) {
        int number = 0;
        const char* end = text.data() + text.size();
        const auto [rest, error] = std::from_chars(text.data(), end, number);
        if (error == std::errc() && rest == end && number >= 0) numbers.push_back(number);
    }
    return numbers;
}

void LAppWebAccount::SetProfileIds(const std::vector<int>& numbers) {
    std::string text;
    for (const int number : numbers) text += std::to_string(number) + ",";
    SetString("ProfileIDs", text);
}

std::vector<std::string> LAppWebAccount::AllowedBusinessNames() const {
    const std::vector<LBusiness> listed = ListBusinesses();  // without those marked deleted
    std::vector<std::string> names;
    for (const int number : ProfileIds()) {
        const auto business =
            std::find_if(listed.begin(), listed.end(),
                         [number](const LBusiness& each) { return each.number == number; });
        if (business != listed.end() && !business->name.empty()) names.push_back(business->name);
    }
    return names;
}

bool LAppWebAccount::MayOpenBusiness(std::string_view name) const {
    if (IsAdministrator()) return true;
    const std::vector<std::string> names = AllowedBusinessNames();
    return std::find(names.begin(), names.end(), name) != names.end();
}

void LAppWebAccount::GetProfiles(std::string& list) const {
    list.clear();
    for (const std::string& name : AllowedBusinessNames()) {
        if (!list.empty()) list += ',';
        list += name;
    }
}

std::string WebAccountKey(std::string_view email) { return FoldCase(TrimBlanks(email)); }

bool OpenWebAccount(LAppWebAccount& account, std::string_view email) {
    return LAppWebAccountList().Open(account, WebAccountKey(email));
}

bool LWebAccountValidateLogon(std::string_view email, std::string_view password, std::time_t now) {
    static LMutex mutex;  // guesses sent at once must not all see the same count
    const LMutexLock lock(mutex);
    LAppWebAccount account;
    if (!OpenWebAccount(account, email)) return false;
    const LLogonResult result = account.ValidateLogon(password, now);
    account.Flush();
    return result == LLogonResult::kOk;
}

bool LWebAccountDelete(std::string_view email) {
    return LAppWebAccountList().Delete(WebAccountKey(email));
}

bool LAppWebAccountCreate(const LNewAccount& input) {
    LAppWebAccount account;
    LAppWebAccountList().CreateNewRecord(account, WebAccountKey(input.email));
    account.SetString("DisplayName", input.displayName);
    account.SetString("Password", input.password);
    account.SetBool("Enabled", input.enabled);
    account.SetRole(input.role);
    account.SetProfileIds(input.profileIds);
    account.SetInt("LastUsedProfileID", input.lastUsedProfileId);
    account.SetInt("LogonFailures", 0);
    account.SetInt("LogonFailTime", 0);
    return account.IsBound() && account.Flush();
}
