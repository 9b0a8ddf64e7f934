// Categories in the browser: the list, the dialog, deleting, and what item forms ask about them.
#pragma once

#include "inventory/MasterRecords.h"
#include "web/accounts/BusinessPages.h"

class LAppWebCatPage : public LWebPageEx {
public:
    using LWebPageEx::LWebPageEx;

protected:
    void Generate() override { SetTitle("Categories"); }
    void PrintBody() override;
};

class LAppWebCatDialog : public LWebDialogEA {
public:
    explicit LAppWebCatDialog(LWebletForm& form);

protected:
    bool Prepare() override;
    void Generate() override;
    bool CmOk() override;

private:
    bool TakeSubCategories(LCategoryInput& input);

    LCategory category_;
};

void WLCatDelete(LWebletForm& form);
// Adds the category named by "name" from an item form; answers with its name, or with the reason
// why not.
void WLCatAdd(LWebletForm& form);
// The sub-categories of the category named by "name", one per line.
void VWAJAXGetSubCate(LWebletForm& form);
