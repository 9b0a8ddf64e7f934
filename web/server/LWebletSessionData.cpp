#include "web/server/LWebletSessionData.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <atomic>
#include <cerrno>
#include <cstring>

#include "platform/FileIo.h"
#include "platform/Folders.h"
#include "platform/RandomSource.h"
#include "service/control/LServiceLog.h"
#include "web/server/SessionSweep.h"

namespace {

constexpr size_t kLongestId = 64;  // letter, eight letters and a number are far less
constexpr int kIdAttempts = 10;

bool IsSessionId(std::string_view id) {
    return !id.empty() && id.size() <= kLongestId && std::all_of(id.begin(), id.end(), [](char c) {
        return (c >= 'a' && c <= 'z') || (c >= '0' && c <= '9');
    });
}

std::string PathOf(const std::string& folder, const std::string& id) {
    return folder + "/" + id + ".sess";
}

std::string NewId(bool remember) {
    static std::atomic<unsigned> serial{0};
    return (remember ? "l" : "s") + RandomLetters(8) + std::to_string(serial++);
}

// A file that lost its name while its lock was waited for is a session that was destroyed.
bool HasName(int fd) {
    struct stat status {};
    return ::fstat(fd, &status) == 0 && status.st_nlink > 0;
}

// Written first and cut afterwards: who reads without the lock never finds the file empty.
bool ReplaceContent(int fd, std::string_view text) {
    if (::lseek(fd, 0, SEEK_SET) == 0 && WriteAll(fd, text) &&
        ::ftruncate(fd, static_cast<off_t>(text.size())) == 0) {
        return true;
    }
    const int error = errno;
    // Half a table could name half a folder; without any the user logs on again.
    [[maybe_unused]] const int cut = ::ftruncate(fd, 0);
    errno = error;
    return false;
}

void LogFailure(std::string_view operation) {
    LServiceLog(std::string(operation), std::strerror(errno), kLogError);
}

}  // namespace

std::string LWebletSessionData::Folder() { return GetSharedDataFolderApp() + "/SessionData"; }

bool LWebletSessionData::LoadSession(std::string_view id) {
    LetGo();
    table_.Clear();
    id_.clear();
    const std::string folder = Folder();
    SweepSessionFiles(folder);
    if (!IsSessionId(id)) return false;
    id_ = id;
    path_ = PathOf(folder, id_);
    const bool loaded = OpenFile(O_RDONLY, LFileLockKind::kShared) && ReadTable();
    file_.Close();
    turn_.Release();
    if (!loaded) id_.clear();
    return loaded;
}

// Opens the session's file under its lock; the turn may be held even after false. Without the lock
// after 10 s the file is used all the same.
bool LWebletSessionData::OpenFile(int flags, LFileLockKind kind) {
    const int left = turn_.Take(id_, kind, kLockTimeoutMs);
    file_ =
        LFileDescriptor(::open(path_.c_str(), flags | O_CLOEXEC | O_NOFOLLOW | O_NONBLOCK, 0600));
    if (!file_.IsOpen()) return false;
    flocktimed(file_.Get(), kind, left);
    if (HasName(file_.Get())) return true;
    file_.Close();
    return false;
}

bool LWebletSessionData::ReadTable() {
    std::string text;
    if (!ReadAll(file_.Get(), text)) return false;
    table_.Clear();
    table_.LoadHTTPStringUTF8(text);
    return true;
}

void LWebletSessionData::LetGo() {
    dirty_ = false;
    file_.Close();
    turn_.Release();
}

void LWebletSessionData::CreateNewSession(bool remember) {
    LetGo();
    table_.Clear();
    const std::string folder = Folder();
    MakeFolderTree(folder, 0700);
    dirty_ = true;
    for (int attempt = 0; attempt < kIdAttempts; ++attempt) {
        id_ = NewId(remember);
        path_ = PathOf(folder, id_);
        if (OpenFile(O_RDWR | O_CREAT | O_EXCL, LFileLockKind::kExclusive)) return;
        if (errno != EEXIST) break;
    }
    LogFailure("cannot make a session file");
    LetGo();
    id_.clear();
}

void LWebletSessionData::Destroy() {
    if (IsLoaded()) ::unlink(path_.c_str());
    LetGo();
    table_.Clear();
    id_.clear();
}

std::string LWebletSessionData::GetString(std::string_view name,
                                          std::string_view defaultValue) const {
    return table_.GetString(name, defaultValue);
}

bool LWebletSessionData::TestExists(std::string_view name) const { return table_.TestExists(name); }

void LWebletSessionData::SetString(std::string_view name, std::string_view value) {
    const std::string kept(value);  // it may come from the table that is about to be read again
    SetDirty();
    table_.SetString(name, kept);
}

void LWebletSessionData::DeleteField(std::string_view name) {
    SetDirty();
    table_.DeleteField(name);
}

void LWebletSessionData::SetDirty() {
    if (dirty_ || !IsLoaded()) return;
    dirty_ = true;
    if (!OpenFile(O_RDWR, LFileLockKind::kExclusive)) {
        turn_.Release();
        if (errno != ENOENT) LogFailure("cannot open a session file");
        return;
    }
    if (!ReadTable()) LogFailure("cannot read a session file");
}

void LWebletSessionData::FlushSession() {
    if (file_.IsOpen() && dirty_ && !ReplaceContent(file_.Get(), table_.SaveHTTPString())) {
        LogFailure("cannot save a session");
    }
    LetGo();
}
