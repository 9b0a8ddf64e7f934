// The day files of the movement history as files: found, read, appended to and rewritten in place,
// each under its lock.
#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "datastore/LDate.h"
#include "datastore/LPathLock.h"
#include "datastore/LProfile.h"
#include "platform/LFileDescriptor.h"

// Every row ends so.
inline constexpr char kHistoryLineEnd[] = "\r\n";

// The folder `name` of the business ("Sellhistory", "ReceiveHistory"); not created here.
std::string HistoryFolder(const LProfile& profile, std::string_view name);
// The file names with the extension ".csv" in that folder, in the order of their names, which is
// the order of the days.
std::vector<std::string> HistoryFileNames(const LProfile& profile, std::string_view folder);
// The day's path in that folder. Empty when there is no such day.
std::string HistoryFilePath(const LProfile& profile, std::string_view folder, const LDate& date);

enum class LHistoryAccess {
    kRead,    // a shared lock; goes ahead without it after about ten seconds
    kAppend,  // an exclusive one, likewise; the file and its folder are made when missing
    kRewrite  // an exclusive one, without which the file is not open: other writers' rows are safe
};

// An open day file, locked for as long as the object lives: against other processes by the file's
// lock, among the threads of this one by a queue that is asked first, so that they are spared the
// lock's long pauses. No thread holds two of these at once. Record locks may be taken meanwhile and
// never the other way round.
class LHistoryFile {
public:
    LHistoryFile(const std::string& path, LHistoryAccess access);
    LHistoryFile(const LHistoryFile&) = delete;
    LHistoryFile& operator=(const LHistoryFile&) = delete;

    bool IsOpen() const { return fd_.IsOpen(); }
    // The whole text. False when it cannot be read, or is larger than any honest day file.
    [[nodiscard]] bool Read(std::string& text) const;
    // Adds whole rows (line ends included) with one write. Where the file ends in the middle of a
    // line, the rows still begin on one of their own. False when they could not be written; nothing
    // of them remains then.
    [[nodiscard]] bool Append(std::string_view rows) const;
    // Puts `newText` in the place of `oldText`, which Read has just given, by rewriting the file in
    // place: whoever waits for its lock waits for this very file. After false the old text stands.
    [[nodiscard]] bool Replace(std::string_view oldText, std::string_view newText) const;

private:
    bool IsInMidLine(off_t end) const;

    const size_t pathHash_;
    LPathLock turn_;
    LFileDescriptor fd_;
};
