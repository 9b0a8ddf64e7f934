// TLS over bytes that somebody else carries: OpenSSL, loaded when the first connection needs it.
#pragma once

#include <memory>
#include <string>
#include <string_view>

enum class LTlsResult {
    kDone,
    kNeedsInput,  // send what TakeOutput gives, then feed what the peer answers
    kClosed,      // the peer has ended the session
    kFailed
};

// The client's side of one session. One thread at a time.
class LTlsSession {
public:
    // Nothing when the library cannot be loaded or used. `host` is named to the server and must be
    // the one its certificate speaks of; it may be an address of the network.
    static std::unique_ptr<LTlsSession> Create(const std::string& host);
    ~LTlsSession();
    LTlsSession(const LTlsSession&) = delete;
    LTlsSession& operator=(const LTlsSession&) = delete;

    LTlsResult Handshake();
    // After the handshake: what is wrong with the server's certificate by the system's store of
    // authorities; empty when nothing is.
    std::string CertificateProblem() const;

    LTlsResult Write(std::string_view plain);  // all of it or an error
    LTlsResult Read(char* buffer, size_t size, size_t& got);

    void Feed(std::string_view received);  // from the network
    std::string TakeOutput();              // for the network; may be empty

private:
    struct Handles;
    explicit LTlsSession(std::unique_ptr<Handles> handles);
    LTlsResult ResultOf(int returned) const;

    std::unique_ptr<Handles> handles_;
};
