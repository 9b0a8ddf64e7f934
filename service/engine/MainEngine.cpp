#include "service/engine/MainEngine.h"

#include "service/control/LServiceLog.h"
#include "service/control/LServiceMessageHeader.h"
#include "service/email/LEmail.h"
#include "web/accounts/LogonDetailsEmail.h"
#include "web/accounts/PasswordPages.h"

namespace {

void LogEmail(std::string_view line, LEmailLogLevel level) {
    LServiceLog(line, {}, static_cast<int>(level));
}
static_assert(static_cast<int>(LEmailLogLevel::kInfo) == kLogInfo &&
              static_cast<int>(LEmailLogLevel::kWarning) == kLogWarning &&
              static_cast<int>(LEmailLogLevel::kError) == kLogError);

}  // namespace

MainEngine::~MainEngine() { StopEmail(); }

void MainEngine::Start() {
    LServiceLog("Starting server engine...");
    StartEmail();
    orderSender_ = LOrderSender::OfThisSystem(&recurringOrders_.StopSignal());
    if (!recurringOrders_.Start()) {
        LServiceLog("The thread that places recurring orders could not be started.", {}, kLogError);
    }
    if (!LWebletServer::IsWebletServerEnabled()) return;
    LServiceLog("Starting web server...");
    webControl_.StartServer();
}

void MainEngine::Stop() {
    LServiceLog("Stopping server engine");
    lowStockEmails_.RequestStop();
    recurringOrders_.RequestStop();
    StopWebServer();
    recurringOrders_.StopAndJoin();
    StopEmail();
}

void MainEngine::StartEmail() {
    SetEmailLog(LogEmail);
    LEmail::CheckInstallDefaults();
    if (!emailSender_.Start() || !lowStockEmails_.Start()) {
        LServiceLog("The threads that send e-mail could not be started.", {}, kLogError);
    }
    SetLogonDetailsMailer(LSendLogonDetails);
}

void MainEngine::StopEmail() {
    SetLogonDetailsMailer({});
    lowStockEmails_.StopAndJoin();
    emailSender_.StopAndJoin();
    SetEmailLog({});
}

void MainEngine::StopWebServer() {
    if (webControl_.IsRunning()) LServiceLog("Stopping web server (Non-secure)");
    webControl_.StopServer();
}

void MainEngine::CtlRestart() {
    StopWebServer();
    if (!LWebletServer::IsWebletServerEnabled()) return;
    LServiceLog("Restarting web server");
    webControl_.StartServer();
}

void MainEngine::Control(uint32_t code, const void* /*data*/, uint32_t /*size*/) {
    if (code == kServiceRestartWebServer) CtlRestart();
}
