#include "web/server/ByteRange.h"

#include <algorithm>
#include <charconv>
#include <limits>
#include <optional>

namespace {

// A number too large to hold counts as the largest; nothing when `text` is no number.
std::optional<int64_t> ParsePosition(std::string_view text) {
    if (text.empty() || text.front() < '0' || text.front() > '9') return std::nullopt;
    int64_t number = 0;
    const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), number);
    if (end != text.data() + text.size()) return std::nullopt;
    return error == std::errc() ? number : std::numeric_limits<int64_t>::max();
}

LByteRange Part(int64_t first, int64_t last, int64_t size) {
    last = std::min(last, size - 1);
    if (last < first) return {LByteRange::Kind::kBad, 0, -1};
    return {LByteRange::Kind::kPart, first, last};
}

}  // namespace

LByteRange ParseByteRange(std::string_view text, int64_t size) {
    constexpr std::string_view kUnit = "bytes=";
    const size_t dash = text.find('-');
    if (!text.starts_with(kUnit) || dash == std::string_view::npos) return {};
    const std::string_view firstText = text.substr(kUnit.size(), dash - kUnit.size());
    std::string_view lastText = text.substr(dash + 1);
    lastText = lastText.substr(0, lastText.find_last_not_of(" \t") + 1);

    const std::optional<int64_t> first = ParsePosition(firstText);
    const std::optional<int64_t> last = ParsePosition(lastText);
    if (first && last) return Part(*first, *last, size);
    if (first && lastText.empty()) return Part(*first, size - 1, size);
    if (firstText.empty() && last) return Part(size - std::min(*last, size), size - 1, size);
    return {};
}
