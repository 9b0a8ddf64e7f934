// A business with orders for one test, in a home of its own.
#pragma once

#include <initializer_list>
#include <string>
#include <string_view>
#include <utility>

#include "datastore/LProfile.h"
#include "orders/LPOrder.h"
#include "tests/support/LTempFolder.h"

struct LTestLine {
    double quantity = 1;
    int64_t unitValue = 0;
    std::string_view taxName = {};
    std::string_view taxRate = {};  // as stored: "7.5/"
    int digits = 2;
    std::string_view itemId = {};
};

// Money with two digits; one location, "Main", with the key "1"; no taxes.
class LOrderShop {
public:
    using Fields = std::initializer_list<std::pair<std::string_view, std::string_view>>;

    LOrderShop() { Settings("Tax", {{"DefaultRate", "0"}, {"TaxInclusive", "0"}}); }

    void Settings(std::string_view block, Fields fields) const {
        LRecord record;
        profile.OpenSettings(record, block);
        for (const auto& [name, value] : fields) record.SetString(name, value);
    }
    // Returns the new record's key.
    std::string Add(std::string_view list, Fields fields) const {
        LRecord record;
        profile.List(list).CreateNewRecord(record);
        for (const auto& [name, value] : fields) record.SetString(name, value);
        return record.Flush() ? record.GetPrimaryKey() : std::string();
    }
    std::string Stored(std::string_view list, std::string_view key, std::string_view field) const {
        LRecord record;
        return profile.List(list).Open(record, key) ? record.GetString(field) : "no record";
    }

private:
    LTempHome home_;
    LScopedEnvironment locale_{"LC_ALL", "C"};

public:
    LProfile profile;
};

inline void AddLine(LPOrder& order, const LTestLine& line) {
    const int at = order.GetItemCount();
    order.SetItemCount(at + 1);
    order.SetItemID(at, line.itemId);
    order.SetItemQty(at, line.quantity);
    order.SetItemUnitValue(at, line.unitValue);
    order.SetItemUnitValueDigits(at, line.digits);
    order.SetItemTaxName(at, line.taxName);
    order.SetString("Item" + std::to_string(at + 1) + "TaxRate", line.taxRate);
}
