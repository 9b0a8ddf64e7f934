#include "service/email/EmailLookups.h"

#include <arpa/nameser.h>
#include <netdb.h>
#include <resolv.h>

#include <algorithm>
#include <array>
#include <chrono>
#include <cstring>
#include <functional>
#include <memory>
#include <optional>
#include <system_error>
#include <thread>

#include "platform/LMutex.h"
#include "platform/ProcessInfo.h"
#include "platform/RandomSource.h"

namespace {

constexpr auto kSlice = std::chrono::milliseconds(100);  // how soon a cancellation is seen
constexpr int kOwnNameTimeoutMs = 5000;
constexpr size_t kMaxHostName = 255;

// What the asking thread and the waiting one share; whichever is last lets it go.
template <typename Answer>
struct LQuestion {
    std::mutex mutex;
    std::condition_variable answered;
    std::optional<Answer> answer;
};

// Nothing when it took too long, was cancelled, or no thread could be had.
template <typename Answer>
std::optional<Answer> AskAside(std::function<Answer()> ask, LProcessInterface& process,
                               int timeoutMs) {
    const auto question = std::make_shared<LQuestion<Answer>>();
    try {
        std::thread([question, ask = std::move(ask)] {
            Answer answer = ask();
            const std::lock_guard lock(question->mutex);
            question->answer = std::move(answer);
            question->answered.notify_all();
        }).detach();
    } catch (const std::system_error&) {
        return std::nullopt;
    }
    const auto end = std::chrono::steady_clock::now() + std::chrono::milliseconds(timeoutMs);
    std::unique_lock lock(question->mutex);
    while (!question->answer && !process.IsCancelled()) {
        const auto now = std::chrono::steady_clock::now();
        if (now >= end) break;
        question->answered.wait_until(lock, std::min(now + kSlice, end));
    }
    return std::move(question->answer);
}

using LAddressInfo = std::unique_ptr<addrinfo, decltype(&::freeaddrinfo)>;

LAddressInfo GetAddressInfo(const std::string& host, const char* port, int flags, int& error) {
    addrinfo hints{};
    hints.ai_socktype = SOCK_STREAM;
    hints.ai_flags = flags;
    addrinfo* found = nullptr;
    error = ::getaddrinfo(host.c_str(), port, &hints, &found);
    return {error == 0 ? found : nullptr, ::freeaddrinfo};
}

struct LAddresses {
    LLookupResult result = LLookupResult::kTemporary;
    std::vector<LNetworkAddress> addresses;
};

LAddresses ResolveNow(const std::string& host, uint16_t port) {
    int error = 0;
    const LAddressInfo list =
        GetAddressInfo(host, std::to_string(port).c_str(), AI_NUMERICSERV, error);
    LAddresses out;
    for (const addrinfo* entry = list.get(); entry != nullptr; entry = entry->ai_next) {
        LNetworkAddress address;
        if (entry->ai_addrlen > sizeof address.storage) continue;
        std::memcpy(&address.storage, entry->ai_addr, entry->ai_addrlen);
        address.size = entry->ai_addrlen;
        out.addresses.push_back(address);
    }
    if (!out.addresses.empty()) {
        out.result = LLookupResult::kFound;
    } else if (error == EAI_NONAME || error == EAI_NODATA) {
        out.result = LLookupResult::kNone;
    }
    return out;
}

LExchangers AskForExchangers(const std::string& domain) {
    std::vector<unsigned char> answer(NS_MAXMSG);
    const int size = ::res_query(domain.c_str(), ns_c_in, ns_t_mx, answer.data(),
                                 static_cast<int>(answer.size()));
    if (size < 0) {
        if (h_errno == NO_DATA) return {LLookupResult::kFound, {domain}};
        const bool isFinal = h_errno == HOST_NOT_FOUND;
        return {isFinal ? LLookupResult::kNone : LLookupResult::kTemporary, {}};
    }
    const size_t kept = std::min(static_cast<size_t>(size), answer.size());
    return ParseExchangers({reinterpret_cast<const char*>(answer.data()), kept}, domain);
}

struct LExchanger {
    int preference = 0;
    uint32_t lot = 0;  // draws among equals
    std::string host;
};

// Nothing for a record that is no exchanger, or is cut short.
std::optional<LExchanger> ReadExchanger(const ns_msg& message, const ns_rr& record) {
    constexpr size_t kPreferenceBytes = 2;
    if (ns_rr_type(record) != ns_t_mx || ns_rr_rdlen(record) <= kPreferenceBytes) return {};
    std::array<char, NS_MAXDNAME> host;
    const unsigned char* const data = ns_rr_rdata(record);
    if (::dn_expand(ns_msg_base(message), ns_msg_end(message), data + kPreferenceBytes, host.data(),
                    static_cast<int>(host.size())) < 0) {
        return {};
    }
    return LExchanger{data[0] << 8 | data[1], RandomNumber(), host.data()};
}

// A name that may stand in a command and in a log.
bool IsHostName(std::string_view name) {
    return !name.empty() && name.size() <= kMaxHostName &&
           std::all_of(name.begin(), name.end(), [](char byte) {
               return byte == '.' || byte == '-' || byte == '_' || (byte >= '0' && byte <= '9') ||
                      (byte >= 'a' && byte <= 'z') || (byte >= 'A' && byte <= 'Z');
           });
}

std::string FindOwnName() {
    const std::string name = HostName();
    int error = 0;
    const LAddressInfo list = GetAddressInfo(name, nullptr, AI_CANONNAME, error);
    if (list == nullptr || list->ai_canonname == nullptr) return name;
    const std::string full = list->ai_canonname;
    return full.find('.') == std::string::npos ? name : full;
}

}  // namespace

