#include "service/link/LinkPages.h"

#include <fcntl.h>
#include <stdlib.h>
#include <sys/stat.h>
#include <unistd.h>

#include <array>
#include <cerrno>
#include <cstring>
#include <ctime>

#include "datastore/StoredNumbers.h"
#include "inventory/Locations.h"
#include "inventory/StockQuantities.h"
#include "platform/Folders.h"
#include "platform/LFileDescriptor.h"
#include "platform/TextLimits.h"
#include "service/control/LServiceLog.h"
#include "service/link/LinkAccess.h"
#include "service/link/LinkItemSync.h"
#include "web/server/LWebletConnection.h"
#include "web/server/LWebletForm.h"
#include "web/server/ServeFile.h"
#include "web/server/WebletOutput.h"

namespace {

constexpr int kSendMs = 7000;
constexpr int kFirstWordMs = 7000;
constexpr int kCheckMs = 100;
constexpr size_t kRefusalBytes = 4;
constexpr char kTestPassed[] = "Connection test successful.\n";

bool SendRaw(LWebletForm& form, std::string_view text) {
    form.SetAnswered();
    return form.Connection().ProcessSend(text, kSendMs) == LSocketResult::kOk;
}

// The partner only gets the prefix; whoever looks for the reason finds it in the log.
void Refuse(LWebletForm& form, const std::string& message) {
    LServiceLog(form.PageName(), message, kLogWarning);
    SendRaw(form, std::string_view(message).substr(0, kRefusalBytes));
}

// Either spelling: taken for no test it would move stock.
bool IsTest(const LWebletForm& form) {
    const std::string value = form.Parameter("test");
    return value == "true" || value == "1";
}

std::string LocationParameter(const LWebletForm& form) {
    return std::string(CutText(form.Parameter("loc")));
}

// The name as it is stored: a change under a name in other letters would begin a second entry for
// the same location. Empty when there is no such location.
std::string StoredLocationName(const LProfile& profile, const std::string& name) {
    LLocation location;
    if (name.empty() || !OpenLocation(LLocationList(profile), location, name)) return {};
    return location.GetString("Name");
}

std::string InvalidLocation(const std::string& name) {
    return "Quantity change failed -- invalid location name: " + name + ".";
}

constexpr char kNoLocation[] = "Quantity change failed -- no location provided.";

std::string TestQuantityChange(const LProfile& profile, const std::string& location) {
    if (location.empty()) return kNoLocation;
    return StoredLocationName(profile, location).empty() ? InvalidLocation(location) : kTestPassed;
}

// Does it, or says why not.
std::string ChangeQuantity(const LProfile& profile, const LWebletForm& form,
                           const std::string& location) {
    if (location.empty()) return kNoLocation;
    const std::string code = form.Parameter("item"), quantityText = form.Parameter("qty");
    if (code.empty()) return "Quantity change failed -- no item name provided.";
    if (quantityText.empty()) return "Quantity change failed -- no quantity provided.";
    LItem item;
    if (!OpenItem(profile, item, code)) {
        return "Quantity change failed -- invalid item name: " + code + ".";
    }
    const std::string storedLocation = StoredLocationName(profile, location);
    if (storedLocation.empty()) return InvalidLocation(location);
    const double quantity = profile.ParseNumber(quantityText).value_or(0);
    if (quantity == 0) return "Quantity change failed -- invalid quantity.";
    if (LItemChangeQuantity(profile, item, quantity, storedLocation, true)) return {};
    return "Quantity change failed -- item cannot be changed: " + code + ".";
}

// The item file, which is gone when this goes.
class LSyncFile {
public:
    LSyncFile() : path_(GetSharedDataFolderApp() + "/0XXXXXX.csv") {
        constexpr int kSuffixBytes = 4;
        fd_ = LFileDescriptor(::mkostemps(path_.data(), kSuffixBytes, O_CLOEXEC));
        if (fd_.IsOpen()) ::fchmod(fd_.Get(), 0666);
    }
    ~LSyncFile() {
        if (fd_.IsOpen()) ::unlink(path_.c_str());
    }
    LSyncFile(const LSyncFile&) = delete;
    LSyncFile& operator=(const LSyncFile&) = delete;

    const std::string& Path() const { return path_; }
    // The number of items; -1 when it cannot be made.
    int Write(const LProfile& profile, const LWebletForm& form) const {
        if (!fd_.IsOpen()) return -1;
        const std::string given = LocationParameter(form);
        const std::string stored = StoredLocationName(profile, given);
        const std::string& location = stored.empty() ? given : stored;
        const std::string seconds = form.Parameter("sinceseconds");
        if (seconds.empty()) return INLinkItemSync(profile, fd_.Get(), location);
        const std::time_t now = std::time(nullptr);
        // Held to times that there have been: what is asked for may be any number.
        const std::time_t since = std::min(std::max(ParseStoredInt64(seconds), int64_t{0}), now);
        return INLinkItemSync(profile, fd_.Get(), now - since, location);
    }

private:
    std::string path_;
    LFileDescriptor fd_;
};

// The partner's time to take the file; its own end of the connection tells that it has it.
void WaitUntilClientCloses(LWebletConnection& connection) {
    std::array<char, 512> ignored;
    for (;;) {
        const LClientWait wait = connection.WaitForClient(kCheckMs);
        if (wait == LClientWait::kGone || wait == LClientWait::kStopped) return;
        if (connection.IsStopping()) return;
        size_t count = 0;
        if (wait == LClientWait::kSentMore) connection.ReadSome(ignored, count, 0);
    }
}

void SendSyncFile(LWebletForm& form, const LSyncFile& file) {
    if (!SendRaw(form, "Connection Accepted\n")) return;
    LWebletConnection& connection = form.Connection();
    const LClientWait wait = connection.WaitForClient(kFirstWordMs);
    if (wait == LClientWait::kGone || wait == LClientWait::kStopped) return;
    LWebletServeFile(form, file.Path(), {}, {});
    if (!form.IsForceClose()) WaitUntilClientCloses(connection);
    form.SetForceClose();
}

}  // namespace

void WLLinkQuantityChange(LWebletForm& form) {
    LProfile profile;
    std::string message;
    if (!WLValidateAuthKey(form, profile, message)) return Refuse(form, message);
    const std::string location = LocationParameter(form);
    if (IsTest(form)) {
        SendRaw(form, TestQuantityChange(profile, location));
        return;
    }
    message = ChangeQuantity(profile, form, location);
    if (!message.empty()) return Refuse(form, message);
    SendRaw(form, "Quantity Change Successful\n");
}

void WLLinkSync(LWebletForm& form) {
    LProfile profile;
    std::string message;
    if (!WLValidateAuthKey(form, profile, message)) return Refuse(form, message);
    if (IsTest(form)) {
        SendRaw(form, kTestPassed);
        return;
    }
    const LSyncFile file;
    const int count = file.Write(profile, form);
    if (count > 0) return SendSyncFile(form, file);
    if (count == 0) {
        SendRaw(form, "No New Items\n");
        return;
    }
    // Without an answer the partner knows that this was no success, and asks again.
    LServiceLog("cannot write item file " + file.Path(), std::strerror(errno), kLogError);
    form.SetForceClose();
}

void WLLinkLocations(LWebletForm& form) {
    LProfile profile;
    std::string message;
    if (!WLValidateAuthKey(form, profile, message)) return Refuse(form, message);
    std::string names, separator;
    LLocationList(profile).ForEach([&](const LLocation& location) {
        names += separator + location.GetString("Name");
        separator = ",";
        return true;
    });
    SendRaw(form, names);
}
