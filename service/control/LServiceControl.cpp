#include "service/control/LServiceControl.h"

#include "service/control/LReplaceableHook.h"
#include "service/control/LServiceEngineProxy.h"
#include "service/control/LServiceMessageHeader.h"

namespace {

LReplaceableHook<uint32_t, const void*, uint32_t>& Target() {
    static LReplaceableHook<uint32_t, const void*, uint32_t> target;
    return target;
}

LReplaceableHook<>& WebRouting() {
    static LReplaceableHook<> routing;
    return routing;
}

LServiceLauncher& Launcher() {
    static LServiceLauncher launcher;
    return launcher;
}

// The first code is what has always been sent, the second is the one that the engine acts on.
bool TellAboutWebSettings(LServiceEngineProxy& proxy) {
    if (!proxy.IsConnected()) return false;
    proxy.Control(kServiceWebSettingsChanged);
    proxy.Control(kServiceRestartWebServer);
    return true;
}

}  // namespace

void LServiceControl(uint32_t code, const void* data, uint32_t size) {
    if (LServiceEngineProxy* proxy = LServiceEngineProxy::Instance()) {
        proxy->Control(code, data, size);
    } else {
        Target().Call(code, data, size);
    }
}

bool LServiceApplyWebSettings(LWebServerSwitch change) {
    if (Target().Call(kServiceRestartWebServer, nullptr, 0)) return true;

    LServiceEngineProxy* const own = LServiceEngineProxy::Instance();
    const bool turnedOn = change == LWebServerSwitch::kTurnedOn;
    if (turnedOn && own != nullptr) own->Notify(kServiceStartSoon);

    const LServiceEngineProxyHandle handle;
    LServiceEngineProxy& proxy = handle.Proxy();
    if (turnedOn && GetServiceLauncher().startSoon) proxy.ServiceStart();
    const bool told = TellAboutWebSettings(proxy);
    if (change == LWebServerSwitch::kTurnedOff) {
        if (own != nullptr && own != &proxy) own->Notify(kServiceStopSoon);
        proxy.Notify(kServiceStopSoon);
    }
    return told;
}

void SetServiceControlTarget(LServiceControlTarget target) { Target().Set(std::move(target)); }

void LServiceRunWebRouting() { WebRouting().Call(); }

void SetServiceWebRouting(std::function<void()> routing) { WebRouting().Set(std::move(routing)); }

void SetServiceLauncher(LServiceLauncher launcher) { Launcher() = std::move(launcher); }

const LServiceLauncher& GetServiceLauncher() { return Launcher(); }
