// A dialog of several tabs that are saved together, whichever of them is shown.
#pragma once

#include <optional>
#include <span>
#include <string>

#include "datastore/LHashTable.h"
#include "web/accounts/BusinessPages.h"

struct LDialogTab {
    const char *page, *caption;
    const char* data;  // begins the name under which its fields are kept
};

// OK saves all tabs: the fields of the one that is shown, and of the others what was kept when they
// were left, or what is stored. The field "draft" names one opening of the dialog, so that kept
// fields never turn up in another. `Base` is LWebDialogEAWithNavTabs or, for a dialog that receives
// files, LWebDialogEAUploadFilesWithNavTabs.
template <typename Base>
class LTabbedDialog : public Base {
protected:
    // `tabs` outlives the dialog; `shown` is the index of the tab that this page is.
    LTabbedDialog(LWebletForm& form, std::span<const LDialogTab> tabs, size_t shown);

    // In Prepare: makes the row of tabs, for the record of that key (empty: a new one).
    void PrepareTabs(const std::string& key);
    void Generate() override;
    void CmCancel() override;

    virtual LHashTable StoredFields(size_t tab) = 0;
    virtual void GenerateTab(const LHashTable& fields) = 0;

    // As they are to be saved.
    LHashTable Fields(size_t tab);
    // What a person has entered on that tab; nothing when it was not opened.
    std::optional<LHashTable> EnteredFields(size_t tab);
    // Beside its field, or above the form when the field stands on another tab. Always false.
    bool ShowError(size_t tab, int control, const std::string& message);
    // The name under which the tab's fields and files are kept.
    std::string DataName(size_t tab) const { return tabs_[tab].data + draft_; }

private:
    std::span<const LDialogTab> tabs_;
    size_t shown_;
    std::string draft_;
};

extern template class LTabbedDialog<LWebDialogEAWithNavTabs>;
extern template class LTabbedDialog<LWebDialogEAUploadFilesWithNavTabs>;
