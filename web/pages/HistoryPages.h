// What came in and what went out: the receiving and the sales history.
#pragma once

#include "inventory/StockHistory.h"
#include "web/accounts/BusinessPages.h"

// A range of days, an item, and the rows found. Without a range in the address it shows the last 30
// days. The field "row" asks to delete that row, which is confirmed first.
class LHistoryPage : public LWebPageEx {
public:
    using LWebPageEx::LWebPageEx;
    void Open() override;

protected:
    // With the operation that belongs to this history.
    virtual void DeleteRow(LUserInterface& ui, const LHistoryRowId& row) = 0;
    // The form that the rows' buttons belong to; it carries the filter back.
    void PrintDeleteForm();
    LHistoryFilter ReadFilter();
    // The dates and the item, written into the filter row of `page`.
    void PrintFilters(std::string_view page, const LHistoryFilter& filter,
                      const std::vector<std::string>& kinds);
    void PrintProblem(const std::string& problem);
};

class LAppWebItemReceiveListPage : public LHistoryPage {
public:
    using LHistoryPage::LHistoryPage;

protected:
    void Generate() override { SetTitle("Receiving history"); }
    void DeleteRow(LUserInterface& ui, const LHistoryRowId& row) override;
    void PrintBody() override;
};

class LAppWebItemSellListPage : public LHistoryPage {
public:
    using LHistoryPage::LHistoryPage;

protected:
    void Generate() override { SetTitle("Sales history"); }
    void DeleteRow(LUserInterface& ui, const LHistoryRowId& row) override;
    void PrintBody() override;
};
