#include "service/engine/MainEngine.h"

#include "service/control/LServiceLog.h"
#include "service/control/LServiceMessageHeader.h"

void MainEngine::Start() {
    LServiceLog("Starting server engine...");
    if (!LWebletServer::IsWebletServerEnabled()) return;
    LServiceLog("Starting web server...");
    webControl_.StartServer();
}

void MainEngine::Stop() {
    LServiceLog("Stopping server engine");
    StopWebServer();
}

void MainEngine::StopWebServer() {
    if (webControl_.IsRunning()) LServiceLog("Stopping web server (Non-secure)");
    workers_.RequestStopAll();
    webControl_.StopServer();
    workers_.StopAll();
}

void MainEngine::CtlRestart() {
    StopWebServer();
    if (!LWebletServer::IsWebletServerEnabled()) return;
    LServiceLog("Restarting web server");
    webControl_.StartServer();
}

void MainEngine::Control(uint32_t code, const void* /*data*/, uint32_t /*size*/) {
    if (code == kServiceRestartWebServer) CtlRestart();
}
