// How this user sends e-mail: the user settings of the section "Email".
#pragma once

#include <cstdint>
#include <string>
#include <string_view>

// As stored; the field names tell the keys. Where several ways are turned on, the first counts.
struct LEmailSettings {
    bool useSmtpHost = false;
    bool sendDirect = false;
    bool useSendMail = false;
    bool useAppleMail = false;
    std::string mailSmtpHost;  // a port may follow after ":"
    std::string replyToEmail;  // sender and reply-to address; of several the first one sends
    bool smtpAuthOn = false;
    std::string smtpUserName;
    std::string smtpPassword;  // enciphered at rest
    bool useSsl = false;       // STARTTLS when the server offers it
    // Send only over a connection whose certificate could be verified. Off, it is only reported
    // when it could not.
    bool verifySsl = false;
    // Kept for the settings dialog; sending does not ask for them.
    bool smtpDownSend = false;
    bool setViewed = false;
};

// Any thread.
LEmailSettings LoadEmailSettings();
// Replaces a password that was typed into the settings file by hand by its enciphered form.
void EncipherTypedPassword();
// False when something could not be stored.
[[nodiscard]] bool StoreEmailSettings(const LEmailSettings& settings);

// Whether a message could be sent at all by these settings.
bool CanSendEmail(const LEmailSettings& settings);

struct LMailServer {
    std::string host;
    uint16_t port = 0;
};
// "mail.example.com", "mail.example.com:25", "::1", "[::1]:25". An unreadable port counts as none.
LMailServer ParseMailServer(std::string_view text, uint16_t defaultPort);
