// The heads of answers that every page shares, to the byte.
#pragma once

#include <string>
#include <string_view>

class LWebletForm;

// "200 OK", closing, not cached, HTML.
inline constexpr std::string_view kHtmlHead =
    "HTTP/1.1 200 OK\r\nConnection: close\r\nCache-Control: no-cache\r\n"
    "Content-Type: text/html; charset=utf-8\r\n\r\n";

// The head of a "302 Found" to a page of this server, without a body. The name is cleaned of line
// breaks.
std::string WLRedirectHeader(std::string_view page);
// Sends it.
void WLRedirect(LWebletForm& form, std::string_view page);
