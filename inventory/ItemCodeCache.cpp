#include "inventory/ItemCodeCache.h"

#include <functional>
#include <map>
#include <utility>

#include "platform/LMutex.h"

namespace {

// 0 marks a free slot.
size_t HashOf(std::string_view code) { return std::hash<std::string_view>()(code) | 1; }

LMutex cacheMutex;
// By database folder, then by code.
std::map<std::string, LItemKeysByCode, std::less<>> ghtItemCodeToPrimaryKey
    L_GUARDED_BY(cacheMutex);

std::string RememberedKey(const LProfile& profile, std::string_view code) {
    const LMutexLock lock(cacheMutex);
    const auto business = ghtItemCodeToPrimaryKey.find(profile.DatabaseFolder());
    if (business == ghtItemCodeToPrimaryKey.end()) return {};
    return std::string(business->second.Find(code));
}

}  // namespace

size_t LItemKeysByCode::SlotOf(size_t hash) const {
    size_t slot = (hash >> 1) & (slots_.size() - 1);
    while (slots_[slot].hash != 0 && slots_[slot].hash != hash) {
        slot = (slot + 1) & (slots_.size() - 1);
    }
    return slot;
}

void LItemKeysByCode::Grow() {
    std::vector<LSlot> old(slots_.empty() ? 64 : 2 * slots_.size());
    old.swap(slots_);
    for (LSlot& slot : old) {
        if (slot.hash != 0) slots_[SlotOf(slot.hash)] = std::move(slot);
    }
}

std::string_view LItemKeysByCode::Find(std::string_view code) const {
    return slots_.empty() ? std::string_view() : slots_[SlotOf(HashOf(code))].key;
}

void LItemKeysByCode::Set(std::string_view code, std::string_view key) {
    if (2 * (taken_ + 1) > slots_.size()) Grow();
    LSlot& slot = slots_[SlotOf(HashOf(code))];
    if (slot.hash == 0) ++taken_;
    slot.hash = HashOf(code);
    slot.key = key;
}

void LItemKeysByCode::Forget(std::string_view code) {
    if (!slots_.empty()) slots_[SlotOf(HashOf(code))].key.clear();
}

bool OpenRememberedItem(const LProfile& profile, LItem& item, std::string_view code) {
    const std::string key = RememberedKey(profile, code);
    if (!key.empty() && profile.Items().Open(item, key) && item.GetView("Name") == code) {
        return true;
    }
    item.Invalidate();
    if (!key.empty()) ForgetItemCode(profile, code);
    return false;
}

void RememberItemCode(const LProfile& profile, std::string_view code, std::string_view key) {
    const LMutexLock lock(cacheMutex);
    ghtItemCodeToPrimaryKey[profile.DatabaseFolder()].Set(code, key);
}

void ForgetItemCode(const LProfile& profile, std::string_view code) {
    const LMutexLock lock(cacheMutex);
    ghtItemCodeToPrimaryKey[profile.DatabaseFolder()].Forget(code);
}

void RememberItemCodes(const LProfile& profile, LItemKeysByCode keysByCode) {
    const LMutexLock lock(cacheMutex);
    ghtItemCodeToPrimaryKey[profile.DatabaseFolder()] = std::move(keysByCode);
}
