#include "web/framework/LWebUserInterface.h"

#include "platform/LSilentProcess.h"
#include "web/framework/PageTargets.h"
#include "web/framework/StandardPages.h"
#include "web/server/WebletOutput.h"

std::string LWebUserInterface::Ask(std::string_view title, std::string_view text,
                                   const std::vector<std::string>& buttons) {
    if (WLIsConfirmed(form_) && !buttons.empty()) return buttons.front();
    if (!question_) question_ = LMessage{std::string(title), std::string(text)};
    return {};
}

void LWebUserInterface::Inform(std::string_view title, std::string_view text) {
    told_.push_back({std::string(title), std::string(text)});
}

std::optional<std::string> LWebUserInterface::PickFolder(std::string_view) { return std::nullopt; }

std::optional<std::string> LWebUserInterface::PickSaveFile(std::string_view, std::string_view) {
    return std::nullopt;
}

bool LWebUserInterface::RunProcess(std::string_view,
                                   const std::function<bool(LProcessInterface&)>& process) {
    LSilentProcess silent;
    return process(silent);
}

std::string LWebUserInterface::ToldText() const {
    std::string text;
    for (const LMessage& message : told_) {
        if (!text.empty()) text += '\n';
        text += message.text;
    }
    return text;
}

void LWebUserInterface::Finish(std::string_view page) {
    if (question_) {
        if (form_.Parameter("oncancel").empty()) WLSetOkCancelPage(form_, page, page);
        WLConfirmYesNo(form_, question_->title, question_->text);
    } else if (!told_.empty()) {
        WLMessagePage(form_, told_.front().title,
                      FormatText("<p style='white-space:pre-line'>%H</p>"
                                 "<p><a class='button primary' href='%H'>OK</a></p>",
                                 ToldText(), WLSafePage(page)));
    } else {
        WLRedirect(form_, page);
    }
}
