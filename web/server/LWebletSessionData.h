// A web session: a small table kept in a file named by the session id.
#pragma once

#include <string>
#include <string_view>

#include "datastore/LHashTable.h"
#include "platform/LFileDescriptor.h"
#include "web/server/SessionTurn.h"

// One object per request, used by that request's thread. Requests of one session that run at the
// same time take turns through the file's lock: from the first change to the flush it is held
// exclusively (at most 10 s are waited for it).
class LWebletSessionData {
public:
    LWebletSessionData() = default;
    ~LWebletSessionData() { FlushSession(); }
    LWebletSessionData(const LWebletSessionData&) = delete;
    LWebletSessionData& operator=(const LWebletSessionData&) = delete;

    // Sweeps session files that have had their time, then loads the named session. False, and the
    // session empty and without an id, when the id is empty, holds a slash or a backslash or a byte
    // that no id has, or when there is no such file.
    bool LoadSession(std::string_view id);
    // Drops what was there and begins a new session under an id that cannot be guessed.
    void CreateNewSession(bool remember);
    // Deletes the file and clears the table and the id.
    void Destroy();

    bool IsLoaded() const { return !id_.empty(); }
    const std::string& Id() const { return id_; }

    std::string GetString(std::string_view name, std::string_view defaultValue = {}) const;
    bool TestExists(std::string_view name) const;
    void SetString(std::string_view name, std::string_view value);
    void DeleteField(std::string_view name);
    // The first time: takes the file's exclusive lock and reads what another request of this
    // session wrote meanwhile. A session that was destroyed meanwhile stays so: what is set
    // afterwards lives in this object only.
    void SetDirty();
    // After every request: when the table changed, puts it in place of the file's whole text and
    // lets the file go. A page that has much to send after its last change calls it before: until
    // then every other request of this session waits.
    void FlushSession();

    // Where the session files lie. Made, for this user only, with the first session.
    static std::string Folder();

private:
    bool OpenFile(int flags, LFileLockKind kind);
    bool ReadTable();
    void LetGo();

    LHashTable table_;
    std::string id_, path_;
    LFileDescriptor file_;  // open while the session is being rewritten
    LSessionTurn turn_;     // held together with the file's lock
    bool dirty_ = false;
};
