// The SHA-256 digest of a text.
#pragma once

#include <string>
#include <string_view>

// In 64 capital hexadecimal digits. Needs no library, so that a file name made of it can always be
// had; too slow for large files. Any thread.
std::string Sha256Digest(std::string_view text);
