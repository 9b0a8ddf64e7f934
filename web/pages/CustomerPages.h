// Customers in the browser: the list, the dialog, deleting.
#pragma once

#include <array>

#include "inventory/MasterRecords.h"
#include "web/accounts/BusinessPages.h"

class LAppWebCustomerPage : public LWebPageEx {
public:
    using LWebPageEx::LWebPageEx;

protected:
    void Generate() override { SetTitle("Customers"); }
    void PrintBody() override;
};

class LAppWebCustomerDialog : public LWebDialogEA {
public:
    explicit LAppWebCustomerDialog(LWebletForm& form);

protected:
    bool Prepare() override;
    void Generate() override;
    bool CmOk() override;

private:
    void AddAddress(int firstControl, const std::array<const char*, 5>& fields);

    LCustomer customer_;
};

void WLCustomerDelete(LWebletForm& form);
