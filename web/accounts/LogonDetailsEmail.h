// The e-mail that tells users how to log on.
#pragma once

#include <string>

// Hands the message with the server's addresses and the password to the background sender. False
// when it takes none, or the e-mail settings name no way to send.
bool LSendLogonDetails(const std::string& email, const std::string& password);
