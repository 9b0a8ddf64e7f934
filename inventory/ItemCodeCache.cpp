#include "inventory/ItemCodeCache.h"

#include <map>
#include <utility>

#include "platform/LMutex.h"

namespace {

LMutex cacheMutex;
// By database folder, then by code.
std::map<std::string, LItemKeysByCode, std::less<>> ghtItemCodeToPrimaryKey
    L_GUARDED_BY(cacheMutex);

std::string RememberedKey(const LProfile& profile, std::string_view code) {
    const LMutexLock lock(cacheMutex);
    const auto business = ghtItemCodeToPrimaryKey.find(profile.DatabaseFolder());
    if (business == ghtItemCodeToPrimaryKey.end()) return {};
    const auto found = business->second.find(code);
    return found == business->second.end() ? std::string() : found->second;
}

}  // namespace

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
    ghtItemCodeToPrimaryKey[profile.DatabaseFolder()].insert_or_assign(std::string(code), key);
}

void ForgetItemCode(const LProfile& profile, std::string_view code) {
    const LMutexLock lock(cacheMutex);
    ghtItemCodeToPrimaryKey[profile.DatabaseFolder()].erase(std::string(code));
}

void RememberItemCodes(const LProfile& profile, LItemKeysByCode keysByCode) {
    const LMutexLock lock(cacheMutex);
    ghtItemCodeToPrimaryKey[profile.DatabaseFolder()] = std::move(keysByCode);
}
