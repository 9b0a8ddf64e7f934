// Whether two large files are the same, by their digests.
#pragma once

#include <optional>
#include <string>

// The MD5 digest (RFC 1321) of the file, 16 bytes; good against accidents, not against forgers.
// Nothing when the file cannot be read or the cryptographic library, loaded here, is missing.
std::optional<std::string> Md5OfFile(const std::string& path);
