#include "reports/LBackorderReport.h"

#include <algorithm>
#include <cmath>
#include <utility>

#include "inventory/LNameMap.h"
#include "orders/LPOrderList.h"
#include "orders/RecurringSchedule.h"

namespace {

constexpr LReportColumn kColumns[] = {{"Quantity", 8, kReportRight},
                                      {"Item", 9, kReportLeft, true},
                                      {"Supplier", 7, kReportLeft, true},
                                      {"Order", 8, kReportLeft},
                                      {"Location", 8, kReportLeft, true},
                                      {"Unit Value", 11, kReportRight},
                                      {"Receipt Date", 13, kReportLeft},
                                      {"Recurring", 13, kReportLeft},
                                      kReportColumnsEnd};
constexpr size_t kOrderColumn = 3;
// Receiving takes a smaller quantity for none.
constexpr double kSmallestQuantity = 0.000001;

std::string IntervalLabel(const LPOrder& order) {
    const int interval = order.GetInt("RecurInterval", kRecurIntervalDefault);
    const auto index = static_cast<size_t>(interval);
    return interval >= 0 && index < kRecurIntervals.size() ? std::string(kRecurIntervals[index])
                                                           : std::string();
}

// The rows of one list of orders.
class LBackorderLines {
public:
    explicit LBackorderLines(const LProfile& profile)
        : profile_(profile),
          items_(profile, "Items"),
          suppliers_(profile, "Suppliers"),
          locations_(profile, "Locations") {}

    void AddOpen(const LPOrder& order) {
        if (order.GetStockReceivedStatus() == StockFullyReceived) return;
        for (int line = 0; line < order.GetItemCount(); ++line) {
            const double open = order.GetItemQtyNotReceived(line);
            if (std::abs(open) >= kSmallestQuantity) Add(order, line, open, {});
        }
    }
    void AddRecurring(const LPOrder& order) {
        const std::string label = IntervalLabel(order);
        for (int line = 0; line < order.GetItemCount(); ++line) {
            Add(order, line, order.GetItemQty(line), label);
        }
    }

    // By order number, "9" before "10"; the lines of an order stay together. Forgets them.
    std::vector<std::vector<std::string>> TakeSorted() {
        std::stable_sort(rows_.begin(), rows_.end(), [](const auto& left, const auto& right) {
            const std::string& l = left[kOrderColumn];
            const std::string& r = right[kOrderColumn];
            return l.size() != r.size() ? l.size() < r.size() : l < r;
        });
        return std::exchange(rows_, {});
    }

private:
    void Add(const LPOrder& order, int line, double quantity, const std::string& recurring) {
        rows_.push_back({profile_.FormatQuantity(quantity), ItemName(order, line),
                         std::string(suppliers_.Name(order.GetView("Supplier"))),
                         order.GetPrimaryKey(),
                         std::string(locations_.Name(order.GetView("Location"))),
                         profile_.FormatMoney(order.GetItemUnitCost(profile_, line)),
                         ReceiptDate(order), recurring});
    }
    // An item that is gone is still known by what the order says of it.
    std::string ItemName(const LPOrder& order, int line) const {
        const std::string_view code = items_.Name(order.GetItemID(line));
        return code.empty() ? order.GetItemDescription(line) : std::string(code);
    }
    std::string ReceiptDate(const LPOrder& order) const {
        const auto date = LDate::FromStored(order.GetView("Receipt Date"));
        return date ? profile_.FormatDate(*date) : std::string();
    }

    const LProfile& profile_;
    const LNameMap items_, suppliers_, locations_;
    std::vector<std::vector<std::string>> rows_;
};

}  // namespace

LBackorderReport::LBackorderReport(const LProfile& profile)
    : LReport(profile, "Backorder Report", kColumns) {}

void LBackorderReport::GenerateReport() {
    Clear();
    LBackorderLines lines(Profile());
    LRecordedPOrderList(Profile()).ForEach([&](const LPOrder& order) {
        lines.AddOpen(order);
        return true;
    });
    for (auto& cells : lines.TakeSorted()) AddCells(std::move(cells));
    LRecurringPOrderList(Profile()).ForEach([&](const LPOrder& order) {
        lines.AddRecurring(order);
        return true;
    });
    for (auto& cells : lines.TakeSorted()) AddCells(std::move(cells));
}
