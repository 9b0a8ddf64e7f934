#include "orders/LRecurringClock.h"

#include <algorithm>

#include "orders/RecurringSchedule.h"

bool LRecurringClock::IsTimeToLook(std::time_t now) {
    if (lastLook_) {
        const std::time_t passed = now - *lastLook_;
        const bool isAnHour = passed >= kHourSeconds || passed <= -kHourSeconds;
        if (!isAnHour && LDate::FromTime(now) == LDate::FromTime(*lastLook_)) return false;
    }
    lastLook_ = now;
    return true;
}

int LRecurringClock::WaitMs(std::time_t now) {
    const int64_t midnight = StartOfLocalDay(LDate::FromTime(now).AddDays(1));
    return static_cast<int>(std::clamp<int64_t>((midnight - now) * 1000, 1000, kLongestWaitMs));
}
