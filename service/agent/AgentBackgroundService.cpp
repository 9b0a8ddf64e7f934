#include "service/agent/AgentBackgroundService.h"

#include "service/agent/LServiceAgent.h"
#include "service/control/LServiceQueries.h"

bool LAgentBackgroundService::IsRunning() { return LServiceIsRunning(); }

// A launcher may start again at once what ended by itself, so it is told when asking did not help.
bool LAgentBackgroundService::Stop() {
    LServiceStopSoon();
    return LServiceAgent::WaitUntilEnded() || LServiceAgent::Unload();
}

// It ran before, so it is to run again, also without the web server.
bool LAgentBackgroundService::Start() {
    LServiceStart();
    LServiceStartSoon();
    return IsRunning();
}
