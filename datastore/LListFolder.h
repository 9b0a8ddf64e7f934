// What a list and the records bound to it share: the folder, and how a record gets into and out of
// its file there.
#pragma once

#include <cstddef>
#include <string>
#include <string_view>

class LRecord;

// Never changes, so any thread may use it.
class LListFolder {
public:
    LListFolder(std::string path, std::string_view keyField);

    const std::string& Path() const { return path_; }
    const std::string& KeyField() const { return keyField_; }

    bool Exists(std::string_view key) const;
    // Fills the fields. False when there is no such file or it cannot be read.
    bool Load(std::string_view key, LRecord& record) const;
    // The same for a listed file of the open folder; sets both keys from its name.
    bool LoadListed(int folder, const char* fileName, LRecord& record) const;
    bool Save(LRecord& record) const;
    bool Delete(std::string_view key) const;

private:
    std::string PathOf(std::string_view fileName) const;
    size_t HashOf(std::string_view fileName) const;
    void SettleRename(LRecord& record) const;
    bool SaveNew(LRecord& record) const;
    bool SaveExisting(LRecord& record) const;

    std::string path_, keyField_;
    size_t pathHash_;
};
