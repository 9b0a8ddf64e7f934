// The service's log: standard error, and every control client connected at that moment.
#pragma once

#include <functional>
#include <string_view>

enum LServiceLogLevel { kLogInfo = 0, kLogWarning = 1, kLogError = 2 };

// Writes one line "text1 text2" to standard error (with the local time) and hands both texts to the
// running service's clients. Any thread. Control characters become blanks: one call is one line.
void LServiceLog(std::string_view text1, std::string_view text2 = {}, int level = kLogInfo);

// Who passes log lines on to the control clients; the running engine sets it and takes it away
// before it goes (after the call no thread is inside the old one).
using LServiceLogSink = std::function<void(std::string_view, std::string_view, int)>;
void SetServiceLogSink(LServiceLogSink sink);
