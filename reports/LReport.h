// A report: a title, a few summary lines and a table of titled columns. It knows nothing of how it
// is shown, printed or saved.
#pragma once

#include <array>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "datastore/LProfile.h"

enum eReportAlignment { kReportLeft = 1, kReportRight = 4 };

// A column table ends with an entry whose title is empty and whose width and alignment are -1.
struct LReportColumn {
    const char* title;
    int widthChars;
    int alignment;
    bool isDescription = false;  // long texts: may be wrapped or cut
};
inline constexpr LReportColumn kReportColumnsEnd{"", -1, -1};

enum class LReportRowKind {
    kRow,
    kGroup,     // begins a group; the first cell alone says which
    kSubtotal,  // of the group above it
    kTotal      // of the whole report, or of a part that stands apart
};
struct LReportRow {
    LReportRowKind kind = LReportRowKind::kRow;
    std::vector<std::string> cells;  // one for each column, as they are shown
    std::string itemId = {};         // the key of the item it is about; empty: none in particular
    bool hasPicture = false;         // of that item, in reports with pictures
};

// "label: value".
struct LReportSummary {
    std::string label, value;
};

// Made on a business, given its choices, generated once. One thread; `profile` must outlive it.
class LReport {
public:
    static constexpr size_t kMaxSummaries = 5;

    virtual ~LReport() = default;
    LReport(const LReport&) = delete;
    LReport& operator=(const LReport&) = delete;

    // Gathers the rows anew, reading each list that it needs once.
    virtual void GenerateReport() = 0;

    const std::string& Title() const { return title_; }
    std::span<const LReportColumn> Columns() const { return columns_; }  // without the end entry
    void SetSummary1(std::string label, std::string value) { SetSummary(0, label, value); }
    void SetSummary2(std::string label, std::string value) { SetSummary(1, label, value); }
    void SetSummary3(std::string label, std::string value) { SetSummary(2, label, value); }
    void SetSummary4(std::string label, std::string value) { SetSummary(3, label, value); }
    void SetSummary5(std::string label, std::string value) { SetSummary(4, label, value); }
    // Those that were set, in order.
    std::vector<LReportSummary> Summaries() const;
    const std::vector<LReportRow>& Rows() const { return rows_; }
    // Why there are no rows, to be told; empty when nothing is wrong.
    const std::string& Problem() const { return problem_; }

protected:
    LReport(const LProfile& profile, const char* title, const LReportColumn* columns);

    const LProfile& Profile() const { return profile_; }
    // Forgets the rows and the problem.
    void Clear();
    void ReserveRows(size_t count) { rows_.reserve(count); }
    LReportRow& AddRow(LReportRowKind kind = LReportRowKind::kRow);  // with empty cells
    void AddCells(std::vector<std::string> cells, std::string itemId = {}) {
        rows_.push_back({LReportRowKind::kRow, std::move(cells), std::move(itemId)});
    }
    void SetProblem(std::string problem) { problem_ = std::move(problem); }

private:
    void SetSummary(size_t index, std::string& label, std::string& value);

    const LProfile& profile_;
    const std::string title_;
    std::span<const LReportColumn> columns_;
    std::array<LReportSummary, kMaxSummaries> summaries_;
    std::vector<LReportRow> rows_;
    std::string problem_;
};

// The name by which a report is asked to leave nothing out.
inline constexpr char kReportAll[] = "All";
// Whether `choice` wants `name`: it is empty, "All", or exactly the name.
bool ReportWants(std::string_view choice, std::string_view name);
