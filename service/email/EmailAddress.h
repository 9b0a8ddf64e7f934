// What counts as an e-mail address, for every form that asks for one.
#pragma once

#include <string>
#include <string_view>
#include <vector>

// One address: a local part and a domain with at least one dot, as RFC 5321 allows them without
// quoting (local part up to 64 bytes, labels up to 63); no blanks, no control characters, at most
// 254 bytes. Characters beyond ASCII are allowed as UTF-8 (RFC 6531), blanks and controls among
// them excepted.
bool ValidateAddressSingle(std::string_view text);
// One or more addresses separated by commas, each perhaps with a display name before "<...>"; a
// comma inside a quoted display name does not separate. No part may be empty.
bool ValidateAddress(std::string_view text);

// One address of a list, with the name that stands before it, its quotes taken off.
struct LMailbox {
    std::string name;  // may be empty
    std::string address;
};

// Walks a comma-separated list as ValidateAddress reads it; parts of blanks only are skipped. What
// is no mailbox comes as it stands, in `address`. The text must outlive the iterator.
class LEmailAddressListIterator {
public:
    explicit LEmailAddressListIterator(std::string_view list) : rest_(list) { Next(); }
    bool IsValid() const { return valid_; }
    const LMailbox& Current() const { return current_; }
    void Next();

private:
    std::string_view rest_;
    bool valid_ = false;
    LMailbox current_;
};

// The addresses as a list again: "a@b.c, d@e.f".
std::string JoinAddresses(const std::vector<std::string>& addresses);

// Whether the address can be named in a mail dialogue and in a message's head without breaking out
// of its place there. Looser than ValidateAddressSingle: "root@localhost" and "root" pass too.
bool IsAddressSendable(std::string_view address);
// What stands behind the last "@"; empty without one.
std::string_view DomainOfAddress(std::string_view address);
// The address with its domain in the coded form that servers and resolvers know (RFC 5891); as it
// is when there is no such form.
std::string AddressWithAsciiDomain(std::string_view address);
