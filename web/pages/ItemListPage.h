// The list of items: one row for each item and location.
#pragma once

#include "inventory/ItemList.h"
#include "web/accounts/BusinessPages.h"

class LAppWebItemsPage : public LWebPageEx {
public:
    using LWebPageEx::LWebPageEx;

protected:
    void Generate() override { SetTitle("Items"); }
    void PrintBody() override;

private:
    LItemListFilter ReadFilter();
    void PrintFilters(const LItemListFilter& filter);
    void PrintTable(const LItemListFilter& filter);
};
