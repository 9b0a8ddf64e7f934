// Other programs that this one runs. None goes through a shell, so no name or path can turn into a
// command.
#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "platform/LSignalObject.h"

// The executable file of that name in the first folder of $PATH that has one; empty when none has.
std::string FindOnPath(std::string_view name);

// Runs words[0], looked up on the PATH, with the other words as its arguments and with nothing to
// read; what it writes is dropped. Returns its exit status; -1 when it cannot be run, was ended by
// a signal, or was killed because it had not ended after `timeoutMs` or before `stop` was set.
int RunProgram(const std::vector<std::string>& words, int timeoutMs,
               const LSignalObject* stop = nullptr);

// Starts the program at the path words[0] in a session of its own, as nobody's child: it goes on
// when we and our terminal go. Its error output is added to the file `logPath` (mode 0600). Returns
// once it has written `marker` to its standard output; false when it could not be started or ended
// or let `timeoutMs` pass without that.
bool StartDetachedProgram(const std::vector<std::string>& words, const std::string& logPath,
                          std::string_view marker, int timeoutMs);
