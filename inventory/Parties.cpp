#include "inventory/Parties.h"

#include "datastore/NumberText.h"
#include "inventory/MasterRecordSteps.h"
#include "inventory/OrderReferences.h"
#include "platform/CaseFolding.h"
#include "service/email/EmailAddress.h"

namespace {

using LPartyError = LFieldError<LPartyField>;

constexpr char kExampleAddress[] = " name@example.com.";

// How each kind of party is refused. The wordings differ in more than the noun; they are kept.
struct LPartyWords {
    const char* noName;
    const char* badEmail;  // the example address follows
    const char* renamedOntoOther;
    const char* newWithTakenName;
};
constexpr LPartyWords kSupplierWords{
    "Please enter the supplier name.",
    "Email address is not valid. Email addresses must be in the form",
    "A supplier with this name already exists.",
    "A supplier with the same name already exists.",
};
constexpr LPartyWords kCustomerWords{
    "Please enter the customer name.",
    "Email address is not valid. Email addresses must be in the for",
    "A customer with this name already exists.",
    "A customer with the same name already exists.",
};

bool OpenNamed(const LFileStoreListBase& list, LRecord& record, std::string_view name) {
    return OpenFirstNamed(list, record,
                          [&](std::string_view other) { return EqualIgnoringCase(other, name); });
}

LPartyError Check(const LFileStoreListBase& list, const LRecord& party, std::string_view name,
                  std::string_view email, const LPartyWords& words) {
    if (name.empty()) return LPartyError::At(LPartyField::kName, words.noName);
    if (!email.empty() && !ValidateAddress(email)) {
        return LPartyError::At(LPartyField::kEmail, std::string(words.badEmail) + kExampleAddress);
    }
    const bool isNew = !party.IsBound();
    LRecord other;
    if (!isNew && EqualIgnoringCase(party.GetView("Name"), name)) return LPartyError::None();
    if (!OpenNamed(list, other, name)) return LPartyError::None();
    return LPartyError::At(LPartyField::kName,
                           isNew ? words.newWithTakenName : words.renamedOntoOther);
}

void SetCommonFields(LRecord& party, const auto& input) {
    party.SetString("Name", TrimBlanks(input.name));
    party.SetString("Contact", input.contact);
    party.SetString("ContactFirst", input.contactFirst);
    party.SetString("Address", input.address);
    party.SetString("Phone", input.phone);
    party.SetString("Phone2", input.phone2);
    party.SetString("Fax", input.fax);
    party.SetString("Email", TrimBlanks(input.email));
}

void SetCustomerFields(LCustomer& customer, const LCustomerInput& input) {
    customer.SetString("City", input.city);
    customer.SetString("State", input.state);
    customer.SetString("ZIPCode", input.zipCode);
    customer.SetString("Country", input.country);
    customer.SetString("ShippingAddress", input.shippingAddress);
    customer.SetString("ShipCity", input.shipCity);
    customer.SetString("ShipState", input.shipState);
    customer.SetString("ShipZIPCode", input.shipZipCode);
    customer.SetString("ShipCountry", input.shipCountry);
    customer.SetString("SalesPerson", input.salesPerson);
    customer.SetString("Notes", input.notes);
}

}  // namespace

void LCustomer::GetBillingAddress(std::string& out) const {
    out.clear();
    for (const char* field : {"Address", "City", "State", "ZIPCode", "Country"}) {
        out += GetView(field);
        out += "\r\n";
    }
}

bool OpenSupplier(const LSupplierList& list, LSupplier& supplier, std::string_view name) {
    return OpenNamed(list, supplier, name);
}

bool OpenCustomer(const LCustomerList& list, LCustomer& customer, std::string_view name) {
    return OpenNamed(list, customer, name);
}

LPartyError LSupplierSave(const LProfile& profile, LSupplier& supplier,
                          const LSupplierInput& input) {
    const LSupplierList list(profile);
    const LMovementLock lock(profile);  // two new ones must not take one name
    LPartyError error =
        Check(list, supplier, TrimBlanks(input.name), TrimBlanks(input.email), kSupplierWords);
    if (!error.IsNone()) return error;
    if (!supplier.IsBound()) list.CreateNewRecord(supplier);
    SetCommonFields(supplier, input);
    if (!supplier.Flush()) return LPartyError::General("The supplier could not be saved.");
    return LPartyError::None();
}

LPartyError LCustomerSave(const LProfile& profile, LCustomer& customer,
                          const LCustomerInput& input) {
    const LCustomerList list(profile);
    const LMovementLock lock(profile);  // two new ones must not take one name
    LPartyError error =
        Check(list, customer, TrimBlanks(input.name), TrimBlanks(input.email), kCustomerWords);
    if (!error.IsNone()) return error;
    if (!customer.IsBound()) list.CreateNewRecord(customer);
    SetCommonFields(customer, input);
    SetCustomerFields(customer, input);
    if (!customer.Flush()) return LPartyError::General("The customer could not be saved.");
    return LPartyError::None();
}

bool LSuppliersDelete(LUserInterface& ui, const LProfile& profile,
                      const std::vector<std::string>& keys) {
    constexpr std::string_view kTitle = "Delete Suppliers";
    if (keys.empty() ||
        !AskDelete(ui, kTitle, "Are you sure you want to delete the selected supplier(s)?")) {
        return false;
    }
    return DeleteChosen(ui, profile, LSupplierList(profile), kTitle, keys,
                        [&](const LSupplier& supplier) -> std::string {
                            if (!IsSupplierOnAnyOrder(profile, supplier.GetPrimaryKey())) return {};
                            return "You can not delete Supplier " + supplier.GetString("Name") +
                                   " because it may be referenced by orders";
                        });
}

bool LCustomersDelete(LUserInterface& ui, const LProfile& profile,
                      const std::vector<std::string>& keys) {
    constexpr std::string_view kTitle = "Delete Customers";
    if (keys.empty() ||
        !AskDelete(ui, kTitle, "Are you sure you want to delete the selected customer(s)?")) {
        return false;
    }
    return DeleteChosen(ui, profile, LCustomerList(profile), kTitle, keys,
                        [](const LCustomer&) { return std::string(); });
}
