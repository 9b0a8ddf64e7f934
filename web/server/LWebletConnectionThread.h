// The thread that serves one client: reads requests one after another and has each answered.
#pragma once

#include <atomic>
#include <cstdint>
#include <string>

#include "platform/LThread.h"
#include "web/server/LWebletConnection.h"
#include "web/server/LWebletScripts.h"
#include "web/server/RequestReader.h"

class LWebletConnectionThread final : public LDetachedThread {
public:
    // `clientAddress` is IPv4 in host byte order. `stop` is set when all connections are to end,
    // `stopping` says the same without a system call; both outlive the thread.
    LWebletConnectionThread(LFileDescriptor socket, uint32_t clientAddress, std::string webFolder,
                            const LSignalObject& stop, const std::atomic<bool>& stopping);

private:
    // What becomes of the connection after an answer.
    enum class LAfter { kKeepOpen, kClose };

    void ThreadFunction() override;
    LAfter ServeNextRequest();
    LAfter ServeRequest(LRequestReader& reader, const LRequestLine& request);
    LAfter Answer(LRequestReader& reader, const LRequestLine& request, LWebletForm& form);
    bool ReceivePost(LWebletForm& form);  // false: the connection is to be closed
    LAfter AnswerByScript(LWebletForm& form, LWebletScript script);
    LAfter RedirectToGuide(LWebletForm& form);
    LAfter ServeFile(LWebletForm& form);
    LAfter Refuse(std::string_view answer);

    LWebletConnection connection_;
    const uint32_t clientAddress_;
    const std::string webFolder_;
    // Of the request that is being answered.
    bool clientGoesOn_ = false, mayKeepOpen_ = false;
};
