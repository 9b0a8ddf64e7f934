#include "service/control/LServiceLog.h"

#include <unistd.h>

#include <algorithm>
#include <array>
#include <ctime>
#include <string>

#include "platform/FileIo.h"
#include "service/control/LReplaceableHook.h"

namespace {

LReplaceableHook<std::string_view, std::string_view, int>& Sink() {
    static LReplaceableHook<std::string_view, std::string_view, int> sink;
    return sink;
}

std::string WithoutControlCharacters(std::string_view text) {
    std::string out(text);
    std::replace_if(
        out.begin(), out.end(), [](unsigned char byte) { return byte < ' ' || byte == 0x7f; }, ' ');
    return out;
}

std::string LocalTime() {
    const std::time_t now = std::time(nullptr);
    std::tm parts{};
    std::array<char, 32> text{};
    if (::localtime_r(&now, &parts) == nullptr) return {};
    return {text.data(), std::strftime(text.data(), text.size(), "%Y-%m-%d %H:%M:%S", &parts)};
}

void WriteToStandardError(const std::string& text1, const std::string& text2) {
    std::string line = LocalTime() + " " + text1;
    if (!text2.empty()) line += " " + text2;
    // Where standard error has gone, there is nobody left to tell.
    [[maybe_unused]] const bool written = WriteAll(STDERR_FILENO, line += '\n');
}

}  // namespace

void LServiceLog(std::string_view text1, std::string_view text2, int level) {
    const std::string clean1 = WithoutControlCharacters(text1);
    const std::string clean2 = WithoutControlCharacters(text2);
    WriteToStandardError(clean1, clean2);
    Sink().Call(clean1, clean2, level);
}

void SetServiceLogSink(LServiceLogSink sink) { Sink().Set(std::move(sink)); }
