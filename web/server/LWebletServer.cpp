#include "web/server/LWebletServer.h"

#include "datastore/UserSettings.h"
#include "platform/Folders.h"
#include "service/control/LServiceControl.h"
#include "service/control/LServiceLog.h"
#include "web/server/LWebPostFile.h"
#include "web/server/LWebletSessionData.h"
#include "web/server/WebFolder.h"
#include "web/server/WebletOutput.h"

namespace {

constexpr std::string_view kSection = "WebServer";
constexpr std::string_view kEnabled = "Enabled";
constexpr std::string_view kPublicEnabled = "PublicEnabled";
constexpr std::string_view kPort = "Port";
constexpr uint16_t kDefaultPort = 1097;

bool IsOn(std::string_view name) {
    const std::string value = LUserSettingGetString(kSection, name, {});
    return !value.empty() && value.front() != '0';
}

bool Store(std::string_view name, bool on) {
    return LUserSettingSetString(kSection, name, on ? "1" : "0");
}

}  // namespace

LWebletServer::~LWebletServer() {
    listener_.StopAndJoin();
    listener_.StopConnections();
}

void LWebletServer::StartServer() {
    if (!IsWebletServerEnabled()) return;
    if (IsPublicWebletServerEnabled()) LServiceRunWebRouting();
    LServiceLog(FormatText("%s (%s)", "Starting web server", "Non-secure"));
    StartListener();
}

void LWebletServer::StopServer() {
    listener_.StopAndJoin();
    listener_.StopConnections();
}

void LWebletServer::UpdateServerUnsecure() {
    const bool wasRunning = IsRunning();
    if (IsWebletServerEnabled()) {
        LServiceLog(wasRunning ? "Restarting web server" : "Starting web server");
        listener_.StopAndJoin();
        StartListener();
        return;
    }
    if (wasRunning) LServiceLog("Stopping web server");
    StopServer();
}

void LWebletServer::StartListener() {
    const std::string folder = WebFolder();
    RefreshWebFolder(folder);
    SweepUploads(LWebletSessionData::Folder());
    listener_.Configure(ListenPort(), folder);
    if (!listener_.Start()) LServiceLog("cannot start the web server's thread", {}, kLogError);
}

std::string LWebletServer::LastClientAddress() const {
    const uint32_t address = listener_.LastClientAddress();
    return FormatText("%d.%d.%d.%d", address >> 24, address >> 16 & 255, address >> 8 & 255,
                      address & 255);
}

bool LWebletServer::IsWebletServerEnabled() { return IsOn(kEnabled); }

bool LWebletServer::IsPublicWebletServerEnabled() { return IsOn(kPublicEnabled); }

uint16_t LWebletServer::GetWebletServerPort() {
    const auto port = static_cast<uint16_t>(LUserSettingGet<int>(kSection, kPort, kDefaultPort));
    return port == 0 ? kDefaultPort : port;
}

bool LWebletServer::SetWebletServerPort(uint16_t port) {
    if (port == GetWebletServerPort()) return true;
    if (!LUserSettingSetString(kSection, kPort, std::to_string(port))) return false;
    LServiceApplyWebSettings();
    return true;
}

bool LWebletServer::EnableWebletServer(bool on) {
    if (!Store(kEnabled, on)) return false;
    LServiceApplyWebSettings(on ? LWebServerSwitch::kTurnedOn : LWebServerSwitch::kTurnedOff);
    return true;
}

bool LWebletServer::EnablePublicWebletServer(bool on) { return Store(kPublicEnabled, on); }

std::string LWebletServer::WebFolder() { return GetSharedDataFolderApp() + "/Web"; }
