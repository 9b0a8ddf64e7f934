// The platform's preferences store: one JSON object of texts for each user and machine, in
// $XDG_CONFIG_HOME/Quillmarsh/UserSettings.HOST.json. It may be edited by hand.
#pragma once

#include <optional>
#include <string>
#include <string_view>

// Every call reads the file anew, so that the service and the desktop see each other's changes.
// Any thread and any process may call; writers take turns through a lock file, and the file is
// replaced whole (temporary file, flush, rename, mode 0600).
std::optional<std::string> PreferencesGet(std::string_view key);
// False when nothing could be stored; the old file then stands. A file that is no JSON object is
// set aside as "....json.damaged" before the first write replaces it, so nothing typed by hand is
// lost. A text value is never refused: bytes that are no UTF-8 become the replacement character.
[[nodiscard]] bool PreferencesSet(std::string_view key, std::string_view value);
[[nodiscard]] bool PreferencesDelete(std::string_view key);
