// What is checked before the logo of the printed order is stored.
#pragma once

#include <string_view>

#include "datastore/LProfile.h"
#include "platform/LUserInterface.h"

enum class LLogoField { kFile, kHeight };

// `file` is a path, empty for no logo. `height` is what was typed, in inches or millimetres as the
// profile measures; it is checked when there is a logo or when something was typed.
LFieldError<LLogoField> CheckLogo(const LProfile& profile, std::string_view file,
                                  std::string_view height);
