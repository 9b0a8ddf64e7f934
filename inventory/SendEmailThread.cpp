#include "inventory/SendEmailThread.h"

#include <algorithm>

#include "datastore/Businesses.h"

void SendEmailThread::ThreadFunction() {
    do {
        Pass();
    } while (!StopSignal().Wait(pauseMs_));
}

void SendEmailThread::Pass() {
    std::vector<LBusinessItems> businesses;
    for (const LBusiness& business : ListBusinesses()) {
        const auto known = std::find_if(
            businesses_.begin(), businesses_.end(),
            [&](const LBusinessItems& of) { return of.items.Folder() == business.folder; });
        businesses.push_back(known == businesses_.end()
                                 ? LBusinessItems{LFlaggedItems(business.folder), {}}
                                 : std::move(*known));
    }
    businesses_ = std::move(businesses);
    for (LBusinessItems& business : businesses_) PassOver(business);
}

void SendEmailThread::PassOver(LBusinessItems& business) {
    const std::vector<std::string> keys = business.items.Find([this] { return IsStopRequested(); });
    // A flag that somebody else has lowered may be raised for the same stock another day.
    std::erase_if(business.warned, [&keys](const auto& entry) {
        return std::find(keys.begin(), keys.end(), entry.first) == keys.end();
    });
    if (keys.empty() || IsStopRequested()) return;
    const LProfile profile(business.items.Folder());
    for (const std::string& key : keys) {
        if (IsStopRequested()) return;
        SendDueWarnings(profile, key, business.warned);
    }
}
