#include "reports/ReportCsv.h"

#include <algorithm>

#include "datastore/CsvText.h"
#include "reports/LReport.h"

std::string ReportToCsv(const LReport& report) {
    constexpr char kLineEnd[] = "\r\n";
    std::vector<std::string> titles;
    for (const LReportColumn& column : report.Columns()) titles.emplace_back(column.title);
    std::string text = FormatCsvRow(titles) + kLineEnd;
    for (const LReportRow& row : report.Rows()) {
        if (row.kind != LReportRowKind::kGroup) text += FormatCsvRow(row.cells) + kLineEnd;
    }
    return text;
}

std::string ReportCsvName(const LReport& report) {
    std::string name = report.Title();
    std::replace(name.begin(), name.end(), ' ', '-');
    return name + ".csv";
}
