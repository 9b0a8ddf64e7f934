#include "datastore/LRecordFields.h"

#include <algorithm>
#include <cstring>
#include <functional>

#include "datastore/RecordText.h"
#include "platform/TextLimits.h"

namespace {

constexpr size_t kMaxArena = 0xFFFFFFFF;
// Up to here comparing tags one after the other is quicker than an index.
constexpr size_t kFewFields = 64;
constexpr size_t kUsualFieldBytes = 16;  // of record text, from below: a guess at their number

std::string_view CutName(std::string_view name) { return CutText(name, kMaxFieldNameBytes); }

}  // namespace

uint32_t LRecordFields::TagOf(std::string_view name) {
    if (name.empty()) return 0;
    const auto byte = [&](size_t at) {
        return static_cast<uint32_t>(static_cast<uint8_t>(name[at]));
    };
    return static_cast<uint32_t>(name.size()) | byte(0) << 8 | byte(name.size() / 2) << 16 |
           byte(name.size() - 1) << 24;
}

std::string_view LRecordFields::Name(size_t index) const {
    const Entry& entry = entries_[index];
    return {arena_.get() + entry.name, entry.tag & 0xFF};
}

std::string_view LRecordFields::Value(size_t index) const {
    const Entry& entry = entries_[index];
    return {arena_.get() + entry.value, entry.valueSize};
}

std::string_view LRecordFields::Binary(size_t index) const {
    for (const auto& [owner, bytes] : binaries_) {
        if (owner == index) return bytes;
    }
    return {};
}

size_t LRecordFields::Find(std::string_view name) const {
    name = CutName(name);
    if (entries_.size() > kFewFields) return FindByIndex(name);
    const uint32_t tag = TagOf(name);
    for (size_t i = 0; i < entries_.size(); ++i) {
        if (entries_[i].tag == tag && Name(i) == name) return i;
    }
    return kNone;
}

// --- the index of long records (orders with many lines) ---

size_t LRecordFields::IndexSlot(std::string_view name) const {
    size_t slot = std::hash<std::string_view>()(name) & (slots_.size() - 1);
    while (slots_[slot] != 0 && Name(slots_[slot] - 1) != name) {
        slot = (slot + 1) & (slots_.size() - 1);
    }
    return slot;
}

void LRecordFields::GrowIndex() const {
    size_t size = 4 * kFewFields;
    while (size < 4 * entries_.size()) size *= 2;
    slots_.assign(size, 0);
    indexed_ = 0;
}

void LRecordFields::ExtendIndex() const {
    if (slots_.size() < 2 * entries_.size()) GrowIndex();
    for (; indexed_ < entries_.size(); ++indexed_) {
        uint32_t& slot = slots_[IndexSlot(Name(indexed_))];
        if (slot == 0) slot = static_cast<uint32_t>(indexed_ + 1);
    }
}

size_t LRecordFields::FindByIndex(std::string_view name) const {
    if (indexed_ < entries_.size()) ExtendIndex();
    const uint32_t found = slots_[IndexSlot(name)];
    return found == 0 ? kNone : found - 1;
}

// --- the arena ---

uint32_t LRecordFields::Store(std::string_view text) {
    const auto at = static_cast<uint32_t>(used_);
    if (!text.empty()) std::memcpy(arena_.get() + used_, text.data(), text.size());
    used_ += text.size();
    return at;
}

// Moves what is in use into new memory of `room` bytes and returns the old memory.
std::unique_ptr<char[]> LRecordFields::Repack(size_t room) {
    std::unique_ptr<char[]> old = std::make_unique_for_overwrite<char[]>(room);
    old.swap(arena_);
    room_ = room;
    used_ = 0;
    for (Entry& entry : entries_) {
        entry.name = Store({old.get() + entry.name, entry.tag & 0xFF});
        entry.value = Store({old.get() + entry.value, entry.valueSize});
        entry.valueRoom = entry.valueSize;
    }
    return old;
}

// Makes room for `size` more bytes. What is to be stored may lie in the memory before: it goes to
// `old`, for the caller to keep until then. False when the record would become too large.
bool LRecordFields::MakeRoom(size_t size, std::unique_ptr<char[]>& old) {
    if (room_ - used_ >= size) return true;
    size_t live = 0;
    for (const Entry& entry : entries_) live += (entry.tag & 0xFF) + size_t{entry.valueSize};
    if (size > kMaxArena - live) return false;
    old = Repack(std::min(kMaxArena, 2 * (live + size)));
    return true;
}

