#include "platform/LTempFile.h"

#include <fcntl.h>
#include <unistd.h>

#include <cerrno>
#include <cstdio>
#include <utility>

#include "platform/FileIo.h"
#include "platform/RandomSource.h"

namespace {

constexpr int kNameAttempts = 100;

// With the slash; empty for a name in the current folder.
std::string FolderOf(const std::string& path) { return path.substr(0, path.rfind('/') + 1); }

// Makes the new name last through a power cut. Failing is no failure: the file itself is whole.
void SyncFolder(const std::string& folder) {
    const LFileDescriptor fd(
        ::open(folder.empty() ? "." : folder.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC));
    if (fd.IsOpen()) ::fsync(fd.Get());
}

}  // namespace

LTempFile::LTempFile(std::string target, unsigned mode) : target_(std::move(target)) {
    // A name of its own, not the target's with something behind: that could become too long.
    for (int attempt = 0; attempt < kNameAttempts; ++attempt) {
        path_ = FolderOf(target_) + ".tmp." + RandomLetters(8);
        fd_ = LFileDescriptor(::open(path_.c_str(), O_RDWR | O_CREAT | O_EXCL | O_CLOEXEC, mode));
        if (fd_.IsOpen() || errno != EEXIST) return;
    }
}

LTempFile::~LTempFile() { Discard(); }

void LTempFile::Discard() {
    if (!fd_.IsOpen()) return;
    const int error = errno;
    ::unlink(path_.c_str());
    fd_.Close();
    errno = error;
}

bool LTempFile::Write(std::string_view text) {
    if (fd_.IsOpen() && WriteAll(fd_.Get(), text)) return true;
    Discard();
    return false;
}

bool LTempFile::Commit() {
    if (!fd_.IsOpen()) return false;
    if (::fsync(fd_.Get()) != 0 || std::rename(path_.c_str(), target_.c_str()) != 0) {
        Discard();
        return false;
    }
    fd_.Close();
    SyncFolder(FolderOf(target_));
    return true;
}
