#include "platform/NetworkAddresses.h"

#include <arpa/inet.h>
#include <ifaddrs.h>
#include <net/if.h>
#include <netinet/in.h>

#include <array>
#include <memory>

namespace {

using LInterfaces = std::unique_ptr<ifaddrs, decltype(&::freeifaddrs)>;

LInterfaces GetInterfaces() {
    ifaddrs* list = nullptr;
    return {::getifaddrs(&list) == 0 ? list : nullptr, ::freeifaddrs};
}

// Of an IPv4 address in the machine's byte order.
bool IsUsable(uint32_t address) {
    const bool isLoop = address >> 24 == 127;
    const bool isLinkLocal = address >> 16 == 0xA9FE;
    return address != 0 && !isLoop && !isLinkLocal;
}
bool IsLocal(uint32_t address) {
    return address >> 24 == 10 || address >> 20 == 0xAC1 || address >> 16 == 0xC0A8 ||
           address >> 22 == (0x64400000 >> 22);  // shared by the customers of one provider
}

bool IsUsable(const in6_addr& address) {
    return !IN6_IS_ADDR_LOOPBACK(&address) && !IN6_IS_ADDR_LINKLOCAL(&address) &&
           !IN6_IS_ADDR_UNSPECIFIED(&address);
}
bool IsLocal(const in6_addr& address) { return (address.s6_addr[0] & 0xFE) == 0xFC; }

// Empty for an address of the other kind.
std::string TextOf(const sockaddr& any, LNetworkReach reach) {
    const bool wantsLocal = reach == LNetworkReach::kLocal;
    std::array<char, INET6_ADDRSTRLEN> text{};
    if (any.sa_family == AF_INET) {
        const in_addr& address = reinterpret_cast<const sockaddr_in&>(any).sin_addr;
        const uint32_t number = ntohl(address.s_addr);
        if (!IsUsable(number) || IsLocal(number) != wantsLocal) return {};
        ::inet_ntop(AF_INET, &address, text.data(), text.size());
    } else if (any.sa_family == AF_INET6) {
        const in6_addr& address = reinterpret_cast<const sockaddr_in6&>(any).sin6_addr;
        if (!IsUsable(address) || IsLocal(address) != wantsLocal) return {};
        ::inet_ntop(AF_INET6, &address, text.data(), text.size());
    }
    return text.data();
}

}  // namespace

bool IsNetworkUp() {
    const LInterfaces list = GetInterfaces();
    for (const ifaddrs* entry = list.get(); entry != nullptr; entry = entry->ifa_next) {
        if (entry->ifa_addr == nullptr) continue;
        const int family = entry->ifa_addr->sa_family;
        if ((entry->ifa_flags & IFF_UP) != 0 && (family == AF_INET || family == AF_INET6)) {
            return true;
        }
    }
    return false;
}

std::vector<std::string> OwnNetworkAddresses(LNetworkReach reach) {
    std::vector<std::string> out;
    size_t olderKind = 0;  // so many of IPv4 stand in front
    const LInterfaces list = GetInterfaces();
    for (const ifaddrs* entry = list.get(); entry != nullptr; entry = entry->ifa_next) {
        if (entry->ifa_addr == nullptr || (entry->ifa_flags & IFF_UP) == 0) continue;
        const std::string text = TextOf(*entry->ifa_addr, reach);
        if (text.empty()) continue;
        const bool isOlder = entry->ifa_addr->sa_family == AF_INET;
        const auto at =
            isOlder ? out.begin() + static_cast<std::ptrdiff_t>(olderKind++) : out.end();
        out.insert(at, text);
    }
    return out;
}
