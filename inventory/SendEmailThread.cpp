#include "inventory/SendEmailThread.h"

#include <algorithm>

#include "datastore/Businesses.h"

void SendEmailThread::ThreadFunction() {
    do {
        Pass();
    } while (!StopSignal().Wait(pauseMs_));
}

void SendEmailThread::Pass() {
    std::vector<LFlaggedItems> businesses;
    for (const LBusiness& business : ListBusinesses()) {
        const auto known = std::find_if(
            businesses_.begin(), businesses_.end(),
            [&](const LFlaggedItems& items) { return items.Folder() == business.folder; });
        businesses.push_back(known == businesses_.end() ? LFlaggedItems(business.folder)
                                                        : std::move(*known));
    }
    businesses_ = std::move(businesses);
    for (LFlaggedItems& items : businesses_) PassOver(items);
}

void SendEmailThread::PassOver(LFlaggedItems& items) {
    const std::vector<std::string> keys = items.Find([this] { return IsStopRequested(); });
    if (keys.empty() || IsStopRequested()) return;
    const LProfile profile(items.Folder());
    for (const std::string& key : keys) {
        if (IsStopRequested()) return;
        SendDueWarnings(profile, key);
    }
}
