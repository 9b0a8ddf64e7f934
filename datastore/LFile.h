// Files and folders as wholes: copied, moved, tried for writing.
#pragma once

#include <string>

enum class LCopyTimes {
    kKeep,  // the copy is as old as its source: a backup
    kNew    // it counts as changed now: restored records must look changed to whoever asks
};
enum class LCopyResult {
    kCopied,
    kVanished,  // there was no source any more; nothing was made
    kFailed     // errno tells why; nothing of the copy remains
};

struct LFile {
    // Whether new entries can be made in `folder`. False when it is no folder.
    static bool TestFolderWritable(const std::string& folder);

    // Replaces `target` by a copy of the plain file `source`, with its permissions (the owner may
    // always read and write) and without its file flags, so that a locked file gives an ordinary
    // copy. The source is read under a shared lock: no record is caught half written. Names that
    // begin with "." belong to locks and files in the making; they are not waited for.
    static LCopyResult CopyFile(const std::string& source, const std::string& target,
                                LCopyTimes times);

    // Moves a file or folder; where another one is in the way only an empty folder gives way.
    // Across file systems it is copied and then removed. What fails is tried again until
    // `timeoutMs` have passed; with 0 it is tried once. After false `from` is as it was, and errno
    // tells why. (Only where a part of `from` cannot be removed after the copy, both remain.)
    [[nodiscard]] static bool RenameFile(const std::string& from, const std::string& to,
                                         int timeoutMs);

    // Removes the folder and all that is in it. True when it is gone.
    static bool RemoveFolderTree(const std::string& folder);
};
