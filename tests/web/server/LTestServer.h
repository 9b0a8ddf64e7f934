// A weblet on a port of its own and a client that speaks to it byte by byte.
#pragma once

#include <chrono>
#include <string>
#include <string_view>
#include <thread>

#include "platform/LFileDescriptor.h"
#include "tests/support/LTempFolder.h"
#include "web/server/LWebletServer.h"

// One connection to a port of this machine.
class LTestClient {
public:
    explicit LTestClient(uint16_t port);

    bool IsConnected() const { return socket_.IsOpen(); }
    int Get() const { return socket_.Get(); }
    void Send(std::string_view text) const;  // as much as the server takes
    void EndInput() const;                   // half-closes
    void Close() { socket_.Close(); }
    // The next answer: its head and as many bytes as "Content-Length" tells (none without).
    std::string ReadAnswer();
    // Everything up to the end of the connection; what came until then when it takes longer than
    // `timeoutMs`.
    std::string ReadToEnd(int timeoutMs = 10000);
    bool IsClosedByServer(int timeoutMs = 5000) { return ReadToEnd(timeoutMs).empty() && ended_; }
    bool HasEnded() const { return ended_; }

private:
    bool Receive(int timeoutMs);

    LFileDescriptor socket_;
    std::string received_;
    bool ended_ = false;
};

class LTestWeblet : public LWebletServer {
public:
    ~LTestWeblet() override { StopServer(); }
    bool WaitUntilListening() const;
    uint16_t port = 0;  // 0: any free one

protected:
    uint16_t ListenPort() const override { return port; }
};

// A running server in a home of its own. The web folder holds "a.css" with the text "body {}".
class LTestServer {
public:
    LTestServer();

    LTempHome home;
    LTestWeblet weblet;

    LTestClient Connect() const { return LTestClient(weblet.BoundPort()); }
    // Sends `request` on a connection of its own and reads all that comes back.
    std::string Ask(std::string_view request) const;
    std::string WebFile(std::string_view name) const;  // its path in the home
};

std::string Get(std::string_view path, std::string_view headers = {});
std::string Post(std::string_view path, std::string_view body, std::string_view headers = {});
// The part behind the head of an answer.
std::string BodyOf(const std::string& answer);

// Waits until `condition` holds; false when it does not within ten seconds.
template <typename Condition>
bool Eventually(Condition&& condition) {
    for (int i = 0; i < 2000; ++i) {
        if (condition()) return true;
        std::this_thread::sleep_for(std::chrono::milliseconds(5));
    }
    return false;
}

inline std::chrono::milliseconds Elapsed(std::chrono::steady_clock::time_point since) {
    return std::chrono::duration_cast<std::chrono::milliseconds>(std::chrono::steady_clock::now() -
                                                                 since);
}
