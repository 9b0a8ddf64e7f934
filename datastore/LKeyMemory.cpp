#include "datastore/LKeyMemory.h"

#include <fcntl.h>
#include <sys/stat.h>

#include <algorithm>
#include <vector>

#include "datastore/LFolderReader.h"
#include "platform/LFileDescriptor.h"

namespace {

// The folders asked for last, newest first. A bounded number: nobody says when a list is done with.
class LKeyMemories {
public:
    LKeyMemories() { LFolderWatches::OfProcess(); }  // must outlive the memories
    std::shared_ptr<LKeyMemory> Of(const std::string& path) {
        const LMutexLock lock(mutex_);
        auto found = std::find_if(memories_.begin(), memories_.end(),
                                  [&](const auto& memory) { return memory->Path() == path; });
        if (found == memories_.end()) {
            if (memories_.size() == kMaxMemories) memories_.pop_back();
            found = memories_.insert(memories_.end(), std::make_shared<LKeyMemory>(path));
        }
        std::rotate(memories_.begin(), found, found + 1);
        return memories_.front();
    }

private:
    static constexpr size_t kMaxMemories = 64;
    LMutex mutex_;
    std::vector<std::shared_ptr<LKeyMemory>> memories_ L_GUARDED_BY(mutex_);
};

LKeyMemories& Memories() {
    static LKeyMemories memories;
    return memories;
}

}  // namespace

uint64_t CreateNumberedRecord(const std::string& path, std::string_view text) {
    const LFileDescriptor folder(::open(path.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC));
    if (!folder.IsOpen()) return 0;
    LNewRecordFile file(folder.Get(), text);
    return Memories().Of(path)->Create(folder.Get(), file);
}

uint64_t LKeyMemory::Create(int folder, LNewRecordFile& file) {
    const LMutexLock lock(mutex_);
    Refresh(folder);
    for (uint64_t number = used_.SmallestFree();; number = used_.SmallestFree(number + 1)) {
        const std::string name = std::to_string(number) + ".dat";
        const LNewRecordFile::Result result = file.MakeAs(name.c_str());
        if (result == LNewRecordFile::Result::kFailed) return 0;
        used_.Add(number);
        if (result == LNewRecordFile::Result::kMade) return number;
    }
}

void LKeyMemory::Refresh(int folder) {
    if (IsSameFolder(folder) && watch_ != nullptr && ApplyChanges()) return;
    // Watch first and list then: what happens in between is told by the watch.
    watch_ = LFolderWatches::OfProcess().Start(folder);
    List(folder);
}

bool LKeyMemory::IsSameFolder(int folder) {
    struct stat status {};
    if (::fstat(folder, &status) != 0) return false;
    const bool isSame = status.st_dev == device_ && status.st_ino == inode_;
    device_ = status.st_dev;
    inode_ = status.st_ino;
    return isSame;
}

bool LKeyMemory::ApplyChanges() {
    std::vector<LFolderChange> changes;
    if (!LFolderWatches::OfProcess().Take(*watch_, changes)) return false;
    for (const LFolderChange& change : changes) {
        if (const auto number = NumberOfFileName(change.name)) {
            change.came ? used_.Add(*number) : used_.Remove(*number);
        }
    }
    return true;
}

void LKeyMemory::List(int folder) {
    used_.Clear();
    LFolderReader reader(folder);
    while (const LFolderReader::Entry* entry = reader.Next()) {
        if (const auto number = NumberOfFileName(entry->name)) used_.Add(*number);
    }
}
