#include "service/control/LServiceControlConnection.h"

#include <sys/socket.h>

#include "platform/HangDetector.h"
#include "platform/SocketIo.h"
#include "service/control/LServiceEngine.h"

namespace {

constexpr int kHandlingTimeoutMs = 600000;

std::string_view VersionData() { return {kServiceVersion.data(), kServiceVersion.size() + 1}; }

}  // namespace

LServiceControlConnection::LServiceControlConnection(LServiceEngineBase& service,
                                                     LFileDescriptor socket)
    : LDetachedThread("LDetachedThread"), service_(service), socket_(std::move(socket)) {}

void LServiceControlConnection::ThreadFunction() {
    service_.AddNotifyConnection(*this);
    while (ReceiveServiceMessage(socket_.Get(), message_, StopSignal()) && LetMainThreadHandle()) {
    }
    service_.RemoveNotifyConnection(*this);
}

bool LServiceControlConnection::LetMainThreadHandle() {
    done_.Reset();
    pending_ = true;
    service_.WakeUp();
    const LSocketResult result =
        WaitReadable(done_.ReadDescriptor(), StopSignal(), kHandlingTimeoutMs);
    return result == LSocketResult::kOk && !pending_;
}

void LServiceControlConnection::HandlePendingMessages() {
    if (!pending_) return;
    LHangDetectorSetCommand(message_.header.code);
    Handle();
    LHangDetectorSetCommand(0);
    message_ = {};  // an idle connection keeps no large payload
    pending_ = false;
    done_.Set();
}

void LServiceControlConnection::Handle() {
    const LServiceMessageHeader& header = message_.header;
    const uint32_t code = header.code;
    switch (header.type) {
        case kServiceCommand:
            service_.Control(code, message_.Data(), header.length);
            break;
        case kServiceCommandResult:
            if (code == kServiceStopSoon) service_.RequestStop();
            Reply(code == kServiceActivityQuery || code == kServiceStopSoon ? 1 : 0);
            break;
        case kServiceCommandData:
            if (code == kServiceVersionQuery) {
                Reply(1, VersionData());
            } else {
                Reply(0);
            }
            break;
        default:
            break;  // of no concern to the service
    }
}

void LServiceControlConnection::Reply(uint32_t code, std::string_view data) {
    const LServiceMessageHeader header{kServiceMagic, kServiceReply, code,
                                       static_cast<uint32_t>(data.size()), message_.header.tag};
    const LRecursiveMutexLock lock(service_.NotifyMutex());
    if (isCutOff_) return;
    const LSendResult result = SendServiceMessage(socket_.Get(), ServiceMessage(header, data),
                                                  service_.StopSignal(), kReplySendBudget);
    // After half a reply the client would take the next message for the other half.
    if (result == LSendResult::kPartlySent) CutOff();
}

void LServiceControlConnection::SendCom(std::string_view message) {
    if (isCutOff_) return;
    const LSendResult result =
        SendServiceMessage(socket_.Get(), message, service_.StopSignal(), kNotifySendBudget);
    if (result != LSendResult::kSent) CutOff();
}

void LServiceControlConnection::CutOff() {
    isCutOff_ = true;
    ::shutdown(socket_.Get(), SHUT_RDWR);
}
