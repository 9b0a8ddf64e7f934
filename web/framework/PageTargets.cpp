#include "web/framework/PageTargets.h"

#include <algorithm>

#include "web/server/WebletOutput.h"

namespace {

// Browsers drop control characters from addresses and read a backslash as a slash.
bool IsTreacherous(char byte) {
    const auto value = static_cast<unsigned char>(byte);
    return value < 0x20 || value == 0x7f || value == '\\';
}

bool IsPageOfThisServer(std::string_view target) {
    if (target.empty() || target.front() == ' ' || target.starts_with("//")) return false;
    if (std::any_of(target.begin(), target.end(), IsTreacherous)) return false;
    // A colon ends a scheme unless the path, the parameters or a fragment began before it.
    const size_t end = target.find_first_of(":/?#");
    return end == std::string_view::npos || target[end] != ':';
}

}  // namespace

std::string WLSafePage(std::string_view target) {
    return std::string(IsPageOfThisServer(target) ? target : "main");
}

std::string WLMakeLink(
    std::string_view page,
    std::initializer_list<std::pair<std::string_view, std::string_view>> parameters) {
    std::string link(page);
    char separator = '?';
    for (const auto& [name, value] : parameters) {
        link += separator;
        link += FormatText("%U=%U", name, value);
        separator = '&';
    }
    return link;
}
