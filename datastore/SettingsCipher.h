// The cipher of stored passwords: AES-256-GCM with a key that is built into the program.
#pragma once

#include <optional>
#include <string>
#include <string_view>

// Enciphered texts differ at every call, even for one text. `purpose` (the name of the setting) is
// authenticated too: what was stored for one setting does not decipher as another. The result is
// one line of base64. Nothing when the cryptographic library cannot be loaded. Any thread.
std::optional<std::string> EncipherSetting(std::string_view plain, std::string_view purpose);
// Nothing for what EncipherSetting did not make for this purpose.
std::optional<std::string> DecipherSetting(std::string_view stored, std::string_view purpose);
