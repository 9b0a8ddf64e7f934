// The item dialog: a tab for what an item is, and a tab for what lies where.
#pragma once

#include "web/accounts/BusinessPages.h"
#include "web/pages/ItemForm.h"

// What both tabs share. OK saves all tabs: the fields of the one that is shown, and of the other
// what was kept when it was left, or what is stored. "draft" names one opening of the dialog, so
// that kept fields never turn up in another.
class LItemTabDialog : public LWebDialogEAWithNavTabs {
protected:
    enum class LTab { kGeneral = 0, kInventory = 1 };
    LItemTabDialog(LWebletForm& form, LTab tab);

    bool Prepare() override;
    void Generate() override;
    bool CmOk() override;
    void CmCancel() override;

    virtual void GenerateTab(const LHashTable& fields) = 0;
    LItem& Item() { return item_; }

private:
    std::string TabDataName(LTab tab) const;
    std::string TabPage(LTab tab) const;
    LHashTable Fields(LTab tab);  // as they are to be saved
    LHashTable ShownFields();
    bool Save();
    bool ShowError(LTab tab, int control, const std::string& message);

    LTab tab_;
    LItem item_;
    std::string draft_;
};

// What an item is: code, description, category, cost, price.
class LAppWebItemDialog : public LItemTabDialog {
public:
    explicit LAppWebItemDialog(LWebletForm& form) : LItemTabDialog(form, LTab::kGeneral) {}

protected:
    void GenerateTab(const LHashTable& fields) override;

private:
    void GenerateCategory(const LHashTable& fields);
    void GenerateCustomFields(const LHashTable& fields);
};

// What lies where, from whom it comes, and when to warn.
class LAppWebItemInventoryDialog : public LItemTabDialog {
public:
    explicit LAppWebItemInventoryDialog(LWebletForm& form)
        : LItemTabDialog(form, LTab::kInventory) {}

protected:
    void GenerateTab(const LHashTable& fields) override;

private:
    void GenerateStockTable(const LHashTable& fields);
    void GenerateStockRow(const LHashTable& fields, int row, std::string_view location,
                          std::string_view name);
    void GenerateDerivedStock();
};
