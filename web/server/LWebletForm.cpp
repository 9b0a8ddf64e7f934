#include "web/server/LWebletForm.h"

#include "web/server/RequestOrigin.h"
#include "web/server/SessionSweep.h"

namespace {

constexpr std::string_view kSessionCookie = "quillmarsh_sess";

}  // namespace

LWebletSessionData& LWebletForm::Session() {
    if (!sessionAsked_) {
        sessionAsked_ = true;
        const std::string id = cookies_.GetString(kSessionCookie);
        if (!id.empty()) session_.LoadSession(id);
    }
    return session_;
}

void LWebletForm::FinishSession() {
    if (sessionAsked_) {
        session_.FlushSession();
    } else if (!SweepWatchedSessionFiles()) {
        SweepSessionFiles(LWebletSessionData::Folder());
    }
}

bool LWebletForm::IsFromOtherSite() const { return IsRequestFromOtherSite(headers_); }

LProfile& LWebletForm::Profile() {
    if (profile_ == nullptr) profile_ = std::make_unique<LProfile>(Session().GetString("profile"));
    return *profile_;
}
