#include "web/pages/CustomerPages.h"

#include "datastore/NumberText.h"
#include "web/pages/ItemForm.h"
#include "web/pages/MasterList.h"
#include "web/pages/PartyControls.h"

namespace {

// Billing and shipping addresses have the same controls, from these ids on.
constexpr int kBilling = kPartyAddress;
constexpr int kShipping = 120;
enum LAddressPart { kStreet = 0, kCity = 1, kState = 2, kZip = 3, kCountry = 4 };
constexpr int kSalesPerson = 130;
constexpr int kNotes = 131;

constexpr LDialogTab kTabs[] = {
    {"customerprop", "General", "customer-general."},
    {"customerotherprop", "Other details", "customer-other."},
};

// Where each part of a customer is typed, stored and handed over.
struct LCustomerControl {
    size_t tab;
    int control;
    const char* field;
    std::string LCustomerInput::*input;
    bool isText = false;  // of several lines: kept as it was typed
};
constexpr LCustomerControl kControls[] = {
    {0, kPartyName, "Name", &LCustomerInput::name},
    {0, kPartyContactFirst, "ContactFirst", &LCustomerInput::contactFirst},
    {0, kPartyContact, "Contact", &LCustomerInput::contact},
    {0, kPartyPhone, "Phone", &LCustomerInput::phone},
    {0, kPartyPhone2, "Phone2", &LCustomerInput::phone2},
    {0, kPartyFax, "Fax", &LCustomerInput::fax},
    {0, kPartyEmail, "Email", &LCustomerInput::email},
    {0, kBilling + kStreet, "Address", &LCustomerInput::address, true},
    {0, kBilling + kCity, "City", &LCustomerInput::city},
    {0, kBilling + kState, "State", &LCustomerInput::state},
    {0, kBilling + kZip, "ZIPCode", &LCustomerInput::zipCode},
    {0, kBilling + kCountry, "Country", &LCustomerInput::country},
    {1, kShipping + kStreet, "ShippingAddress", &LCustomerInput::shippingAddress, true},
    {1, kShipping + kCity, "ShipCity", &LCustomerInput::shipCity},
    {1, kShipping + kState, "ShipState", &LCustomerInput::shipState},
    {1, kShipping + kZip, "ShipZIPCode", &LCustomerInput::shipZipCode},
    {1, kShipping + kCountry, "ShipCountry", &LCustomerInput::shipCountry},
    {1, kSalesPerson, "SalesPerson", &LCustomerInput::salesPerson},
    {1, kNotes, "Notes", &LCustomerInput::notes, true},
};

constexpr LHtmlListColumn kColumns[] = {
    {"Name", 30},  {"Contact", 20}, {"City", 15},
    {"Phone", 15}, {"Email", 20},   {"Delete", 0, LCellAlign::kCenter, false},
};

}  // namespace

void LAppWebCustomerPage::PrintBody() {
    LMasterList list(Out(), {"customerprop", "customerdelete", "New customer"}, !IsViewer());
    list.SetColumns(kColumns);
    list.SetTexts("Customers", "There are no customers yet. Add one, or name one when you sell.");
    LCustomerList(Profile()).ForEach([&](const LCustomer& customer) {
        list.AddRow(customer.GetPrimaryKey(), customer.GetView("Name"),
                    {ContactName(customer), customer.GetView("City"), customer.GetView("Phone"),
                     customer.GetView("Email")});
        return true;
    });
    list.Print();
}

LCustomerTabDialog::LCustomerTabDialog(LWebletForm& form, LTab tab)
    : LTabbedDialog(form, kTabs, tab) {
    SetOkCancelPage("customerlist", "customerlist");
}

bool LCustomerTabDialog::Prepare() {
    const std::string id = Form().Parameter("id");
    if (!id.empty() && !LCustomerList(Profile()).Open(customer_, id)) {
        Redirect("customerlist");  // another tab was quicker
        return false;
    }
    SetTitle(id.empty() ? "New customer" : "Customer");
    PrepareTabs(id);
    return true;
}

LHashTable LCustomerTabDialog::StoredFields(size_t tab) {
    LHashTable fields;
    for (const LCustomerControl& control : kControls) {
        if (control.tab != tab) continue;
        fields.SetString(std::to_string(control.control), customer_.GetView(control.field));
    }
    return fields;
}

bool LCustomerTabDialog::CmOk() {
    const LHashTable tabs[] = {Fields(kGeneral), Fields(kOther)};
    LCustomerInput input;
    for (const LCustomerControl& control : kControls) {
        const std::string text = Field(tabs[control.tab], control.control);
        input.*control.input = control.isText ? text : std::string(TrimBlanks(text));
    }
    const auto error = LCustomerSave(Profile(), customer_, input);
    if (error.IsNone()) {
        CmCancel();
        return true;
    }
    if (!error.field) return ShowFieldError(error, PartyControlOf);
    return ShowError(kGeneral, PartyControlOf(*error.field), error.message);
}

void LCustomerTabDialog::AddAddress(const LHashTable& fields, int firstControl) {
    StartRow().AddStatic("Address").AddEdit(firstControl + kStreet,
                                            Field(fields, firstControl + kStreet), 3);
    constexpr const char* kCaptions[] = {"", "City", "State", "ZIP code", "Country"};
    for (const int part : {kCity, kState, kZip, kCountry}) {
        StartRow()
            .AddStatic(kCaptions[part])
            .AddInput(firstControl + part, Field(fields, firstControl + part));
    }
}

void LAppWebCustomerDialog::GenerateTab(const LHashTable& fields) {
    LRecord shown;
    for (const LCustomerControl& control : kControls) {
        shown.SetString(control.field, Field(fields, control.control));
    }
    AddPartyControls(*this, shown);
    StartGroupBox("Billing address");
    AddAddress(fields, kBilling);
    EndGroupBox();
}

void LWebCustomerOtherDialog::GenerateTab(const LHashTable& fields) {
    StartGroupBox("Shipping address");
    AddAddress(fields, kShipping);
    EndGroupBox();
    StartRow()
        .AddStatic("Salesperson")
        .AddEditablePullDownList(kSalesPerson, GetNameList(Profile(), "SalesPerson"),
                                 Field(fields, kSalesPerson));
    StartRow().AddStatic("Notes").AddEdit(kNotes, Field(fields, kNotes));
}

void WLCustomerDelete(LWebletForm& form) { WLMasterDelete(form, "customerlist", LCustomersDelete); }
