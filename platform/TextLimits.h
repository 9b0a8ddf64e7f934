// The lengths that stored and shown texts are held to. Limits are bytes; longer text is cut, never
// refused, and only CutText cuts.
#pragma once

#include <cstddef>
#include <string_view>

inline constexpr size_t kMaxTextBytes = 259;        // keys, paths and short texts
inline constexpr size_t kMaxFieldNameBytes = 63;    // the name of a record field
inline constexpr size_t kMaxSettingKeyBytes = 519;  // "section/name" of a user setting

// The first `maxBytes` bytes of `text`, or all of it. The cut may fall inside a character, so that
// a cut name always finds what was stored under the same cut name.
constexpr std::string_view CutText(std::string_view text, size_t maxBytes = kMaxTextBytes) {
    return text.substr(0, maxBytes);
}
