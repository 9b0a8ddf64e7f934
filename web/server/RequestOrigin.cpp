#include "web/server/RequestOrigin.h"

#include <string_view>

#include "datastore/LHashTable.h"
#include "platform/CaseFolding.h"

namespace {

// "scheme://host:port" without the scheme; empty for "null" and whatever else is no origin.
std::string_view AuthorityOf(std::string_view origin) {
    const size_t scheme = origin.find("://");
    return scheme == std::string_view::npos ? std::string_view() : origin.substr(scheme + 3);
}

// Browsers leave the usual port out of one of the two and not always out of the other.
std::string_view WithoutUsualPort(std::string_view authority) {
    for (const std::string_view port : {":80", ":443"}) {
        if (authority.ends_with(port)) return authority.substr(0, authority.size() - port.size());
    }
    return authority;
}

}  // namespace

bool IsRequestFromOtherSite(const LHashTable& headers) {
    const std::string_view site = headers.GetParm("sec-fetch-site");
    if (!site.empty()) return site == "cross-site";
    const std::string_view origin = headers.GetParm("origin");
    if (origin.empty()) return false;
    const std::string_view authority = AuthorityOf(origin);
    return authority.empty() || !EqualIgnoringCase(WithoutUsualPort(authority),
                                                   WithoutUsualPort(headers.GetParm("host")));
}
