// One purchase order: its head, its lines and what they come to, edited in the browser.
#pragma once

#include "orders/OrderEditor.h"
#include "web/accounts/BusinessPages.h"

// "id" names the order; without it the form is for a new one. OK records the order; further buttons
// keep it as a draft or make it a recurring template. Leaving a changed form asks first. Its script
// asks this page for an item ("itemcode") and "ocbtaxtselchange" for the totals.
class LWebOrderDialog : public LWebDialogEA {
public:
    explicit LWebOrderDialog(LWebletForm& form);

protected:
    bool Prepare() override;
    void InitDialog() override;
    void Generate() override;
    bool CmOk() override;
    bool SendAJAXCommands() override;
    void PrintAboveForm() override;

private:
    void PrintNewItems();
    void GenerateHead();
    void GenerateAddresses();
    void GenerateTaxQuestion();
    void GenerateLines();
    void GenerateRow(std::string_view prefix, const LOrderLineInput& line, int row);
    void GenerateTotals();
    void AddScripts();
    bool SaveDraft();
    bool SaveRecurring();
    bool ShowError(const LOrderError& error);

    LPOrder order_;  // unbound for a new one
    LOrderInput input_;
    std::vector<std::string> taxNames_;
};
