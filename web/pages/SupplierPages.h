// Suppliers in the browser: the list, the dialog, deleting.
#pragma once

#include "inventory/MasterRecords.h"
#include "web/accounts/BusinessPages.h"

class LAppWebSupplierPage : public LWebPageEx {
public:
    using LWebPageEx::LWebPageEx;

protected:
    void Generate() override { SetTitle("Suppliers"); }
    void PrintBody() override;
};

class LAppWebSupplierDialog : public LWebDialogEA {
public:
    explicit LAppWebSupplierDialog(LWebletForm& form);

protected:
    bool Prepare() override;
    void Generate() override;
    bool CmOk() override;

private:
    LSupplier supplier_;
};

void WLSupplierDelete(LWebletForm& form);
