#include "orders/LPOrderList.h"

#include <limits>

#include "inventory/MovementLock.h"
#include "inventory/OrderReferences.h"
#include "platform/CaseFolding.h"
#include "platform/TextLimits.h"

namespace {

constexpr std::string_view kDraftPrefix = "DFT";
constexpr std::string_view kRecurringPrefix = "RCR";

// How the orders of one list are numbered.
struct LNumbering {
    std::string_view prefix;   // empty: the one that the settings name
    std::string_view counter;  // a field of the settings block "Order"
    int first;
};

// A recorded order must never look like a draft or a template.
std::string RecordedPrefix(const LRecord& settings) {
    // A number has to fit behind it, or every one would be the same key.
    constexpr size_t kNumberRoom = 11;
    std::string prefix(CutText(settings.GetView("NumberPrefix"), kMaxTextBytes - kNumberRoom));
    if (EqualIgnoringCase(prefix, kDraftPrefix) || EqualIgnoringCase(prefix, kRecurringPrefix)) {
        prefix += '-';
    }
    return prefix;
}

int After(int number) { return number == std::numeric_limits<int>::max() ? 1 : number + 1; }

// The next free number as a key. The counter is stored before anyone knows what becomes of it.
std::string TakeNumber(const LProfile& profile, const LFileStoreListBase& list,
                       const LNumbering& numbering) {
    LRecord settings;
    profile.OpenSettings(settings, "Order");
    const std::string prefix =
        numbering.prefix.empty() ? RecordedPrefix(settings) : std::string(numbering.prefix);
    std::string id;
    do {
        const int number = settings.GetInt(numbering.counter, numbering.first);
        settings.SetInt(numbering.counter, After(number));
        id = prefix + std::to_string(number);
    } while (list.TestRecordExists(id));
    settings.Flush();
    return id;
}

constexpr LNumbering kDraftNumbering{kDraftPrefix, "DraftNumber", 1};
constexpr LNumbering kRecurringNumbering{kRecurringPrefix, "RecurringNumber", 1};
constexpr LNumbering kRecordedNumbering{"", "Number", 10000};

void Begin(const LProfile& profile, const LFileStoreListBase& list, const LNumbering& numbering,
           LPOrder& order) {
    list.CreateNewRecord(order, TakeNumber(profile, list, numbering));
    order.SetString("Location", "");
}

bool Create(const LProfile& profile, const LFileStoreListBase& list, const LNumbering& numbering,
            LPOrder& order) {
    const LMovementLock lock(profile);
    Begin(profile, list, numbering, order);
    order.Flush();
    if (list.TestRecordExists(order.GetPrimaryKey())) return true;
    order.Invalidate();
    return false;
}

}  // namespace

bool LPOrderList::IsItemExist(std::string_view itemId) const {
    bool isFound = false;
    ForEach([&](const LPOrder& order) { return !(isFound = OrderHasLineFor(order, itemId)); });
    return isFound;
}

bool LPOrderList::IsLocationExist(std::string_view locationId) const {
    bool isFound = false;
    ForEach([&](const LPOrder& order) {
        return !(isFound = OrderHeadNames(order, "Location", locationId));
    });
    return isFound;
}

bool LPOrderOpen(const LProfile& profile, LPOrder& order, std::string_view id) {
    const std::string key(id);  // may be the order's own
    return profile.Orders().Open(order, key) || profile.OrdersRecurring().Open(order, key) ||
           profile.OrdersDrafts().Open(order, key);
}

bool LOrderCreateDraft(const LProfile& profile, LPOrder& order) {
    return Create(profile, profile.OrdersDrafts(), kDraftNumbering, order);
}

bool LOrderCreateRecurring(const LProfile& profile, LPOrder& order) {
    return Create(profile, profile.OrdersRecurring(), kRecurringNumbering, order);
}

bool LOrderCreateRecorded(const LProfile& profile, LPOrder& order) {
    return Create(profile, profile.Orders(), kRecordedNumbering, order);
}

void LOrderBeginRecorded(const LProfile& profile, LPOrder& order) {
    Begin(profile, profile.Orders(), kRecordedNumbering, order);
}
