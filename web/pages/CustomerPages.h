// Customers in the browser: the list, the dialog, deleting.
#pragma once

#include "inventory/MasterRecords.h"
#include "web/accounts/BusinessPages.h"
#include "web/pages/TabbedDialog.h"

class LAppWebCustomerPage : public LWebPageEx {
public:
    using LWebPageEx::LWebPageEx;

protected:
    void Generate() override { SetTitle("Customers"); }
    void PrintBody() override;
};

// What the tabs of the customer dialog share.
class LCustomerTabDialog : public LTabbedDialog<LWebDialogEAWithNavTabs> {
protected:
    enum LTab : size_t { kGeneral = 0, kOther = 1 };
    LCustomerTabDialog(LWebletForm& form, LTab tab);

    bool Prepare() override;
    bool CmOk() override;
    LHashTable StoredFields(size_t tab) override;
    void AddAddress(const LHashTable& fields, int firstControl);

private:
    LCustomer customer_;
};

// Who they are and where the bill goes.
class LAppWebCustomerDialog : public LCustomerTabDialog {
public:
    explicit LAppWebCustomerDialog(LWebletForm& form) : LCustomerTabDialog(form, kGeneral) {}

protected:
    void GenerateTab(const LHashTable& fields) override;
};

// Where the goods go, who sells to them, and notes.
class LWebCustomerOtherDialog : public LCustomerTabDialog {
public:
    explicit LWebCustomerOtherDialog(LWebletForm& form) : LCustomerTabDialog(form, kOther) {}

protected:
    void GenerateTab(const LHashTable& fields) override;
};

void WLCustomerDelete(LWebletForm& form);
