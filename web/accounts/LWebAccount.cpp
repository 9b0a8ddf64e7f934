#include "web/accounts/LWebAccount.h"

#include <algorithm>

#include "platform/TextLimits.h"

namespace {
constexpr int kMostFailures = 1000000;  // a count that nobody needs to know more exactly
}

LLogonResult LWebAccount::ValidateLogon(std::string_view password, std::time_t now) {
    const int64_t lastFailure = std::max<int64_t>(GetInt64("LogonFailTime", 0), 0);
    const int failures = std::clamp(GetInt("LogonFailures", 0), 0, kMostFailures);
    const bool inWindow = now - lastFailure < kLogonLockSeconds;
    if (inWindow && failures > kLogonFailuresAllowed) return LLogonResult::kLocked;

    // Both are held to the length that a stored text has.
    if (!EqualInConstantTime(CutText(GetView("Password")), CutText(password))) {
        SetInt("LogonFailures", inWindow ? failures + 1 : 1);
        SetInt64("LogonFailTime", now);
        return LLogonResult::kWrongPassword;
    }
    SetInt("LogonFailures", 0);
    SetInt64("LogonFailTime", 0);
    return LLogonResult::kOk;
}

bool EqualInConstantTime(std::string_view left, std::string_view right) {
    // Only the length of the right one, which the asking side knows anyway, decides how long.
    unsigned difference = left.size() == right.size() ? 0 : 1;
    for (size_t index = 0; index < right.size(); ++index) {
        const char byte = index < left.size() ? left[index] : '\0';
        difference |= static_cast<unsigned char>(byte ^ right[index]);
    }
    return difference == 0;
}
