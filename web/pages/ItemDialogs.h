// The item dialog: a tab for what an item is, one for what lies where, one for what it is made of.
#pragma once

#include "web/pages/ItemForm.h"
#include "web/pages/TabbedDialog.h"

// What all tabs share.
class LItemTabDialog : public LTabbedDialog<LWebDialogEAUploadFilesWithNavTabs> {
protected:
    enum LTab : size_t { kGeneral = 0, kInventory = 1, kComponents = 2 };
    LItemTabDialog(LWebletForm& form, LTab tab);

    bool Prepare() override;
    bool CmOk() override;
    LHashTable StoredFields(size_t tab) override;
    LItem& Item() { return item_; }
    // The picture that was chosen and not saved yet: what the browser calls it and where it lies.
    bool GetChosenPicture(std::string& name, std::string& path);

private:
    bool CheckPicture();
    bool SavePicture();
    bool Save();
    bool SaveAll(const LItemInput& general, const LItemStockInput& stock);
    bool ShowItemError(const LItemError& error);

    LItem item_;
    std::string notice_;  // what the person is to know after a save
};

// What an item is: code, description, category, cost, price.
class LAppWebItemDialog : public LItemTabDialog {
public:
    explicit LAppWebItemDialog(LWebletForm& form) : LItemTabDialog(form, kGeneral) {}

protected:
    void GenerateTab(const LHashTable& fields) override;

private:
    void GenerateCategory(const LHashTable& fields);
    void GeneratePicture(const LHashTable& fields);
    void GenerateCustomFields(const LHashTable& fields);
};

// What lies where, from whom it comes, and when to warn.
class LAppWebItemInventoryDialog : public LItemTabDialog {
public:
    explicit LAppWebItemInventoryDialog(LWebletForm& form) : LItemTabDialog(form, kInventory) {}

protected:
    void GenerateTab(const LHashTable& fields) override;

private:
    void GenerateStockTable(const LHashTable& fields);
    void GenerateStockRow(const LHashTable& fields, int row, std::string_view location,
                          std::string_view name);
    void GenerateDerivedStock();
};

// What the item is made of.
class LAppWebItemBOMDialog : public LItemTabDialog {
public:
    explicit LAppWebItemBOMDialog(LWebletForm& form) : LItemTabDialog(form, kComponents) {}

protected:
    void GenerateTab(const LHashTable& fields) override;
};

// "itemprop" with the receiver of its picture, and the page "itempicture" that shows it.
void InstallItemScripts();
