// The user interface of an action handler: operations ask and tell, one page answers.
#pragma once

#include <optional>
#include <string>
#include <vector>

#include "platform/LUserInterface.h"

class LWebletForm;

// A question counts as answered with its first button when the request is confirmed; otherwise it
// is answered with nothing, and Finish asks it on a page whose Yes repeats the request: an action
// handler therefore calls its operation the same way in both requests. What an operation tells is
// collected and shown by Finish. Processes run at once, without a display.
class LWebUserInterface final : public LUserInterface {
public:
    explicit LWebUserInterface(LWebletForm& form) : form_(form) {}

    std::string Ask(std::string_view title, std::string_view text,
                    const std::vector<std::string>& buttons) override;
    void Inform(std::string_view title, std::string_view text) override;
    std::optional<std::string> PickFolder(std::string_view title) override;
    std::optional<std::string> PickSaveFile(std::string_view title,
                                            std::string_view extension) override;
    bool RunProcess(std::string_view title,
                    const std::function<bool(LProcessInterface&)>& process) override;

    // Whether a question waits for its answer; nothing was changed then.
    bool HasOpenQuestion() const { return question_.has_value(); }
    // What was told so far, one text per line; for a dialog to show as its error.
    std::string ToldText() const;

    // Sends the one answer of the request: the open question, or what was told with a link to
    // `page`, or a redirect to `page`.
    void Finish(std::string_view page);

private:
    struct LMessage {
        std::string title, text;
    };
    LWebletForm& form_;
    std::optional<LMessage> question_;  // the first that was asked
    std::vector<LMessage> told_;
};
