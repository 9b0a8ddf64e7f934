// The ordered fields of a record with their marks, in one piece of memory.
#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "datastore/LTextBuffer.h"

// All names and values lie behind one another in one arena, each field is an entry that says where.
// So filling a record from a file costs two allocations at most, and none when the object is used
// again. Names are given whole and cut to 63 bytes here; of several fields of one name only the
// first can be found. A record holds at most 4 GiB of text; what would go beyond is not taken.
// Views live until the fields change.
class LRecordFields {
public:
    static constexpr size_t kNone = static_cast<size_t>(-1);

    size_t Count() const { return entries_.size(); }
    size_t Find(std::string_view name) const;  // kNone when there is no such field
    std::string_view Name(size_t index) const;
    std::string_view Value(size_t index) const;  // empty for a binary field
    std::string_view Binary(size_t index) const;
    bool IsBinary(size_t index) const { return entries_[index].isBinary; }
    // Set or deleted since the last save.
    bool IsChanged(size_t index) const { return entries_[index].isChanged; }
    bool IsDeleted(size_t index) const { return entries_[index].isDeleted; }

    void Clear();
    // At the end of the list, marked changed. The views may lie in this very record.
    void Append(std::string_view name, std::string_view value);
    void AppendBinary(std::string_view name, std::string_view bytes);
    // A new text for a text field, which is then changed and not deleted.
    void SetValue(size_t index, std::string_view value);
    void MarkDeleted(size_t index);  // and changed
    // Copies of the fields that are not deleted, each marked changed. May be the record itself.
    void CopyFrom(const LRecordFields& source);

    // Replaces all fields by the pairs of a record text, none of them changed.
    void Parse(std::string_view text);
    // Takes over what others wrote: the values of fields that were not changed here, and fields
    // that are not here at all. Returns whether that made a difference.
    bool Merge(std::string_view text);
    // The record text that a save writes, after `prefix`: a field deleted since the last save is
    // left out, every other one is in it, also one whose deletion an earlier save has settled.
    void Encode(LTextBuffer& out, std::string_view prefix = {}) const;
    void ClearChangedMarks();  // as after a save

private:
    struct Entry {
        uint32_t name, value;  // offsets into the arena
        uint32_t valueSize, valueRoom;
        uint32_t tag;  // tells most names apart without looking at them; low byte: size of the name
        bool isChanged, isDeleted, isBinary;
    };

    static uint32_t TagOf(std::string_view name);
    size_t FindByIndex(std::string_view name) const;
    void ExtendIndex() const;
    void GrowIndex() const;
    size_t IndexSlot(std::string_view name) const;
    void AppendEntry(std::string_view name, std::string_view value, bool isChanged);
    void SetText(Entry& entry, std::string_view value);
    uint32_t Store(std::string_view text);
    bool MakeRoom(size_t size, std::unique_ptr<char[]>& old);
    std::unique_ptr<char[]> Repack(size_t room);

    std::vector<Entry> entries_;
    std::unique_ptr<char[]> arena_;
    size_t used_ = 0, room_ = 0;
    std::vector<std::pair<size_t, std::string>> binaries_;  // by index; hardly ever any
    // Open addressing, index + 1 of the first field of a name; only built for long records.
    mutable std::vector<uint32_t> slots_;
    mutable size_t indexed_ = 0;  // so many entries are in it
};
