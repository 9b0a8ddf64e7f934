// The list of orders as a person looks at it: which are shown, what a row says, what they come to.
#pragma once

#include <cstdint>
#include <functional>
#include <string>
#include <string_view>

#include "datastore/LMoney.h"
#include "datastore/LProfile.h"
#include "orders/LPOrder.h"

enum class LOrdersShown { kRecorded, kDraft, kAll };
// "Recorded", "Draft" and "All", the choices of "Display Orders:". Another text reads as
// "Recorded".
std::string_view OrdersShownName(LOrdersShown shown);
LOrdersShown OrdersShownFromName(std::string_view name);

struct LOrderListFilter {
    LOrdersShown shown = LOrdersShown::kRecorded;
    bool hidesReceived = false;     // those with all their stock received
    bool hidesNotReceived = false;  // those of whose stock nothing was received
};

struct LOrderRow {
    const LPOrder& order;
    std::string_view supplierName, locationName;
    LMoney total;
    std::string_view status;  // its label; empty for a draft
    bool isDraft = false;
};

// Calls `show` for each order that passes the filter as it is read, recorded ones before drafts.
// What the row refers to lives as long as the call.
void FillOrderList(const LProfile& profile, const LOrderListFilter& filter,
                   const std::function<void(const LOrderRow&)>& show);

// Adds up rows: each total in the currency's digits, the sum held to the range of 64 bits.
class LOrderSummary {
public:
    explicit LOrderSummary(const LProfile& profile) : profile_(profile) {}
    void Add(const LMoney& total);
    // "%d Orders. Total %s", with "Selected " before it for a selection.
    std::string Text() const;
    std::string SelectionText() const;

private:
    const LProfile& profile_;
    int count_ = 0;
    int64_t sum_ = 0;
};
