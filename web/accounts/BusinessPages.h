// The pages and dialogs that work on a business: each makes the full page check before it does
// anything, and a viewer's submit passes for done without saving.
#pragma once

#include "web/accounts/WebDialogEAHelper.h"
#include "web/framework/LWebDialog.h"
#include "web/framework/LWebDialogUploadFiles.h"
#include "web/framework/LWebDialogWithNavTabs.h"
#include "web/framework/LWebPageMain.h"
#include "web/framework/LWebPageWithNavTabs.h"

template <typename Base>
class LCheckedPage : public Base, public WebDialogEAHelper {
public:
    // What `Base` takes beside the form.
    template <typename... Arguments>
    explicit LCheckedPage(LWebletForm& form, const Arguments&... arguments)
        : Base(form, arguments...), WebDialogEAHelper(form) {}

protected:
    bool Authenticate() override { return AuthenticateEx(this->Form()); }
};

template <typename Base>
class LCheckedDialog : public LCheckedPage<Base> {
public:
    using LCheckedPage<Base>::LCheckedPage;

protected:
    bool MayChange() override { return !this->IsViewer(); }
};

class LWebPageEx : public LCheckedPage<LWebPage> {
public:
    using LCheckedPage::LCheckedPage;
};
class LWebPageMainEx : public LCheckedPage<LWebPageMain> {
public:
    using LCheckedPage::LCheckedPage;
};
class LWebPageWithNavTabsEx : public LCheckedPage<LWebPageWithNavTabs> {
public:
    using LCheckedPage::LCheckedPage;
};
class LWebDialogEA : public LCheckedDialog<LWebDialog> {
public:
    using LCheckedDialog::LCheckedDialog;
};
class LWebDialogEAUploadFilesWithNavTabs : public LCheckedDialog<LWebDialogUploadFiles> {
public:
    using LCheckedDialog::LCheckedDialog;  // (form) or (form, maxBytes)
};
class LWebDialogEAWithNavTabs : public LCheckedDialog<LWebDialogWithNavTabs> {
public:
    using LCheckedDialog::LCheckedDialog;
};
