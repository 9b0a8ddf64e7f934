// A lost password, and a change of one's own.
#pragma once

#include <functional>
#include <string>

#include "web/accounts/LAppWebAccount.h"
#include "web/framework/LWebDialog.h"

class LWebLostPasswordDialog : public LWebDialog {
public:
    explicit LWebLostPasswordDialog(LWebletForm& form);

protected:
    bool Authenticate() override { return true; }
    void Generate() override;
    bool CmOk() override;
};
void WLLostPasswordSent(LWebletForm& form);

class LWebChangePasswordDialog : public LWebDialog {
public:
    explicit LWebChangePasswordDialog(LWebletForm& form);

protected:
    bool Authenticate() override;
    void Generate() override;
    bool CmOk() override;
};
void WLPasswordChanged(LWebletForm& form);

// Hands the logon details of an account to the mail, in the background; false when it cannot.
using LLogonDetailsMailer =
    std::function<bool(const std::string& email, const std::string& password)>;
// Without a mailer no password is reset: nobody would learn the new one. Any thread.
void SetLogonDetailsMailer(LLogonDetailsMailer mailer);

enum class LForgotPasswordResult { kSent, kUnknownAccount, kCannotSend };
// Replaces the password by a random one and sends it, at most once in five minutes per account;
// asked again earlier it does nothing and is content.
LForgotPasswordResult LWebAccountForgotPassword(std::string_view email);
// Gives `account` a new password and hands it to the mailer; unchanged when that fails.
[[nodiscard]] bool LWebAccountSendPassword(LAppWebAccount& account);
