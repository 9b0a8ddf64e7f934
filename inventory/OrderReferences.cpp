#include "inventory/OrderReferences.h"

#include <algorithm>
#include <cassert>
#include <charconv>

#include "datastore/LProfile.h"
#include "platform/CaseFolding.h"

namespace {

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

bool IsInHeadOfAnyOrder(const LProfile& profile, std::string_view field, std::string_view key) {
    if (key.empty()) return false;
    return AnyOrder(profile,
                    [&](const LRecord& order) { return OrderHeadNames(order, field, key); });
}

}  // namespace

bool IsItemOnAnyOrder(const LProfile& profile, std::string_view itemId) {
    if (itemId.empty()) return false;
    return AnyOrder(profile, [&](const LRecord& order) { return OrderHasLineFor(order, itemId); });
}

bool IsSupplierOnAnyOrder(const LProfile& profile, std::string_view supplierId) {
    return IsInHeadOfAnyOrder(profile, "Supplier", supplierId);
}

bool IsLocationOnAnyOrder(const LProfile& profile, std::string_view locationId) {
    return IsInHeadOfAnyOrder(profile, "Location", locationId);
}

int OrderLineCount(const LRecord& order) {
    return std::clamp(order.GetInt("ItemCount", 0), 0, kMaxOrderLines);
}

LOrderLineField::LOrderLineField(int lineNumber, std::string_view what) {
    constexpr std::string_view kPrefix = "Item";
    constexpr size_t kNumberRoom = 11;
    assert(kPrefix.size() + kNumberRoom + what.size() <= text_.size());
    char* end = std::copy(kPrefix.begin(), kPrefix.end(), text_.data());
    end = std::to_chars(end, end + kNumberRoom, lineNumber).ptr;
    size_ = static_cast<size_t>(std::copy(what.begin(), what.end(), end) - text_.data());
}

bool OrderHasLineFor(const LRecord& order, std::string_view itemId) {
    if (itemId.empty()) return false;
    const int lines = OrderLineCount(order);
    for (int line = 1; line <= lines; ++line) {
        if (EqualIgnoringCase(order.GetView(LOrderLineField(line, "ID")), itemId)) return true;
    }
    return false;
}

bool OrderHeadNames(const LRecord& order, std::string_view field, std::string_view key) {
    return !key.empty() && EqualIgnoringCase(order.GetView(field), key);
}
