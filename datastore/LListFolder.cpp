#include "datastore/LListFolder.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <functional>
#include <new>

#include "datastore/LKeyMemory.h"
#include "datastore/LPathLock.h"
#include "datastore/LRecord.h"
#include "datastore/RecordFile.h"
#include "datastore/RecordFileName.h"

namespace {

bool DifferInCaseOnly(std::string_view left, std::string_view right) {
    const auto lower = [](char c) { return c >= 'A' && c <= 'Z' ? static_cast<char>(c + 32) : c; };
    return std::equal(left.begin(), left.end(), right.begin(), right.end(),
                      [&](char a, char b) { return lower(a) == lower(b); });
}

bool AreSameFile(const std::string& left, const std::string& right) {
    struct stat leftStatus {
    }, rightStatus{};
    return ::lstat(left.c_str(), &leftStatus) == 0 && ::lstat(right.c_str(), &rightStatus) == 0 &&
           leftStatus.st_dev == rightStatus.st_dev && leftStatus.st_ino == rightStatus.st_ino;
}

bool IsThere(const std::string& path) {
    struct stat status {};
    return ::lstat(path.c_str(), &status) == 0;
}

// Never over another file. One that bears the new name in other letters may be the old one itself,
// where the file system does not tell letters apart.
bool RenameRecord(const std::string& from, const std::string& to) {
    if (::renameat2(AT_FDCWD, from.c_str(), AT_FDCWD, to.c_str(), RENAME_NOREPLACE) == 0) {
        return true;
    }
    const bool cannotAsk = errno == EINVAL || errno == ENOSYS;
    if (!cannotAsk && errno != EEXIST) return false;
    const bool isFree = cannotAsk && !IsThere(to);
    if (!isFree && !(DifferInCaseOnly(from, to) && AreSameFile(from, to))) return false;
    return ::rename(from.c_str(), to.c_str()) == 0;
}

bool ReadRecord(int folder, const char* path, size_t pathHash, LFileText& text) {
    const LPathLock turn(pathHash, LFileLockKind::kShared);
    const LFileDescriptor file = OpenRecordToRead(folder, path);
    if (!file.IsOpen()) return false;
    flocktimed(file.Get(), LFileLockKind::kShared, turn.RemainingMs());
    return text.Read(file.Get());
}

}  // namespace

LListFolder::LListFolder(std::string path, std::string_view keyField)
    : path_(std::move(path)), keyField_(keyField), pathHash_(std::hash<std::string>()(path_)) {}

std::string LListFolder::PathOf(std::string_view fileName) const {
    std::string path;
    path.reserve(path_.size() + 1 + fileName.size());
    path += path_;
    path += '/';
    path += fileName;
    return path;
}

size_t LListFolder::HashOf(std::string_view fileName) const {
    return pathHash_ * 31 + std::hash<std::string_view>()(fileName);
}

bool LListFolder::Exists(std::string_view key) const {
    const std::string name = RecordFileName(key);
    struct stat status {};
    return !name.empty() && ::stat(PathOf(name).c_str(), &status) == 0 && !S_ISDIR(status.st_mode);
}

// A file larger than memory is one that cannot be read; a part of it would be worse than nothing.
bool LListFolder::Load(std::string_view key, LRecord& record) const try {
    const std::string name = RecordFileName(key);
    LFileText text;
    if (name.empty() || !ReadRecord(AT_FDCWD, PathOf(name).c_str(), HashOf(name), text)) {
        return false;
    }
    record.Fields().Parse(text.View());
    return true;
} catch (const std::bad_alloc&) {
    record.Fields().Clear();
    return false;
}

bool LListFolder::LoadListed(int folder, const char* fileName, LRecord& record) const try {
    LFileText text;
    if (!ReadRecord(folder, fileName, HashOf(fileName), text)) return false;
    const std::string key = KeyOfRecordFile(fileName, text.View());
    if (key.empty()) return false;
    record.Fields().Parse(text.View());
    record.SetKeys(key, key);
    return true;
} catch (const std::bad_alloc&) {
    record.Fields().Clear();
    return false;
}

bool LListFolder::Save(LRecord& record) const try {
    SettleRename(record);
    const bool saved = record.GetPrimaryKey().empty() ? SaveNew(record) : SaveExisting(record);
    record.ClearDirty();
    return saved;
} catch (const std::bad_alloc&) {
    return false;
}

// A key that cannot be changed stays as it was, without a word: another record has the new one, or
// the file is gone.
void LListFolder::SettleRename(LRecord& record) const {
    const std::string key = record.GetPrimaryKey();
    const std::string loadedKey = record.GetLoadedKey();
    if (loadedKey.empty() || loadedKey == key) return;
    const std::string from = RecordFileName(loadedKey), to = RecordFileName(key);
    const bool renamed = from == to || (!to.empty() && RenameRecord(PathOf(from), PathOf(to)));
    const std::string& settled = renamed ? key : loadedKey;
    record.SetKeys(settled, settled);
}

bool LListFolder::SaveNew(LRecord& record) const {
    LTextBuffer text;
    record.Fields().Encode(text);
    const uint64_t number = CreateNumberedRecord(path_, text.View());
    if (number == 0) return false;
    const std::string key = std::to_string(number);
    record.SetKeys(key, key);
    record.Fields().ClearChangedMarks();
    return true;
}

// Where nothing could be written the fields keep their marks, so that the next save of this record
// object tries again with all of them.
bool LListFolder::SaveExisting(LRecord& record) const {
    LRecordFields& fields = record.Fields();
    const std::string name = RecordFileName(record.GetPrimaryKey());
    const std::string keyNote = KeyNote(record.GetPrimaryKey());
    LTextBuffer text;
    fields.Encode(text, keyNote);  // before locking: most merges leave it as it is

    const LPathLock turn(HashOf(name), LFileLockKind::kExclusive);
    const LFileDescriptor file = OpenRecordToWrite(PathOf(name).c_str());
    if (!file.IsOpen()) return true;  // callers treat the save as done
    flocktimed(file.Get(), LFileLockKind::kExclusive, turn.RemainingMs());
    LFileText old;
    if (!old.Read(file.Get())) return false;
    if (fields.Merge(old.View())) fields.Encode(text, keyNote);
    if (record.GetLoadedKey().empty()) {
        const std::string key = record.GetPrimaryKey();
        record.SetKeys(key, key);
    }
    if (ReplaceRecordText(file.Get(), text, old)) fields.ClearChangedMarks();
    return true;
}

bool LListFolder::Delete(std::string_view key) const {
    const std::string name = RecordFileName(key);
    return !name.empty() && ::unlink(PathOf(name).c_str()) == 0;
}
