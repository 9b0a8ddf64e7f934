#include "service/email/MimeEncoding.h"

#include <algorithm>
#include <cstdint>

namespace {

constexpr size_t kBase64LineBytes = 57;   // 76 bytes of base64
constexpr size_t kEncodedWordBytes = 39;  // with "Subject: " before it still below 76
constexpr size_t kMaxQuotedLine = 76;
constexpr size_t kMaxLine = 998;         // RFC 5322 2.1.1
constexpr size_t kMaxPlainHeader = 900;  // and room for the header's name

bool IsPrintableAscii(char byte) { return byte >= ' ' && byte <= '~'; }
bool IsContinuation(char byte) { return (static_cast<unsigned char>(byte) & 0xC0) == 0x80; }

bool IsPlainHeader(std::string_view text) {
    return text.size() <= kMaxPlainHeader && text.find("=?") == std::string_view::npos &&
           std::all_of(text.begin(), text.end(), IsPrintableAscii);
}

// The front of `text` up to `maxBytes`, no character cut in two.
std::string_view TakeCharacters(std::string_view& text, size_t maxBytes) {
    size_t end = std::min(maxBytes, text.size());
    for (int i = 0; i < 3 && end < text.size() && IsContinuation(text[end]); ++i) --end;
    const std::string_view front = text.substr(0, end);
    text.remove_prefix(end);
    return front;
}

std::string EncodedWords(std::string_view text) {
    std::string out;
    while (!text.empty()) {
        if (!out.empty()) out += "\r\n ";
        out += "=?utf-8?B?" + EncodeBase64(TakeCharacters(text, kEncodedWordBytes)) + "?=";
    }
    return out;
}

// Line feeds with or without CR before them as CR LF; a CR alone stays.
std::string WithCrLf(std::string_view text) {
    std::string out;
    out.reserve(text.size() + text.size() / 16);
    for (size_t i = 0; i < text.size(); ++i) {
        if (text[i] == '\n' && (i == 0 || text[i - 1] != '\r')) out += '\r';
        out += text[i];
    }
    return out;
}

// Takes the first line of a text with CR LF ends, without its end; `hasEnd` tells of one.
std::string_view TakeLine(std::string_view& text, bool& hasEnd) {
    const size_t end = text.find("\r\n");
    hasEnd = end != std::string_view::npos;
    const std::string_view line = text.substr(0, end);
    text.remove_prefix(hasEnd ? end + 2 : text.size());
    return line;
}

bool IsBlank(char byte) { return byte == ' ' || byte == '\t'; }
bool IsTextByte(char byte) { return IsPrintableAscii(byte) || byte == '\t'; }

// Whether servers on the way leave the line alone: mailbox files mark a "From " at the start of a
// line, and blanks at its end get lost.
bool IsPlainLine(std::string_view line) {
    return line.size() <= kMaxLine && std::all_of(line.begin(), line.end(), IsTextByte) &&
           !line.starts_with("From ") && (line.empty() || !IsBlank(line.back()));
}

bool IsPlainText(std::string_view text) {
    for (bool hasEnd = false; !text.empty();) {
        if (!IsPlainLine(TakeLine(text, hasEnd))) return false;
    }
    return true;
}

void AppendQuotedByte(std::string& out, char byte) {
    constexpr std::string_view kDigits = "0123456789ABCDEF";
    const auto value = static_cast<unsigned char>(byte);
    out += '=';
    out += kDigits[value >> 4];
    out += kDigits[value & 15];
}

void AppendQuotedLine(std::string& out, std::string_view line) {
    size_t start = out.size();
    for (size_t i = 0; i < line.size(); ++i) {
        const char byte = line[i];
        const bool isLast = i + 1 == line.size();
        const bool isPlain = IsTextByte(byte) && byte != '=' && !(isLast && IsBlank(byte)) &&
                             !(i == 0 && line.starts_with("From "));
        const size_t size = isPlain ? 1 : 3;
        if (out.size() - start + size > kMaxQuotedLine - (isLast ? 0 : 1)) {
            out += "=\r\n";
            start = out.size();
        }
        if (isPlain) {
            out += byte;
        } else {
            AppendQuotedByte(out, byte);
        }
    }
}

std::string QuotedPrintable(std::string_view text) {
    std::string out;
    for (bool hasEnd = false; !text.empty();) {
        AppendQuotedLine(out, TakeLine(text, hasEnd));
        if (hasEnd) out += "\r\n";
    }
    return out;
}

bool IsBase64Shorter(std::string_view text) {
    const auto foreign = std::count_if(text.begin(), text.end(), [](char byte) {
        return !IsTextByte(byte) && byte != '\r' && byte != '\n';
    });
    return static_cast<size_t>(foreign) > text.size() / 6;
}

}  // namespace

std::string EncodeBase64(std::string_view bytes) {
    constexpr std::string_view kLetters =
        "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789+/";
    std::string out;
    out.reserve((bytes.size() + 2) / 3 * 4);
    for (size_t i = 0; i < bytes.size(); i += 3) {
        uint32_t group = 0;
        for (size_t k = 0; k < 3; ++k) {
            const char byte = i + k < bytes.size() ? bytes[i + k] : '\0';
            group = group << 8 | static_cast<unsigned char>(byte);
        }
        const size_t letters = std::min<size_t>(bytes.size() - i, 3) + 1;
        for (size_t k = 0; k < 4; ++k) {
            out += k < letters ? kLetters[group >> (18 - 6 * k) & 63] : '=';
        }
    }
    return out;
}

std::string EncodeBase64Lines(std::string_view bytes) {
    std::string out;
    out.reserve(bytes.size() / kBase64LineBytes * 78 + 80);
    for (size_t i = 0; i < bytes.size(); i += kBase64LineBytes) {
        out += EncodeBase64(bytes.substr(i, kBase64LineBytes)) + "\r\n";
    }
    return out;
}

std::string WithoutControls(std::string_view text) {
    std::string out(text);
    for (char& byte : out) {
        if (static_cast<unsigned char>(byte) < ' ' || byte == 0x7F) byte = ' ';
    }
    return out;
}

std::string LRFC2047Encode(std::string_view text) {
    std::string clean = WithoutControls(text);
    return IsPlainHeader(clean) ? clean : EncodedWords(clean);
}

std::string EncodeDisplayName(std::string_view name) {
    const std::string clean = WithoutControls(name);
    if (!IsPlainHeader(clean)) return EncodedWords(clean);
    constexpr std::string_view kSpecials = "()<>[]:;@\\,.\"";
    if (clean.find_first_of(kSpecials) == std::string::npos) return clean;
    std::string quoted = "\"";
    for (const char byte : clean) {
        if (byte == '"' || byte == '\\') quoted += '\\';
        quoted += byte;
    }
    return quoted + "\"";
}

std::string EncodeTextPart(std::string_view text) {
    const std::string lines = WithCrLf(text);
    std::string_view encoding = "7bit";
    std::string encoded = lines;
    if (!IsPlainText(lines)) {
        const bool isBase64 = IsBase64Shorter(lines);
        encoding = isBase64 ? "base64" : "quoted-printable";
        encoded = isBase64 ? EncodeBase64Lines(lines) : QuotedPrintable(lines);
    }
    return "Content-Transfer-Encoding: " + std::string(encoding) +
           "\r\nContent-Type: text/plain; charset=\"utf-8\"\r\n\r\n" + encoded;
}
