// Ordering what has run low.
#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "orders/LowStockOrders.h"
#include "web/accounts/BusinessPages.h"

// A row for each item and location that falls short, with a tick; OK records the orders. "mode" and
// "percent" select what is proposed. Its script asks this page ("column", "quantity", "cost") what
// a changed row comes to.
class LWebOrderLowStockItemsDialog : public LWebDialogEA {
public:
    explicit LWebOrderLowStockItemsDialog(LWebletForm& form);

protected:
    bool Prepare() override;
    void PrintAboveForm() override;
    void Generate() override;
    bool CmOk() override;
    bool SendAJAXCommands() override;

private:
    LLowStockSelection Selection();
    void AddRow(LHtmlList& table, const LLowStockRow& row, int index);
    std::string SupplierCell(const LLowStockRow& row, int index) const;
    bool ReadRows(std::vector<LLowStockRow>& rows, std::vector<int>& shownAt);
    bool ReadRow(int index, LLowStockRow& row);
    bool ShowPlaced(const LLowStockPlaced& placed);

    std::vector<std::string> suppliers_;
};
