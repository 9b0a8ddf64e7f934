#include "datastore/LRecord.h"

#include "datastore/StoredNumbers.h"
#include "platform/TextLimits.h"

LRecord::~LRecord() { Flush(); }

// --- writing ---

void LRecord::SetString(std::string_view name, std::string_view value) {
    const size_t field = fields_.Find(name);
    if (field == LRecordFields::kNone) {
        fields_.Append(name, value);
    } else if (fields_.IsBinary(field) ||
               (!fields_.IsDeleted(field) && fields_.Value(field) == value)) {
        return;
    } else {
        fields_.SetValue(field, value);
    }
    dirty_ = true;
}

void LRecord::SetString(std::string_view name, std::string_view value,
                        std::string_view defaultValue) {
    value == defaultValue ? DeleteField(name) : SetString(name, value);
}

void LRecord::SetInt(std::string_view name, int value) { SetString(name, std::to_string(value)); }

void LRecord::SetInt(std::string_view name, int value, int defaultValue) {
    value == defaultValue ? DeleteField(name) : SetInt(name, value);
}

void LRecord::SetInt64(std::string_view name, int64_t value) {
    SetString(name, std::to_string(value));
}

void LRecord::SetFloat(std::string_view name, double value) {
    SetString(name, FormatStoredReal(value));
}

void LRecord::SetBool(std::string_view name, bool value) { SetString(name, value ? "1" : "0"); }

void LRecord::SetBool(std::string_view name, bool value, bool defaultValue) {
    value == defaultValue ? DeleteField(name) : SetBool(name, value);
}

void LRecord::DeleteField(std::string_view name) {
    const size_t field = fields_.Find(name);
    if (field == LRecordFields::kNone) return;
    fields_.MarkDeleted(field);
    dirty_ = true;
}

// --- reading ---

size_t LRecord::FindVisible(std::string_view name) const {
    const size_t field = fields_.Find(name);
    return field != LRecordFields::kNone && fields_.IsDeleted(field) ? LRecordFields::kNone : field;
}

std::string_view LRecord::GetView(std::string_view name, std::string_view defaultValue) const {
    const size_t field = FindVisible(name);
    return field == LRecordFields::kNone ? defaultValue : fields_.Value(field);
}

std::string LRecord::GetString(std::string_view name, std::string_view defaultValue) const {
    return std::string(GetView(name, defaultValue));
}

std::string LRecord::GetShortString(std::string_view name, std::string_view defaultValue) const {
    return std::string(CutText(GetView(name, defaultValue)));
}

int LRecord::GetInt(std::string_view name, int defaultValue) const {
    const size_t field = FindVisible(name);
    if (field == LRecordFields::kNone || fields_.IsBinary(field)) return defaultValue;
    return ParseStoredInt(fields_.Value(field));
}

bool LRecord::GetBool(std::string_view name, bool defaultValue) const {
    return GetInt(name, defaultValue ? 1 : 0) != 0;
}

int64_t LRecord::GetInt64(std::string_view name, int64_t defaultValue) const {
    const std::string_view text = GetView(name);
    return text.empty() ? defaultValue : ParseStoredInt64(text);
}

double LRecord::GetFloat(std::string_view name, double defaultValue) const {
    const std::string_view text = GetView(name);
    return text.empty() ? defaultValue : ParseStoredReal(text);
}

bool LRecord::TestFieldExists(std::string_view name) const {
    return FindVisible(name) != LRecordFields::kNone;
}

// --- keys and the store ---

void LRecord::SetPrimaryKey(std::string_view key) {
    key = CutText(key);
    if (key.empty() || key == key_) return;
    key_ = key;
    dirty_ = true;
}

void LRecord::SetKeys(std::string_view key, std::string_view loadedKey) {
    // Through copies: either may be a view of the other.
    std::string newKey(CutText(key));
    std::string newLoadedKey(CutText(loadedKey));
    key_ = std::move(newKey);
    loadedKey_ = std::move(newLoadedKey);
}

void LRecord::CopyRecord(const LRecord& source) {
    fields_.CopyFrom(source.fields_);
    dirty_ = true;
}

bool LRecord::Flush() {
    if (!dirty_ || store_ == nullptr) return true;
    const bool saved = store_->Save(*this);
    dirty_ = false;
    return saved;
}

void LRecord::Invalidate() {
    Flush();
    store_.reset();
    key_.clear();
    loadedKey_.clear();
    fields_.Clear();
    dirty_ = false;
}
