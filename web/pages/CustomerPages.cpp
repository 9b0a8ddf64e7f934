#include "web/pages/CustomerPages.h"

#include "web/pages/MasterList.h"
#include "web/pages/PartyControls.h"

namespace {

// Billing and shipping addresses have the same controls, from these ids on.
constexpr int kBilling = kPartyAddress;
constexpr int kShipping = 120;
constexpr int kStreet = 0, kCity = 1, kState = 2, kZip = 3, kCountry = 4;
constexpr int kSalesPerson = 130;
constexpr int kNotes = 131;

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

LAppWebCustomerDialog::LAppWebCustomerDialog(LWebletForm& form) : LWebDialogEA(form) {
    SetOkCancelPage("customerlist", "customerlist");
    KeepParameter("id");
}

bool LAppWebCustomerDialog::Prepare() {
    const std::string id = Form().Parameter("id");
    SetTitle(id.empty() ? "New customer" : "Customer");
    if (id.empty() || LCustomerList(Profile()).Open(customer_, id)) return true;
    Redirect("customerlist");  // another tab was quicker
    return false;
}

void LAppWebCustomerDialog::Generate() {
    AddPartyControls(*this, customer_);
    StartGroupBox("Billing address");
    AddAddress(kBilling, {"Address", "City", "State", "ZIPCode", "Country"});
    EndGroupBox();
    StartGroupBox("Shipping address");
    AddAddress(kShipping,
               {"ShippingAddress", "ShipCity", "ShipState", "ShipZIPCode", "ShipCountry"});
    EndGroupBox();
    StartRow()
        .AddStatic("Salesperson")
        .AddEditablePullDownList(kSalesPerson, GetNameList(Profile(), "SalesPerson"),
                                 customer_.GetString("SalesPerson"));
    StartRow().AddStatic("Notes").AddEdit(kNotes, customer_.GetString("Notes"));
}

void LAppWebCustomerDialog::AddAddress(int firstControl, const std::array<const char*, 5>& fields) {
    StartRow().AddStatic("Address").AddEdit(firstControl + kStreet,
                                            customer_.GetString(fields[kStreet]), 3);
    constexpr std::array<const char*, 5> kCaptions{"", "City", "State", "ZIP code", "Country"};
    for (const int part : {kCity, kState, kZip, kCountry}) {
        const auto index = static_cast<size_t>(part);
        StartRow()
            .AddStatic(kCaptions[index])
            .AddInput(firstControl + part, customer_.GetString(fields[index]));
    }
}

bool LAppWebCustomerDialog::CmOk() {
    LCustomerInput input;
    input.name = GetTextAndTrim(kPartyName);
    input.contactFirst = GetTextAndTrim(kPartyContactFirst);
    input.contact = GetTextAndTrim(kPartyContact);
    input.phone = GetTextAndTrim(kPartyPhone);
    input.phone2 = GetTextAndTrim(kPartyPhone2);
    input.fax = GetTextAndTrim(kPartyFax);
    input.email = GetTextAndTrim(kPartyEmail);
    input.address = GetText(kBilling + kStreet);
    input.city = GetTextAndTrim(kBilling + kCity);
    input.state = GetTextAndTrim(kBilling + kState);
    input.zipCode = GetTextAndTrim(kBilling + kZip);
    input.country = GetTextAndTrim(kBilling + kCountry);
    input.shippingAddress = GetText(kShipping + kStreet);
    input.shipCity = GetTextAndTrim(kShipping + kCity);
    input.shipState = GetTextAndTrim(kShipping + kState);
    input.shipZipCode = GetTextAndTrim(kShipping + kZip);
    input.shipCountry = GetTextAndTrim(kShipping + kCountry);
    input.salesPerson = GetTextAndTrim(kSalesPerson);
    input.notes = GetText(kNotes);
    return ShowFieldError(LCustomerSave(Profile(), customer_, input), PartyControlOf);
}

void WLCustomerDelete(LWebletForm& form) { WLMasterDelete(form, "customerlist", LCustomersDelete); }