void LRecordFields::AppendEntry(std::string_view name, std::string_view value, bool isChanged) {
    name = CutName(name);
    std::unique_ptr<char[]> old;
    if (name.empty() || !MakeRoom(name.size() + value.size(), old)) return;
    Entry entry{};
    entry.tag = TagOf(name);
    entry.name = Store(name);
    entry.value = Store(value);
    entry.valueSize = entry.valueRoom = static_cast<uint32_t>(value.size());
    entry.isChanged = isChanged;
    entries_.push_back(entry);
}

void LRecordFields::SetText(Entry& entry, std::string_view value) {
    if (value.size() > entry.valueRoom) {
        std::unique_ptr<char[]> old;
        if (!MakeRoom(value.size(), old)) return;
        entry.value = Store(value);
        entry.valueRoom = static_cast<uint32_t>(value.size());
    } else if (!value.empty()) {
        std::memmove(arena_.get() + entry.value, value.data(), value.size());
    }
    entry.valueSize = static_cast<uint32_t>(value.size());
}

// --- changes ---

void LRecordFields::Clear() {
    constexpr size_t kWorthKeeping = 1 << 20;
    if (room_ > kWorthKeeping) {
        arena_ = nullptr;
        room_ = 0;
    }
    entries_.clear();
    binaries_.clear();
    slots_.clear();
    used_ = indexed_ = 0;
}

void LRecordFields::Append(std::string_view name, std::string_view value) {
    AppendEntry(name, value, true);
}

void LRecordFields::AppendBinary(std::string_view name, std::string_view bytes) {
    std::string copy(bytes);
    const size_t index = entries_.size();
    AppendEntry(name, {}, true);
    if (entries_.size() == index) return;
    entries_.back().isBinary = true;
    binaries_.emplace_back(index, std::move(copy));
}

void LRecordFields::SetValue(size_t index, std::string_view value) {
    Entry& entry = entries_[index];
    SetText(entry, value);
    entry.isChanged = true;
    entry.isDeleted = false;
}

void LRecordFields::MarkDeleted(size_t index) {
    entries_[index].isChanged = entries_[index].isDeleted = true;
}

void LRecordFields::CopyFrom(const LRecordFields& source) {
    LRecordFields copy;
    copy.Repack(source.used_);
    copy.entries_.reserve(source.Count());
    for (size_t i = 0; i < source.Count(); ++i) {
        if (source.IsDeleted(i)) continue;
        if (source.IsBinary(i)) {
            copy.AppendBinary(source.Name(i), source.Binary(i));
        } else {
            copy.Append(source.Name(i), source.Value(i));
        }
    }
    *this = std::move(copy);
}

void LRecordFields::ClearChangedMarks() {
    for (Entry& entry : entries_) entry.isChanged = false;
}

// --- the record text ---

void LRecordFields::Parse(std::string_view text) {
    Clear();
    if (text.size() > kMaxArena) return;
    if (room_ < text.size()) Repack(text.size());
    if (entries_.capacity() == 0)
        entries_.reserve(std::min(text.size() / kUsualFieldBytes + 1, kFewFields));
    const char* pos = text.data();
    char* out = arena_.get();
    const auto offset = [base = arena_.get()](std::string_view part) {
        return static_cast<uint32_t>(part.data() - base);
    };
    std::string_view name, value;
    while (DecodePair(pos, text.data() + text.size(), out, name, value)) {
        const auto size = static_cast<uint32_t>(value.size());
        entries_.push_back(
            {offset(name), offset(value), size, size, TagOf(CutName(name)), false, false, false});
    }
    used_ = static_cast<size_t>(out - arena_.get());
}

// Where a name stands several times in the text, each pair meets the same first field, so the last
// one wins here although readers of the text see the first.
bool LRecordFields::Merge(std::string_view text) {
    bool differs = false;
    LRecordTextReader reader(text);
    std::string_view name, value;
    while (reader.Next(name, value)) {
        const size_t index = Find(name);
        if (index == kNone) {
            AppendEntry(name, value, false);
            differs = true;
        } else if (Entry& entry = entries_[index];
                   !entry.isChanged && !entry.isBinary && Value(index) != value) {
            SetText(entry, value);
            differs = true;
        }
    }
    return differs;
}

void LRecordFields::Encode(LTextBuffer& out, std::string_view prefix) const {
    char* const start =
        out.Prepare(prefix.size() + kEncodedBytes * used_ + 2 * entries_.size() + kEncodeSlack);
    char* to = std::copy(prefix.begin(), prefix.end(), start);
    for (size_t i = 0; i < entries_.size(); ++i) {
        if (entries_[i].isChanged && entries_[i].isDeleted) continue;
        if (to != start) *to++ = '&';
        to = EncodePair(Name(i), Value(i), to);
    }
    out.FinishAt(to);
}
