#include "inventory/OrderReferences.h"

#include <algorithm>
#include <array>
#include <string>

#include "datastore/LProfile.h"
#include "platform/CaseFolding.h"

namespace {

// No order of a small business comes near it; a mangled count must not hold up a delete.
constexpr int kMaxOrderLines = 10000;

template <typename Test>
bool AnyOrder(const LProfile& profile, Test&& test) {
    const std::array<const LFileStoreListBase*, 3> lists{&profile.Orders(), &profile.OrdersDrafts(),
                                                         &profile.OrdersRecurring()};
    for (const LFileStoreListBase* list : lists) {
        LRecord order;
        const auto iterator = list->CreateIteratorBase(order);
        for (; order.IsBound(); iterator->Next(order)) {
            if (test(order)) return true;
        }
    }
    return false;
}

bool HasLineForItem(const LRecord& order, std::string_view itemId) {
    const int lines = std::min(order.GetInt("ItemCount", 0), kMaxOrderLines);
    for (int line = 1; line <= lines; ++line) {
        const std::string field = "Item" + std::to_string(line) + "ID";
        if (EqualIgnoringCase(order.GetView(field), itemId)) return true;
    }
    return false;
}

bool IsInHeadOfAnyOrder(const LProfile& profile, std::string_view field, std::string_view key) {
    if (key.empty()) return false;
    return AnyOrder(profile, [&](const LRecord& order) {
        return EqualIgnoringCase(order.GetView(field), key);
    });
}

}  // namespace

bool IsItemOnAnyOrder(const LProfile& profile, std::string_view itemId) {
    if (itemId.empty()) return false;
    return AnyOrder(profile, [&](const LRecord& order) { return HasLineForItem(order, itemId); });
}

bool IsSupplierOnAnyOrder(const LProfile& profile, std::string_view supplierId) {
    return IsInHeadOfAnyOrder(profile, "Supplier", supplierId);
}

bool IsLocationOnAnyOrder(const LProfile& profile, std::string_view locationId) {
    return IsInHeadOfAnyOrder(profile, "Location", locationId);
}
