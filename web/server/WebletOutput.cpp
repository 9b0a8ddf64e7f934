#include "web/server/WebletOutput.h"

#include <algorithm>
#include <cassert>
#include <charconv>
#include <climits>
#include <cmath>

#include "web/server/LWebletConnection.h"
#include "web/server/LWebletForm.h"
#include "web/server/TextEscapes.h"

namespace {

constexpr int kSendExtraMs = 60000;

struct LDirective {
    bool zeros = false;
    size_t width = 0;
    int precision = -1;  // none given
    char kind = 0;
};

size_t TakeNumber(std::string_view& format) {
    constexpr size_t kMost = 64;  // ours ask for two or three digits
    size_t number = 0;
    while (!format.empty() && format.front() >= '0' && format.front() <= '9') {
        number = std::min(number * 10 + static_cast<size_t>(format.front() - '0'), kMost);
        format.remove_prefix(1);
    }
    return number;
}

// `format` begins behind the percent sign and then behind the directive.
LDirective TakeDirective(std::string_view& format) {
    LDirective directive;
    if (format.starts_with('0')) directive.zeros = true;
    directive.width = TakeNumber(format);
    if (format.starts_with('.')) {
        format.remove_prefix(1);
        directive.precision = static_cast<int>(TakeNumber(format));
    }
    while (format.starts_with('l') || format.starts_with('z')) format.remove_prefix(1);
    if (format.empty()) return directive;
    directive.kind = format.front();
    format.remove_prefix(1);
    return directive;
}

struct LWholeNumber {
    bool negative = false;
    uint64_t magnitude = 0;
};

LWholeNumber FromSigned(int64_t value) {
    // The smallest number has no positive counterpart in its own type.
    return {value < 0, value < 0 ? 0 - static_cast<uint64_t>(value) : static_cast<uint64_t>(value)};
}

LWholeNumber FromReal(double value) {
    constexpr double kLimit = 9.2e18;
    if (std::isnan(value)) return {};
    return FromSigned(static_cast<int64_t>(std::clamp(std::trunc(value), -kLimit, kLimit)));
}

LWholeNumber WholeNumber(const LFormatArgument& argument) {
    switch (argument.GetKind()) {
        case LFormatArgument::Kind::kSigned:
            return FromSigned(argument.Signed());
        case LFormatArgument::Kind::kUnsigned:
            return {false, argument.Unsigned()};
        case LFormatArgument::Kind::kReal:
            return FromReal(argument.Real());
        case LFormatArgument::Kind::kText:
            break;
    }
    assert(!"a text for a number");
    return {};
}

double RealNumber(const LFormatArgument& argument) {
    switch (argument.GetKind()) {
        case LFormatArgument::Kind::kSigned:
            return static_cast<double>(argument.Signed());
        case LFormatArgument::Kind::kUnsigned:
            return static_cast<double>(argument.Unsigned());
        case LFormatArgument::Kind::kReal:
            return argument.Real();
        case LFormatArgument::Kind::kText:
            break;
    }
    assert(!"a text for a number");
    return 0;
}

// `digits` behind a sign, filled up to the width.
void AppendPadded(std::string& out, bool negative, std::string_view digits,
                  const LDirective& directive) {
    const size_t used = digits.size() + (negative ? 1 : 0);
    const size_t fill = directive.width > used ? directive.width - used : 0;
    if (!directive.zeros) out.append(fill, ' ');
    if (negative) out += '-';
    if (directive.zeros) out.append(fill, '0');
    out += digits;
}

void AppendWhole(std::string& out, const LFormatArgument& argument, const LDirective& directive) {
    if (argument.GetKind() == LFormatArgument::Kind::kText) {
        assert(!"a text for a number");
        return;
    }
    const LWholeNumber number = WholeNumber(argument);
    std::string digits = std::to_string(number.magnitude);
    const auto least = static_cast<size_t>(std::max(directive.precision, 0));
    if (digits.size() < least) digits.insert(0, least - digits.size(), '0');
    AppendPadded(out, number.negative, digits, directive);
}

void AppendReal(std::string& out, const LFormatArgument& argument, const LDirective& directive) {
    if (argument.GetKind() == LFormatArgument::Kind::kText) {
        assert(!"a text for a number");
        return;
    }
    const double value = RealNumber(argument);
    std::array<char, 400> buffer;  // 309 digits and the decimals
    const auto end =
        std::to_chars(buffer.data(), buffer.data() + buffer.size(), std::fabs(value),
                      std::chars_format::fixed, directive.precision < 0 ? 6 : directive.precision);
    const std::string_view digits(buffer.data(), static_cast<size_t>(end.ptr - buffer.data()));
    AppendPadded(out, std::signbit(value), digits, directive);
}

std::string PlainNumber(const LFormatArgument& argument) {
    std::string text;
    if (argument.GetKind() == LFormatArgument::Kind::kReal) {
        AppendReal(text, argument, {});
    } else {
        AppendWhole(text, argument, {});
    }
    return text;
}

void AppendText(std::string& out, const LFormatArgument& argument, char kind) {
    std::string number;
    std::string_view text = argument.Text();
    if (argument.GetKind() != LFormatArgument::Kind::kText) text = number = PlainNumber(argument);
    switch (kind) {
        case 'H':
            return AppendHtmlEscaped(out, text);
        case 'J':
            return AppendScriptEscaped(out, text);
        case 'U':
            return AppendPercentEncoded(out, text);
        default:
            out += text;
    }
}

void AppendArgument(std::string& out, const LFormatArgument& argument,
                    const LDirective& directive) {
    switch (directive.kind) {
        case 's':
        case 'H':
        case 'J':
        case 'U':
            return AppendText(out, argument, directive.kind);
        case 'd':
        case 'i':
        case 'u':
            return AppendWhole(out, argument, directive);
        case 'f':
            return AppendReal(out, argument, directive);
        default:
            assert(!"an unknown directive");
    }
}

}  // namespace

void AppendFormatted(std::string& out, std::string_view format,
                     std::span<const LFormatArgument> arguments) {
    size_t next = 0;
    for (;;) {
        const size_t percent = std::min(format.find('%'), format.size());
        out += format.substr(0, percent);
        if (percent == format.size()) break;
        format.remove_prefix(percent + 1);
        const LDirective directive = TakeDirective(format);
        if (directive.kind == '%') {
            out += '%';
        } else if (next < arguments.size()) {
            AppendArgument(out, arguments[next++], directive);
        } else {
            assert(!"a directive without an argument");
        }
    }
    assert(next == arguments.size());
}

bool WebletSend(LWebletForm& form, std::string_view text) {
    form.SetAnswered();
    if (text.empty()) return true;
    const size_t budget = std::min(text.size() + kSendExtraMs, static_cast<size_t>(INT_MAX));
    return form.Connection().ProcessSend(text, static_cast<int>(budget)) == LSocketResult::kOk;
}
