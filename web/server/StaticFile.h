// A file of the web folder and what an answer tells about it.
#pragma once

#include <cstdint>
#include <ctime>
#include <string>
#include <string_view>

#include "platform/LFileDescriptor.h"

struct LStaticFile {
    LFileDescriptor fd;
    int64_t size = 0;
    std::time_t modified = 0;
};

// Opens a plain file under a shared lock, so that nobody who writes it is caught in the middle; one
// who takes longer than a second is not waited for. Not open for anything else than a plain file.
LStaticFile OpenStaticFile(const std::string& path);

// The head lines that every answer with the file shares.
struct LStaticFileHead {
    std::string_view contentType;
    std::string_view cacheControl;
    std::string attachment;  // a whole line, or empty for what is shown in the browser
    std::string tag;         // its time modulo 10,000,000 and its size
    std::string lastModified;
};

LStaticFileHead MakeStaticFileHead(const std::string& path, const LStaticFile& file);

// Whether the client has another state of the file, or none, by the validators it sent.
bool LWebletIsFileModified(const LStaticFileHead& head, std::string_view ifNoneMatch,
                           std::string_view ifModifiedSince);

// `name` without what cannot stand inside double quotes on one line.
std::string PlainFileName(std::string_view name);
