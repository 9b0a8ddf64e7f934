#include "web/server/LWebPostFile.h"

#include <fcntl.h>
#include <unistd.h>

#include <cerrno>
#include <cstdio>
#include <ctime>
#include <filesystem>
#include <system_error>
#include <utility>

#include "platform/FileIo.h"
#include "platform/Folders.h"
#include "platform/RandomSource.h"
#include "platform/TextLimits.h"
#include "web/server/MimeTypes.h"

// Files are named SESSION.LETTERS.part while they belong to a request, SESSION.LETTERS when they
// are kept for the session.

namespace {

constexpr std::string_view kPart = ".part";
constexpr int kNameAttempts = 10;
constexpr auto kLongestRequest = std::chrono::hours(24);

std::string_view BaseName(std::string_view name) {
    const size_t separator = name.find_last_of("/\\");
    return separator == std::string_view::npos ? name : name.substr(separator + 1);
}

bool IsOrphan(const std::filesystem::directory_entry& entry, const std::string& sessionFolder) {
    const std::string name = entry.path().filename().string();
    std::error_code error;
    if (!FileExists(sessionFolder + "/" + name.substr(0, name.find('.')) + ".sess")) return true;
    return name.ends_with(kPart) &&
           std::filesystem::file_time_type::clock::now() - entry.last_write_time(error) >
               kLongestRequest;
}

}  // namespace

LWebPostFile::LWebPostFile(std::string_view fieldName, std::string_view name)
    : fieldName_(fieldName), name_(CutText(BaseName(name))) {
    for (std::string* text : {&fieldName_, &name_}) {
        std::erase_if(*text, [](char byte) {
            return static_cast<unsigned char>(byte) < 0x20 || byte == '\x7f';
        });
    }
}

LWebPostFile::LWebPostFile(LWebPostFile&& other) noexcept
    : fieldName_(std::move(other.fieldName_)),
      name_(std::move(other.name_)),
      path_(std::exchange(other.path_, {})) {}

LWebPostFile& LWebPostFile::operator=(LWebPostFile&& other) noexcept {
    if (this != &other) {
        Discard();
        fieldName_ = std::move(other.fieldName_);
        name_ = std::move(other.name_);
        path_ = std::exchange(other.path_, {});
    }
    return *this;
}

LFileDescriptor LWebPostFile::Create(std::string_view sessionId) {
    Discard();
    MakeFolderTree(UploadFolder(), 0700);
    LFileDescriptor file;
    for (int attempt = 0; attempt < kNameAttempts; ++attempt) {
        const std::string path = UploadFolder() + "/" + std::string(sessionId) + "." +
                                 RandomLetters(8) + std::string(kPart);
        file = LFileDescriptor(::open(path.c_str(), O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC, 0600));
        if (file.IsOpen()) path_ = path;
        if (file.IsOpen() || errno != EEXIST) break;
    }
    return file;
}

void LWebPostFile::Discard() {
    if (path_.empty()) return;
    const int error = errno;
    ::unlink(path_.c_str());
    path_.clear();
    errno = error;
}

std::string LWebPostFile::Keep() {
    if (path_.empty()) return {};
    const std::string kept = path_.substr(0, path_.size() - kPart.size());
    if (std::rename(path_.c_str(), kept.c_str()) != 0) return {};
    path_.clear();
    return kept;
}

std::string UploadFolder() { return GetSharedDataFolderApp() + "/Uploads"; }

void SweepUploads(const std::string& sessionFolder) {
    std::error_code error;
    std::filesystem::directory_iterator entries(UploadFolder(), error);
    for (; !error && entries != std::filesystem::directory_iterator(); entries.increment(error)) {
        if (IsOrphan(*entries, sessionFolder)) ::unlink(entries->path().c_str());
    }
}
