// The background service for those who must have it rest for a while, such as backup and restore.
#pragma once

#include "datastore/LBackgroundService.h"

// The setting of the web server stays as it is, also when this process is killed in between. Only
// on the main thread of a program beside the service.
class LAgentBackgroundService final : public LBackgroundService {
public:
    bool IsRunning() override;
    bool Stop() override;
    bool Start() override;
};
