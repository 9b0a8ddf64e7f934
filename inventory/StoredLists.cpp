#include "inventory/StoredLists.h"

#include <algorithm>
#include <array>
#include <charconv>

#include "datastore/StoredNumbers.h"
#include "platform/TextLimits.h"

std::string_view TakePiece(std::string_view& element) {
    const size_t slash = element.find('/');
    const std::string_view piece = element.substr(0, slash);
    element.remove_prefix(slash == std::string_view::npos ? element.size() : slash + 1);
    return CutText(piece);
}

int DecimalsFor(double value, int atLeast) {
    std::array<char, 512> buffer;
    const auto result = std::to_chars(buffer.data(), buffer.data() + buffer.size(), value,
                                      std::chars_format::fixed);
    if (result.ec != std::errc()) return atLeast;
    const auto point = std::find(buffer.data(), result.ptr, '.');
    return point == result.ptr ? atLeast
                               : std::max(atLeast, static_cast<int>(result.ptr - point) - 1);
}

void AppendExactNumber(std::string& out, double value, int atLeast) {
    AppendStoredReal(out, value, DecimalsFor(value, atLeast));
}

void AppendStoredText(std::string& out, std::string_view text) {
    for (const char byte : text) {
        if (byte == '"') out += '"';
        out += byte;
    }
}
