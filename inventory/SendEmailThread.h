// The thread of the service that sends the low-stock e-mails that are due.
#pragma once

#include <vector>

#include "inventory/LowStockEmail.h"
#include "platform/LThread.h"

// Passes over all items of all businesses that are not marked deleted, waits a minute, passes
// again. Ends when its stop signal is set; after the item in hand, which waits for others that move
// stock no longer than a second, when that comes during a pass.
class SendEmailThread final : public LThread {
public:
    static constexpr int kPauseMs = 60000;

    explicit SendEmailThread(int pauseMs = kPauseMs)
        : LThread("SendEmailThread"), pauseMs_(pauseMs) {}
    ~SendEmailThread() override { StopAndJoin(); }

private:
    struct LBusinessItems {
        LFlaggedItems items;
        LWarnedItems warned;
    };
    void ThreadFunction() override;
    void Pass();
    void PassOver(LBusinessItems& business);

    const int pauseMs_;
    std::vector<LBusinessItems> businesses_;  // of the last pass
};
