// The desktop's own proxy of the service.
#pragma once

#include "platform/LUserInterface.h"
#include "service/control/LServiceEngineProxy.h"

class MainEngineProxy final : public LServiceEngineProxy {
public:
    using LServiceEngineProxy::LServiceEngineProxy;

    // Prepares the user for the prompts of a firewall: says once for each new port that the web
    // server will start.
    static void OpenWebPorts(LUserInterface& ui);

    // What the desktop does when the service tells of changed web settings.
    void ApplyWebSettings(LUserInterface& ui);
};
