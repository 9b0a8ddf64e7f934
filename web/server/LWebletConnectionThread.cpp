#include "web/server/LWebletConnectionThread.h"

#include <exception>

#include "platform/HangDetector.h"
#include "service/control/LServiceLog.h"
#include "web/server/LWebletForm.h"
#include "web/server/LWebletScripts.h"
#include "web/server/MimeTypes.h"
#include "web/server/PostBody.h"
#include "web/server/ServeFile.h"
#include "web/server/WebletOutput.h"

namespace {

constexpr int kSendMs = 20000;
constexpr int kPostExtraMs = 40000;
constexpr double kFirstKeptVersion = 1.1;
constexpr std::string_view kHelpPrefix = "help/";
constexpr std::string_view kGuide = "/guide/";
constexpr std::string_view kGuideIndex = "index.html";

constexpr std::string_view kNotImplemented =
    "HTTP/1.1 501 Not Implemented\r\nConnection: close\r\n\r\n";
constexpr std::string_view kBadPath = "HTTP/1.1 404 Not Found\r\nConnection: close\r\n\r\n";
constexpr std::string_view kOtherSite = "HTTP/1.1 403 Forbidden\r\nConnection: close\r\n\r\n";
constexpr std::string_view kContinue = "HTTP/1.1 100 Continue\r\n\r\n";

bool IsPathRefused(std::string_view path) {
    return !path.starts_with('/') || path.find("..") != std::string_view::npos;
}

// Header values that are words are compared in any letter case; `word` is in lower case.
bool HoldsWord(std::string text, std::string_view word) {
    for (char& c : text) {
        if (c >= 'A' && c <= 'Z') c = static_cast<char>(c - 'A' + 'a');
    }
    return text.find(word) != std::string::npos;
}

// The body that a GET announces is not read, and could pass for the next request.
bool AnnouncesBody(const LWebletForm& form) {
    return ParseContentLength(form.Header("content-length")).value_or(0) > 0 ||
           !form.Header("transfer-encoding").empty();
}

bool ClientGoesOn(const LRequestLine& request, const LWebletForm& form) {
    return request.version >= kFirstKeptVersion && !HoldsWord(form.Header("connection"), "close");
}

// One page that fails must not take the service with it.
void RunScript(LWebletForm& form, LWebletScript script) {
    const LHangDetectorStatus status(form.PageName());
    try {
        script(form);
    } catch (const std::exception& error) {
        form.SetForceClose();
        LServiceLog("cannot answer page \"" + form.PageName() + "\"", error.what(), kLogError);
    }
}

}  // namespace

LWebletConnectionThread::LWebletConnectionThread(LFileDescriptor socket, uint32_t clientAddress,
                                                 std::string webFolder, const LSignalObject& stop,
                                                 const std::atomic<bool>& stopping)
    : LDetachedThread("LWebletConnectionThread", stop),
      connection_(std::move(socket), StopSignal(), stopping),
      clientAddress_(clientAddress),
      webFolder_(std::move(webFolder)) {}

void LWebletConnectionThread::ThreadFunction() {
    const LHangDetectorThread named("WEBC");
    try {
        while (ServeNextRequest() == LAfter::kKeepOpen && !connection_.IsStopping()) {
        }
    } catch (const std::exception& error) {
        LServiceLog("a web connection ended early", error.what(), kLogError);
    }
    connection_.Close();
}

LWebletConnectionThread::LAfter LWebletConnectionThread::ServeNextRequest() {
    LRequestReader reader(connection_);
    LRequestLine request;
    return reader.ReadRequestLine(request) ? ServeRequest(reader, request) : LAfter::kClose;
}

LWebletConnectionThread::LAfter LWebletConnectionThread::ServeRequest(LRequestReader& reader,
                                                                      const LRequestLine& request) {
    const bool isPost = request.method == "POST";
    if (!isPost && request.method != "GET") return Refuse(kNotImplemented);
    LWebletForm form(connection_);
    form.SetIsPost(isPost);
    form.SetClientAddress(clientAddress_);
    const LAfter after = Answer(reader, request, form);
    form.FinishSession();
    return after;
}

