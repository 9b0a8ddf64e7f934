// Who may see a page, and who may change what it shows.
#pragma once

#include <string>

#include "web/accounts/LAppWebAccount.h"
#include "web/framework/StandardPages.h"

// The full check of every page and dialog: a session, an enabled account, a business that the
// account may open. False when the request was turned away and has been answered; unless there was
// no session it has been destroyed then. After true, form.Profile() is the checked business.
[[nodiscard]] bool AuthenticateEx(LWebletForm& form);

// For pages that need no business: a session and an enabled account; answers as AuthenticateEx
// does.
[[nodiscard]] bool AuthenticateAccount(LWebletForm& form);

// For AJAX calls and action handlers: a session and a business that the account may open. Whether
// the account is still enabled is deliberately not asked: one disabled meanwhile is met at the next
// page. Answers as WLValidateSession and AuthenticateEx do.
[[nodiscard]] bool AuthenticateAction(LWebletForm& form);

// The signed-in account; unbound when there is none.
bool OpenSignedInAccount(LWebletForm& form, LAppWebAccount& account);
// The "Administrator" field of the signed-in account.
bool WLIsAdministator(LWebletForm& form);
// The role of the signed-in account; kViewer when there is none.
LAccountRole WLGetPriviligies(LWebletForm& form);
// False for viewers: what they submit, delete or receive changes nothing.
bool WLMayChange(LWebletForm& form);

// The answer of a page that this version does not have yet: for a person who is logged on, a page
// titled `title` (empty: made from the page's name) that says so, with a way back.
void WLNotBuiltYet(LWebletForm& form, std::string_view title);
void WLNotBuiltYet(LWebletForm& form);
