// Orders to the background service from any code, whether it runs inside the service or beside it.
#pragma once

#include <cstdint>
#include <functional>

// Hands a command to the service: through this process's connected proxy when there is one, inside
// the service to the running engine, otherwise to nobody. No reply is awaited. Inside the service
// any thread may call; the engine acts on its main thread (at once when called there, otherwise as
// soon as it comes round, the data having been copied), so a web page may order the restart of the
// very server that runs it.
void LServiceControl(uint32_t code, const void* data = nullptr, uint32_t size = 0);

// What happened to the setting that turns the web server on.
enum class LWebServerSwitch { kUnchanged, kTurnedOn, kTurnedOff };

// To be called after web settings were stored: the running service applies them. Beside the service
// it starts the service when the web server was turned on and asks it to end when it was turned off
// (both through the launcher named by SetServiceLauncher, if one was), and uses the process's own
// proxy or, without one, a temporary connection. True when a service was told. Beside the service
// only on the main thread.
bool LServiceApplyWebSettings(LWebServerSwitch change = LWebServerSwitch::kUnchanged);

// Where LServiceControl goes inside the service; the running engine sets it, and takes it away
// before it goes (after that call no thread is inside the old one).
using LServiceControlTarget = std::function<void(uint32_t code, const void* data, uint32_t size)>;
void SetServiceControlTarget(LServiceControlTarget target);

// Asks every connected desktop to run the configuration of web routing. Inside the service, on its
// main thread; elsewhere nothing happens.
void LServiceRunWebRouting();
// Who asks them; as SetServiceControlTarget.
void SetServiceWebRouting(std::function<void()> routing);

// How this process starts and stops the background service where nobody answers on the pipe: set
// once at the start by whoever knows the launchers. Both may take their time; an empty function
// does nothing. Only on the main thread.
struct LServiceLauncher {
    std::function<void()> startSoon;
    std::function<void()> stopSoon;
};
void SetServiceLauncher(LServiceLauncher launcher);
const LServiceLauncher& GetServiceLauncher();
