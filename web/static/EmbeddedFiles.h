// The static files that the executable carries in itself: style sheets, scripts, the guide.
#pragma once

#include <span>
#include <string_view>

struct LEmbeddedFile {
    std::string_view path;  // below the web folder, such as "s.css" or "guide/index.html"
    std::string_view content;
};

// In the order of their listing in web/static/CMakeLists.txt; lives as long as the program.
std::span<const LEmbeddedFile> EmbeddedFiles();
