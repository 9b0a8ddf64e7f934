// What purchase orders still name, so that it is not deleted under them. Looks at the stored order
// records only: the rules of orders stand above this folder.
#pragma once

#include <string_view>

class LProfile;

// Whether any recorded, draft or recurring order has a line for the item of that key.
bool IsItemOnAnyOrder(const LProfile& profile, std::string_view itemId);
// Whether any such order is placed with that supplier, or goes to that location (both by key).
bool IsSupplierOnAnyOrder(const LProfile& profile, std::string_view supplierId);
bool IsLocationOnAnyOrder(const LProfile& profile, std::string_view locationId);
