// A mail server that answers by a script, however badly.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "platform/LFileDescriptor.h"
#include "platform/LMutex.h"
#include "platform/LThread.h"
#include "platform/LUserInterface.h"

// What a reply may be besides a text without its line end.
inline constexpr char kStall[] = "(stall)";        // nothing more, the connection stays
inline constexpr char kHangUp[] = "(hang up)";     // the connection ends
inline constexpr char kNoLineEnd[] = "(no end)";   // a line without end
inline constexpr char kManyLines[] = "(lines)";    // a reply of lines without end
inline constexpr char kEarly[] = "(early)";        // before a reply: in the middle of the text
inline constexpr char kNonsense[] = "(nonsense)";  // a line that is no reply

// The first reply is the greeting, each further one answers a line; after one that begins with 354
// the next answers the whole text. A script that is used up hangs up. The n-th connection gets the
// n-th script, later ones the last.
class LMailScript final : public LThread {
public:
    using Replies = std::vector<std::string>;
    explicit LMailScript(std::vector<Replies> scripts);
    ~LMailScript() override { StopAndJoin(); }

    uint16_t Port() const { return port_; }
    std::string Address() const { return "127.0.0.1:" + std::to_string(port_); }
    // What the n-th connection (from 0) has received.
    std::string Received(size_t n = 0) const;
    size_t ConnectionCount() const;

private:
    void ThreadFunction() override;
    void Serve(const LFileDescriptor& client, const Replies& replies);
    bool Answer(int client, const std::string& reply);
    bool ReceiveUpTo(int client, std::string_view end);

    const std::vector<Replies> scripts_;
    LFileDescriptor listening_;
    uint16_t port_ = 0;
    mutable LMutex mutex_;
    std::vector<std::string> received_ L_GUARDED_BY(mutex_);
};

// The replies of a server to which nothing goes wrong, without and with authentication.
inline LMailScript::Replies GoodReplies() {
    return {"220 ready", "250 hello",  "250 sender", "250 recipient",
            "354 go",    "250 queued", "221 bye"};
}
inline LMailScript::Replies GoodAuthReplies() {
    return {"220 ready",     "250-hello\r\n250 AUTH LOGIN",
            "334 user",      "334 password",
            "235 welcome",   "250 sender",
            "250 recipient", "354 go",
            "250 queued",    "221 bye"};
}
// The first `count` of them, then `next`.
inline LMailScript::Replies Then(LMailScript::Replies replies, size_t count, std::string next) {
    replies.resize(count);
    replies.push_back(std::move(next));
    return replies;
}

// Keeps what it is told; nobody cancels.
class LWatchedProcess final : public LProcessInterface {
public:
    void SetStatus(std::string_view text) override { statusTexts.emplace_back(text); }
    void SetProgress(double fraction) override { progress.push_back(fraction); }
    bool IsCancelled() const override { return false; }
    std::vector<std::string> statusTexts;
    std::vector<double> progress;
};
