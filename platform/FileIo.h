// Whole files in few system calls.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

// Writes all of `text` at the descriptor's position, resuming after short writes and interruptions.
// False when the system refuses; errno tells why and part of the text may have been written.
[[nodiscard]] bool WriteAll(int fd, std::string_view text);

// Replaces `out` by what is left to read from `fd`. False on a read error.
[[nodiscard]] bool ReadAll(int fd, std::string& out);

// The whole file, or nothing when it cannot be opened or read (a folder counts as unreadable).
std::optional<std::string> ReadFile(const std::string& path);

bool FileExists(const std::string& path);    // anything at that path
bool FolderExists(const std::string& path);  // a folder, also through a link

// Creates the folder `path` and its missing parents. True when it is there afterwards. `mode` is
// that of the folder itself, missing parents get 0700.
bool MakeFolderTree(const std::string& path, unsigned mode = 0777);
