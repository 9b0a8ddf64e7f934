// "Backorder Report": what was ordered and has not come, and what recurring templates will order.
#pragma once

#include "reports/LReport.h"

// The open lines of recorded orders first, by order number; then every line of every template, with
// its full quantity and how often it recurs.
class LBackorderReport final : public LReport {
public:
    explicit LBackorderReport(const LProfile& profile);
    void GenerateReport() override;
};
