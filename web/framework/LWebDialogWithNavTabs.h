// A dialog spread over several pages with a row of tabs; what was entered on one tab is kept in the
// session while the others are looked at.
#pragma once

#include "web/framework/LWebDialog.h"
#include "web/framework/LWebNavTabs.h"

class LWebDialogWithNavTabs : public LWebDialog {
public:
    using LWebDialog::LWebDialog;

protected:
    // Filled in Prepare or InitDialog.
    LWebNavTabs& Tabs() { return tabs_; }
    // The name under which this tab's fields are kept; see TabData.h. Empty: they are not.
    void SetTabName(std::string name) { tabName_ = std::move(name); }
    const std::string& TabName() const { return tabName_; }

    void PrintAboveForm() override { tabs_.PrintNavTabsSaving(Out(), tabName_); }

private:
    LWebNavTabs tabs_;
    std::string tabName_;
};
