// Which item code belongs to which key, as this process met them: saves a walk through all items.
#pragma once

#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

#include "datastore/LProfile.h"
#include "inventory/LItem.h"

// Item keys by code: open addressing over the hashes of the codes. The codes themselves are not
// kept, since whoever opens the item sees its code anyway, and looking them up among ten thousand
// would cost a tenth of opening the item. Two codes of one hash displace each other.
class LItemKeysByCode {
public:
    // Empty when nothing is remembered under that hash.
    std::string_view Find(std::string_view code) const;
    void Set(std::string_view code, std::string_view key);
    void Forget(std::string_view code);

private:
    struct LSlot {
        size_t hash = 0;
        std::string key;  // empty: free, or forgotten when the hash is set
    };
    size_t SlotOf(size_t hash) const;
    void Grow();

    std::vector<LSlot> slots_;
    size_t taken_ = 0;
};

// Any thread may call these. What they remember is kept apart by database folder, since one service
// serves several businesses, and is only ever a hint: other processes rename and delete items too.

// Opens the item whose code equals `code` exactly when it is remembered and still bears that code.
// Otherwise false, with `item` unbound; the item may exist all the same.
[[nodiscard]] bool OpenRememberedItem(const LProfile& profile, LItem& item, std::string_view code);
void RememberItemCode(const LProfile& profile, std::string_view code, std::string_view key);
void ForgetItemCode(const LProfile& profile, std::string_view code);
// Forgets all codes of the business in favour of these.
void RememberItemCodes(const LProfile& profile, LItemKeysByCode keysByCode);
