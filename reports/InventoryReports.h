// The six inventory reports: what lies where and what it is worth. Rows are in groups (by location,
// category or supplier), sorted by group and then by item code, ignoring case; each group has a
// subtotal, the report a total. A line total is the quantity at cost. Negative stock counts as it
// is.
#pragma once

#include <string>

#include "reports/LReport.h"
#include "reports/LStockLines.h"

struct LInventoryLayout;

class LInventoryReport : public LReport {
public:
    void GenerateReport() override;

protected:
    LInventoryReport(const LProfile& profile, const LInventoryLayout& layout);
    LStockLineChoice& Choice() { return choice_; }

private:
    const LInventoryLayout& layout_;
    LStockLineChoice choice_;
};

// "Inventory Report by Location and Category"; a choice is a name or "All".
class LReportInventoryLocCat final : public LInventoryReport {
public:
    explicit LReportInventoryLocCat(const LProfile& profile);
    void SetLocationAndCategory(const std::string& location, const std::string& category);
};
// "Inventory Report": everything.
class LReportInventoryAll final : public LInventoryReport {
public:
    explicit LReportInventoryAll(const LProfile& profile);
};
// "Inventory Report For Location".
class LReportInventoryLocation final : public LInventoryReport {
public:
    explicit LReportInventoryLocation(const LProfile& profile);
    void SetLocation(const std::string& location);
};
// "Inventory Report For Category".
class LReportInventoryCategory final : public LInventoryReport {
public:
    explicit LReportInventoryCategory(const LProfile& profile);
    void SetCategory(const std::string& category);
};
// "Inventory Report with Image by Category": one row for each item, with its picture.
class LReportImageCategory final : public LInventoryReport {
public:
    explicit LReportImageCategory(const LProfile& profile);
    void SetCategory(const std::string& category);
};
// "Inventory Report by Default Supplier": the supplier that stands in the item.
class LReportInventoryDefaultSupplier final : public LInventoryReport {
public:
    explicit LReportInventoryDefaultSupplier(const LProfile& profile);
    void SetSupplier(const std::string& supplier);
};
