// One purchase order: what is ordered from one supplier, in numbered lines below a head.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>

#include "datastore/LMoney.h"
#include "datastore/LProfile.h"
#include "datastore/LRecord.h"

enum eStockReceivedStatus {
    StockNotReceived = 0,
    StockPartiallyReceived = 1,
    StockFullyReceived = 2
};
// "Open", "Partial" and "Received"; empty for any other number.
std::string_view StockReceivedLabel(int status);

inline constexpr int kOrderTypePurchase = 1;
inline constexpr int kOrderNotTaxed = 1;       // in the head field "TaxRate"
inline constexpr int kNoUnitValueDigits = -1;  // the line does not say with how many digits

// A record of one of the three order lists (LPOrderList.h). Head fields have no accessor where the
// record's own do:
//   "Supplier", "Location"             keys of the supplier's and the location's records
//   "Date", "Receipt Date"             stored dates (YYYY-MM-DD)
//   "ShipBy", "TrackingRef", "Address", "ShippingAddress", "Notes", "NotesIternal"   texts
//   "SameAsBillTo", "IsDraft", "IsTaxInclusive"   booleans, false when missing
//   "TaxRate"                          int, kOrderNotTaxed or anything else
// Lines are counted from 0 here, their stored fields from 1.
class LPOrder : public LRecord {
public:
    // --- The head. ---

    int GetOrderType() const { return GetInt("OrderType", 2); }
    int64_t GetTotal() const { return GetInt64("Total", 0); }  // tax included, minor units
    // The digits in which `Total` and the tax amounts are counted: those of the first line, the
    // profile's where it does not say.
    int GetTotalDigits(const LProfile& profile) const;

    // Tax amounts are counted from 1. A mangled count is held to what an order can have: a tax a
    // line.
    int GetTaxAmountCount() const;
    int64_t GetTaxAmount(int number) const;  // minor units; 0 when missing
    std::string GetTaxAmountName(int number) const;
    // Writes the first `count` amounts; call SetTaxAmount for each. Amounts beyond it are deleted.
    void SetTaxAmountCount(int count);
    void SetTaxAmount(int number, std::string_view name, int64_t amount);
    // `Total` without the tax amounts, held to the range of 64 bits.
    int64_t CalculateSubTotal(const LProfile& profile) const;

    eStockReceivedStatus GetStockReceivedStatus() const;
    void SetStockReceivedStatus(int status);  // any other number changes nothing

    // The names behind the keys; empty when there is no such record.
    void GetSupplierName(const LProfile& profile, std::string& out) const;
    void GetLocationName(const LProfile& profile, std::string& out) const;

    // --- The lines. ---

    int GetItemCount() const;  // held to 0 ... kMaxOrderLines
    // Deletes all fields of the lines that are no more.
    void SetItemCount(int count);

    std::string GetItemID(int line) const;  // the item's key in "Items"
    void SetItemID(int line, std::string_view id);
    std::string GetItemDescription(int line) const;
    void SetItemDescription(int line, std::string_view text);
    std::string GetItemMeasure(int line) const;
    void SetItemMeasure(int line, std::string_view text);
    double GetItemQty(int line) const;
    void SetItemQty(int line, double quantity);
    // Only means something while the order is partially received.
    double GetItemQtyReceived(int line) const;
    void SetItemQtyReceived(int line, double quantity);
    // What is still to come, as the order's status says: all, nothing, or the difference.
    double GetItemQtyNotReceived(int line) const;

    int64_t GetItemUnitValue(int line) const;
    void SetItemUnitValue(int line, int64_t minorUnits);
    int GetItemUnitValueDigits(int line) const;  // kNoUnitValueDigits when missing
    void SetItemUnitValueDigits(int line, int digits);
    // Both together, with the profile's digits where the line does not say.
    LMoney GetItemUnitCost(const LProfile& profile, int line) const;

    // The tax of a line is stored as an index into the tax list ("5") or as a rate in percent
    // ("7.5/"). Returns the index and leaves `ratePercent` alone, or sets it and returns -1; an
    // empty field is a rate of 0.
    int GetItemTaxRate(int line, double& ratePercent) const;
    void SetItemTaxRate(int line, double ratePercent);  // stores a rate; 0 for what is not finite
    std::string GetItemTaxName(int line) const;
    void SetItemTaxName(int line, std::string_view name);

    // --- Receiving (Receiving.h has the operations around it). ---

    // Counts `quantity` of the item with that code as received (negative: taken back), first line
    // first; what no line has room for is not counted. The status follows. The caller opens the
    // order, calls this and writes it back, all under the movement lock. `locationName` does not
    // matter.
    void MarkStockReceived(const LProfile& profile, std::string_view itemCode,
                           std::string_view locationName, double quantity);
};

// The code of the item with that key; empty when there is none.
void GetItemCode(const LProfile& profile, std::string_view itemId, std::string& out);
