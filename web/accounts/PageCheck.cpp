#include "web/accounts/PageCheck.h"

namespace {

bool TurnAway(LWebletForm& form) {
    form.Session().Destroy();
    WLRedirect(form, "logon");
    return false;
}

// "itemlist" as "Itemlist": better than nothing where no title is known.
std::string TitleFromPageName(const std::string& name) {
    std::string title = name;
    if (!title.empty() && title[0] >= 'a' && title[0] <= 'z') {
        title[0] = static_cast<char>(title[0] - 'a' + 'A');
    }
    return title;
}

}  // namespace

bool AuthenticateEx(LWebletForm& form) {
    if (!form.Session().IsLoaded()) return TurnAway(form);
    LAppWebAccount account;
    const bool passes = OpenSignedInAccount(form, account) && account.IsEnabled() &&
                        account.MayOpenBusiness(form.Profile().BusinessName());
    return passes || TurnAway(form);
}

bool AuthenticateAction(LWebletForm& form) {
    if (!WLValidateSession(form)) return false;
    LAppWebAccount account;
    const bool passes = OpenSignedInAccount(form, account) &&
                        account.MayOpenBusiness(form.Profile().BusinessName());
    return passes || TurnAway(form);
}

bool AuthenticateAccount(LWebletForm& form) {
    LAppWebAccount account;
    return (OpenSignedInAccount(form, account) && account.IsEnabled()) || TurnAway(form);
}

bool OpenSignedInAccount(LWebletForm& form, LAppWebAccount& account) {
    return OpenWebAccount(account, form.Session().GetString("user"));
}

bool WLIsAdministator(LWebletForm& form) {
    LAppWebAccount account;
    return OpenSignedInAccount(form, account) && account.IsAdministrator();
}

LAccountRole WLGetPriviligies(LWebletForm& form) {
    LAppWebAccount account;
    return OpenSignedInAccount(form, account) ? account.Role() : LAccountRole::kViewer;
}

bool WLMayChange(LWebletForm& form) { return WLGetPriviligies(form) != LAccountRole::kViewer; }

void WLNotBuiltYet(LWebletForm& form, std::string_view title) {
    if (!AuthenticateEx(form)) return;
    WLMessagePage(form, title,
                  "<center>This page is not part of this version yet.<br><br>"
                  "Click <a href=\"main\">here</a> to return to the main page.</center>");
}

void WLNotBuiltYet(LWebletForm& form) { WLNotBuiltYet(form, TitleFromPageName(form.PageName())); }
