// The administrators' pages: the list of accounts, one account, deleting one.
#pragma once

#include "datastore/Businesses.h"
#include "web/accounts/BusinessPages.h"

// At least 6 characters.
bool IsPasswordLongEnough(std::string_view password);

class LAppWebAccountsPage : public LWebPageEx {
public:
    using LWebPageEx::LWebPageEx;

protected:
    void Generate() override;
    void PrintBody() override;
};

class LAppWebAccountDialog : public LWebDialogEA {
public:
    explicit LAppWebAccountDialog(LWebletForm& form);

protected:
    bool Prepare() override;
    void Generate() override;
    bool CmOk() override;

private:
    bool CheckEmail();
    bool CheckPassword(const std::string& password);
    void GenerateRights();
    void StoreRights();
    bool IsOwnAccount();

    LAppWebAccount account_;
    bool isNew_ = false;
};

void WLUserDelete(LWebletForm& form);
