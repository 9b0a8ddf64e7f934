#include "web/pages/ReportChoices.h"

#include <algorithm>
#include <array>
#include <utility>

#include "reports/InventoryReports.h"
#include "reports/LBackorderReport.h"
#include "reports/LReportLowStock.h"
#include "reports/LReportSales.h"
#include "web/server/LWebletForm.h"
#include "web/server/WebletOutput.h"

namespace {

struct LReportKindPages {
    std::string_view kind, dialog, filePage;
};
constexpr std::array<LReportKindPages, 9> kPages{{
    {kReportOfAll, "", "generatereport"},
    {kReportByLocCat, "reportlocation", "generateloccatreport"},
    {kReportOfLocation, "reportlocation", "generateloccatreport"},
    {kReportOfCategory, "reportlocation", "generateloccatreport"},
    {kReportPictures, "reportcatimage", "generateimagecat"},
    {kReportBySupplier, "reportsupplier", "generatesuppreport"},
    {kReportSold, "reportsales", "generatesales"},
    {kReportLowStock, "", "generatereport"},
    {kReportBackorders, "", "generatereport"},
}};

const LReportKindPages& PagesOf(std::string_view kind) {
    const auto* found = std::find_if(kPages.begin(), kPages.end(),
                                     [&](const auto& pages) { return pages.kind == kind; });
    return found == kPages.end() ? kPages.front() : *found;
}

// Of the record with that key; "All" for no key, and a name that nothing has for a wrong one.
std::string NameOrAll(const LProfile& profile, std::string_view list, const std::string& key) {
    if (key.empty()) return kReportAll;
    LRecord record;
    return profile.List(list).Load(key, record) ? record.GetString("Name") : "(deleted)";
}

LDate DayOrToday(const std::string& stored) {
    return LDate::FromStored(stored).value_or(LDate::Today());
}

std::unique_ptr<LReport> MakeSales(const LProfile& profile, const LReportChoices& choices) {
    auto report = std::make_unique<LReportSales>(profile);
    report->SetDates(DayOrToday(choices.from), DayOrToday(choices.to));
    return report;
}

}  // namespace

LReportChoices ReadReportChoices(const LWebletForm& form) {
    return {form.Parameter("kind"),     form.Parameter("location"), form.Parameter("category"),
            form.Parameter("supplier"), form.Parameter("from"),     form.Parameter("to")};
}

std::string ReportAddress(std::string_view page, const LReportChoices& choices) {
    std::string address = FormatText("%s?kind=%U", page, choices.kind);
    const std::pair<std::string_view, const std::string&> parameters[] = {
        {"location", choices.location},
        {"category", choices.category},
        {"supplier", choices.supplier},
        {"from", choices.from},
        {"to", choices.to},
    };
    for (const auto& [name, value] : parameters) {
        if (!value.empty()) address += FormatText("&%s=%U", name, value);
    }
    return address;
}

std::string_view ReportDialogOf(std::string_view kind) { return PagesOf(kind).dialog; }
std::string_view ReportFilePageOf(std::string_view kind) { return PagesOf(kind).filePage; }

std::unique_ptr<LReport> MakeReport(const LProfile& profile, const LReportChoices& choices) {
    const auto location = [&] { return NameOrAll(profile, "Locations", choices.location); };
    const auto category = [&] { return NameOrAll(profile, "Categories", choices.category); };
    if (choices.kind == kReportLowStock) return std::make_unique<LReportLowStock>(profile);
    if (choices.kind == kReportBackorders) return std::make_unique<LBackorderReport>(profile);
    if (choices.kind == kReportSold) return MakeSales(profile, choices);
    if (choices.kind == kReportByLocCat) {
        auto report = std::make_unique<LReportInventoryLocCat>(profile);
        report->SetLocationAndCategory(location(), category());
        return report;
    }
    if (choices.kind == kReportOfLocation) {
        auto report = std::make_unique<LReportInventoryLocation>(profile);
        report->SetLocation(location());
        return report;
    }
    if (choices.kind == kReportOfCategory) {
        auto report = std::make_unique<LReportInventoryCategory>(profile);
        report->SetCategory(category());
        return report;
    }
    if (choices.kind == kReportPictures) {
        auto report = std::make_unique<LReportImageCategory>(profile);
        report->SetCategory(category());
        return report;
    }
    if (choices.kind == kReportBySupplier) {
        auto report = std::make_unique<LReportInventoryDefaultSupplier>(profile);
        report->SetSupplier(NameOrAll(profile, "Suppliers", choices.supplier));
        return report;
    }
    return std::make_unique<LReportInventoryAll>(profile);
}
