#include "platform/LUserInterface.h"

bool AskDelete(LUserInterface& ui, std::string_view title, std::string_view text) {
    return ui.Ask(title, text, {"Delete", "Cancel"}) == "Delete";
}
