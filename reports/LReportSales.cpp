#include "reports/LReportSales.h"

#include <algorithm>
#include <map>

#include "inventory/ItemDelete.h"
#include "inventory/LItem.h"
#include "inventory/StockHistory.h"
#include "platform/CaseFolding.h"
#include "platform/LSilentProcess.h"
#include "reports/LMoneyTotal.h"

namespace {

// The quantity stands left, unlike in every other report: that is how it has always been.
constexpr LReportColumn kColumns[] = {
    {"Item", 9, kReportLeft, true},     {"Quantity", 9, kReportLeft},
    {"Cost Value", 16, kReportRight},   {"Price Value", 11, kReportRight},
    {"Total Cost", 20, kReportRight},   {"Total Sales", 20, kReportRight},
    {"Gross Profit", 20, kReportRight}, kReportColumnsEnd};

// What one item, or several, came to.
struct LSalesSum {
    explicit LSalesSum(int digits) : cost(digits), sales(digits) {}
    double quantity = 0;
    LMoneyTotal cost, sales;

    LMoney Profit() const {
        LMoneyTotal profit = sales;
        profit.Subtract(cost.Total());
        return profit.Total();
    }
    void Add(const LSalesSum& other) {
        quantity += other.quantity;
        cost.Add(other.cost.Total());
        sales.Add(other.sales.Total());
    }
};

struct LSoldItem {
    explicit LSoldItem(int digits) : sum(digits) {}
    std::string itemId, code, foldedCode;
    bool isGone = false;
    LMoney cost{}, price{};
    LSalesSum sum;
};
using LSoldItems = std::map<std::string, LSoldItem>;  // by the item's key

class LSalesReader {
public:
    explicit LSalesReader(const LProfile& profile)
        : profile_(profile), digits_(profile.CurrencyDigits()) {}

    // Returns what is wrong with the days.
    std::string Read(const LDate& from, const LDate& to) {
        LHistoryFilter filter;
        filter.from = from;
        filter.to = to;
        LSilentProcess process;
        const std::string problem = LFillSellHistoryList(
            profile_, filter, process, [this](const LHistoryRow& row) { AddRow(row); });
        for (LSoldItems* items : {&sold_, &lost_}) {
            for (auto& [key, item] : *items) Finish(key, item);
        }
        return problem;
    }

    std::vector<const LSoldItem*> Sold() const { return ByCode(sold_); }
    std::vector<const LSoldItem*> Lost() const { return ByCode(lost_); }

private:
    void AddRow(const LHistoryRow& row) {
        LSoldItems& items = row.isWriteOff ? lost_ : sold_;
        LSoldItem& item = items.try_emplace(row.fields[kHistoryItemId], digits_).first->second;
        item.code = row.itemCode;
        item.sum.quantity +=
            ReadHistoryQuantity(profile_, row.fields[kHistoryQuantity]).value_or(0);
        item.sum.sales.Add(profile_.ParseMoney(row.fields[kSellTotal]).value_or(LMoney{}));
    }

    void Finish(const std::string& key, LSoldItem& sold) {
        LItem item;
        sold.itemId = key;
        sold.isGone = !profile_.Items().Open(item, key);
        if (sold.isGone) {
            sold.code = DeletedItemCode(profile_, key);
            if (sold.code.empty()) sold.code = "Deleted item " + key;
        } else {
            sold.cost = item.Cost();
            sold.price = item.Price();
            sold.sum.cost.Add(LineAmount(sold.sum.quantity, sold.cost));
        }
        sold.foldedCode = FoldCase(sold.code);
    }

    static std::vector<const LSoldItem*> ByCode(const LSoldItems& items) {
        std::vector<const LSoldItem*> sorted;
        for (const auto& [key, item] : items) sorted.push_back(&item);
        std::stable_sort(sorted.begin(), sorted.end(),
                         [](const LSoldItem* left, const LSoldItem* right) {
                             return left->foldedCode < right->foldedCode;
                         });
        return sorted;
    }

    const LProfile& profile_;
    const int digits_;
    LSoldItems sold_, lost_;
};

void FillSum(const LProfile& profile, const LSalesSum& sum, LReportRow& row) {
    row.cells[1] = profile.FormatQuantity(sum.quantity);
    row.cells[4] = profile.FormatMoney(sum.cost.Total());
    row.cells[5] = profile.FormatMoney(sum.sales.Total());
    row.cells[6] = profile.FormatMoney(sum.Profit());
}

}  // namespace

LReportSales::LReportSales(const LProfile& profile) : LReport(profile, "Sales Report", kColumns) {
    SetDates(LDate::Today(), LDate::Today());
}

void LReportSales::SetDates(const LDate& from, const LDate& to) {
    from_ = from;
    to_ = to;
    SetSummary1("From", Profile().FormatDate(from));
    SetSummary2("To", Profile().FormatDate(to));
}

void LReportSales::GenerateReport() {
    Clear();
    LSalesReader reader(Profile());
    SetProblem(reader.Read(from_, to_));
    LSalesSum total(Profile().CurrencyDigits());
    const auto addGroup = [&](const std::string& name, const std::vector<const LSoldItem*>& items) {
        if (items.empty()) return;
        LSalesSum sum(Profile().CurrencyDigits());
        AddRow(LReportRowKind::kGroup).cells.front() = name;
        for (const LSoldItem* item : items) {
            LReportRow& row = AddRow();
            row.cells[0] = item->code;
            if (!item->isGone) row.itemId = item->itemId;
            if (!item->isGone) row.cells[2] = Profile().FormatMoney(item->cost);
            if (!item->isGone) row.cells[3] = Profile().FormatMoney(item->price);
            FillSum(Profile(), item->sum, row);
            sum.Add(item->sum);
        }
        LReportRow& row = AddRow(LReportRowKind::kSubtotal);
        row.cells[0] = "Total " + name;
        FillSum(Profile(), sum, row);
        total.Add(sum);
    };
    addGroup("Sold", reader.Sold());
    addGroup(kDamagedLost, reader.Lost());
    if (Rows().empty()) return;
    LReportRow& row = AddRow(LReportRowKind::kTotal);
    row.cells[0] = "Total";
    FillSum(Profile(), total, row);
}
