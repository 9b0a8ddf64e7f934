// The symbols of a locale as settings hold them.
#pragma once

#include <cstddef>
#include <string>
#include <string_view>

inline constexpr size_t kMaxSymbolBytes = 10;            // of a symbol in use
inline constexpr size_t kMaxLocaleSymbolCharacters = 5;  // of one taken from the locale

// The first five characters of the locale's symbol, or `otherwise` where the locale has none.
std::string LocaleSymbolOr(std::string_view symbol, std::string_view otherwise);
