// The list of purchase orders, and the items that are still to come.
#pragma once

#include "orders/OrderListView.h"
#include "web/accounts/BusinessPages.h"

// Its filters are "show" (Recorded, Draft, All) and "receipts".
class LWebOrdersPage : public LWebPageEx {
public:
    using LWebPageEx::LWebPageEx;

protected:
    void Generate() override { SetTitle("Purchase orders"); }
    void PrintBody() override;

private:
    LOrderListFilter ReadFilter();
    void PrintFilters(const LOrderListFilter& filter);
};

// One row for each line of a recorded order of which something is still to come. "item" narrows it
// to the item of that key.
class LWebItemsOnOrderPage : public LWebPageEx {
public:
    using LWebPageEx::LWebPageEx;

protected:
    void Generate() override { SetTitle("Items on order"); }
    void PrintBody() override;
};
