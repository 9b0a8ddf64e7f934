#include "service/link/LinkSettings.h"

#include "datastore/Businesses.h"
#include "service/link/LinkAccess.h"

namespace {

bool IsUsedElsewhere(const LProfile& profile, const std::string& code) {
    for (const LBusiness& business : ListBusinesses(LBusinessFilter::kWithDeleted)) {
        const bool isOther = business.folder != profile.DatabaseFolder();
        if (isOther && AccessCodeOf(business.folder) == code) return true;
    }
    return false;
}

}  // namespace

LLinkSettings ReadLinkSettings(const LProfile& profile) {
    const std::string code = AccessCodeOf(profile.DatabaseFolder());
    return {!code.empty(), code};
}

LFieldError<LLinkField> SaveLinkSettings(const LProfile& profile, const LLinkSettings& settings) {
    using LError = LFieldError<LLinkField>;
    if (settings.isOn && settings.code.empty()) {
        return LError::At(LLinkField::kCode,
                          "Please enter an Access Authentication Code for accepting connections "
                          "from Ordwick Invoice, Halbrook Accounts or Marrowby.");
    }
    if (settings.isOn && IsUsedElsewhere(profile, settings.code)) {
        return LError::At(LLinkField::kCode,
                          "Please enter an Access Authentication Code that is unique to this "
                          "business. This code is already in use by another business in "
                          "Quillmarsh.");
    }
    LRecord options;
    profile.OpenSettings(options, "Options");
    options.SetString("SyncAuthKey", settings.isOn ? settings.code : std::string());
    options.Flush();
    return LError::None();
}
