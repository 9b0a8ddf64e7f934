// The reports in the browser: what there is, one of them as a table, and each as a file.
#pragma once

#include <memory>

#include "reports/LReport.h"
#include "web/accounts/BusinessPages.h"
#include "web/pages/ReportChoices.h"

// The list of the reports.
class LWebReportsPage : public LWebPageMainEx {
public:
    using LWebPageMainEx::LWebPageMainEx;

    // Pages "generatereport", "reportlowlevel" and "reportbackorder": the report that the address
    // asks for (ReportChoices.h; of the latter two, theirs) as a page, with "format" being "csv" as
    // a file; with "picture" the picture of the item of that key.
    static void GenerateReport(LWebletForm& form);

protected:
    void Generate() override;
};

// One report as a table.
class LWebReportPage : public LWebPageEx {
public:
    using LWebPageEx::LWebPageEx;

protected:
    void Generate() override;
    void PrintBody() override;

private:
    void PrintActions();

    LReportChoices choices_;
    std::unique_ptr<LReport> report_;
};

// Starts the download of a report's file and leads back to the reports.
class LWebPageDownloadAndRedirect : public LWebPageEx {
public:
    using LWebPageEx::LWebPageEx;

protected:
    void Generate() override { SetTitle("Save report"); }
    void PrintBody() override;
};

// Answer with the report of the address as a file for spreadsheets.
void WLGenerateSuppReport(LWebletForm& form);
void WLGenerateLocCatReport(LWebletForm& form);
void WLGenerateImageCatReport(LWebletForm& form);
void WLGenerateSalesReport(LWebletForm& form);
