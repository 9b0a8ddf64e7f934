#include "web/accounts/AccountScripts.h"

#include "web/accounts/LogonPages.h"
#include "web/accounts/PasswordPages.h"
#include "web/framework/RunPage.h"
#include "web/server/LWebletScripts.h"

void InstallAccountScripts() {
    LWebletInstallScript("changepassword", WLWebDialogRun<LWebChangePasswordDialog>);
    LWebletInstallScript("changepasswordchanged", WLPasswordChanged);
    LWebletInstallScript("logoff", WLLogout);
    LWebletInstallScript("logon", WLWebDialogRun<LAppWebAccountLogonPage>);
    LWebletInstallScript("lostpassword", WLWebDialogRun<LWebLostPasswordDialog>);
    LWebletInstallScript("lostpasswordsent", WLLostPasswordSent);
}
