#include "service/email/EmailSettings.h"

#include <algorithm>

#include "datastore/UserSettings.h"

namespace {

constexpr std::string_view kSection = "Email";
constexpr std::string_view kPassword = "SMTPPassword";

struct LFlag {
    std::string_view key;
    bool LEmailSettings::*member;
};
constexpr LFlag kFlags[] = {
    {"UseSMTPHost", &LEmailSettings::useSmtpHost}, {"SendDirect", &LEmailSettings::sendDirect},
    {"UseSendMail", &LEmailSettings::useSendMail}, {"UseAppleMail", &LEmailSettings::useAppleMail},
    {"SMTPAuthOn", &LEmailSettings::smtpAuthOn},   {"UseSSL", &LEmailSettings::useSsl},
    {"VerifySSL", &LEmailSettings::verifySsl},     {"SMTPDownSend", &LEmailSettings::smtpDownSend},
    {"SetViewed", &LEmailSettings::setViewed},
};

struct LText {
    std::string_view key;
    std::string LEmailSettings::*member;
};
constexpr LText kTexts[] = {
    {"MailSMTPHost", &LEmailSettings::mailSmtpHost},
    {"ReplyToEmail", &LEmailSettings::replyToEmail},
    {"SMTPUserName", &LEmailSettings::smtpUserName},
};

std::string TypedPassword() { return LUserSettingGetString(kSection, kPassword, {}); }

bool ParsePort(std::string_view text, uint16_t& port) {
    constexpr size_t kMaxDigits = 5;
    if (text.empty() || text.size() > kMaxDigits) return false;
    unsigned value = 0;
    for (const char byte : text) {
        if (byte < '0' || byte > '9') return false;
        value = value * 10 + static_cast<unsigned>(byte - '0');
    }
    if (value == 0 || value > 0xFFFF) return false;
    port = static_cast<uint16_t>(value);
    return true;
}

}  // namespace

LEmailSettings LoadEmailSettings() {
    LEmailSettings settings;
    for (const LFlag& flag : kFlags) {
        settings.*flag.member = LUserSettingGetString(kSection, flag.key, {}).starts_with('1');
    }
    for (const LText& text : kTexts) {
        settings.*text.member = LUserSettingGetString(kSection, text.key, {});
    }
    settings.smtpPassword = TypedPassword();
    if (settings.smtpPassword.empty()) {
        settings.smtpPassword = LUserSettingGetPassword(kSection, kPassword, {});
    }
    return settings;
}

// Deleting takes the enciphered form along, so that comes first; without a cipher the text stays as
// it was typed.
void EncipherTypedPassword() {
    const std::string typed = TypedPassword();
    if (typed.empty() || !LUserSettingDeleteItem(kSection, kPassword)) return;
    if (!LUserSettingSetPassword(kSection, kPassword, typed)) {
        (void)LUserSettingSetString(kSection, kPassword, typed);
    }
}

bool StoreEmailSettings(const LEmailSettings& settings) {
    bool stored = true;
    for (const LFlag& flag : kFlags) {
        stored &= LUserSettingSetString(kSection, flag.key, settings.*flag.member ? "1" : "0");
    }
    for (const LText& text : kTexts) {
        stored &= LUserSettingSetString(kSection, text.key, settings.*text.member);
    }
    LUserSettingDeleteItem(kSection, kPassword);  // also one typed by hand
    stored &= LUserSettingSetPassword(kSection, kPassword, settings.smtpPassword);
    return stored && LUserSettingSetString(kSection, "DefaultsSet", "1");
}

bool CanSendEmail(const LEmailSettings& settings) {
    if (settings.useSmtpHost) return !settings.mailSmtpHost.empty();
    return settings.sendDirect || settings.useSendMail || settings.useAppleMail;
}

LMailServer ParseMailServer(std::string_view text, uint16_t defaultPort) {
    const size_t start = text.find_first_not_of(" \t");
    if (start == std::string_view::npos) return {{}, defaultPort};
    text = text.substr(start, text.find_last_not_of(" \t") - start + 1);
    LMailServer server{std::string(text), defaultPort};
    std::string_view port;
    if (text.starts_with('[') && text.find(']') != std::string_view::npos) {
        const size_t end = text.find(']');
        server.host = text.substr(1, end - 1);
        if (text.substr(end + 1).starts_with(':')) port = text.substr(end + 2);
    } else if (std::count(text.begin(), text.end(), ':') == 1) {
        server.host = text.substr(0, text.find(':'));
        port = text.substr(text.find(':') + 1);
    }
    ParsePort(port, server.port);
    return server;
}
