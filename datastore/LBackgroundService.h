// The background service as backup and restore see it: something that has the data open and must
// rest while they are replaced.
#pragma once

// Implemented above, where the launchers are known. Used by one thread at a time.
class LBackgroundService {
public:
    virtual ~LBackgroundService() = default;

    virtual bool IsRunning() = 0;
    // Stops the service and waits until its process has ended. False when it still runs after the
    // implementation's patience. Nothing when it does not run.
    virtual bool Stop() = 0;
    // Starts it again with the web settings as they are stored now. False when it does not run
    // afterwards although they ask for it.
    virtual bool Start() = 0;
};
