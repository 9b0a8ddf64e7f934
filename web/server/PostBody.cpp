#include "web/server/PostBody.h"

#include <chrono>
#include <string>

#include "service/control/LServiceLog.h"
#include "web/server/LWebletConnection.h"
#include "web/server/LWebletForm.h"
#include "web/server/WebletOutput.h"

namespace {

constexpr int kSendMs = 20000;
constexpr std::string_view kTooLong =
    "HTTP/1.1 500 Content Length Too Long\r\nConnection: close\r\n\r\n";

}  // namespace

void RefuseTooLongPost(LWebletForm& form) {
    form.Connection().ProcessSend(kTooLong, kSendMs);
    form.Connection().SetInputLeft(true);
    form.SetAnswered();
    form.SetForceClose();
}

bool ReadPostForm(LWebletForm& form, uint64_t length, int extraMs) {
    const auto start = std::chrono::steady_clock::now();
    std::string body;
    const LSocketResult result =
        form.Connection().ReadExactly(body, length, static_cast<int>(length) + extraMs);
    if (result == LSocketResult::kOk) {
        form.Parameters().LoadHTTPStringUTF8(body);
        return true;
    }
    if (result == LSocketResult::kFailed) {
        const auto elapsed = std::chrono::duration_cast<std::chrono::seconds>(
            std::chrono::steady_clock::now() - start);
        LServiceLog(
            FormatText("LWebletConnectionThread::ThreadFunction ProcessRecvBytes (post data) "
                       "FAILED: sending %d bytes failed after %d seconds",
                       length, elapsed.count()),
            {}, kLogWarning);
    }
    return false;
}
