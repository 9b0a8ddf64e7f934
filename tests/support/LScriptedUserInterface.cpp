#include "tests/support/LScriptedUserInterface.h"

#include <gtest/gtest.h>

#include <utility>

class LScriptedUserInterface::Process final : public LProcessInterface {
public:
    explicit Process(LScriptedUserInterface& ui) : ui_(ui) {}

    void SetStatus(std::string_view text) override {
        ui_.statusTexts_.emplace_back(text);
        ++shown_;
        if (ui_.onStatus_) ui_.onStatus_(text);
    }
    void SetProgress(double fraction) override {
        EXPECT_TRUE(fraction >= 0 && fraction <= 1) << "progress " << fraction;
    }
    bool IsCancelled() const override { return ui_.cancelAfter_ && shown_ >= *ui_.cancelAfter_; }

private:
    LScriptedUserInterface& ui_;
    size_t shown_ = 0;
};

LScriptedUserInterface::~LScriptedUserInterface() {
    for (const Expected& question : expected_) {
        ADD_FAILURE() << "never asked: " << question.title << ": " << question.text;
    }
}

void LScriptedUserInterface::ExpectAsk(std::string title, std::string text,
                                       std::vector<std::string> buttons, std::string answer) {
    expected_.push_back(
        {std::move(title), std::move(text), std::move(buttons), std::move(answer), false});
}

void LScriptedUserInterface::ExpectDelete(std::string title, std::string text, std::string answer) {
    ExpectAsk(std::move(title), std::move(text), {"Delete", "Cancel"}, std::move(answer));
}

void LScriptedUserInterface::ExpectPick(std::string title, std::optional<std::string> answer) {
    expected_.push_back({std::move(title), {}, {}, std::move(answer), true});
}

std::string LScriptedUserInterface::Ask(std::string_view title, std::string_view text,
                                        const std::vector<std::string>& buttons) {
    if (expected_.empty() || expected_.front().isPick) {
        ADD_FAILURE() << "unexpected question: " << title << ": " << text;
        return {};
    }
    const Expected question = std::move(expected_.front());
    expected_.pop_front();
    EXPECT_EQ(title, question.title);
    EXPECT_EQ(text, question.text);
    EXPECT_EQ(buttons, question.buttons) << text;
    const bool asExpected =
        title == question.title && text == question.text && buttons == question.buttons;
    return asExpected ? *question.answer : std::string();
}

void LScriptedUserInterface::Inform(std::string_view title, std::string_view text) {
    informed_.push_back({std::string(title), std::string(text)});
}

std::optional<std::string> LScriptedUserInterface::Pick(std::string_view title) {
    if (expected_.empty() || !expected_.front().isPick) {
        ADD_FAILURE() << "unexpected choice of a path: " << title;
        return std::nullopt;
    }
    const Expected question = std::move(expected_.front());
    expected_.pop_front();
    EXPECT_EQ(title, question.title);
    return title == question.title ? question.answer : std::nullopt;
}

std::optional<std::string> LScriptedUserInterface::PickFolder(std::string_view title) {
    return Pick(title);
}

std::optional<std::string> LScriptedUserInterface::PickSaveFile(std::string_view title,
                                                                std::string_view) {
    return Pick(title);
}

bool LScriptedUserInterface::RunProcess(std::string_view title,
                                        const std::function<bool(LProcessInterface&)>& process) {
    processTitles_.emplace_back(title);
    Process running(*this);
    return process(running);
}
