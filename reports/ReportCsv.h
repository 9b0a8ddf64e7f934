// A report as a table for spreadsheets.
#pragma once

#include <string>

class LReport;

// Rows as CsvText.h writes them, each ended by CR LF: the column titles, then the rows as they are
// shown. Beginnings of groups are left out: the columns, sorted and filtered by a spreadsheet, have
// no use for them; subtotals and the total are kept.
std::string ReportToCsv(const LReport& report);
// What the file is called: the title with "-" for blanks, ".csv".
std::string ReportCsvName(const LReport& report);
