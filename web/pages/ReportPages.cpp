#include "web/pages/ReportPages.h"

#include <numeric>

#include "inventory/LItem.h"
#include "reports/ReportCsv.h"
#include "web/framework/LHtmlList.h"
#include "web/framework/PageTargets.h"
#include "web/framework/RunPage.h"
#include "web/server/MimeTypes.h"
#include "web/server/ServeFile.h"

namespace {

constexpr std::string_view kNoText =
    "There is nothing to report. Other choices, or other days, may have more.";

// Two pages of the table stand for one report each.
LReportChoices ChoicesOf(LWebletForm& form) {
    LReportChoices choices = ReadReportChoices(form);
    if (form.PageName() == "reportlowlevel") choices.kind = kReportLowStock;
    if (form.PageName() == "reportbackorder") choices.kind = kReportBackorders;
    return choices;
}

void ServeCsv(LWebletForm& form, const LReportChoices& choices) {
    if (!AuthenticateEx(form)) return;
    const auto report = MakeReport(form.Profile(), choices);
    report->GenerateReport();
    LWebletServeBuffer(form, ReportToCsv(*report), "text/csv; charset=utf-8",
                       ReportCsvName(*report));
}

// Only what is a picture: the record that names the file may have been written by anybody.
void ServePicture(LWebletForm& form) {
    if (!AuthenticateEx(form)) return;
    LItem item;
    std::string path;
    if (form.Profile().Items().Open(item, form.Parameter("picture"))) {
        path = GetItemPictureFile(form.Profile(), item);
    }
    const bool isPicture = std::string_view(LExtToMimeType(path).contentType).starts_with("image/");
    LWebletServeFile(form, isPicture ? path : std::string(), form.Header("if-none-match"),
                     form.Header("if-modified-since"));
}

void ServeAs(LWebletForm& form, std::string_view kind) {
    LReportChoices choices = ReadReportChoices(form);
    // One dialog, and so one file page, has three kinds.
    if (ReportFilePageOf(choices.kind) != form.PageName()) choices.kind = kind;
    ServeCsv(form, choices);
}

bool IsGrouped(const LReport& report) {
    return !report.Rows().empty() && report.Rows().front().kind == LReportRowKind::kGroup;
}

// The rows of a report as rows of a list.
class LReportRows {
public:
    LReportRows(const LReport& report, const LProfile& profile, bool isWithPictures)
        : report_(report), profile_(profile), isWithPictures_(isWithPictures) {
        const int chars = std::accumulate(
            report.Columns().begin(), report.Columns().end(), 0,
            [](int sum, const LReportColumn& column) { return sum + column.widthChars; });
        const bool isSortable = !IsGrouped(report);
        for (const LReportColumn& column : report.Columns()) {
            columns_.push_back(
                {column.title, column.widthChars * 100 / chars,
                 column.alignment == kReportRight ? LCellAlign::kRight : LCellAlign::kLeft,
                 isSortable});
        }
        if (isWithPictures_) columns_.push_back({"Picture", 0, LCellAlign::kLeft, false});
        table_.SetColumns(columns_);
        table_.SetName("Rows");
        table_.SetEmptyText(std::string(kNoText));
        if (!isSortable) table_.SetPlain();
    }

    void Print(LPageWriter& out) {
        table_.PrintStart(out);
        LHtmlListRow row = table_.MakeRow();
        for (const LReportRow& line : report_.Rows()) {
            row.Clear();
            Fill(row, line);
            table_.PrintRow(out, row);
        }
        table_.PrintEnd(out);
    }

private:
    void Fill(LHtmlListRow& row, const LReportRow& line) const {
        if (line.kind == LReportRowKind::kGroup) {
            row.SpanNext(columns_.size()).AddCell(line.cells.front());
            row.SetClass("group");
            return;
        }
        size_t first = 0;
        if (line.kind != LReportRowKind::kRow) first = AddLabel(row, line);
        for (size_t i = first; i < line.cells.size(); ++i) AddCell(row, line, i);
        if (isWithPictures_) AddPicture(row, line);
        if (line.kind == LReportRowKind::kSubtotal) row.SetClass("subtotal");
        if (line.kind == LReportRowKind::kTotal) row.SetClass("total");
    }

    // What a sum is of takes the room of the empty cells after it. Returns the next cell.
    static size_t AddLabel(LHtmlListRow& row, const LReportRow& line) {
        size_t next = 1;
        while (next < line.cells.size() && line.cells[next].empty()) ++next;
        row.SpanNext(next).AddCell(line.cells.front());
        return next;
    }

    void AddCell(LHtmlListRow& row, const LReportRow& line, size_t index) const {
        const std::string& text = line.cells[index];
        const LReportColumn& column = report_.Columns()[index];
        const std::string_view title = column.title;
        if (title == "Item" && !line.itemId.empty()) {
            row.AddCellLink(WLMakeLink("itemprop", {{"id", line.itemId}}), text);
        } else if (columns_[index].sortable && column.alignment == kReportRight) {
            row.AddCellWithOrder(text, NumberIn(text));
        } else if (columns_[index].sortable && title == "Receipt Date") {
            const auto date = profile_.ParseDate(text);
            row.AddCellWithOrder(text, date ? date->ToStored() : std::string());
        } else {
            row.AddCell(text);
        }
    }

