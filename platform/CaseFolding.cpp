#include "platform/CaseFolding.h"

#include <unicode/uchar.h>
#include <unicode/utf8.h>

#include <algorithm>
#include <cstdint>

namespace {

bool IsAscii(std::string_view text) {
    return std::all_of(text.begin(), text.end(),
                       [](char byte) { return static_cast<unsigned char>(byte) < 0x80; });
}

char FoldAscii(char byte) {
    return byte >= 'A' && byte <= 'Z' ? static_cast<char>(byte - 'A' + 'a') : byte;
}

bool SameAsciiLetter(char left, char right) { return FoldAscii(left) == FoldAscii(right); }

void AppendCodePoint(std::string& out, UChar32 codePoint) {
    uint8_t bytes[U8_MAX_LENGTH];
    int32_t length = 0;
    U8_APPEND_UNSAFE(bytes, length, codePoint);
    out.append(reinterpret_cast<const char*>(bytes), static_cast<size_t>(length));
}

// The positions are size_t, so that a text of any length is walked safely.
std::string FoldUnicode(std::string_view text) {
    const auto* bytes = reinterpret_cast<const uint8_t*>(text.data());
    std::string out;
    out.reserve(text.size());
    for (size_t pos = 0; pos < text.size();) {
        const size_t start = pos;
        UChar32 codePoint = 0;
        U8_NEXT(bytes, pos, text.size(), codePoint);
        if (codePoint < 0) {
            out += text.substr(start, pos - start);  // no UTF-8
        } else {
            AppendCodePoint(out, u_foldCase(codePoint, U_FOLD_CASE_DEFAULT));
        }
    }
    return out;
}

}  // namespace

std::string FoldCase(std::string_view text) {
    if (!IsAscii(text)) return FoldUnicode(text);
    std::string out(text);
    std::transform(out.begin(), out.end(), out.begin(), FoldAscii);
    return out;
}

bool EqualIgnoringCase(std::string_view left, std::string_view right) {
    if (IsAscii(left) && IsAscii(right)) {
        return std::equal(left.begin(), left.end(), right.begin(), right.end(), SameAsciiLetter);
    }
    return FoldCase(left) == FoldCase(right);
}

bool ContainsIgnoringCase(std::string_view text, std::string_view part) {
    if (IsAscii(text) && IsAscii(part)) {
        return part.empty() || std::search(text.begin(), text.end(), part.begin(), part.end(),
                                           SameAsciiLetter) != text.end();
    }
    return FoldCase(text).find(FoldCase(part)) != std::string::npos;
}
