#include "reports/LReport.h"

namespace {

std::span<const LReportColumn> WithoutEnd(const LReportColumn* columns) {
    size_t count = 0;
    while (columns[count].widthChars != kReportColumnsEnd.widthChars) ++count;
    return {columns, count};
}

}  // namespace

LReport::LReport(const LProfile& profile, const char* title, const LReportColumn* columns)
    : profile_(profile), title_(title), columns_(WithoutEnd(columns)) {}

void LReport::SetSummary(size_t index, std::string& label, std::string& value) {
    summaries_[index] = {std::move(label), std::move(value)};
}

std::vector<LReportSummary> LReport::Summaries() const {
    std::vector<LReportSummary> set;
    for (const LReportSummary& summary : summaries_) {
        if (!summary.label.empty() || !summary.value.empty()) set.push_back(summary);
    }
    return set;
}

void LReport::Clear() {
    rows_.clear();
    problem_.clear();
}

LReportRow& LReport::AddRow(LReportRowKind kind) {
    LReportRow& row = rows_.emplace_back();
    row.kind = kind;
    row.cells.resize(columns_.size());
    return row;
}

bool ReportWants(std::string_view choice, std::string_view name) {
    return choice.empty() || choice == kReportAll || choice == name;
}
