// The settings that let partner applications in: turned on by a code, off by none.
#pragma once

#include <string>

#include "datastore/LProfile.h"
#include "platform/LUserInterface.h"

inline constexpr char kLinkCodeLabel[] =
    "Access Authentication Code (must be entered in client program):";
inline constexpr char kLinkNeedsWebAccess[] =
    "Web Access must be enabled through the Web Access tab for Quillmarsh to function as a server "
    "for application integration.";

enum class LLinkField { kCode };
struct LLinkSettings {
    bool isOn = false;
    std::string code;
};

LLinkSettings ReadLinkSettings(const LProfile& profile);
// Checks first; on an error nothing is stored. Off stores an empty code. A code that another
// business has is refused, also one that is marked deleted: it may come back.
[[nodiscard]] LFieldError<LLinkField> SaveLinkSettings(const LProfile& profile,
                                                       const LLinkSettings& settings);
