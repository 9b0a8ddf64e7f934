// What pages and dialogs that work on a business share.
#pragma once

#include "web/accounts/PageCheck.h"
#include "web/framework/LPageScript.h"

class WebDialogEAHelper {
public:
    explicit WebDialogEAHelper(LWebletForm& form) : helperForm_(form) {}

    // The signed-in account's role number: 1 Administrator, 2 User, 3 Viewer.
    int GetPriviligies();
    bool IsViewer() { return GetPriviligies() == static_cast<int>(LAccountRole::kViewer); }
    // The business that the session works on.
    LProfile& Profile() { return helperForm_.Profile(); }
    // Tells the page's script the role, so that it can disable editing.
    void PassPriviligies(LPageScript& script);

private:
    LWebletForm& helperForm_;
    int role_ = 0;  // 0: not asked yet
};
