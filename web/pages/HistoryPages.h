// What came in and what went out: the receiving and the sales history.
#pragma once

#include "inventory/StockHistory.h"
#include "web/accounts/BusinessPages.h"

// A range of days, an item, and the rows found. Without a range in the address it shows the last 30
// days.
class LHistoryPage : public LWebPageEx {
public:
    using LWebPageEx::LWebPageEx;

protected:
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
    void PrintBody() override;
};

class LAppWebItemSellListPage : public LHistoryPage {
public:
    using LHistoryPage::LHistoryPage;

protected:
    void Generate() override { SetTitle("Sales history"); }
    void PrintBody() override;
};
