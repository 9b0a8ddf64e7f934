#include "web/accounts/LogonPages.h"

#include <algorithm>

#include "service/control/LServiceLog.h"
#include "service/email/EmailAddress.h"
#include "web/accounts/PageCheck.h"
#include "web/framework/PageTargets.h"

namespace {

enum { kEmail = 101, kPassword = 102, kRemember = 103 };
enum { kBusiness = 101 };

constexpr std::string_view kSessionCookie = "quillmarsh_sess";
constexpr std::string_view kNoBusinesses = "User doesn't have allowed company profiles";

// A business that was never named can still be chosen.
std::string ShownName(const LBusiness& business) {
    return business.name.empty() ? "(no name)" : business.name;
}

}  // namespace

template <>
void WLWebDialogRun<LAppWebAccountLogonPage>(LWebletForm& form) {
    if (form.Session().IsLoaded()) {
        return WLRedirect(form, WLSafePage(form.Parameter("onok")));
    }
    LAppWebAccountLogonPage(form).Run();
}

LAppWebAccountLogonPage::LAppWebAccountLogonPage(LWebletForm& form) : LWebDialog(form) {
    SetTitle("Log On");
    SetWithoutCancel();
}

void LAppWebAccountLogonPage::Generate() {
    StartRow().AddStatic("Email:").AddInputEmailAddress(kEmail, Form().Parameter("email"),
                                                        {.autocomplete = "username"});
    StartRow().AddStatic("Password:").AddInputPassword(kPassword, {});
    StartRow()
        .AddCheckBox(kRemember, "Remember me on this computer", false)
        .AddHyperLinkSpanRightSmall("lostpassword", "Forgot your password?");
}

bool LAppWebAccountLogonPage::CmOk() {
    const std::string typed = GetTextAndTrim(kEmail);
    if (typed.empty()) return Refuse(kEmail, "Please enter your email address.");
    const std::string email = WebAccountKey(typed);
    if (!ValidateAddressSingle(email)) {
        return Refuse(kEmail, "Please enter a valid email address.");
    }
    if (!LWebAccountValidateLogon(email, GetTextAndTrim(kPassword))) {
        return Refuse(kPassword, "Login failed. Please check you have the right password.");
    }
    LAppWebAccount account;
    if (!OpenWebAccount(account, email) || !account.IsEnabled()) {
        return Refuse(kEmail, "Login failed. Your account has been disabled.");
    }
    if (!account.IsAdministrator() && account.AllowedBusinessNames().empty()) {
        return Refuse(kEmail, kNoBusinesses);
    }
    Form().Session().CreateNewSession(GetCheck(kRemember));
    if (!Form().Session().IsLoaded()) {
        PopupBoxError("The server could not keep your session. Please try again later.");
        return false;
    }
    Form().Session().SetString("user", email);
    AnswerLoggedOn(OpenLastBusiness(account) ? "main" : "chooseprofile");
    return true;
}

bool LAppWebAccountLogonPage::Refuse(int control, std::string_view message) {
    PopupControlDataInvalid(control, message);
    return false;
}

// Makes the business that the account worked on last the session's. False when the person must
// choose.
bool LAppWebAccountLogonPage::OpenLastBusiness(LAppWebAccount& account) {
    const std::string name = GetBusinessName(account.GetInt("LastUsedProfileID", -1));
    if (name.empty() || !account.MayOpenBusiness(name)) return false;
    const std::string folder = FindBusinessFolder(name);
    if (folder.empty()) return false;
    Form().Session().SetString("profile", folder);
    return true;
}

void LAppWebAccountLogonPage::AnswerLoggedOn(std::string_view page) {
    const bool remember = GetCheck(kRemember);
    AnswerScript("document.cookie = '%s=%s; path=/%s';\n", kSessionCookie, Form().Session().Id(),
                 remember ? "; expires=Sunday, 17-Jan-2038 19:14:07 GMT" : "");
    AnswerScript("window.location = '%s';\n", page);
}

LWebSelectProfileDialog::LWebSelectProfileDialog(LWebletForm& form) : LWebDialog(form) {
    SetTitle("Choose Business");
    SetOkCancelPage("main", "main");
}

bool LWebSelectProfileDialog::Authenticate() {
    if (Form().Parameter("error") == "1") {
        Redirect("logon");
        return false;
    }
    return AuthenticateAccount(Form());
}

bool LWebSelectProfileDialog::Prepare() {
    if (!OpenSignedInAccount(Form(), account_)) return false;
    businesses_ = ListBusinesses();
    if (!account_.IsAdministrator()) KeepAllowedBusinesses();
    if (businesses_.empty()) PopupBoxError(kNoBusinesses);
    return true;
}

void LWebSelectProfileDialog::KeepAllowedBusinesses() {
    const std::vector<std::string> allowed = account_.AllowedBusinessNames();
    std::erase_if(businesses_, [&allowed](const LBusiness& business) {
        return std::find(allowed.begin(), allowed.end(), business.name) == allowed.end();
    });
}

void LWebSelectProfileDialog::Generate() {
    std::vector<std::string> names;
    std::string current;
    for (const LBusiness& business : businesses_) {
        names.push_back(ShownName(business));
        if (business.folder == Form().Session().GetString("profile")) current = names.back();
    }
    StartRow().AddStatic("Business:").AddPullDownList(kBusiness, names, current);
}

bool LWebSelectProfileDialog::CmOk() {
    const std::string name = PDLGetText(kBusiness);
    const auto chosen =
        std::find_if(businesses_.begin(), businesses_.end(),
                     [&name](const LBusiness& business) { return ShownName(business) == name; });
    if (chosen == businesses_.end()) {
        PopupControlDataInvalid(kBusiness, "Please choose a business from the list.");
        return false;
    }
    Form().Session().SetString("profile", chosen->folder);
    account_.SetInt("LastUsedProfileID", chosen->number);
    account_.Flush();  // only where the next logon leads; the choice stands without it
    return true;
}

void WLLogout(LWebletForm& form) {
    if (!WLValidateSession(form)) return;
    if (form.IsFromOtherSite()) return WLRedirect(form, "main");
    LServiceLog(FormatText("Web user \"%s\" logged out.", form.Session().GetString("user")));
    form.Session().Destroy();
    WLMessagePage(form, "Logoff",
                  "<center>You have successfully logged out. Thank you for using Quillmarsh Stock "
                  "Manager.<br><br>Click <a href=\"logon\">here</a> to log on again.</center>");
}
