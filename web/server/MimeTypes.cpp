#include "web/server/MimeTypes.h"

#include <algorithm>
#include <array>

namespace {

struct LMimeRow {
    std::string_view extension;
    LMimeType type;
};

constexpr std::array<LMimeRow, 10> kMimeTypes{{
    {"css", {"text/css", true, true}},
    {"jpg", {"image/jpeg", true, true}},
    {"gif", {"image/gif", true, true}},
    {"png", {"image/png", true, true}},
    // Pages and bitmaps are asked for anew each time, documents are saved rather than shown.
    {"html", {"text/html", false, true}},
    {"bmp", {"image/bmp", false, true}},
    {"ico", {"image/x-icon", true, true}},
    {"tiff", {"image/tiff", true, true}},
    {"js", {"text/javascript", true, true}},
    {"pdf", {"application/pdf", false, false}},
}};

char ToLower(char c) { return c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c; }

bool EqualsLower(std::string_view text, std::string_view lower) {
    return std::equal(text.begin(), text.end(), lower.begin(), lower.end(),
                      [](char a, char b) { return ToLower(a) == b; });
}

}  // namespace

std::string_view FileNameOf(std::string_view path) { return path.substr(path.rfind('/') + 1); }

LMimeType LExtToMimeType(std::string_view path) {
    const std::string_view name = FileNameOf(path);
    const size_t dot = name.rfind('.');
    if (dot != std::string_view::npos) {
        for (const LMimeRow& row : kMimeTypes) {
            if (EqualsLower(name.substr(dot + 1), row.extension)) return row.type;
        }
    }
    return {"application/octet-stream", false, false};
}
