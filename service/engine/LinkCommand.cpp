#include "service/engine/LinkCommand.h"

#include "platform/RandomSource.h"
#include "service/link/LinkSettings.h"
#include "web/server/LWebletServer.h"

namespace {

// Nothing slows down guesses at a code, so it is longer than a password.
constexpr size_t kGeneratedCodeLetters = 20;

// Saving a record never fails by itself: it is read back to tell.
std::string Store(const LProfile& profile, const LLinkSettings& settings) {
    const LFieldError<LLinkField> error = SaveLinkSettings(profile, settings);
    if (!error.IsNone()) return error.message;
    return ReadLinkSettings(profile).code == settings.code ? "" : "cannot store the access code";
}

}  // namespace

std::string LTurnLinkFromCommandLine(const LProfile& profile, bool isOn, std::ostream& out) {
    LLinkSettings settings = ReadLinkSettings(profile);
    const bool isNew = isOn && !settings.isOn;
    if (isNew) settings.code = RandomLetters(kGeneratedCodeLetters);
    if (!isOn) settings.code.clear();
    settings.isOn = isOn;
    const std::string problem = Store(profile, settings);
    if (!problem.empty()) return problem;

    out << "Partner link: " << (isOn ? "on" : "off") << "\n";
    if (!isOn) return {};
    if (isNew) {
        out << "Access code (shown only now): " << settings.code << "\n";
    } else {
        out << "Access code: as before\n";
    }
    out << "Pages: link-quantitychange, link-sync, link-locreq\n";
    if (!LWebletServer::IsWebletServerEnabled()) out << kLinkNeedsWebAccess << "\n";
    return {};
}
