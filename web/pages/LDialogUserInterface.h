// The user interface of a dialog's OK: pressing it was the answer, and what stands against it is
// shown beside the form.
#pragma once

#include <string>

#include "platform/LSilentProcess.h"
#include "platform/LUserInterface.h"

// Every question is answered with its first button; what the operation tells is kept for the
// dialog to show. Processes run at once, without a display.
class LDialogUserInterface final : public LUserInterface {
public:
    std::string Ask(std::string_view, std::string_view,
                    const std::vector<std::string>& buttons) override {
        return buttons.empty() ? std::string() : buttons.front();
    }
    void Inform(std::string_view, std::string_view text) override {
        told_ += (told_.empty() ? "" : "\n") + std::string(text);
    }
    std::optional<std::string> PickFolder(std::string_view) override { return std::nullopt; }
    std::optional<std::string> PickSaveFile(std::string_view, std::string_view) override {
        return std::nullopt;
    }
    bool RunProcess(std::string_view,
                    const std::function<bool(LProcessInterface&)>& process) override {
        LSilentProcess silent;
        return process(silent);
    }

    const std::string& Told() const { return told_; }  // one text per line; empty for none

private:
    std::string told_;
};
