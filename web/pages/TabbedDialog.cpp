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

template <typename Base>
LTabbedDialog<Base>::LTabbedDialog(LWebletForm& form, std::span<const LDialogTab> tabs,
                                   size_t shown)
    : Base(form), tabs_(tabs), shown_(shown) {
    this->KeepParameter("id");
}

template <typename Base>
void LTabbedDialog<Base>::PrepareTabs(const std::string& key) {
    const std::string draft = this->Form().Parameter("draft");
    draft_ = IsDraftName(draft) ? draft : RandomLetters(kDraftLetters);
    this->SetTabName(DataName(shown_));
    for (const LDialogTab& tab : tabs_) {
        this->Tabs().AddTab(WLMakeLink(tab.page, {{"id", key}, {"draft", draft_}}), tab.caption);
    }
    this->Tabs().Select(shown_);
}

template <typename Base>
void LTabbedDialog<Base>::Generate() {
    this->PassPriviligies(this->Script());
    this->AddHiddenField("draft", draft_);
    const std::optional<LHashTable> kept = ReadTabData(this->Form(), DataName(shown_));
    GenerateTab(kept ? *kept : StoredFields(shown_));
}

template <typename Base>
std::optional<LHashTable> LTabbedDialog<Base>::EnteredFields(size_t tab) {
    if (tab == shown_) return this->Form().Parameters();
    return ReadTabData(this->Form(), DataName(tab));
}

template <typename Base>
LHashTable LTabbedDialog<Base>::Fields(size_t tab) {
    std::optional<LHashTable> entered = EnteredFields(tab);
    return entered ? *entered : StoredFields(tab);
}

template <typename Base>
bool LTabbedDialog<Base>::ShowError(size_t tab, int control, const std::string& message) {
    if (tab == shown_) {
        this->PopupControlDataInvalid(control, message);
    } else {
        this->PopupBoxError(std::string(tabs_[tab].caption) + ": " + message);
    }
    return false;
}

template <typename Base>
void LTabbedDialog<Base>::CmCancel() {
    for (size_t tab = 0; tab < tabs_.size(); ++tab) DropTabData(this->Form(), DataName(tab));
}

template class LTabbedDialog<LWebDialogEAWithNavTabs>;
template class LTabbedDialog<LWebDialogEAUploadFilesWithNavTabs>;
