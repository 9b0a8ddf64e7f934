// "Sales Report": what was sold over some days, at what cost and with what profit, item by item.
#pragma once

#include "datastore/LDate.h"
#include "reports/LReport.h"

// From the sales history. Cost and price of a unit are those of the item as it is now (the history
// keeps no cost); sales are what the history has. What was damaged or lost stands apart, and the
// total counts both. An item that is gone is counted under its last known code, or else its number,
// at no cost.
class LReportSales final : public LReport {
public:
    explicit LReportSales(const LProfile& profile);     // today, unless SetDates is called
    void SetDates(const LDate& from, const LDate& to);  // both days included
    void GenerateReport() override;

private:
    LDate from_, to_;
};
