// Prints orders with the system's print command and sends them by e-mail, as plain text.
#pragma once

#include <functional>
#include <string>
#include <string_view>
#include <vector>

#include "orders/LOrderDispatch.h"
#include "platform/LSignalObject.h"

class LOrderSender final : public LOrderDispatch {
public:
    // Runs words[0] with the other words as arguments; its exit status, -1 when it could not be run
    // or did not end within `timeoutMs`.
    using LRunProgram = std::function<int(const std::vector<std::string>& words, int timeoutMs)>;
    // Hands a message to the e-mail sender; false when it does not take it.
    using LSendMail = std::function<bool(std::string_view recipients, std::string_view subject,
                                         std::string_view body)>;
    // What is empty always fails.
    LOrderSender() = default;
    LOrderSender(LRunProgram runProgram, LSendMail sendMail)
        : runProgram_(std::move(runProgram)), sendMail_(std::move(sendMail)) {}

    // Prints with the print command of this machine and hands e-mails to the background sender of
    // this process. A print command that hangs is ended when `stop` is set, which outlives this.
    static LOrderSender OfThisSystem(const LSignalObject* stop = nullptr);

    // Hands it to CUPS for the default printer ("lp"); true once it waits in the queue.
    bool Print(const LProfile& profile, const LPOrder& order) override;
    // Refuses what is no list of addresses.
    bool Email(const LProfile& profile, const LPOrder& order, std::string_view address) override;
    // There is no fax on this system.
    bool Fax(const LProfile&, const LPOrder&, std::string_view) override { return false; }

private:
    LRunProgram runProgram_;
    LSendMail sendMail_;
};
