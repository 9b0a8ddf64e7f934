#include "service/email/LEmail.h"

#include "datastore/UserSettings.h"
#include "service/email/EmailAddress.h"
#include "service/email/EmailSMTPSendProcess.h"

namespace {

constexpr std::string_view kSection = "Email";

void SetDefault(std::string_view key, std::string_view value) {
    if (LUserSettingTestExists(kSection, key)) return;
    (void)LUserSettingSetString(kSection, key, value);  // read as its default all the same
}

LFieldError<LEmailField> Refuse(LUserInterface& ui, LEmailField field, std::string_view title,
                                std::string_view text) {
    ui.Inform(title, text);
    return LFieldError<LEmailField>::At(field, std::string(text));
}

bool IsBlank(std::string_view text) { return text.find_first_not_of(" \t") == text.npos; }

LFieldError<LEmailField> CheckServer(LUserInterface& ui, const LEmailSettings& settings) {
    if (!settings.useSmtpHost || !IsBlank(settings.mailSmtpHost)) return {};
    return Refuse(ui, LEmailField::kServer, "SMTP Server Address Required",
                  "If you choose SMTP you must enter a server.");
}

LFieldError<LEmailField> CheckReplyTo(LUserInterface& ui, const LEmailSettings& settings) {
    constexpr std::string_view kTitle = "Reply Email Required";
    const bool isMissing = IsBlank(settings.replyToEmail);
    if (isMissing && settings.useSmtpHost) {
        return Refuse(ui, LEmailField::kReplyTo, kTitle,
                      "If you choose SMTP you must enter a valid reply-to address. Enter your "
                      "email address.");
    }
    if (isMissing && settings.sendDirect) {
        return Refuse(ui, LEmailField::kReplyTo, kTitle,
                      "If you choose SMTP or Send Direct you must enter a valid reply-to address. "
                      "Enter your email address.");
    }
    if (isMissing || LEmail::ValidateAddress(settings.replyToEmail)) return {};
    return Refuse(ui, LEmailField::kReplyTo, kTitle,
                  "Please enter a valid reply-to email address.");
}

LFieldError<LEmailField> CheckAccount(LUserInterface& ui, const LEmailSettings& settings) {
    if (!settings.useSmtpHost || !settings.smtpAuthOn) return {};
    if (IsBlank(settings.smtpUserName)) {
        return Refuse(ui, LEmailField::kUserName, "User Name Required",
                      "If your SMTP server requires authentication,\nyou must enter an SMTP "
                      "username to connect to your server.");
    }
    if (!settings.smtpPassword.empty()) return {};
    return Refuse(ui, LEmailField::kPassword, "Password Required",
                  "If your SMTP server requires authentication,\nyou must enter a valid SMTP "
                  "password to connect to your server.");
}

}  // namespace

void LEmail::CheckInstallDefaults() {
    EncipherTypedPassword();
    if (LUserSettingGetString(kSection, "DefaultsSet", {}).starts_with('1')) return;
    const LEmailSettings stored = LoadEmailSettings();
    const bool hasWay = stored.sendDirect || stored.useSendMail || stored.useAppleMail;
    SetDefault("UseSMTPHost", hasWay ? "0" : "1");
    SetDefault("UseSSL", "1");
    SetDefault("SMTPAuthOn", stored.smtpUserName.empty() ? "0" : "1");
    (void)LUserSettingSetString(kSection, "DefaultsSet", "1");
}

bool LEmail::ValidateAddress(std::string_view text) { return ::ValidateAddress(text); }

LFieldError<LEmailField> LEmailSendSettingsDlg::CmOk(LUserInterface& ui,
                                                     const LEmailSettings& settings) {
    for (const auto check : {CheckServer, CheckReplyTo, CheckAccount}) {
        const auto error = check(ui, settings);
        if (!error.IsNone()) return error;
    }
    if (StoreEmailSettings(settings)) return {};
    constexpr char kNotStored[] = "The settings could not be stored.";
    ui.Inform("Email Settings", kNotStored);
    return LFieldError<LEmailField>::General(kNotStored);
}

bool LEmailSendSettingsDlg::VerifyConnection(LUserInterface& ui, const LEmailSettings& settings) {
    EmailSMTPVerifyProcess verify;
    verify.account = SmtpAccountOf(settings);
    verify.message.to = settings.replyToEmail;
    if (verify.account.mode == LSendMode::kServer && IsBlank(settings.mailSmtpHost)) {
        ui.Inform("SMTP Server Address Required", "Mail host required");
        return false;
    }
    const bool works = ui.RunProcess("Verify Connection", [&verify](LProcessInterface& process) {
        return Process(process, verify);
    });
    if (!works) {
        const std::string title = verify.ErrorTitle();
        ui.Inform(title.empty() ? "Verify Connection" : title, verify.ErrorText());
        return false;
    }
    std::string text = "The connection works.";
    if (!verify.certificateProblem.empty()) {
        text += " But the server's certificate could not be verified: " + verify.certificateProblem;
    }
    ui.Inform("Verify Connection", text);
    return true;
}
