#include "service/link/LinkAccess.h"

#include "datastore/Businesses.h"
#include "datastore/LProfile.h"
#include "web/accounts/LWebAccount.h"
#include "web/server/LWebletForm.h"

std::string AccessCodeOf(const std::string& businessFolder) {
    const LFileStoreDataStore store(businessFolder);
    LRecord options;
    LFileStoreListBase(store, "Misc").OpenAlways(options, "Options");
    return options.GetString("SyncAuthKey");
}

bool WLValidateAuthKey(const LWebletForm& form, LProfile& profile, std::string& message) {
    const std::string code = form.Parameter("auth");
    if (code.empty()) {
        message = "Connection rejected -- missing authorization key.";
        return false;
    }
    bool isAnyEnabled = false;
    for (InvBusinessIterator business; business.IsValid(); business.Next()) {
        const std::string stored = AccessCodeOf(business.Current().folder);
        isAnyEnabled = isAnyEnabled || !stored.empty();
        if (!EqualInConstantTime(stored, code)) continue;
        profile.SetDatabaseName(business.Current().folder);
        return true;
    }
    message = isAnyEnabled ? "Connection rejected -- invalid authorization key."
                           : "Connection rejected -- Application integration not enabled by "
                             "Quillmarsh.";
    return false;
}
