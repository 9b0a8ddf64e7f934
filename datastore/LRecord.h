// A stored object: a primary key and an ordered list of named text fields, with the marks that let
// concurrent saves of one record merge field by field.
#pragma once

#include <cstdint>
#include <memory>
#include <string>
#include <string_view>

#include "datastore/LRecordFields.h"

class LRecord;

// The store that a bound record writes itself to. Each list hands out its own kind.
class LDataStoreRecordStore {
public:
    virtual ~LDataStoreRecordStore() = default;
    virtual bool Save(LRecord& record) const = 0;
};

// Names are compared byte for byte after the cut to 63 bytes; the first field of a name wins.
// Accessors never fail: a missing or deleted field yields the default. A record that is dirty when
// it goes, or is invalidated, is saved. One thread at a time.
class LRecord {
public:
    LRecord() = default;
    virtual ~LRecord();
    LRecord(const LRecord&) = delete;
    LRecord& operator=(const LRecord&) = delete;

    // Storing an equal value changes nothing; a deleted field is revived; a new field goes to the
    // end. With a default, a value that equals it deletes the field: defaults are never stored.
    void SetString(std::string_view name, std::string_view value);
    void SetString(std::string_view name, std::string_view value, std::string_view defaultValue);
    void SetInt(std::string_view name, int value);
    void SetInt(std::string_view name, int value, int defaultValue);
    void SetInt64(std::string_view name, int64_t value);
    // Six decimals, "." in every locale; what is not finite is stored as 0.
    void SetFloat(std::string_view name, double value);
    void SetBool(std::string_view name, bool value);  // "1" or "0"
    void SetBool(std::string_view name, bool value, bool defaultValue);

    // Whole; the view of GetView lives until the record changes.
    std::string GetString(std::string_view name, std::string_view defaultValue = {}) const;
    std::string_view GetView(std::string_view name, std::string_view defaultValue = {}) const;
    // The form for keys, names and paths: at most 259 bytes.
    std::string GetShortString(std::string_view name, std::string_view defaultValue = {}) const;
    // A field that is there but empty reads as 0, not as the default.
    int GetInt(std::string_view name, int defaultValue) const;
    bool GetBool(std::string_view name, bool defaultValue) const;
    // An empty field reads as the default.
    int64_t GetInt64(std::string_view name, int64_t defaultValue) const;
    double GetFloat(std::string_view name, double defaultValue = 0) const;
    bool TestFieldExists(std::string_view name) const;

    // Hidden from readers at once, left out of the next save. (Saving the same object once more
    // writes the old value again; a flag that must be off is therefore stored as "0".)
    void DeleteField(std::string_view name);

    const std::string& GetPrimaryKey() const { return key_; }
    const std::string& GetLoadedKey() const { return loadedKey_; }  // empty: never stored
    void SetPrimaryKey(std::string_view key);  // an empty key is ignored; another one renames

    // Replaces all fields by copies of the source's; keys stay.
    void CopyRecord(const LRecord& source);

    bool IsDirty() const { return dirty_; }
    bool IsBound() const { return store_ != nullptr; }

    // Saves when bound and dirty; the dirty flag is cleared whatever the store answers, and the
    // record stays as it is in memory. Returns the store's answer, true when nothing was to be
    // done.
    bool Flush();
    // Saves as Flush does, then lets go of the store, both keys and all fields.
    void Invalidate();

    // --- The store's side: for lists and the stores they hand out, nobody else. ---

    LRecordFields& Fields() { return fields_; }
    const LRecordFields& Fields() const { return fields_; }
    // Lets go of the store before, without saving; nothing else changes. Null unbinds.
    void Bind(std::unique_ptr<LDataStoreRecordStore> store) { store_ = std::move(store); }
    const LDataStoreRecordStore* Store() const { return store_.get(); }
    // Both cut to 259 bytes; the dirty flag stays as it is.
    void SetKeys(std::string_view key, std::string_view loadedKey);
    void ClearDirty() { dirty_ = false; }

private:
    size_t FindVisible(std::string_view name) const;

    std::unique_ptr<LDataStoreRecordStore> store_;
    std::string key_, loadedKey_;
    LRecordFields fields_;
    bool dirty_ = false;
};
