#include "web/accounts/WebDialogEAHelper.h"

int WebDialogEAHelper::GetPriviligies() {
    if (role_ == 0) role_ = static_cast<int>(WLGetPriviligies(helperForm_));
    return role_;
}

void WebDialogEAHelper::PassPriviligies(LPageScript& script) {
    script.Add("var iPrivileges = %d;\n", GetPriviligies());
}
