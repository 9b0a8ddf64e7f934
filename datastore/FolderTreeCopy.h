// A whole folder tree, copied under a process that shows how far it is and may be stopped.
#pragma once

#include <sys/types.h>

#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "datastore/LFile.h"
#include "platform/LUserInterface.h"

// Copies what is in `source` into the existing folder `destination`: folders (mode 0777) and plain
// files, also through links; sockets, pipes and devices are left out, and so is the destination
// itself where it lies inside the source, and a link that leads back up. What vanishes meanwhile is
// left out as well. Everything has reached the disk when it succeeds.
class ProcessCopyFolderTree {
public:
    ProcessCopyFolderTree(std::string source, std::string destination, LCopyTimes times)
        : source_(std::move(source)), destination_(std::move(destination)), times_(times) {}

    // False when it was stopped or failed; what was copied so far stays. Status texts name the
    // files. Without a `process` nothing is shown and nobody can stop it.
    [[nodiscard]] bool Run(LProcessInterface* process);
    // After a failure, in one line: which file, and the system's reason. Empty when it was stopped.
    const std::string& Problem() const { return problem_; }
    size_t FilesCopied() const { return filesCopied_; }

private:
    using LFolderId = std::pair<dev_t, ino_t>;

    bool ProcessCopyFolderTreeRecursive(LProcessInterface* process, const std::string& source,
                                        const std::string& destination);
    bool CopyEntry(LProcessInterface* process, const std::string& from, const std::string& to);
    bool CopySubFolder(LProcessInterface* process, const std::string& from, const std::string& to,
                       LFolderId id);
    bool CopyPlainFile(LProcessInterface* process, const std::string& from, const std::string& to);
    bool Fail(std::string_view path);

    const std::string source_, destination_;
    const LCopyTimes times_;
    std::vector<LFolderId> entered_;  // the destination, and the folders on the way down
    size_t filesInAll_ = 0, filesCopied_ = 0;
    std::string problem_;
};
