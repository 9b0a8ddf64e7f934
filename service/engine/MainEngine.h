// What the background service runs: the web server and the work that goes on beside it.
#pragma once

#include <cstdint>

#include "inventory/SendEmailThread.h"
#include "orders/LOrderSender.h"
#include "service/email/SendEmailBackground.h"
#include "service/engine/LRecurringOrderThread.h"
#include "service/engine/LWebControl.h"

// Used on the service's main thread only.
class MainEngine {
public:
    MainEngine() = default;
    ~MainEngine();
    MainEngine(const MainEngine&) = delete;
    MainEngine& operator=(const MainEngine&) = delete;

    void Start();
    void Stop();
    // Code 1 restarts the web server, which then serves by the settings as they are; any other
    // code is ignored.
    void Control(uint32_t code, const void* data, uint32_t size);

private:
    void StartEmail();
    void StopEmail();
    void CtlRestart();
    void StopWebServer();

    LEmailSendBackgroundThread emailSender_;
    SendEmailThread lowStockEmails_;
    LOrderSender orderSender_;
    LRecurringOrderThread recurringOrders_{orderSender_};
    LWebControl webControl_;
};
