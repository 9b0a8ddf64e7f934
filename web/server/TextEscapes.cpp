#include "web/server/TextEscapes.h"

#include <algorithm>

namespace {

constexpr std::string_view kHexDigits = "0123456789ABCDEF";

void AppendHex(std::string& out, char c) {
    const auto byte = static_cast<unsigned char>(c);
    out += kHexDigits[byte >> 4];
    out += kHexDigits[byte & 15];
}

std::string_view HtmlEntity(char c) {
    switch (c) {
        case '&':
            return "&amp;";
        case '<':
            return "&lt;";
        case '>':
            return "&gt;";
        case '"':
            return "&quot;";
        case '\'':
            return "&#39;";
        default:
            return {};
    }
}

// What ends a script string, a script element or an attribute around the script.
bool NeedsScriptEscape(char c) {
    return static_cast<unsigned char>(c) < 0x20 || c == 0x7f ||
           std::string_view("\\'\"`<>&").find(c) != std::string_view::npos;
}

}  // namespace

void AppendHtmlEscaped(std::string& out, std::string_view text) {
    while (!text.empty()) {
        const size_t plain = std::min(text.find_first_of("&<>\"'"), text.size());
        out += text.substr(0, plain);
        text.remove_prefix(plain);
        if (text.empty()) return;
        out += HtmlEntity(text.front());
        text.remove_prefix(1);
    }
}

void AppendScriptEscaped(std::string& out, std::string_view text) {
    for (size_t i = 0; i < text.size(); ++i) {
        // U+2028 and U+2029 end a line, and so a string, in older scripts.
        const std::string_view three = text.substr(i, 3);
        if (three == "\xe2\x80\xa8" || three == "\xe2\x80\xa9") {
            out += three[2] == '\xa8' ? "\\u2028" : "\\u2029";
            i += 2;
        } else if (text[i] == '\n') {
            out += "\\n";
        } else if (text[i] == '\\') {
            out += "\\\\";
        } else if (NeedsScriptEscape(text[i])) {
            out += "\\x";
            AppendHex(out, text[i]);
        } else {
            out += text[i];
        }
    }
}

void AppendPercentEncoded(std::string& out, std::string_view text) {
    for (const char c : text) {
        const bool plain = (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z') ||
                           (c >= '0' && c <= '9') || c == '-' || c == '.' || c == '_' || c == '~';
        if (plain) {
            out += c;
        } else {
            out += '%';
            AppendHex(out, c);
        }
    }
}

std::string EscapeHtml(std::string_view text) {
    std::string out;
    AppendHtmlEscaped(out, text);
    return out;
}

std::string EscapeScript(std::string_view text) {
    std::string out;
    AppendScriptEscaped(out, text);
    return out;
}
