// Formatted output into an answer. Text reaches a page only through an escaping directive.
#pragma once

#include <array>
#include <cstdint>
#include <span>
#include <string>
#include <string_view>
#include <type_traits>

#include "web/server/TextEscapes.h"

class LWebletForm;

// One argument of wfprintf.
class LFormatArgument {
public:
    enum class Kind { kText, kSigned, kUnsigned, kReal };
    LFormatArgument(const char* text) : kind_(Kind::kText), text_(text) {}
    LFormatArgument(std::string_view text) : kind_(Kind::kText), text_(text) {}
    LFormatArgument(const std::string& text) : kind_(Kind::kText), text_(text) {}
    LFormatArgument(double value) : kind_(Kind::kReal), real_(value) {}
    template <typename T, std::enable_if_t<std::is_integral_v<T>, int> = 0>
    LFormatArgument(T value) {
        if constexpr (std::is_signed_v<T>) {
            kind_ = Kind::kSigned;
            signed_ = value;
        } else {
            kind_ = Kind::kUnsigned;
            unsigned_ = value;
        }
    }

    Kind GetKind() const { return kind_; }
    std::string_view Text() const { return text_; }
    int64_t Signed() const { return signed_; }
    uint64_t Unsigned() const { return unsigned_; }
    double Real() const { return real_; }

private:
    Kind kind_;
    std::string_view text_;
    union {
        int64_t signed_ = 0;
        uint64_t unsigned_;
        double real_;
    };
};

// Appends `format` to `out`, each directive taking one argument of any kind:
//   %s  the text as it is: only for pieces of the program's own markup
//   %H  escaped for HTML text and for attributes in either kind of quotes
//   %J  escaped for the inside of a script string in either kind of quotes, also within a page
//   %U  percent-encoded UTF-8, for a part of an address
//   %d %u %lu %i  a whole number;  %.2f  a real number, "." as decimal mark;  %%  a percent sign
// A width with leading zeros or a precision is honoured for numbers. A directive without an
// argument and an argument without a directive are our own mistakes: asserted, and printed as
// nothing.
void AppendFormatted(std::string& out, std::string_view format,
                     std::span<const LFormatArgument> arguments);

template <typename... Arguments>
std::string FormatText(std::string_view format, const Arguments&... arguments) {
    std::string out;
    const std::array<LFormatArgument, sizeof...(arguments)> list{LFormatArgument(arguments)...};
    AppendFormatted(out, format, list);
    return out;
}

// Sends `text` as it is, within its length in milliseconds and 60 s more. False when the client has
// gone or the server stops; the rest of the answer is then pointless but harmless.
bool WebletSend(LWebletForm& form, std::string_view text);

// Formats and sends at once; one call should be a good piece of a page, not a word.
template <typename... Arguments>
bool wfprintf(LWebletForm& form, std::string_view format, const Arguments&... arguments) {
    return WebletSend(form, FormatText(format, arguments...));
}
template <typename... Arguments>
bool wfprintfutf8(LWebletForm& form, std::string_view format, const Arguments&... arguments) {
    return wfprintf(form, format, arguments...);
}
