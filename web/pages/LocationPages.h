// Stock locations in the browser: the list, the dialog, deleting.
#pragma once

#include "inventory/MasterRecords.h"
#include "web/accounts/BusinessPages.h"

class LAppWebLocPage : public LWebPageEx {
public:
    using LWebPageEx::LWebPageEx;

protected:
    void Generate() override { SetTitle("Locations"); }
    void PrintBody() override;
};

class LAppWebLocDialog : public LWebDialogEA {
public:
    explicit LAppWebLocDialog(LWebletForm& form);

protected:
    bool Prepare() override;
    void Generate() override;
    bool CmOk() override;

private:
    LLocation location_;
};

void WLLocDelete(LWebletForm& form);
