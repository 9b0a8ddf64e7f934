#include "platform/LUserInterface.h"

#include <algorithm>

std::optional<LUserInterface::LListChoice> LUserInterface::ChooseFromList(
    std::string_view title, std::string_view text, const std::vector<std::string>& rows,
    const std::vector<std::string>& buttons) {
    const std::string row = Ask(title, text, rows);
    const auto chosen = std::find(rows.begin(), rows.end(), row);
    if (chosen == rows.end()) return std::nullopt;
    std::string button = Ask(title, row, buttons);
    if (std::find(buttons.begin(), buttons.end(), button) == buttons.end()) return std::nullopt;
    return LListChoice{static_cast<size_t>(chosen - rows.begin()), std::move(button)};
}

bool AskDelete(LUserInterface& ui, std::string_view title, std::string_view text) {
    return ui.Ask(title, text, {"Delete", "Cancel"}) == "Delete";
}
