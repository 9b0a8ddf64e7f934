#include "web/accounts/PasswordPages.h"

#include <chrono>
#include <map>

#include "platform/LMutex.h"
#include "platform/RandomSource.h"
#include "service/email/EmailAddress.h"
#include "web/accounts/AccountPages.h"
#include "web/accounts/PageCheck.h"

namespace {

enum { kEmail = 101 };
enum { kOldPassword = 101, kNewPassword = 102, kRepeated = 103 };

constexpr size_t kResetPasswordLetters = 8;
constexpr auto kOneMailIn = std::chrono::minutes(5);

struct LMailing {
    LMutex mutex;
    LLogonDetailsMailer mailer L_GUARDED_BY(mutex);
    // When an account was sent a password last; entries that have had their time are dropped.
    std::map<std::string, std::chrono::steady_clock::time_point> sent L_GUARDED_BY(mutex);
};

LMailing& Mailing() {
    static LMailing mailing;
    return mailing;
}

// True, once in five minutes for each account: the caller goes on to send.
bool TakeTurn(const std::string& email) {
    LMailing& mailing = Mailing();
    const LMutexLock lock(mailing.mutex);
    const auto now = std::chrono::steady_clock::now();
    std::erase_if(mailing.sent,
                  [now](const auto& entry) { return now - entry.second >= kOneMailIn; });
    return mailing.sent.emplace(email, now).second;
}

void GiveTurnBack(const std::string& email) {
    LMailing& mailing = Mailing();
    const LMutexLock lock(mailing.mutex);
    mailing.sent.erase(email);
}

}  // namespace

void SetLogonDetailsMailer(LLogonDetailsMailer mailer) {
    LMailing& mailing = Mailing();
    const LMutexLock lock(mailing.mutex);
    mailing.mailer = std::move(mailer);
}

bool LWebAccountSendPassword(LAppWebAccount& account) {
    LLogonDetailsMailer mailer;
    {
        LMailing& mailing = Mailing();
        const LMutexLock lock(mailing.mutex);
        mailer = mailing.mailer;
    }
    if (!mailer) return false;
    const std::string old = account.GetString("Password");
    const std::string password = RandomLetters(kResetPasswordLetters);
    account.SetString("Password", password);
    if (!account.Flush()) return false;
    if (mailer(account.Email(), password)) return true;
    account.SetString("Password", old);
    account.Flush();
    return false;
}

LForgotPasswordResult LWebAccountForgotPassword(std::string_view email) {
    LAppWebAccount account;
    if (!OpenWebAccount(account, email)) return LForgotPasswordResult::kUnknownAccount;
    if (!TakeTurn(account.Email())) return LForgotPasswordResult::kSent;
    if (LWebAccountSendPassword(account)) return LForgotPasswordResult::kSent;
    GiveTurnBack(account.Email());
    return LForgotPasswordResult::kCannotSend;
}

LWebLostPasswordDialog::LWebLostPasswordDialog(LWebletForm& form) : LWebDialog(form) {
    SetTitle("Lost Password");
    SetOkCancelPage("lostpasswordsent", "logon");
}

void LWebLostPasswordDialog::Generate() {
    StartRow().AddStatic(
        "Please enter your email address. Your password will be reset and sent to you by email.");
    StartRow().AddStatic("Email:").AddInputEmailAddress(kEmail, {}, {.autocomplete = "username"});
}

bool LWebLostPasswordDialog::CmOk() {
    const std::string email = GetTextAndTrim(kEmail);
    std::string_view complaint;
    if (email.empty()) {
        complaint = "Please enter your email address.";
    } else if (!ValidateAddressSingle(email)) {
        complaint = "This email address is invalid. Please try again.";
    } else {
        switch (LWebAccountForgotPassword(email)) {
            case LForgotPasswordResult::kSent:
                return true;
            case LForgotPasswordResult::kUnknownAccount:
                complaint = "This user doesn't exist in the Quillmarsh Stock Manager System";
                break;
            case LForgotPasswordResult::kCannotSend:
                complaint =
                    "The password could not be sent by email. Please ask your administrator for a "
                    "new one.";
                break;
        }
    }
    PopupControlDataInvalid(kEmail, complaint);
    return false;
}

void WLLostPasswordSent(LWebletForm& form) {
    WLMessagePage(form, "Lost Password",
                  "<center>Your password has been reset and sent to your email address.<p>Click <a "
                  "href=\"logon\">here</a> to log on when you receive your password.</center>");
}

LWebChangePasswordDialog::LWebChangePasswordDialog(LWebletForm& form) : LWebDialog(form) {
    SetTitle("Change Password");
    SetOkCancelPage("changepasswordchanged", "main");
}

bool LWebChangePasswordDialog::Authenticate() { return AuthenticateAccount(Form()); }

void LWebChangePasswordDialog::Generate() {
    StartRow().AddStatic("Current Password:").AddInputPassword(kOldPassword, {});
    StartRow().AddStatic("New Password:").AddInputPassword(kNewPassword, {}, "new-password");
    StartRow().AddStatic("New Password Again:").AddInputPassword(kRepeated, {}, "new-password");
}

bool LWebChangePasswordDialog::CmOk() {
    const std::string email = Form().Session().GetString("user");
    const std::string password = GetTextAndTrim(kNewPassword);
    if (!LWebAccountValidateLogon(email, GetTextAndTrim(kOldPassword))) {
        PopupControlDataInvalid(kOldPassword, "This is not your current password.");
    } else if (!IsPasswordLongEnough(password)) {
        PopupControlDataInvalid(kNewPassword, "The password must have a minimum of 6 characters.");
    } else if (GetTextAndTrim(kRepeated) != password) {
        PopupControlDataInvalid(kRepeated, "The two new passwords are not the same.");
    } else {
        LAppWebAccount account;
        if (OpenWebAccount(account, email)) {
            account.SetString("Password", password);
            if (account.Flush()) return true;
        }
        PopupBoxError("The password could not be saved.");
    }
    return false;
}

void WLPasswordChanged(LWebletForm& form) {
    if (!WLValidateSession(form)) return;
    WLMessagePage(form, "Change Password",
                  "<center>Your password has been changed.<p>Click <a href='main'>here</a> to "
                  "return.</center>");
}
