// The e-mail that warns of low stock, and the search for the items that are due for one.
#pragma once

#include <sys/types.h>

#include <cstdint>
#include <functional>
#include <map>
#include <string>
#include <string_view>
#include <vector>

#include "datastore/LProfile.h"
#include "inventory/LItem.h"

// Hands one warning to the background sender, from and to the user's own address. Failures of
// sending are not reported back; the log has them.
void SendWarningEmail(double quantity, double warnQuantity, std::string_view locationName,
                      const LItem& item);

// The items that were warned of although their flag would not go down: key and stock at that time.
using LWarnedItems = std::map<std::string, std::string, std::less<>>;

// Warns for each location at which the item of that key is watched and low, then lowers its flag,
// whether or not there was anything to warn of. Nothing for an item whose flag is not raised (any
// more). All of it happens under the movement lock and on the item as it is stored, so a change
// that comes meanwhile raises the flag again. While others keep the lock for a second, the item
// waits for another pass.
//
// An item of `warned` whose stock is the same gets no second warning, only its flag is lowered: a
// full disk must not send the same message every minute. `warned` is brought up to date.
void SendDueWarnings(const LProfile& profile, std::string_view itemKey, LWarnedItems& warned);

// Finds the items of one business that have the flag raised. Reads the folder once for each search,
// and only those files that changed since the last one. One thread at a time.
class LFlaggedItems {
public:
    explicit LFlaggedItems(std::string databaseFolder);
    const std::string& Folder() const { return databaseFolder_; }

    // The keys of the items with both flags, "SendWaringEmail" and "CheckWaringEmail". Ends early
    // when `isStopped`.
    std::vector<std::string> Find(const std::function<bool()>& isStopped);
    size_t ReadCount() const { return readCount_; }  // of the last search, for tests

private:
    // An unflagged file as it was: while its number and its time of change stay, so does the rest.
    struct LSeen {
        ino_t file;
        int64_t changedNs;
        friend auto operator<=>(const LSeen&, const LSeen&) = default;
    };
    bool IsFlagged(const LFileStoreListBase& items, std::string_view key);

    std::string databaseFolder_;
    std::vector<LSeen> seen_;  // sorted
    size_t readCount_ = 0;
};
