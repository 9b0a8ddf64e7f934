#include "web/accounts/AccountPages.h"

#include <algorithm>

#include "datastore/NumberText.h"
#include "service/control/LServiceLog.h"
#include "service/email/EmailAddress.h"
#include "web/framework/LHtmlList.h"
#include "web/framework/PageTargets.h"

namespace {

constexpr LHtmlListColumn kColumns[] = {
    {"Display Name", 30},
    {"Email Address", 34},
    {"Admin", 9, LCellAlign::kCenter},
    {"Enabled", 9, LCellAlign::kCenter},
    {"Edit", 9, LCellAlign::kCenter, false},
    {"Delete", 9, LCellAlign::kCenter, false},
};

enum { kName = 101, kEmail = 102, kPassword = 103, kEnabled = 104 };
enum { kRoleGroup = 300, kAdministrator = 301, kUser = 302, kViewer = 303 };
constexpr int kFirstBusiness = 1000;  // and the business's number

constexpr size_t kShortestPassword = 6;
// Shown in place of a stored password, which no page needs to know; sent back it changes nothing.
constexpr std::string_view kUnchangedPassword =
    "\xe2\x80\xa2\xe2\x80\xa2\xe2\x80\xa2\xe2\x80\xa2"
    "\xe2\x80\xa2\xe2\x80\xa2\xe2\x80\xa2\xe2\x80\xa2";

std::string_view YesNo(bool yes) { return yes ? "Yes" : "No"; }

void AddAction(LHtmlListRow& row, std::string_view page, std::string_view caption,
               std::string_view email) {
    row.AddCellPrintF("<a href='%H' aria-label='%H %H'>%H</a>", WLMakeLink(page, {{"id", email}}),
                      caption, email, caption);
}

}  // namespace

bool IsPasswordLongEnough(std::string_view password) {
    // Characters, not bytes: what is no first byte of one does not count.
    const auto isFirst = [](char byte) {
        return (static_cast<unsigned char>(byte) & 0xc0) != 0x80;
    };
    return std::count_if(password.begin(), password.end(), isFirst) >=
           static_cast<std::ptrdiff_t>(kShortestPassword);
}

void LAppWebAccountsPage::Generate() {
    if (!WLIsAdministator(Form())) return Redirect("main");
    SetTitle("Web Accounts");
    SetNavLinks({{"userprop", "New Account"}});
}

void LAppWebAccountsPage::PrintBody() {
    LHtmlList list;
    list.SetColumns(kColumns);
    list.SetSort(0, true);
    list.SetName("Accounts");
    LAppWebAccountList().ForEach([&list](const LAppWebAccount& account) {
        const std::string& email = account.Email();
        LHtmlListRow row = list.MakeRow();
        row.AddCell(account.GetString("DisplayName")).AddCell(email);
        row.AddCell(YesNo(account.IsAdministrator())).AddCell(YesNo(account.IsEnabled()));
        AddAction(row, "userprop", "Edit", email);
        AddAction(row, "userdelete", "Delete", email);
        list.AddOrdered(std::move(row));
        return true;
    });
    list.Print(Out());
}

LAppWebAccountDialog::LAppWebAccountDialog(LWebletForm& form) : LWebDialogEA(form) {
    SetOkCancelPage("userlist", "userlist");
    KeepParameter("id");
    SetBoxed();
}

bool LAppWebAccountDialog::Prepare() {
    if (!WLIsAdministator(Form())) return Redirect("main"), false;
    const std::string id = Form().Parameter("id");
    isNew_ = id.empty();
    SetTitle(isNew_ ? "New Web Account" : "Web Account");
    if (isNew_ || OpenWebAccount(account_, id)) return true;
    Redirect("userlist");  // deleted meanwhile
    return false;
}

bool LAppWebAccountDialog::IsOwnAccount() {
    return !isNew_ && account_.Email() == WebAccountKey(Form().Session().GetString("user"));
}

void LAppWebAccountDialog::Generate() {
    StartRow().AddStatic("User Name:").AddInput(kName, account_.GetString("DisplayName"));
    StartRow().AddStatic("Email Address:");
    if (isNew_) {
        AddInputEmailAddress(kEmail, {}, {.autocomplete = "off"});
    } else {
        AddInputReadOnly(kEmail, account_.Email());
    }
    StartRow()
        .AddStatic("Web Access Password:")
        .AddInputPassword(kPassword, isNew_ ? std::string_view() : kUnchangedPassword,
                          "new-password");
    GenerateRights();
}