LLookupResult ResolveHost(const std::string& host, uint16_t port, LProcessInterface& process,
                          int timeoutMs, std::vector<LNetworkAddress>& addresses) {
    auto found =
        AskAside<LAddresses>([host, port] { return ResolveNow(host, port); }, process, timeoutMs);
    if (process.IsCancelled()) return LLookupResult::kCancelled;
    if (!found) return LLookupResult::kTemporary;
    addresses = std::move(found->addresses);
    return found->result;
}

LExchangers FindMailExchangers(const std::string& domain, LProcessInterface& process,
                               int timeoutMs) {
    auto found =
        AskAside<LExchangers>([domain] { return AskForExchangers(domain); }, process, timeoutMs);
    if (process.IsCancelled()) return {LLookupResult::kCancelled, {}};
    return found ? std::move(*found) : LExchangers{};
}

LExchangers ParseExchangers(std::string_view answer, const std::string& domain) {
    ns_msg message{};
    if (::ns_initparse(reinterpret_cast<const unsigned char*>(answer.data()),
                       static_cast<int>(answer.size()), &message) != 0) {
        return {};
    }
    std::vector<LExchanger> exchangers;
    bool refusesMail = false;
    for (int i = 0; i < ns_msg_count(message, ns_s_an); ++i) {
        ns_rr record{};
        if (::ns_parserr(&message, ns_s_an, i, &record) != 0) break;
        auto exchanger = ReadExchanger(message, record);
        if (!exchanger) continue;
        refusesMail = refusesMail || exchanger->host.empty() || exchanger->host == ".";
        if (IsHostName(exchanger->host)) exchangers.push_back(std::move(*exchanger));
    }
    std::sort(exchangers.begin(), exchangers.end(), [](const LExchanger& a, const LExchanger& b) {
        return a.preference != b.preference ? a.preference < b.preference : a.lot < b.lot;
    });
    LExchangers out{LLookupResult::kFound, {}};
    for (LExchanger& exchanger : exchangers) {
        if (exchanger.host != ".") out.hosts.push_back(std::move(exchanger.host));
    }
    if (!out.hosts.empty()) return out;
    if (refusesMail) return {LLookupResult::kNone, {}};
    return {LLookupResult::kFound, {domain}};
}

std::string LocalHostName(LProcessInterface& process) {
    const auto name = AskAside<std::string>(FindOwnName, process, kOwnNameTimeoutMs);
    if (name && IsHostName(*name)) return *name;
    const std::string shortName = HostName();
    return IsHostName(shortName) ? shortName : "localhost";
}
