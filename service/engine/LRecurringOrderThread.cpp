#include "service/engine/LRecurringOrderThread.h"

#include "datastore/Businesses.h"
#include "orders/LRecurringClock.h"
#include "orders/RecurringOrders.h"
#include "platform/FileIo.h"
#include "platform/LSilentProcess.h"
#include "service/control/LServiceLog.h"

namespace {}  // namespace

void LRecurringOrderThread::ThreadFunction() {
    LRecurringClock clock;
    do {
        const std::time_t now = std::time(nullptr);
        if (clock.IsTimeToLook(now)) Look(now);
    } while (!StopSignal().Wait(LRecurringClock::WaitMs(std::time(nullptr))));
}

void LRecurringOrderThread::Look(std::time_t now) {
    for (const LBusiness& business : ListBusinesses()) {
        if (IsStopRequested()) return;
        // Opening a business that is not there yet would make it.
        if (FolderExists(business.folder + "/OrdersRecurring")) RunBusiness(business.folder, now);
    }
}

void LRecurringOrderThread::RunBusiness(const std::string& folder, std::time_t now) {
    const LProfile profile(folder);
    if (!LRecurringOrderTest(profile, now)) return;
    LSilentProcess process(StopSignal());
    LRecurringOrderRunAllData data{profile, dispatch_, now};
    Process(process, data);
    for (const std::string& id : data.result.orderIds) {
        LServiceLog("Recurring order placed: " + id, profile.BusinessName());
    }
    for (const std::string& failure : data.result.failures) {
        LServiceLog(failure, profile.BusinessName(), kLogWarning);
    }
}
