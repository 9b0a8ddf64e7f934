// The weblet: the built-in web server of the background service, and the settings that rule it.
#pragma once

#include <cstdint>
#include <string>

#include "web/server/LWebletServerListener.h"

// StartServer, StopServer and UpdateServerUnsecure are called by one thread at a time, the rest by
// any. The destructor stops the server.
class LWebletServer {
public:
    LWebletServer() = default;
    virtual ~LWebletServer();
    LWebletServer(const LWebletServer&) = delete;
    LWebletServer& operator=(const LWebletServer&) = delete;

    // Nothing when the server is turned off. Otherwise fills the web folder and listens on the
    // configured port. The deriving class installs its page table first.
    virtual void StartServer();
    // Stops listening, then ends all connections; returns when every thread has ended.
    virtual void StopServer();
    // Applies changed settings: listens on the port of now, or stops the server when it has been
    // turned off. Connections outlive a change of the port.
    virtual void UpdateServerUnsecure();

    // Whether the server was started and not stopped; it may still be waiting for its port.
    bool IsRunning() const { return listener_.IsRunning(); }
    bool HasBindConflict() const { return listener_.HasBindConflict(); }
    // The port that is listened on, otherwise 0.
    uint16_t BoundPort() const { return listener_.BoundPort(); }
    size_t ConnectionCount() const { return listener_.ConnectionCount(); }
    // "192.168.1.7"; "0.0.0.0" before the first client.
    std::string LastClientAddress() const;

    // The settings, read anew at each call.
    static bool IsWebletServerEnabled();
    static bool IsPublicWebletServerEnabled();
    static uint16_t GetWebletServerPort();
    // These store a setting and have the running service apply it; turning the server on also
    // starts the service. Outside the service only on the main thread. False when the setting could
    // not be stored; nothing is told to the service then.
    static bool SetWebletServerPort(uint16_t port);
    static bool EnableWebletServer(bool on);
    static bool EnablePublicWebletServer(bool on);  // stored only

    // The folder whose files are served.
    static std::string WebFolder();

protected:
    // Where to listen. Tests return 0: the system then chooses a free port.
    virtual uint16_t ListenPort() const { return GetWebletServerPort(); }

private:
    void StartListener();

    LWebletServerListener listener_;
};
