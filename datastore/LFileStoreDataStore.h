// A database folder: one business, one folder per list in it.
#pragma once

#include <string>
#include <string_view>

#include "platform/TextLimits.h"

class LFileStoreDataStore {
public:
    explicit LFileStoreDataStore(std::string_view folder) : folder_(CutText(folder)) {}
    const std::string& Folder() const { return folder_; }

    // The record file of `key`: the list folder, the key encoded as record text and cut at 259
    // bytes (the cut may fall inside an escape), ".dat". For a key whose name the file system would
    // refuse the store itself uses a shorter one: see RecordFileName.h.
    static std::string MakeDataFilePath(std::string_view listFolder, std::string_view key);

protected:
    LFileStoreDataStore() = default;
    std::string folder_;
};

// The store in the application's default data folder (accounts live here).
class LFileStoreDataStoreAppFolder : public LFileStoreDataStore {
public:
    LFileStoreDataStoreAppFolder() { SetDefaultFolder(); }
    void SetDefaultFolder();
};
