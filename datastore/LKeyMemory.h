// Finds the smallest free number of a list folder without asking for each.
#pragma once

#include <sys/types.h>

#include <cstdint>
#include <memory>
#include <string>
#include <string_view>

#include "datastore/LFolderWatches.h"
#include "datastore/LNewRecordFile.h"
#include "datastore/LUsedNumbers.h"
#include "platform/LMutex.h"

// Puts `text` into a new record file of the list folder at `path`. Its name is the smallest number
// from 1 that no file has, whoever else creates and deletes there. Returns the number, or 0 when no
// file could be made; nothing is left behind then. Any thread.
uint64_t CreateNumberedRecord(const std::string& path, std::string_view text);

// The numbers in use in one folder. The first question lists the folder; afterwards a watch on it
// tells what came and went, so that nothing need be listed again. Where there is no watch to be had
// (a network file system, no watches left), or the folder at the path is another one now, it lists
// again. Its knowledge is a hint only: the exclusive creation decides.
class LKeyMemory {
public:
    explicit LKeyMemory(std::string path) : path_(std::move(path)) {}
    const std::string& Path() const { return path_; }
    // `folder` is the open folder, not yet read from. Any thread.
    uint64_t Create(int folder, LNewRecordFile& file) L_EXCLUDES(mutex_);

private:
    void Refresh(int folder) L_REQUIRES(mutex_);
    bool IsSameFolder(int folder) L_REQUIRES(mutex_);
    bool ApplyChanges() L_REQUIRES(mutex_);
    void List(int folder) L_REQUIRES(mutex_);

    const std::string path_;
    LMutex mutex_;
    std::shared_ptr<LFolderWatches::Watch> watch_ L_GUARDED_BY(mutex_);  // null: none to be had
    dev_t device_ L_GUARDED_BY(mutex_) = 0;
    ino_t inode_ L_GUARDED_BY(mutex_) = 0;
    LUsedNumbers used_ L_GUARDED_BY(mutex_);
};
