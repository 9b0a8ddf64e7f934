// The seam between rules and screens: operations ask, tell and show progress through it in their
// own exact words; the desktop, the web pages and the tests each answer in their way.
#pragma once

#include <functional>
#include <initializer_list>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

// The running side of a cancellable process: reports where it stands and asks whether to go on.
class LProcessInterface {
public:
    virtual ~LProcessInterface() = default;
    virtual void SetStatus(std::string_view text) = 0;
    virtual void SetProgress(double fraction) = 0;  // 0 to 1
    virtual bool IsCancelled() const = 0;
};

// Implementations are used by one thread at a time.
class LUserInterface {
public:
    virtual ~LUserInterface() = default;

    // Asks a question and returns the chosen button's text; empty when the question was closed
    // without an answer, which every caller treats as the safe choice.
    virtual std::string Ask(std::string_view title, std::string_view text,
                            const std::vector<std::string>& buttons) = 0;
    virtual void Inform(std::string_view title, std::string_view text) = 0;

    // Chooses one of `rows` and one of `buttons` for it; nothing when closed without a choice. Asks
    // one after the other unless the implementation has a list to show.
    struct LListChoice {
        size_t row;
        std::string button;
    };
    virtual std::optional<LListChoice> ChooseFromList(std::string_view title, std::string_view text,
                                                      const std::vector<std::string>& rows,
                                                      const std::vector<std::string>& buttons);

    // Picks an existing folder, or a file to save to; nothing when the user changed their mind.
    virtual std::optional<std::string> PickFolder(std::string_view title) = 0;
    // The same beginning at `startFolder` where the display can (it may be empty or missing).
    virtual std::optional<std::string> PickFolderFrom(std::string_view title,
                                                      std::string_view startFolder) {
        (void)startFolder;
        return PickFolder(title);
    }
    virtual std::optional<std::string> PickSaveFile(std::string_view title,
                                                    std::string_view extension) = 0;

    // Runs `process` under a progress display with this title. Returns what the process returns.
    virtual bool RunProcess(std::string_view title,
                            const std::function<bool(LProcessInterface&)>& process) = 0;
};

// Asks with "Delete" and "Cancel"; true for "Delete".
bool AskDelete(LUserInterface& ui, std::string_view title, std::string_view text);

// A refusal that belongs to a field of a form: what was wrong with which input.
template <typename Field>
struct LFieldError {
    std::optional<Field> field;  // none: no complaint, or one about no field in particular
    std::string message;
    bool failed = false;  // also set where the input is refused without a message

    bool IsNone() const { return !failed; }
    static LFieldError None() { return {}; }
    static LFieldError At(Field field, std::string message) {
        return {field, std::move(message), true};
    }
    static LFieldError General(std::string message) {
        return {std::nullopt, std::move(message), true};
    }
};
