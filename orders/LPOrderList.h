// Where orders are kept: the recorded ones, the drafts and the recurring templates, each list with
// numbers of its own.
#pragma once

#include <string>
#include <string_view>

#include "datastore/LFileStoreListBase.h"
#include "datastore/LProfile.h"
#include "orders/LPOrder.h"

class LPOrderList : public LAppDataBaseList<LPOrder> {
public:
    // Whether any order of this list has a line for the item of that key, or goes to the location
    // of that key; both ignoring case, an empty key is on no order. IsItemOnAnyOrder and its
    // fellows (inventory/OrderReferences.h) ask all three lists.
    bool IsItemExist(std::string_view itemId) const;
    bool IsLocationExist(std::string_view locationId) const;

protected:
    LPOrderList(const LFileStoreDataStore& store, std::string_view folder)
        : LAppDataBaseList(store, folder) {}
};

class LRecordedPOrderList : public LPOrderList {
public:
    explicit LRecordedPOrderList(const LFileStoreDataStore& store) : LPOrderList(store, "Orders") {}
    explicit LRecordedPOrderList(const LProfile& profile) : LRecordedPOrderList(profile.Store()) {}
};
class LDraftPOrderList : public LPOrderList {
public:
    explicit LDraftPOrderList(const LFileStoreDataStore& store)
        : LPOrderList(store, "OrdersDrafts") {}
    explicit LDraftPOrderList(const LProfile& profile) : LDraftPOrderList(profile.Store()) {}
};
class LRecurringPOrderList : public LPOrderList {
public:
    explicit LRecurringPOrderList(const LFileStoreDataStore& store)
        : LPOrderList(store, "OrdersRecurring") {}
    explicit LRecurringPOrderList(const LProfile& profile)
        : LRecurringPOrderList(profile.Store()) {}
};

// Opens the order of that number, recorded ones first, then templates, then drafts. False, and the
// order unbound, when there is none.
[[nodiscard]] bool LPOrderOpen(const LProfile& profile, LPOrder& order, std::string_view id);

// Make a new, empty order under the next free number ("DFT1", "RCR1", "10000" with the prefix of
// the settings before it) and store it. A number is used up by each try, so one that was taken
// already is left out for good. Under the movement lock, so that no two get the same. False when
// the order could not be stored; `order` is unbound then.
[[nodiscard]] bool LOrderCreateDraft(const LProfile& profile, LPOrder& order);
[[nodiscard]] bool LOrderCreateRecurring(const LProfile& profile, LPOrder& order);
[[nodiscard]] bool LOrderCreateRecorded(const LProfile& profile, LPOrder& order);
// The recorded one with its number taken but not stored yet, for whoever fills and saves it under
// one movement lock: no list shows it half made.
void LOrderBeginRecorded(const LProfile& profile, LPOrder& order);
