// The thread of the service that places recurring orders when they fall due.
#pragma once

#include <ctime>

#include "orders/LOrderDispatch.h"
#include "platform/LThread.h"

// Looks at all businesses when it starts, at each local midnight and once an hour. Ends when its
// stop signal is set, during a look after the order in hand. What was placed and what failed goes
// into the service's log.
class LRecurringOrderThread final : public LThread {
public:
    // `dispatch` outlives the thread.
    explicit LRecurringOrderThread(LOrderDispatch& dispatch)
        : LThread("RecurringOrders"), dispatch_(dispatch) {}
    ~LRecurringOrderThread() override { StopAndJoin(); }

private:
    void ThreadFunction() override;
    void Look(std::time_t now);
    void RunBusiness(const std::string& folder, std::time_t now);

    LOrderDispatch& dispatch_;
};
