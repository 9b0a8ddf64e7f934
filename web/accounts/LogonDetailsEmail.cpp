#include "web/accounts/LogonDetailsEmail.h"

#include "platform/NetworkAddresses.h"
#include "platform/ProcessInfo.h"
#include "service/email/EmailSettings.h"
#include "service/email/LEmail.h"
#include "service/email/SendEmailBackground.h"
#include "web/server/LWebletServer.h"

namespace {

std::string UrlOf(const std::string& host) {
    const bool isIpv6 = host.find(':') != std::string::npos;
    return "http://" + (isIpv6 ? "[" + host + "]" : host) + ":" +
           std::to_string(LWebletServer::GetWebletServerPort()) + "/";
}

std::string LocalAddress() {
    const auto addresses = OwnNetworkAddresses(LNetworkReach::kLocal);
    return UrlOf(addresses.empty() ? HostName() : addresses.front());
}

// Behind a router the machine does not know the address by which the internet reaches it.
std::string PublicAddress() {
    const auto addresses = OwnNetworkAddresses(LNetworkReach::kPublic);
    if (addresses.empty() || !LWebletServer::IsPublicWebletServerEnabled()) return "not available";
    return UrlOf(addresses.front());
}

}  // namespace

bool LSendLogonDetails(const std::string& email, const std::string& password) {
    LEmail::CheckInstallDefaults();
    if (!CanSendEmail(LoadEmailSettings())) return false;
    return LSendEmailBackground(
        email, "Quillmarsh Stock Manager: Logon Details",
        "You have been issued logon details for Quillmarsh Stock Manager:\n\n    Quillmarsh "
        "Server: " +
            PublicAddress() + " (over the Internet)\n    Quillmarsh Server: " + LocalAddress() +
            " (on the local network)\n    Email: " + email + "\n    Password: " + password +
            "\n\n");
}
