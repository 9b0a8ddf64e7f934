// Which report a request asks for, and with which choices. They travel in the address as the keys
// of records and as stored dates: an address has no room for long names.
#pragma once

#include <memory>
#include <string>
#include <string_view>

#include "reports/LReport.h"

class LWebletForm;

// The word in the address, in "kind".
inline constexpr std::string_view kReportOfAll = "all", kReportByLocCat = "loccat",
                                  kReportOfLocation = "location", kReportOfCategory = "category",
                                  kReportPictures = "image", kReportBySupplier = "supplier",
                                  kReportSold = "sales", kReportLowStock = "lowstock",
                                  kReportBackorders = "backorder";

struct LReportChoices {
    std::string kind, location, category, supplier, from, to;  // empty: all; of days: today
};
LReportChoices ReadReportChoices(const LWebletForm& form);

// "page?kind=...", with those choices that are made.
std::string ReportAddress(std::string_view page, const LReportChoices& choices);
// The dialog in which these choices are made; empty for a report without any.
std::string_view ReportDialogOf(std::string_view kind);
// The page that hands the report out as a file.
std::string_view ReportFilePageOf(std::string_view kind);

// Ready to be generated. The report of everything for a kind that is none; a record that is gone
// gives a report without rows.
std::unique_ptr<LReport> MakeReport(const LProfile& profile, const LReportChoices& choices);
