#include "web/accounts/PageCheck.h"

struct LSignedInFacts {
    std::string user;  // whom they are about: a handler may sign somebody else in
    bool isAdministrator = false;
    LAccountRole role = LAccountRole::kViewer;
};

namespace {

bool TurnAway(LWebletForm& form) {
    form.Session().Destroy();
    WLRedirect(form, "logon");
    return false;
}

// The facts of an account that is gone are those of nobody.
const LSignedInFacts& FactsOf(LWebletForm& form) {
    const std::string user = form.Session().GetString("user");
    if (!form.SignedInFacts() || form.SignedInFacts()->user != user) {
        LAppWebAccount account;
        if (!OpenSignedInAccount(form, account)) {
            form.SignedInFacts() = std::make_shared<LSignedInFacts>(LSignedInFacts{user});
        }
    }
    return *form.SignedInFacts();
}

// An administrator may open every business, whatever its name.
bool MayOpenBusiness(LWebletForm& form, const LAppWebAccount& account) {
    return account.IsAdministrator() || account.MayOpenBusiness(form.Profile().BusinessName());
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
    const bool passes =
        OpenSignedInAccount(form, account) && account.IsEnabled() && MayOpenBusiness(form, account);
    return passes || TurnAway(form);
}

bool AuthenticateAction(LWebletForm& form) {
    if (!WLValidateSession(form)) return false;
    LAppWebAccount account;
    const bool passes = OpenSignedInAccount(form, account) && MayOpenBusiness(form, account);
    return passes || TurnAway(form);
}

bool AuthenticateAccount(LWebletForm& form) {
    LAppWebAccount account;
    return (OpenSignedInAccount(form, account) && account.IsEnabled()) || TurnAway(form);
}

bool OpenSignedInAccount(LWebletForm& form, LAppWebAccount& account) {
    const std::string user = form.Session().GetString("user");
    if (!OpenWebAccount(account, user)) return false;
    form.SignedInFacts() = std::make_shared<LSignedInFacts>(
        LSignedInFacts{user, account.IsAdministrator(), account.Role()});
    return true;
}

bool WLIsAdministator(LWebletForm& form) { return FactsOf(form).isAdministrator; }

LAccountRole WLGetPriviligies(LWebletForm& form) { return FactsOf(form).role; }

bool WLMayChange(LWebletForm& form) { return WLGetPriviligies(form) != LAccountRole::kViewer; }

void WLNotBuiltYet(LWebletForm& form, std::string_view title) {
    if (!AuthenticateEx(form)) return;
    WLMessagePage(form, title,
                  "<center>This page is not part of this version yet.<br><br>"
                  "Click <a href=\"main\">here</a> to return to the main page.</center>");
}

void WLNotBuiltYet(LWebletForm& form) { WLNotBuiltYet(form, TitleFromPageName(form.PageName())); }
