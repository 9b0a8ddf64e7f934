#include "inventory/LowStockEmail.h"

#include <fcntl.h>
#include <sys/stat.h>

#include <algorithm>
#include <array>
#include <cstdio>
#include <ctime>

#include "datastore/LFolderReader.h"
#include "datastore/RecordFileName.h"
#include "datastore/UserSettings.h"
#include "inventory/Locations.h"
#include "inventory/MovementLock.h"
#include "inventory/StockQuantities.h"
#include "platform/LFileDescriptor.h"
#include "service/email/LEmail.h"
#include "service/email/SendEmailBackground.h"

namespace {

constexpr int kMovementWaitMs = 1000;  // there is another pass, and a stop must not wait for long
constexpr int64_t kSecondNs = 1000000000;
// File times move in steps: of a file that has just changed the next change may bear the same time.
constexpr int64_t kSettledNs = 2 * kSecondNs;

int64_t Nanoseconds(const timespec& time) { return time.tv_sec * kSecondNs + time.tv_nsec; }

int64_t Now() {
    timespec now{};
    ::clock_gettime(CLOCK_REALTIME, &now);
    return Nanoseconds(now);
}

std::string TwoDecimals(double value) {
    std::array<char, 400> text;  // the largest number has 309 digits before its point
    std::snprintf(text.data(), text.size(), "%.2f", value);
    return text.data();
}

bool HasBothFlags(const LRecord& item) {
    return item.GetBool("SendWaringEmail", false) && item.GetBool("CheckWaringEmail", false);
}

// False when the stored flag is still raised.
bool LowerFlag(const LProfile& profile, LItem& item) {
    const std::string& key = item.GetPrimaryKey();
    OverwriteField(item, "SendWaringEmail", "0");
    LItem stored;
    const bool isLowered = item.Flush() && profile.Items().Load(key, stored) &&
                           !stored.GetBool("SendWaringEmail", false);
    if (!isLowered) {
        WriteEmailLog("Cannot save item " + key +
                          ": its low-stock e-mail counts as due until it can be saved.",
                      LEmailLogLevel::kError);
    }
    return isLowered;
}

void WarnOfLowLocations(const LProfile& profile, const LItem& item, std::string_view stock) {
    const LLocationList locations(profile);
    for (const LocationAndQuantities& entry : ParseLocationAndQuantities(stock)) {
        if (entry.idealQuantity <= 0 || entry.warnQuantity < entry.quantity) continue;
        LLocation location;
        const bool isKnown = locations.Open(location, entry.location);
        SendWarningEmail(entry.quantity, entry.warnQuantity,
                         isKnown ? location.GetString("Name") : std::string(), item);
    }
}

}  // namespace

void SendWarningEmail(double quantity, double warnQuantity, std::string_view locationName,
                      const LItem& item) {
    LEmail::CheckInstallDefaults();
    const std::string name = item.GetString("Name");
    const std::string subject =
        "Inventory warning: item " + name + " quantity goes down to warning.";
    const std::string body =
        "\r\nThe quantity of item " + name +
        " has reached the warning level.\r\n\r\nQuantity: " + TwoDecimals(quantity) +
        "\r\n\r\nWarning Quantity: " + TwoDecimals(warnQuantity) +
        "\r\n\r\nLocation: " + std::string(locationName) + "\r\n\r\n";
    if (!LSendEmailBackground(LUserSettingGetString("Email", "ReplyToEmail", {}), subject, body)) {
        WriteEmailLog("E-mail \"" + subject + "\" was not sent: the sender takes no more messages.",
                      LEmailLogLevel::kError);
    }
}

void SendDueWarnings(const LProfile& profile, std::string_view itemKey, LWarnedItems& warned) {
    const LMovementLock lock(profile, kMovementWaitMs);
    if (!lock.IsTurn()) return;
    std::string warnedAt;
    const auto known = warned.find(itemKey);
    const bool wasWarned = known != warned.end();
    if (wasWarned) {
        warnedAt = std::move(known->second);
        warned.erase(known);
    }
    LItem item;
    if (!profile.Items().Open(item, itemKey) || !HasBothFlags(item)) return;
    const std::string stock = item.GetString("LocationsAndQuantities");
    if (!wasWarned || warnedAt != stock) WarnOfLowLocations(profile, item, stock);
    if (!LowerFlag(profile, item)) warned.emplace(itemKey, stock);
}

LFlaggedItems::LFlaggedItems(std::string databaseFolder)
    : databaseFolder_(std::move(databaseFolder)) {}

bool LFlaggedItems::IsFlagged(const LFileStoreListBase& items, std::string_view key) {
    ++readCount_;
    LRecord item;
    return items.Load(key, item) && HasBothFlags(item);
}

std::vector<std::string> LFlaggedItems::Find(const std::function<bool()>& isStopped) {
    std::vector<std::string> keys;
    std::vector<LSeen> seen;
    seen.reserve(seen_.size());
    readCount_ = 0;
    const std::string folder = databaseFolder_ + "/Items";
    const LFileDescriptor open(::open(folder.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC));
    if (!open.IsOpen()) return keys;
    const LFileStoreListBase items(LFileStoreDataStore(databaseFolder_), "Items");
    LFolderReader reader(open.Get());
    while (const LFolderReader::Entry* entry = reader.Next()) {
        if (isStopped()) return keys;
        struct stat status {};
        if (!entry->mayBeFile || !IsRecordFileName(entry->name) ||
            ::fstatat(open.Get(), entry->name, &status, 0) != 0) {
            continue;
        }
        const LSeen file{status.st_ino, Nanoseconds(status.st_ctim)};
        const bool isSettled = Now() - file.changedNs > kSettledNs;
        const std::string key = KeyOfRecordFile(entry->name, {});
        if (std::binary_search(seen_.begin(), seen_.end(), file)) {
            seen.push_back(file);
        } else if (IsFlagged(items, key)) {
            keys.push_back(key);
        } else if (isSettled) {
            seen.push_back(file);
        }
    }
    std::sort(seen.begin(), seen.end());
    seen_ = std::move(seen);
    return keys;
}
