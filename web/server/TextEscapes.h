// How a text is written where some of its characters would mean something else. All texts are
// UTF-8; what is none passes as it is.
#pragma once

#include <string>
#include <string_view>

// For HTML text, and for attributes in either kind of quotes.
void AppendHtmlEscaped(std::string& out, std::string_view text);
std::string EscapeHtml(std::string_view text);

// For the inside of a script string in either kind of quotes; the script may stand in a script
// element of a page or in an attribute.
void AppendScriptEscaped(std::string& out, std::string_view text);
std::string EscapeScript(std::string_view text);

// For a part of an address: everything but letters, digits and "-._~" as "%XX".
void AppendPercentEncoded(std::string& out, std::string_view text);