LWebletConnectionThread::LAfter LWebletConnectionThread::Answer(LRequestReader& reader,
                                                                const LRequestLine& request,
                                                                LWebletForm& form) {
    form.Parameters().LoadHTTPStringUTF8(request.query);
    if (IsPathRefused(request.path)) return Refuse(kBadPath);
    if (!reader.ReadHeaders(form.Headers())) return LAfter::kClose;
    clientGoesOn_ = ClientGoesOn(request, form);
    mayKeepOpen_ = clientGoesOn_ && !form.IsPost() && !AnnouncesBody(form);
    if (!form.IsPost() && AnnouncesBody(form)) connection_.SetInputLeft(true);
    ParseCookies(form.Headers().GetParm("cookie"), form.Cookies());
    form.SetPageName(request.path.substr(1));
    if (form.IsPost() && !ReceivePost(form)) return LAfter::kClose;
    if (const LWebletScript script = LWebletGetScript(form.PageName())) {
        return AnswerByScript(form, script);
    }
    if (form.PageName().starts_with(kHelpPrefix)) return RedirectToGuide(form);
    return ServeFile(form);
}

bool LWebletConnectionThread::ReceivePost(LWebletForm& form) {
    const LWebletScript postScript = LWebletGetPostScript(form.PageName());
    const uint64_t length = ParseContentLength(form.Header("content-length")).value_or(0);
    // A body that is not read to its end, as far as can be told here.
    if (postScript != nullptr || !form.Header("transfer-encoding").empty()) {
        connection_.SetInputLeft(true);
    }
    if (form.IsFromOtherSite()) return Refuse(kOtherSite), false;
    if (postScript == nullptr && length > kMaxPostBytes) return RefuseTooLongPost(form), false;
    if (HoldsWord(form.Header("expect"), "100-continue")) {
        connection_.ProcessSend(kContinue, kSendMs);
    }
    if (postScript == nullptr) return length == 0 || ReadPostForm(form, length, kPostExtraMs);
    RunScript(form, postScript);
    return !form.HasAnswered() && !form.IsForceClose();
}

LWebletConnectionThread::LAfter LWebletConnectionThread::AnswerByScript(LWebletForm& form,
                                                                        LWebletScript script) {
    RunScript(form, script);
    // The handler decides, also after a POST; what is left unread would pass for the next request.
    const bool keep = form.IsSelfDelimited() && !form.IsForceClose() && clientGoesOn_ &&
                      !connection_.IsInputLeft();
    return keep ? LAfter::kKeepOpen : LAfter::kClose;
}

// The guide lies on this server, so that help works with the cable out. The answer tells its
// length: a client of any version may ask for more.
LWebletConnectionThread::LAfter LWebletConnectionThread::RedirectToGuide(LWebletForm& form) {
    const std::string_view name = FileNameOf(form.PageName());
    const bool sent =
        wfprintf(form, "HTTP/1.1 302 Found\r\nLocation: %s%U\r\nContent-Length: 0\r\n\r\n", kGuide,
                 name.empty() ? kGuideIndex : name);
    return sent && !connection_.IsInputLeft() ? LAfter::kKeepOpen : LAfter::kClose;
}

LWebletConnectionThread::LAfter LWebletConnectionThread::ServeFile(LWebletForm& form) {
    LWebletServeFile(form, webFolder_ + "/" + form.PageName(), form.Header("if-none-match"),
                     form.Header("if-modified-since"));
    return mayKeepOpen_ && !form.IsForceClose() ? LAfter::kKeepOpen : LAfter::kClose;
}

LWebletConnectionThread::LAfter LWebletConnectionThread::Refuse(std::string_view answer) {
    connection_.ProcessSend(answer, kSendMs);
    connection_.SetInputLeft(true);
    return LAfter::kClose;
}