void LAppWebAccountDialog::GenerateRights() {
    const bool fixed = IsOwnAccount();  // nobody locks themselves out
    StartRow().AddCheckBox(kEnabled, "Account Enabled", isNew_ || account_.IsEnabled(), fixed);
    const LAccountRole role = isNew_ ? LAccountRole::kUser : account_.Role();
    StartRow()
        .AddStatic("Role:")
        .AddRadioButton(kAdministrator, kRoleGroup, "Administrator",
                        role == LAccountRole::kAdministrator, fixed)
        .AddRadioButton(kUser, kRoleGroup, "User", role == LAccountRole::kUser, fixed)
        .AddRadioButton(kViewer, kRoleGroup, "Viewer", role == LAccountRole::kViewer, fixed);
    const std::vector<int> allowed = account_.ProfileIds();
    StartRow().AddStatic("Businesses:");
    for (const LBusiness& business : ListBusinesses()) {
        const bool ticked =
            isNew_ ? business.number == 0
                   : std::find(allowed.begin(), allowed.end(), business.number) != allowed.end();
        AddCheckBox(kFirstBusiness + business.number,
                    business.name.empty() ? "(no name)" : business.name, ticked, fixed);
        AddRawHTML("<br>");
    }
}

bool LAppWebAccountDialog::CmOk() {
    const std::string name(CutText(GetTextAndTrim(kName)));
    if (name.empty()) {
        PopupControlDataInvalid(kName, "Please enter a name for the user.");
        return false;
    }
    const std::string password = GetTextAndTrim(kPassword);
    if (!CheckEmail() || !CheckPassword(password)) return false;
    if (isNew_) {
        LServiceLog("Register New User " + name);
        LAppWebAccountList().CreateNewRecord(account_, WebAccountKey(GetText(kEmail)));
        account_.SetInt("LastUsedProfileID", -1);
    }
    account_.SetString("DisplayName", name);
    if (isNew_ || password != kUnchangedPassword) account_.SetString("Password", password);
    if (!IsOwnAccount()) StoreRights();
    if (account_.Flush()) return true;
    PopupBoxError("The account could not be saved.");
    return false;
}

bool LAppWebAccountDialog::CheckEmail() {
    if (!isNew_) return true;
    const std::string email = WebAccountKey(GetText(kEmail));
    if (LAppWebAccountList().TestRecordExists(email)) {
        PopupControlDataInvalid(kEmail,
                                "There is another user with the same email already exists. Please "
                                "use another email.");
        return false;
    }
    if (!ValidateAddressSingle(email)) {
        PopupControlDataInvalid(kEmail,
                                "Wrong Email address. Please enter correct Email address to "
                                "create a new Account.");
        return false;
    }
    return true;
}

bool LAppWebAccountDialog::CheckPassword(const std::string& password) {
    if (IsPasswordLongEnough(password)) return true;
    PopupControlDataInvalid(kPassword,
                            "Please enter the Account Password. The password must have a minimum "
                            "of 6 characters.");
    return false;
}

void LAppWebAccountDialog::StoreRights() {
    const bool enabled = GetCheck(kEnabled);
    if (enabled != account_.IsEnabled()) {
        LServiceLog((enabled ? "Account has been enabled for " : "Account has been disabled for ") +
                    account_.Email());
    }
    account_.SetBool("Enabled", enabled);
    const int button = GetRadioCheck(kRoleGroup);
    account_.SetRole(button == kAdministrator ? LAccountRole::kAdministrator
                     : button == kUser        ? LAccountRole::kUser
                                              : LAccountRole::kViewer);
    std::vector<int> numbers;
    for (const LBusiness& business : ListBusinesses()) {
        if (GetCheck(kFirstBusiness + business.number)) numbers.push_back(business.number);
    }
    account_.SetProfileIds(numbers);
}

void WLUserDelete(LWebletForm& form) {
    if (!WLValidateSession(form)) return;
    if (!WLIsAdministator(form)) return WLRedirect(form, "main");
    LAppWebAccount account;
    if (!OpenWebAccount(account, form.Parameter("id"))) return WLRedirect(form, "userlist");
    WLSetOkCancelPage(form, "userlist", "userlist");
    if (!WLIsConfirmed(form)) return WLConfirmDeleteYesNo(form, account.Email());
    const std::string email = account.Email();
    if (!LWebAccountDelete(email)) {
        LServiceLog("cannot delete the web account of " + email, {}, kLogError);
    }
    WLRedirect(form, "userlist");
}
