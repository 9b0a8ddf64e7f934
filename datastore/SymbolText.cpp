#include "datastore/SymbolText.h"

std::string LocaleSymbolOr(std::string_view symbol, std::string_view otherwise) {
    if (symbol.empty()) return std::string(otherwise);
    size_t end = 0;
    for (size_t count = 0; end < symbol.size(); ++end) {
        const bool isStart = (static_cast<unsigned char>(symbol[end]) & 0xC0) != 0x80;
        if (isStart && ++count > kMaxLocaleSymbolCharacters) break;
    }
    return std::string(symbol.substr(0, end));
}
