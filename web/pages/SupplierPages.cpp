#include "web/pages/SupplierPages.h"

#include "web/pages/MasterList.h"
#include "web/pages/PartyControls.h"

namespace {

constexpr LHtmlListColumn kColumns[] = {
    {"Name", 30},
    {"Contact", 20},
    {"Phone", 15},
    {"Email", 25},
    {"Delete", 0, LCellAlign::kCenter, false},
};

}  // namespace

void LAppWebSupplierPage::PrintBody() {
    LMasterList list(Out(), {"supplierprop", "supplierdelete", "New supplier"}, !IsViewer());
    list.SetColumns(kColumns);
    list.SetTexts("Suppliers", "There are no suppliers yet. Add one, or name one on an item.");
    LSupplierList(Profile()).ForEach([&](const LSupplier& supplier) {
        list.AddRow(supplier.GetPrimaryKey(), supplier.GetView("Name"),
                    {ContactName(supplier), supplier.GetView("Phone"), supplier.GetView("Email")});
        return true;
    });
    list.Print();
}

LAppWebSupplierDialog::LAppWebSupplierDialog(LWebletForm& form) : LWebDialogEA(form) {
    SetOkCancelPage("supplierlist", "supplierlist");
    KeepParameter("id");
}

bool LAppWebSupplierDialog::Prepare() {
    const std::string id = Form().Parameter("id");
    SetTitle(id.empty() ? "New supplier" : "Supplier");
    if (id.empty() || LSupplierList(Profile()).Open(supplier_, id)) return true;
    Redirect("supplierlist");  // another tab was quicker
    return false;
}

void LAppWebSupplierDialog::Generate() {
    AddPartyControls(*this, supplier_);
    StartRow().AddStatic("Address").AddEdit(kPartyAddress, supplier_.GetString("Address"));
}

bool LAppWebSupplierDialog::CmOk() {
    LSupplierInput input;
    input.name = GetTextAndTrim(kPartyName);
    input.contactFirst = GetTextAndTrim(kPartyContactFirst);
    input.contact = GetTextAndTrim(kPartyContact);
    input.address = GetText(kPartyAddress);
    input.phone = GetTextAndTrim(kPartyPhone);
    input.phone2 = GetTextAndTrim(kPartyPhone2);
    input.fax = GetTextAndTrim(kPartyFax);
    input.email = GetTextAndTrim(kPartyEmail);
    return ShowFieldError(LSupplierSave(Profile(), supplier_, input), PartyControlOf);
}

void WLSupplierDelete(LWebletForm& form) { WLMasterDelete(form, "supplierlist", LSuppliersDelete); }
