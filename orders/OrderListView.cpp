#include "orders/OrderListView.h"

#include <array>
#include <limits>

#include "inventory/LNameMap.h"
#include "orders/LPOrderList.h"
#include "orders/OrderTotals.h"

namespace {

constexpr std::array<std::string_view, 3> kShownNames{"Recorded", "Draft", "All"};

bool Passes(const LOrderListFilter& filter, int status) {
    const bool isReceived = status == StockFullyReceived;
    const bool isTouched = isReceived || status == StockPartiallyReceived;
    return !(filter.hidesReceived && isReceived) && !(filter.hidesNotReceived && !isTouched);
}

// The rows of the lists, with the names that they need read once.
class LOrderRows {
public:
    LOrderRows(const LProfile& profile, const LOrderListFilter& filter,
               const std::function<void(const LOrderRow&)>& show)
        : profile_(profile),
          filter_(filter),
          show_(show),
          suppliers_(profile, "Suppliers"),
          locations_(profile, "Locations") {}

    void Fill(const LPOrderList& list) const {
        list.ForEach([this](const LPOrder& order) {
            const eStockReceivedStatus status = order.GetStockReceivedStatus();
            if (Passes(filter_, status)) Show(order, status);
            return true;
        });
    }

private:
    void Show(const LPOrder& order, int status) const {
        const bool isDraft = order.GetBool("IsDraft", false);
        show_({order, suppliers_.Name(order.GetView("Supplier")),
               locations_.Name(order.GetView("Location")),
               LMoney{order.GetTotal(), order.GetTotalDigits(profile_)},
               isDraft ? std::string_view() : StockReceivedLabel(status), isDraft});
    }

    const LProfile& profile_;
    const LOrderListFilter& filter_;
    const std::function<void(const LOrderRow&)>& show_;
    const LNameMap suppliers_, locations_;
};

}  // namespace

std::string_view OrdersShownName(LOrdersShown shown) {
    return kShownNames[static_cast<size_t>(shown)];
}

LOrdersShown OrdersShownFromName(std::string_view name) {
    for (const LOrdersShown shown : {LOrdersShown::kDraft, LOrdersShown::kAll}) {
        if (name == OrdersShownName(shown)) return shown;
    }
    return LOrdersShown::kRecorded;
}

void FillOrderList(const LProfile& profile, const LOrderListFilter& filter,
                   const std::function<void(const LOrderRow&)>& show) {
    const LOrderRows rows(profile, filter, show);
    if (filter.shown != LOrdersShown::kDraft) rows.Fill(LRecordedPOrderList(profile));
    if (filter.shown != LOrdersShown::kRecorded) rows.Fill(LDraftPOrderList(profile));
}

void LOrderSummary::Add(const LMoney& total) {
    ++count_;
    const int64_t limit = total.minorUnits < 0 ? std::numeric_limits<int64_t>::min()
                                               : std::numeric_limits<int64_t>::max();
    const std::optional<LMoney> amount = WithDigits(total, profile_.CurrencyDigits());
    const int64_t minorUnits = amount ? amount->minorUnits : limit;
    if (__builtin_add_overflow(sum_, minorUnits, &sum_)) sum_ = limit;
}

std::string LOrderSummary::Text() const {
    return std::to_string(count_) + " Orders. Total " +
           profile_.FormatMoney({sum_, profile_.CurrencyDigits()});
}

std::string LOrderSummary::SelectionText() const { return "Selected " + Text(); }
