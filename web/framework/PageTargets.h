// Addresses of pages of this server.
#pragma once

#include <initializer_list>
#include <string>
#include <string_view>
#include <utility>

// `target` when it names a page of this server, otherwise "main": an empty target and one with a
// scheme, a host, a leading "//", a backslash or a control character lead there, so that no request
// can send a browser elsewhere.
std::string WLSafePage(std::string_view target);

// "page?name=value&name=value" with names and values percent-encoded. A request's address is cut at
// kMaxTextBytes, so long texts do not belong into a link.
std::string WLMakeLink(
    std::string_view page,
    std::initializer_list<std::pair<std::string_view, std::string_view>> parameters);
