// "Low Level Stock": what has fallen to its warning quantity at a location that is watched.
#pragma once

#include "reports/LReport.h"

// One row for each entry whose ideal quantity is above 0 and whose quantity is at or below its
// warning quantity; by item code, ignoring case, those of one item in their stored order. A built
// item keeps no stock of its own and is never low.
class LReportLowStock final : public LReport {
public:
    explicit LReportLowStock(const LProfile& profile);
    void GenerateReport() override;
};
