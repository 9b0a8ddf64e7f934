#include "web/pages/LocationPages.h"

#include "web/pages/LDialogUserInterface.h"
#include "web/pages/MasterList.h"

namespace {

enum { kLocName = 101, kLocAddress = 102 };

constexpr LHtmlListColumn kColumns[] = {
    {"Name", 30},
    {"Address", 60},
    {"Delete", 0, LCellAlign::kCenter, false},
};

}  // namespace

void LAppWebLocPage::PrintBody() {
    LMasterList list(Out(), {"locprop", "locdelete", "New location"}, !IsViewer());
    list.SetColumns(kColumns);
    list.SetTexts("Locations", "There are no locations yet. Add the first place where stock lies.");
    LLocationList(Profile()).ForEach([&](const LLocation& location) {
        list.AddRow(location.GetPrimaryKey(), location.GetView("Name"),
                    {SingleLine(location.GetView("Address"))});
        return true;
    });
    list.Print();
}

LAppWebLocDialog::LAppWebLocDialog(LWebletForm& form) : LWebDialogEA(form) {
    SetOkCancelPage("loclist", "loclist");
    KeepParameter("id");
}

bool LAppWebLocDialog::Prepare() {
    const std::string id = Form().Parameter("id");
    SetTitle(id.empty() ? "New location" : "Location");
    if (id.empty() || LLocationList(Profile()).Open(location_, id)) return true;
    Redirect("loclist");  // another tab was quicker
    return false;
}

void LAppWebLocDialog::Generate() {
    StartRow().AddStatic("Name").AddInput(kLocName, location_.GetString("Name"));
    StartRow().AddStatic("Address").AddEdit(kLocAddress, location_.GetString("Address"));
}

bool LAppWebLocDialog::CmOk() {
    LDialogUserInterface ui;
    const LLocationInput input{GetTextAndTrim(kLocName), GetText(kLocAddress)};
    return ShowFieldError(LLocationSave(ui, Profile(), location_, input),
                          [](LLocationField) { return kLocName; });
}

void WLLocDelete(LWebletForm& form) { WLMasterDelete(form, "loclist", LLocationsDelete); }
