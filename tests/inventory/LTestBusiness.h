// A business of its own for one test, in a home of its own.
#pragma once

#include <initializer_list>
#include <string>
#include <string_view>
#include <utility>

#include "datastore/LProfile.h"
#include "tests/support/LTempFolder.h"

// Numbers with "." and ",", money with two digits; one location, "Main", with the key "1".
class LTestBusiness {
public:
    using Fields = std::initializer_list<std::pair<std::string_view, std::string_view>>;

    // Each returns the new record's key.
    std::string Add(std::string_view list, Fields fields) const;
    std::string AddLocation(std::string_view name) const {
        return Add("Locations", {{"Name", name}});
    }
    std::string AddItem(std::string_view code, std::string_view stock) const {
        return Add("Items", {{"Name", code}, {"LocationsAndQuantities", stock}});
    }
    std::string AddBuiltItem(std::string_view code, std::string_view bill) const {
        return Add("Items", {{"Name", code}, {"BillOfMaterials", bill}});
    }

    // As it is stored now.
    std::string Stored(std::string_view list, std::string_view key, std::string_view field) const;
    std::string StoredStock(std::string_view itemKey) const {
        return Stored("Items", itemKey, "LocationsAndQuantities");
    }
    std::string ItemFile(std::string_view itemKey) const;  // the whole record text
    // Stores settings and reads the profile anew.
    void SetOption(std::string_view name, std::string_view value);

    const LProfile& Profile() const { return profile_; }
    const LTempFolder& Home() const { return home_; }

private:
    LTempHome home_;
    LScopedEnvironment locale_{"LC_ALL", "C"};
    LProfile profile_;
};
