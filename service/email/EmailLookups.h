// Names in the network: of servers, of the mail exchangers of a domain, of this machine.
#pragma once

#include <sys/socket.h>

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

#include "platform/LUserInterface.h"

enum class LLookupResult {
    kFound,
    kNone,       // there is no such name, and asking again will not change that
    kTemporary,  // no answer for now
    kCancelled
};

struct LNetworkAddress {
    sockaddr_storage storage{};
    socklen_t size = 0;
};

struct LExchangers {
    LLookupResult result = LLookupResult::kTemporary;
    std::vector<std::string> hosts;  // in the order of preference, random among equals
};

// The system's resolver cannot be interrupted, so each question is asked on a thread of its own
// that is left to itself when `process` is cancelled or `timeoutMs` is over.

LLookupResult ResolveHost(const std::string& host, uint16_t port, LProcessInterface& process,
                          int timeoutMs, std::vector<LNetworkAddress>& addresses);

// RFC 5321 5.1: a domain without exchangers is its own; one that names "." takes no mail (RFC 7505,
// told as kNone).
LExchangers FindMailExchangers(const std::string& domain, LProcessInterface& process,
                               int timeoutMs);
// What an answer of the name server says; `domain` as it was asked for.
LExchangers ParseExchangers(std::string_view answer, const std::string& domain);

// The fully qualified name of this machine, or the short one where it has no other.
std::string LocalHostName(LProcessInterface& process);
