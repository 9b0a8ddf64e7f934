// What a static file's name says about its content.
#pragma once

#include <string>
#include <string_view>

struct LMimeType {
    std::string_view contentType;
    bool isCached;  // browsers may keep it for an hour
    bool isInline;  // shown in the browser; otherwise saved as a file
};

// By the extension of the file name, in any letter case; one that is not known is a download of no
// particular type.
LMimeType LExtToMimeType(std::string_view path);

// The file name in `path`.
std::string_view FileNameOf(std::string_view path);
