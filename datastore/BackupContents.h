// What a folder holds that somebody would restore from.
#pragma once

#include <cstdint>
#include <ctime>
#include <map>
#include <string>
#include <vector>

// In a backup's folder for as long as the copy is not complete; whoever kills it leaves this.
inline constexpr char kIncompleteBackupMark[] = ".incomplete-backup";

struct LBackedUpBusiness {
    std::string name;    // may be empty
    std::string folder;  // below the backup's folder; empty: the default business
    std::map<std::string, size_t> records;  // their number by list
};

struct LBackupContents {
    bool isIncomplete = false;
    std::vector<LBackedUpBusiness> businesses;  // empty: the folder is no backup
    std::time_t newestChange = 0;               // of any record; 0: there is none
    std::vector<std::string> unreadable;        // files below the folder, or records that are none
    uint64_t files = 0, bytesNeeded = 0, bytesFree = 0;
    bool hasRoom = false;

    // Why nothing should be restored from it, in a sentence; empty when nothing stands against it.
    std::string Problem() const;
    // What is inside, in a few lines.
    std::string Summary() const;
};

// Reads every record of `folder` and changes nothing. Room is asked for where the shared data
// folder lies: the data that are there stay on the disk until the copy is complete.
LBackupContents ReadBackupContents(const std::string& folder);
