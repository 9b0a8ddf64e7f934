// Which business a partner application may work on: each has an Access Authentication Code of its
// own, and the code alone opens the door.
#pragma once

#include <string>

class LProfile;
class LWebletForm;

// The code of the business in that folder; empty: integration is off for it.
std::string AccessCodeOf(const std::string& businessFolder);

// Opens the listed business whose code equals the request's "auth" exactly in `profile`, the
// default business before the others. Otherwise false, with the reason in `message`.
[[nodiscard]] bool WLValidateAuthKey(const LWebletForm& form, LProfile& profile,
                                     std::string& message);
