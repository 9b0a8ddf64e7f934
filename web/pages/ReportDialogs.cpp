#include "web/pages/ReportDialogs.h"

#include <algorithm>

#include "inventory/LNameMap.h"
#include "platform/CaseFolding.h"

namespace {

enum {
    kChoiceKind = 101,
    kChoiceLocation,
    kChoiceCategory,
    kChoiceSupplier,
    kChoiceFrom,
    kChoiceTo
};

}  // namespace

LReportDialog::LReportDialog(LWebletForm& form, std::string title) : LWebDialogEA(form) {
    SetTitle(std::move(title));
    SetOkCancelPage("reports", "reports");
    SetOkLabel("Show report");
    AddTools({"Save as CSV", "reports", [this] { return Show("reportredirect"); }});
}

bool LReportDialog::CmOk() { return Show("generatereport"); }

bool LReportDialog::Show(std::string_view page) {
    LReportChoices choices;
    if (!ReadChoices(choices)) return false;
    Redirect(ReportAddress(page, choices));
    return true;
}

void LReportDialog::AddRecordList(int control, std::string_view caption, std::string_view listName,
                                  const std::string& chosenKey, std::string_view forAll) {
    auto pairs = LNameMap(Profile(), listName).Pairs();
    std::stable_sort(pairs.begin(), pairs.end(), [](const auto& left, const auto& right) {
        return FoldCase(left.second) < FoldCase(right.second);
    });
    std::vector<LOption> options{{"", std::string(forAll)}};
    for (auto& [key, name] : pairs) options.push_back({key, name});
    StartRow().AddStatic(caption).AddPullDownListEx(control, options, chosenKey);
}

LWebReportLocCatDialog::LWebReportLocCatDialog(LWebletForm& form)
    : LReportDialog(form, "Report by location and category") {}

void LWebReportLocCatDialog::Generate() {
    const LReportChoices chosen = ReadReportChoices(Form());
    const std::vector<LOption> kinds{
        {std::string(kReportByLocCat), "By location and category"},
        {std::string(kReportOfLocation), "For a location, by category"},
        {std::string(kReportOfCategory), "For a category, by location"},
    };
    StartRow().AddStatic("Report").AddPullDownListEx(kChoiceKind, kinds, chosen.kind);
    AddRecordList(kChoiceLocation, "Location", "Locations", chosen.location);
    AddRecordList(kChoiceCategory, "Category", "Categories", chosen.category);
    const std::string withLocation[] = {kinds[0].value, kinds[1].value};
    const std::string withCategory[] = {kinds[0].value, kinds[2].value};
    EnableControlOnSelectChange(kChoiceKind, kChoiceLocation, withLocation);
    EnableControlOnSelectChange(kChoiceKind, kChoiceCategory, withCategory);
}

bool LWebReportLocCatDialog::ReadChoices(LReportChoices& choices) {
    choices.kind = GetText(kChoiceKind);
    if (choices.kind != kReportOfCategory) choices.location = GetText(kChoiceLocation);
    if (choices.kind != kReportOfLocation) choices.category = GetText(kChoiceCategory);
    return true;
}

LWebReportCatImgDialog::LWebReportCatImgDialog(LWebletForm& form)
    : LReportDialog(form, "Report with pictures") {}

void LWebReportCatImgDialog::Generate() {
    AddRecordList(kChoiceCategory, "Category", "Categories", Form().Parameter("category"));
}

bool LWebReportCatImgDialog::ReadChoices(LReportChoices& choices) {
    choices.kind = kReportPictures;
    choices.category = GetText(kChoiceCategory);
    return true;
}

LWebReportSupplierDialog::LWebReportSupplierDialog(LWebletForm& form)
    : LReportDialog(form, "Report by default supplier") {}

void LWebReportSupplierDialog::Generate() {
    AddRecordList(kChoiceSupplier, "Supplier", "Suppliers", Form().Parameter("supplier"));
}

bool LWebReportSupplierDialog::ReadChoices(LReportChoices& choices) {
    choices.kind = kReportBySupplier;
    choices.supplier = GetText(kChoiceSupplier);
    return true;
}

LWebReportSalesDialog::LWebReportSalesDialog(LWebletForm& form)
    : LReportDialog(form, "Sales report") {}

// At first from the first day of this month to today.
void LWebReportSalesDialog::Generate() {
    const LReportChoices chosen = ReadReportChoices(Form());
    LDate monthStart = LDate::Today();
    monthStart.day = 1;
    StartRow().AddStatic("From").AddDateInput(kChoiceFrom,
                                              LDate::FromStored(chosen.from).value_or(monthStart));
    StartRow().AddStatic("To").AddDateInput(kChoiceTo,
                                            LDate::FromStored(chosen.to).value_or(LDate::Today()));
}

bool LWebReportSalesDialog::ReadChoices(LReportChoices& choices) {
    const auto from = GetDate(kChoiceFrom), to = GetDate(kChoiceTo);
    if (!from || !to) {
        PopupControlDataInvalid(from ? kChoiceTo : kChoiceFrom, "Please enter a valid date.");
        return false;
    }
    if (*to < *from) {
        PopupControlDataInvalid(kChoiceTo, "End date must follow start date.");
        return false;
    }
    choices.kind = kReportSold;
    choices.from = from->ToStored();
    choices.to = to->ToStored();
    return true;
}
