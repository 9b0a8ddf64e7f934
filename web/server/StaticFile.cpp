#include "web/server/StaticFile.h"

#include <fcntl.h>
#include <sys/stat.h>

#include <array>

#include "platform/FileLock.h"
#include "web/server/MimeTypes.h"
#include "web/server/WebletOutput.h"

namespace {

constexpr int kFileLockMs = 1000;

std::string EntityTag(const LStaticFile& file) {
    return std::to_string(file.modified % 10000000) + std::to_string(file.size);
}

std::string LastModified(std::time_t time) {
    static constexpr std::array<const char*, 7> kDays{"Sun", "Mon", "Tue", "Wed",
                                                      "Thu", "Fri", "Sat"};
    static constexpr std::array<const char*, 12> kMonths{"Jan", "Feb", "Mar", "Apr", "May", "Jun",
                                                         "Jul", "Aug", "Sep", "Oct", "Nov", "Dec"};
    std::tm utc{};
    ::gmtime_r(&time, &utc);
    return FormatText("%s, %.2d %s 20%.2d %.2d:%.2d:%.2d GMT",
                      kDays[static_cast<size_t>(utc.tm_wday)], utc.tm_mday,
                      kMonths[static_cast<size_t>(utc.tm_mon)], utc.tm_year % 100, utc.tm_hour,
                      utc.tm_min, utc.tm_sec);
}

}  // namespace

LStaticFile OpenStaticFile(const std::string& path) {
    LStaticFile file;
    if (path.find('\0') != std::string::npos) return file;
    // Non-blocking only matters for a pipe, which would hold the thread until somebody writes.
    LFileDescriptor fd(::open(path.c_str(), O_RDONLY | O_CLOEXEC | O_NONBLOCK));
    if (!fd.IsOpen()) return file;
    flocktimed(fd.Get(), LFileLockKind::kShared, kFileLockMs);
    struct stat status {};
    if (::fstat(fd.Get(), &status) != 0 || !S_ISREG(status.st_mode)) return file;
    file.fd = std::move(fd);
    file.size = status.st_size;
    file.modified = status.st_mtime;
    return file;
}

LStaticFileHead MakeStaticFileHead(const std::string& path, const LStaticFile& file) {
    const LMimeType type = LExtToMimeType(path);
    LStaticFileHead head{
        type.contentType, type.isCached ? "max-age=3600" : "max-age=0", {}, {}, {}};
    if (!type.isInline) {
        const std::string_view name = FileNameOf(path);
        head.attachment =
            FormatText("Content-Disposition: attachment; filename=\"%s\"; filename*=UTF-8''%U\r\n",
                       PlainFileName(name), name);
    }
    head.tag = EntityTag(file);
    head.lastModified = LastModified(file.modified);
    return head;
}

bool LWebletIsFileModified(const LStaticFileHead& head, std::string_view ifNoneMatch,
                           std::string_view ifModifiedSince) {
    return ifNoneMatch.find(head.tag) == std::string_view::npos &&
           ifModifiedSince != head.lastModified;
}

std::string PlainFileName(std::string_view name) {
    std::string plain(name);
    for (char& c : plain) {
        if (static_cast<unsigned char>(c) < 0x20 || c == 0x7f || c == '"' || c == '\\') c = '_';
    }
    return plain;
}
