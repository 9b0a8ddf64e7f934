// E-mail as the rest of the program meets it: defaults, checks of what was typed, and a trial.
#pragma once

#include <string_view>

#include "platform/LUserInterface.h"
#include "service/email/EmailSettings.h"

enum class LEmailField { kServer, kReplyTo, kUserName, kPassword };

struct LEmail {
    // Once for each user: sends through a mail server, with TLS when it is offered; what was stored
    // before is kept. Each time: a password typed by hand is enciphered.
    static void CheckInstallDefaults();
    // A list of addresses: see service/email/EmailAddress.h.
    static bool ValidateAddress(std::string_view text);
};

// What the settings dialog does when its buttons are pressed. Both say what is wrong through `ui`.
struct LEmailSendSettingsDlg {
    // Checks and stores. Nothing is stored after an error, whose field is told.
    static LFieldError<LEmailField> CmOk(LUserInterface& ui, const LEmailSettings& settings);
    // Goes through the dialogue of sending up to the authentication, under a progress display, and
    // tells how that went. True when a message could be sent.
    static bool VerifyConnection(LUserInterface& ui, const LEmailSettings& settings);
};
