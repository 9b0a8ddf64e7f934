#include "datastore/FolderTreeCopy.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <cstring>
#include <filesystem>

#include "platform/LFileDescriptor.h"

namespace {

constexpr mode_t kFolderMode = 0777;

// The names in a folder, read before the first is copied, so that what others add and remove
// meanwhile cannot make the walk begin again. Nothing when it cannot be read.
bool ReadNames(const std::string& folder, std::vector<std::string>& names) {
    std::error_code error;
    std::filesystem::directory_iterator entry(folder, error);
    for (; !error && entry != std::filesystem::directory_iterator(); entry.increment(error)) {
        names.push_back(entry->path().filename().string());
    }
    if (error) errno = error.value();
    return !error;
}

// Only for the progress: links are not followed, faults do not count.
size_t CountFiles(const std::string& folder) {
    size_t count = 0;
    std::error_code error;
    std::filesystem::recursive_directory_iterator entry(folder, error);
    for (; !error && entry != std::filesystem::recursive_directory_iterator();
         entry.increment(error)) {
        std::error_code ignored;
        if (!entry->is_directory(ignored)) ++count;
    }
    return count;
}

bool WaitUntilOnDisk(const std::string& folder) {
    const LFileDescriptor fd(::open(folder.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC));
    return fd.IsOpen() && ::syncfs(fd.Get()) == 0;
}

bool IsStopped(const LProcessInterface* process) {
    return process != nullptr && process->IsCancelled();
}

}  // namespace

bool ProcessCopyFolderTree::Run(LProcessInterface* process) {
    filesInAll_ = process == nullptr ? 0 : CountFiles(source_);
    struct stat from {
    }, to{};
    if (::stat(source_.c_str(), &from) != 0) return Fail(source_);
    if (::stat(destination_.c_str(), &to) != 0) return Fail(destination_);
    entered_ = {{to.st_dev, to.st_ino}, {from.st_dev, from.st_ino}};
    if (!ProcessCopyFolderTreeRecursive(process, source_, destination_)) return false;
    return WaitUntilOnDisk(destination_) || Fail(destination_);
}

bool ProcessCopyFolderTree::ProcessCopyFolderTreeRecursive(LProcessInterface* process,
                                                           const std::string& source,
                                                           const std::string& destination) {
    std::vector<std::string> names;
    if (!ReadNames(source, names)) {
        const bool hasVanished = errno == ENOENT && source != source_;
        return hasVanished || Fail(source);
    }
    for (const std::string& name : names) {
        if (IsStopped(process)) return false;
        if (!CopyEntry(process, source + "/" + name, destination + "/" + name)) return false;
    }
    return !IsStopped(process);
}

bool ProcessCopyFolderTree::CopyEntry(LProcessInterface* process, const std::string& from,
                                      const std::string& to) {
    struct stat status {};
    if (::stat(from.c_str(), &status) != 0) {
        const bool isNothing = errno == ENOENT || errno == ELOOP;  // vanished; a link to nowhere
        return isNothing || Fail(from);
    }
    if (S_ISREG(status.st_mode)) return CopyPlainFile(process, from, to);
    if (!S_ISDIR(status.st_mode)) return true;
    return CopySubFolder(process, from, to, {status.st_dev, status.st_ino});
}

bool ProcessCopyFolderTree::CopySubFolder(LProcessInterface* process, const std::string& from,
                                          const std::string& to, LFolderId id) {
    if (std::find(entered_.begin(), entered_.end(), id) != entered_.end()) return true;
    if (::mkdir(to.c_str(), kFolderMode) != 0 && errno != EEXIST) return Fail(to);
    entered_.push_back(id);
    const bool isCopied = ProcessCopyFolderTreeRecursive(process, from, to);
    entered_.pop_back();
    return isCopied;
}

bool ProcessCopyFolderTree::CopyPlainFile(LProcessInterface* process, const std::string& from,
                                          const std::string& to) {
    if (process != nullptr) {
        process->SetStatus(std::string_view(from).substr(source_.size() + 1));
        const size_t inAll = std::max(filesInAll_, filesCopied_ + 1);
        process->SetProgress(static_cast<double>(filesCopied_) / static_cast<double>(inAll));
    }
    if (IsStopped(process)) return false;
    const LCopyResult result = LFile::CopyFile(from, to, times_);
    if (result == LCopyResult::kFailed) return Fail(from);
    if (result == LCopyResult::kCopied) ++filesCopied_;
    return true;
}

bool ProcessCopyFolderTree::Fail(std::string_view path) {
    const int error = errno;
    problem_ = "cannot copy " + std::string(path) + ": " + std::strerror(error);
    errno = error;
    return false;
}
