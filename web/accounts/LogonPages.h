// Logging on and off, and choosing the business to work on.
#pragma once

#include "datastore/Businesses.h"
#include "web/accounts/LAppWebAccount.h"
#include "web/framework/LWebDialog.h"
#include "web/framework/RunPage.h"

class LAppWebAccountLogonPage : public LWebDialog {
public:
    explicit LAppWebAccountLogonPage(LWebletForm& form);

protected:
    bool Authenticate() override { return true; }  // it is for those who are not logged on
    void Generate() override;
    bool CmOk() override;

private:
    bool Refuse(int control, std::string_view message);
    bool OpenLastBusiness(LAppWebAccount& account);
    void AnswerLoggedOn(std::string_view page);
};
// A request that has a session is led on at once.
template <>
void WLWebDialogRun<LAppWebAccountLogonPage>(LWebletForm& form);

class LWebSelectProfileDialog : public LWebDialog {
public:
    explicit LWebSelectProfileDialog(LWebletForm& form);

protected:
    bool Authenticate() override;
    bool Prepare() override;
    void Generate() override;
    bool CmOk() override;

private:
    void KeepAllowedBusinesses();

    LAppWebAccount account_;
    std::vector<LBusiness> businesses_;  // those that the account may open
};

void WLLogout(LWebletForm& form);
