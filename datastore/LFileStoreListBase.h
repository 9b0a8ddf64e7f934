// One list of a business: a folder of record files, opened, created, saved and walked.
#pragma once

#include <memory>
#include <string>
#include <string_view>

#include "datastore/LFileStoreDataStore.h"
#include "datastore/LRecord.h"

class LFileStoreIteratorBase;
class LListFolder;  // what a list and the records bound to it share

// Cheap to make; makes the list folder when it is missing (mode 0777). Records stay bound to the
// folder after the list object is gone. Any number of threads and processes may work on one list:
// loads take a shared lock, saves an exclusive one for about 10 s at most, and a save merges with
// what others wrote. A record object itself is used by one thread at a time.
class LFileStoreListBase {
public:
    LFileStoreListBase(const LFileStoreDataStore& store, std::string_view listName,
                       std::string_view keyField = "ID");

    const std::string& Folder() const;    // without "/" at its end
    const std::string& KeyField() const;  // the name under which the key is shown

    bool TestRecordExists(std::string_view key) const;
    // Bound with an empty key: the smallest free number is taken at the first save.
    void CreateNewRecord(LRecord& record) const;
    // Bound under `key`; the first save creates the file or merges into it. Empty key: unbound.
    void CreateNewRecord(LRecord& record, std::string_view key) const;
    // False, and the record unbound and empty, when there is no such record.
    [[nodiscard]] bool Open(LRecord& record, std::string_view key) const;
    // Bound in any case: a missing record reads as its defaults and is created when saved.
    void OpenAlways(LRecord& record, std::string_view key) const;
    // Only fills the fields. False, and the fields as before, when the key is empty or the file
    // cannot be read; false and no fields when memory does not hold them.
    [[nodiscard]] bool Load(std::string_view key, LRecord& record) const;
    // Merges with the file and rewrites it under the exclusive lock; a new key or a rename is
    // settled first. Where another record has the new key the record keeps its old one. Also true
    // when an existing record's file could not be opened, or not be filled (a full disk): the file
    // is as before then and the changes stay marked for the next save. False when no file could be
    // made for a new key, or the old text not be read to merge with it; the file is as before then.
    bool Save(LRecord& record) const;
    bool Delete(std::string_view key) const;  // true when the file was removed

    // Binds `record` and positions it on the first record, or leaves it unbound when there is none.
    std::unique_ptr<LFileStoreIteratorBase> CreateIteratorBase(LRecord& record) const;

private:
    std::shared_ptr<const LListFolder> shared_;
};

// Walks a list in the order in which the folder gives its files. Files that cannot be loaded are
// left out. Saves the current record before it moves on.
class LFileStoreIteratorBase {
public:
    ~LFileStoreIteratorBase();
    // At the end the record is invalidated (unbound, empty key): IsBound() tells.
    void Next(LRecord& record);

private:
    friend class LFileStoreListBase;
    explicit LFileStoreIteratorBase(std::shared_ptr<const LListFolder> list);
    struct State;
    std::unique_ptr<State> state_;
};

// A list whose records are `Record`s.
template <typename Record>
class LAppDataBaseList : public LFileStoreListBase {
public:
    using LFileStoreListBase::LFileStoreListBase;
    // The same list, seen as one of `Record`s.
    explicit LAppDataBaseList(const LFileStoreListBase& list) : LFileStoreListBase(list) {}

    bool IsEmpty() const {
        Record record;
        CreateIteratorBase(record);
        return !record.IsBound();
    }

    // Calls `visit(record)` for each record in the store's order; `visit` returns false to stop.
    // Changes that it makes to the record are saved.
    template <typename Visit>
    void ForEach(Visit&& visit) const {
        Record record;
        const auto iterator = CreateIteratorBase(record);
        for (; record.IsBound(); iterator->Next(record)) {
            if (!visit(record)) return;
        }
    }
};
