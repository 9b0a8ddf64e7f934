#include "service/engine/MainEngineProxy.h"

#include <cstdint>
#include <string>

#include "datastore/UserSettings.h"
#include "web/server/LWebletServer.h"

void MainEngineProxy::OpenWebPorts(LUserInterface& ui) {
    const auto port = static_cast<uint16_t>(LWebletServer::GetWebletServerPort());
    const int previous = LUserSettingGet<int>("WebServer", "PreviousServerPort", 0);
    if (static_cast<uint16_t>(previous) == port) return;
    ui.Inform(
        "WebServer Starting",
        "Quillmarsh Stock Manager will now attempt to start its internal web server. You must "
        "click Unblock or Allow to any of the following prompts to allow other computers to "
        "connect to this computer over the network.");
    LUserSettingSetString("WebServer", "PreviousServerPort", std::to_string(port));
}

void MainEngineProxy::ApplyWebSettings(LUserInterface& ui) {
    if (LWebletServer::IsWebletServerEnabled()) OpenWebPorts(ui);
    Control(kServiceRestartWebServer);
}
