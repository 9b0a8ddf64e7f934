// The unit by which systemd's user manager runs the background service.
#pragma once

#include <string>
#include <string_view>

inline constexpr std::string_view kSystemdUnitName = "quillmarsh.service";

// $XDG_CONFIG_HOME/systemd/user/quillmarsh.service, by default below ~/.config.
std::string SystemdUnitPath();

// Starts the program at `agentPath` at log-in and again when it fails, but not when it was told to
// stop. The variables that say where our folders are go along, because the manager knows nothing of
// those of this process.
std::string SystemdUnitText(std::string_view agentPath);

// Writes it whole or not at all; errno tells why not.
[[nodiscard]] bool WriteSystemdUnit(std::string_view agentPath);
