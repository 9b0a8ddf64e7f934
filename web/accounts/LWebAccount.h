// What any web account is: an address, a password, and the lock against guessing.
#pragma once

#include <ctime>
#include <string_view>

#include "datastore/LFileStoreListBase.h"

enum class LLogonResult { kOk = 0, kWrongPassword = 1, kLocked = 3 };

inline constexpr int kLogonLockSeconds = 1200;
inline constexpr int kLogonFailuresAllowed = 5;

class LWebAccount : public LRecord {
public:
    // Checks the password and keeps count of failures; the change waits in the record until it is
    // flushed. After more than kLogonFailuresAllowed failures the account stays locked until
    // kLogonLockSeconds after the last of them.
    LLogonResult ValidateLogon(std::string_view password, std::time_t now = std::time(nullptr));
};

// Takes as long for a nearly right text as for a wrong one.
bool EqualInConstantTime(std::string_view left, std::string_view right);
