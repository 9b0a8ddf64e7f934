#include "orders/LOrderSender.h"

#include <fcntl.h>
#include <unistd.h>

#include <cstdlib>

#include "orders/OrderText.h"
#include "platform/ChildProgram.h"
#include "platform/FileIo.h"
#include "platform/Folders.h"
#include "platform/LFileDescriptor.h"
#include "service/email/EmailAddress.h"
#include "service/email/EmailSettings.h"
#include "service/email/SendEmailBackground.h"

namespace {

constexpr int kPrintTimeoutMs = 10000;  // the service may be told to stop meanwhile

// A file of its own below the temporary folder, for another program to read; goes with the object.
class LHandedFile {
public:
    explicit LHandedFile(std::string_view text) : path_(GetTemporaryFolder() + "/order-XXXXXX") {
        const LFileDescriptor file(::mkostemp(path_.data(), O_CLOEXEC));
        exists_ = file.IsOpen();
        isWritten_ = exists_ && WriteAll(file.Get(), text);
    }
    ~LHandedFile() {
        if (exists_) ::unlink(path_.c_str());
    }
    LHandedFile(const LHandedFile&) = delete;
    LHandedFile& operator=(const LHandedFile&) = delete;

    bool IsWritten() const { return isWritten_; }
    const std::string& Path() const { return path_; }

private:
    std::string path_;
    bool exists_ = false, isWritten_ = false;
};

// The background sender takes every message; one that it cannot send anywhere is no success.
bool CanSend(const LEmailSettings& settings) {
    return !settings.useSmtpHost || !settings.mailSmtpHost.empty();
}

}  // namespace

LOrderSender LOrderSender::OfThisSystem(const LSignalObject* stop) {
    return {[stop](const std::vector<std::string>& words, int timeoutMs) {
                return RunProgram(words, timeoutMs, stop);
            },
            [](std::string_view recipients, std::string_view subject, std::string_view body) {
                return CanSend(LoadEmailSettings()) &&
                       LSendEmailBackground(recipients, subject, body);
            }};
}

bool LOrderSender::Print(const LProfile& profile, const LPOrder& order) {
    if (!runProgram_) return false;
    const LHandedFile file(LOrderPlainText(profile, order));
    if (!file.IsWritten()) return false;
    // lp reads the file before it ends, so it may go then.
    return runProgram_({"lp", "-t", LOrderTitle(profile, order), "--", file.Path()},
                       kPrintTimeoutMs) == 0;
}

bool LOrderSender::Email(const LProfile& profile, const LPOrder& order, std::string_view address) {
    if (!sendMail_ || !ValidateAddress(address)) return false;
    std::string subject = LOrderTitle(profile, order);
    const std::string business = profile.BusinessName();
    if (!business.empty()) subject += " - " + business;
    return sendMail_(address, subject,
                     "Please find our purchase order below.\n\n" + LOrderPlainText(profile, order));
}
