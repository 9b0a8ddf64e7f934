// Whom the business buys from and sells to: suppliers and customers.
#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "datastore/LProfile.h"
#include "platform/LUserInterface.h"

// "Name", "Contact" (last name), "ContactFirst", "Address", "Phone", "Phone2", "Fax", "Email".
// Items hold a supplier's name and are not changed when it is renamed; orders hold the key.
class LSupplier : public LRecord {};
// "Name", "Contact" (last name), "ContactFirst", "Address", "City", "State", "ZIPCode", "Country",
// "Phone", "Phone2", "Fax", "Email", "ShippingAddress", "ShipCity", "ShipState", "ShipZIPCode",
// "ShipCountry", "SalesPerson", "Notes".
class LCustomer : public LRecord {
public:
    // Address, city, state, ZIP code and country, each followed by CR LF, empty ones included.
    void GetBillingAddress(std::string& out) const;
};

class LSupplierList : public LAppDataBaseList<LSupplier> {
public:
    explicit LSupplierList(const LProfile& profile)
        : LAppDataBaseList(profile.Store(), "Suppliers") {}
};
class LCustomerList : public LAppDataBaseList<LCustomer> {
public:
    explicit LCustomerList(const LProfile& profile)
        : LAppDataBaseList(profile.Store(), "Customers") {}
};

// The first one of that name, ignoring case, in the store's order.
[[nodiscard]] bool OpenSupplier(const LSupplierList& list, LSupplier& supplier,
                                std::string_view name);
[[nodiscard]] bool OpenCustomer(const LCustomerList& list, LCustomer& customer,
                                std::string_view name);

// Each save checks first; on an error nothing is saved. The record is unbound for a new one and
// bound to its stored record otherwise; afterwards it is bound.
enum class LPartyField { kName, kEmail };
struct LSupplierInput {
    std::string name, contact, contactFirst, address, phone, phone2, fax, email;
};
LFieldError<LPartyField> LSupplierSave(const LProfile& profile, LSupplier& supplier,
                                       const LSupplierInput& input);
struct LCustomerInput {
    std::string name, contact, contactFirst, address, city, state, zipCode, country;
    std::string phone, phone2, fax, email;
    std::string shippingAddress, shipCity, shipState, shipZipCode, shipCountry;
    std::string salesPerson, notes;
};
LFieldError<LPartyField> LCustomerSave(const LProfile& profile, LCustomer& customer,
                                       const LCustomerInput& input);

// Ask, then delete the records of these keys. Suppliers that an order names are refused with the
// reason and the others still deleted. True when at least one was deleted.
bool LSuppliersDelete(LUserInterface& ui, const LProfile& profile,
                      const std::vector<std::string>& keys);
bool LCustomersDelete(LUserInterface& ui, const LProfile& profile,
                      const std::vector<std::string>& keys);
