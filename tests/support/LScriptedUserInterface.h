// A user who answers by a script: each question must be the next one expected, in these words.
#pragma once

#include <deque>
#include <functional>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "platform/LUserInterface.h"

// A question that was not expected, or comes in other words, fails the test and is left without an
// answer; so does, when the object goes, a question that was expected and never asked.
class LScriptedUserInterface final : public LUserInterface {
public:
    struct Shown {
        std::string title, text;
        friend bool operator==(const Shown&, const Shown&) = default;
    };

    LScriptedUserInterface() = default;
    ~LScriptedUserInterface() override;
    LScriptedUserInterface(const LScriptedUserInterface&) = delete;
    LScriptedUserInterface& operator=(const LScriptedUserInterface&) = delete;

    void ExpectAsk(std::string title, std::string text, std::vector<std::string> buttons,
                   std::string answer);
    // A question with "Delete" and "Cancel".
    void ExpectDelete(std::string title, std::string text, std::string answer = "Delete");
    void ExpectPick(std::string title, std::optional<std::string> answer);
    // The process is cancelled once it has shown `count` status texts.
    void CancelAfterStatus(size_t count) { cancelAfter_ = count; }
    // Called at each status text, so that a test can do something in the middle of a process.
    void OnStatus(std::function<void(std::string_view)> call) { onStatus_ = std::move(call); }

    const std::vector<Shown>& Informed() const { return informed_; }
    const std::vector<std::string>& ProcessTitles() const { return processTitles_; }
    const std::vector<std::string>& StatusTexts() const { return statusTexts_; }

    std::string Ask(std::string_view title, std::string_view text,
                    const std::vector<std::string>& buttons) override;
    void Inform(std::string_view title, std::string_view text) override;
    std::optional<std::string> PickFolder(std::string_view title) override;
    std::optional<std::string> PickSaveFile(std::string_view title,
                                            std::string_view extension) override;
    bool RunProcess(std::string_view title,
                    const std::function<bool(LProcessInterface&)>& process) override;

private:
    class Process;
    struct Expected {
        std::string title, text;
        std::vector<std::string> buttons;
        std::optional<std::string> answer;
        bool isPick = false;
    };
    std::optional<std::string> Pick(std::string_view title);

    std::deque<Expected> expected_;
    std::vector<Shown> informed_;
    std::vector<std::string> processTitles_, statusTexts_;
    std::optional<size_t> cancelAfter_;
    std::function<void(std::string_view)> onStatus_;
};
