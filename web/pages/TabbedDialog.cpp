#include "web/pages/TabbedDialog.h"

#include <algorithm>

#include "platform/RandomSource.h"
#include "web/framework/PageTargets.h"
#include "web/framework/TabData.h"

namespace {

constexpr size_t kDraftLetters = 8;

bool IsDraftName(std::string_view text) {
    return text.size() == kDraftLetters &&
           std::all_of(text.begin(), text.end(), [](char c) { return c >= 'a' && c <= 'z'; });
}

}  // namespace

LTabbedDialog::LTabbedDialog(LWebletForm& form, std::span<const LDialogTab> tabs, size_t shown)
    : LWebDialogEAWithNavTabs(form), tabs_(tabs), shown_(shown) {
    KeepParameter("id");
}

void LTabbedDialog::PrepareTabs(const std::string& key) {
    const std::string draft = Form().Parameter("draft");
    draft_ = IsDraftName(draft) ? draft : RandomLetters(kDraftLetters);
    SetTabName(DataName(shown_));
    for (const LDialogTab& tab : tabs_) {
        Tabs().AddTab(WLMakeLink(tab.page, {{"id", key}, {"draft", draft_}}), tab.caption);
    }
    Tabs().Select(shown_);
}

void LTabbedDialog::Generate() {
    PassPriviligies(Script());
    AddHiddenField("draft", draft_);
    const std::optional<LHashTable> kept = ReadTabData(Form(), DataName(shown_));
    GenerateTab(kept ? *kept : StoredFields(shown_));
}

std::optional<LHashTable> LTabbedDialog::EnteredFields(size_t tab) {
    if (tab == shown_) return Form().Parameters();
    return ReadTabData(Form(), DataName(tab));
}

LHashTable LTabbedDialog::Fields(size_t tab) {
    std::optional<LHashTable> entered = EnteredFields(tab);
    return entered ? *entered : StoredFields(tab);
}

bool LTabbedDialog::ShowError(size_t tab, int control, const std::string& message) {
    if (tab == shown_) {
        PopupControlDataInvalid(control, message);
    } else {
        PopupBoxError(std::string(tabs_[tab].caption) + ": " + message);
    }
    return false;
}

void LTabbedDialog::CmCancel() {
    for (size_t tab = 0; tab < tabs_.size(); ++tab) DropTabData(Form(), DataName(tab));
}
