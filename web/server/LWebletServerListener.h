// The thread that listens on the web port and starts a thread for each client.
#pragma once

#include <atomic>
#include <cstdint>
#include <string>

#include "platform/LFileDescriptor.h"
#include "platform/LThread.h"

// Listens on all interfaces. A port that cannot be had is tried again every 30 s. Configure, Start,
// StopAndJoin and StopConnections belong to one thread at a time, the rest to any.
class LWebletServerListener final : public LThread {
public:
    LWebletServerListener() : LThread("LWebletServerListener") {}
    ~LWebletServerListener() override;

    // While the thread is not running. Port 0 lets the system choose.
    void Configure(uint16_t port, std::string webFolder);
    // Ends all connections and waits for their threads. While the thread is not running.
    void StopConnections();

    // The port that is listened on, otherwise 0.
    uint16_t BoundPort() const { return boundPort_; }
    // Set from a failed listen on a port that is in use until the next successful listen.
    bool HasBindConflict() const { return bindConflict_; }
    uint32_t LastClientAddress() const { return lastClientAddress_; }  // IPv4, host byte order
    size_t ConnectionCount() const { return connections_.Count(); }

private:
    void ThreadFunction() override;
    LFileDescriptor Listen();
    bool Bind(int socket);
    void BindConflict();
    void Listening(int socket);
    void AcceptClients(int listening);
    bool AcceptClient(int listening);
    bool WaitOutShortage();
    void NewConnection(LFileDescriptor socket, uint32_t address);

    uint16_t port_ = 0;
    std::string webFolder_;
    std::atomic<uint16_t> boundPort_{0};
    std::atomic<bool> bindConflict_{false};
    std::atomic<uint32_t> lastClientAddress_{0};
    std::atomic<bool> stopping_{false};  // for the connections
    LSignalObject stopConnections_;      // the same, for their waits
    bool shortageTold_ = false;
    LDetachedThreadGroup connections_;
};
