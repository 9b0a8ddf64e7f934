// This process and its neighbours, as the system sees them.
#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <vector>

// The name of this process as `ps` shows it, cut to 15 bytes. Only on the main thread.
void SetProcessName(std::string_view name);
// The ids of this user's running processes of that name (cut to 15 bytes), this process excluded.
std::vector<int> FindProcesses(std::string_view name);

// A variable of the environment that the process was started with; nothing when it had none, or is
// not ours to look into.
std::optional<std::string> EnvironmentOf(int processId, std::string_view variable);

std::string HostName();
// Raises the soft limit on open files to `count`, or to the hard limit where that is lower.
void RaiseOpenFilesLimit(unsigned long count);