    double NumberIn(const std::string& text) const {
        if (const auto number = profile_.ParseNumber(text)) return *number;
        const auto amount = profile_.ParseMoney(text);
        if (!amount) return 0;
        double value = static_cast<double>(amount->minorUnits);
        for (int digit = 0; digit < amount->digits; ++digit) value /= 10;
        return value;
    }

    static void AddPicture(LHtmlListRow& row, const LReportRow& line) {
        if (!line.hasPicture) {
            row.AddCell("");
            return;
        }
        row.AddCellPrintF("<img class=thumb loading=lazy src='generatereport?picture=%U' alt='%H'>",
                          line.itemId, line.cells.front());
    }

    const LReport& report_;
    const LProfile& profile_;
    const bool isWithPictures_;
    std::vector<LHtmlListColumn> columns_;
    LHtmlList table_;
};

std::string SpacedOut(const std::string& text) {
    std::string spaced = text;
    for (size_t tab = 0; (tab = spaced.find('\t', tab)) != std::string::npos;) {
        spaced.replace(tab, 1, "\u00a0\u00a0");
    }
    return spaced;
}

}  // namespace

void LWebReportsPage::Generate() {
    SetTitle("Reports");
    AddSection("Stock");
    AddLink("generatereport?kind=all", "Inventory", "Everything: what lies where, and its value");
    AddLink("reportlocation", "By location and category",
            "All of it in groups, or one location or category");
    AddLink("reportcatimage", "With pictures", "The items of a category with their pictures");
    AddLink("reportsupplier", "By supplier", "What each supplier's items are worth");
    AddSection("Ordering");
    AddLink("reportlowlevel", "Low stock", "What is at or below its warning quantity");
    AddLink("reportbackorder", "Backorders", "What was ordered and has not come yet");
    AddSection("Selling");
    AddLink("reportsales", "Sales", "What was sold over some days, its cost and the profit");
}

void LWebReportsPage::GenerateReport(LWebletForm& form) {
    if (!form.Parameter("picture").empty()) return ServePicture(form);
    if (form.Parameter("format") == "csv") return ServeCsv(form, ChoicesOf(form));
    WLWebPageRun<LWebReportPage>(form);
}

void LWebReportPage::Generate() {
    choices_ = ChoicesOf(Form());
    report_ = MakeReport(Profile(), choices_);
    SetTitle(report_->Title());
    SetNavLinks({{"reports", "Reports"}});
}

void LWebReportPage::PrintBody() {
    for (const LReportSummary& summary : report_->Summaries()) {
        Out().Printf("<p class=summary>%H: %H</p>", summary.label, SpacedOut(summary.value));
    }
    PrintActions();
    Out().Flush();  // something to look at while the lists are read
    report_->GenerateReport();
    if (!report_->Problem().empty()) {
        Out().Printf("<p class=problem role=alert>%H</p>", report_->Problem());
    }
    LReportRows(*report_, Profile(), choices_.kind == kReportPictures).Print(Out());
}

void LWebReportPage::PrintActions() {
    Out().Write("<div class=toolbar><div class=actions>");
    const std::string_view dialog = ReportDialogOf(choices_.kind);
    if (!dialog.empty()) {
        Out().Printf("<a class=button href='%H'>Other choices</a> ",
                     ReportAddress(dialog, choices_));
    }
    Out().Printf(
        "<a class=button href='%H'>Save as CSV</a> "
        "<input type=button value='Print' onclick='window.print()'></div></div>",
        ReportAddress("generatereport", choices_) + "&format=csv");
}

// A download leaves the page where it is, so that the page can lead on after it.
void LWebPageDownloadAndRedirect::PrintBody() {
    constexpr int kPauseMs = 2500;
    const LReportChoices choices = ReadReportChoices(Form());
    const std::string file = ReportAddress(ReportFilePageOf(choices.kind), choices) + "&format=csv";
    Out().Printf(
        "<p>Your report is being saved. <a href='%H'>Save it again</a> if nothing happens, or go "
        "back to the <a href='reports'>reports</a>.</p>",
        file);
    Script().AddStartUp(
        "window.location.href = '%J';"
        "setTimeout(function() { window.location.href = 'reports'; }, %d);",
        file, kPauseMs);
}

void WLGenerateSuppReport(LWebletForm& form) { ServeAs(form, kReportBySupplier); }
void WLGenerateLocCatReport(LWebletForm& form) { ServeAs(form, kReportByLocCat); }
void WLGenerateImageCatReport(LWebletForm& form) { ServeAs(form, kReportPictures); }
void WLGenerateSalesReport(LWebletForm& form) { ServeAs(form, kReportSold); }
