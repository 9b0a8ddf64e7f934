#include "reports/InventoryReports.h"

#include <algorithm>
#include <optional>
#include <utility>

#include "platform/CaseFolding.h"
#include "reports/LMoneyTotal.h"

// What a column shows.
enum class LStockCell {
    kItem,
    kDescription,
    kLocation,
    kCategory,
    kQuantity,
    kCost,
    kPrice,
    kLineTotal
};
enum class LStockGroup { kLocation, kCategory, kSupplier, kLocationAndCategory };

struct LInventoryLayout {
    const char* title;
    const LReportColumn* columns;
    const LStockCell* cells;  // one for each column
    LStockGroup group;
    LStockLineDetail detail = LStockLineDetail::kByLocation;
};

namespace {

using enum LStockCell;

constexpr LReportColumn kItemColumn{"Item", 9, kReportLeft},
    kDescriptionColumn{"Description", 16, kReportLeft, true},
    kLocationColumn{"Location", 14, kReportLeft}, kCategoryColumn{"Category", 11, kReportLeft},
    kQuantityColumn{"Quantity", 8, kReportRight}, kCostColumn{"Cost Value", 16, kReportRight},
    kPriceColumn{"Price Value", 11, kReportRight}, kLineTotalColumn{"Line Total", 20, kReportRight};

constexpr LReportColumn kLocCatColumns[] = {kItemColumn,      kDescriptionColumn, kQuantityColumn,
                                            kCostColumn,      kPriceColumn,       kLineTotalColumn,
                                            kReportColumnsEnd};
constexpr LStockCell kLocCatCells[] = {kItem, kDescription, kQuantity, kCost, kPrice, kLineTotal};
constexpr LInventoryLayout kLocCat{"Inventory Report by Location and Category", kLocCatColumns,
                                   kLocCatCells, LStockGroup::kLocationAndCategory};

constexpr LReportColumn kAllColumns[] = {kLocationColumn,    kCategoryColumn,  kItemColumn,
                                         kDescriptionColumn, kQuantityColumn,  kCostColumn,
                                         kLineTotalColumn,   kReportColumnsEnd};
constexpr LStockCell kAllCells[] = {kLocation, kCategory, kItem,     kDescription,
                                    kQuantity, kCost,     kLineTotal};
constexpr LInventoryLayout kAll{"Inventory Report", kAllColumns, kAllCells,
                                LStockGroup::kLocationAndCategory};

constexpr LReportColumn kOneLocationColumns[] = {
    kCategoryColumn, kItemColumn,  kDescriptionColumn, kQuantityColumn,
    kCostColumn,     kPriceColumn, kLineTotalColumn,   kReportColumnsEnd};
constexpr LStockCell kOneLocationCells[] = {kCategory, kItem,  kDescription, kQuantity,
                                            kCost,     kPrice, kLineTotal};
constexpr LInventoryLayout kOneLocation{"Inventory Report For Location", kOneLocationColumns,
                                        kOneLocationCells, LStockGroup::kCategory};

constexpr LReportColumn kOneCategoryColumns[] = {
    kLocationColumn, kItemColumn,  kDescriptionColumn, kQuantityColumn,
    kCostColumn,     kPriceColumn, kLineTotalColumn,   kReportColumnsEnd};
constexpr LStockCell kOneCategoryCells[] = {kLocation, kItem,  kDescription, kQuantity,
                                            kCost,     kPrice, kLineTotal};
constexpr LInventoryLayout kOneCategory{"Inventory Report For Category", kOneCategoryColumns,
                                        kOneCategoryCells, LStockGroup::kLocation};

constexpr LReportColumn kImageColumns[] = {kItemColumn,      kDescriptionColumn, kCategoryColumn,
                                           kQuantityColumn,  kCostColumn,        kLineTotalColumn,
                                           kReportColumnsEnd};
constexpr LStockCell kImageCells[] = {kItem, kDescription, kCategory, kQuantity, kCost, kLineTotal};
constexpr LInventoryLayout kImage{"Inventory Report with Image by Category", kImageColumns,
                                  kImageCells, LStockGroup::kCategory, LStockLineDetail::kByItem};

// This report's number columns have widths of their own.
constexpr LReportColumn kSupplierColumns[] = {kItemColumn,
                                              kDescriptionColumn,
                                              kLocationColumn,
                                              kCategoryColumn,
                                              {"Quantity", 12, kReportRight},
                                              {"Cost Value", 8, kReportRight},
                                              {"Price Value", 8, kReportRight},
                                              {"Line Total", 10, kReportRight},
                                              kReportColumnsEnd};
constexpr LStockCell kSupplierCells[] = {kItem,     kDescription, kLocation, kCategory,
                                         kQuantity, kCost,        kPrice,    kLineTotal};
constexpr LInventoryLayout kSupplier{"Inventory Report by Default Supplier", kSupplierColumns,
                                     kSupplierCells, LStockGroup::kSupplier};

std::string OrNone(const std::string& name, const char* none) { return name.empty() ? none : name; }

// What the lines are grouped by: a location, and a category or a supplier, by their numbers.
struct LGroupKey {
    size_t location = 0, other = 0;
    friend bool operator==(const LGroupKey&, const LGroupKey&) = default;
};

// The lines of a report in their order, each with its group.
class LGroupedLines {
public:
    struct LPlace {
        size_t group, item, location;  // their ranks
        size_t line;
        bool operator<(const LPlace& other) const {
            if (group != other.group) return group < other.group;
            if (item != other.item) return item < other.item;
            return location < other.location;
        }
    };

    LGroupedLines(const LStockLines& stock, LStockGroup group) : stock_(stock), group_(group) {
        RankNames();
        const std::vector<size_t> itemRanks = RankItems();
        places_.reserve(stock.lines.size());
        for (size_t i = 0; i < stock.lines.size(); ++i) {
            const LStockLine& line = stock.lines[i];
            const LGroupKey key = KeyOf(line);
            const size_t count = stock.names.Count();
            places_.push_back({nameRanks_[key.location] * count + nameRanks_[key.other],
                               itemRanks[line.item], nameRanks_[line.location], i});
        }
        std::stable_sort(places_.begin(), places_.end());
    }

    const std::vector<LPlace>& Places() const { return places_; }
    size_t GroupCount() const {
        size_t count = places_.empty() ? 0 : 1;
        for (size_t i = 1; i < places_.size(); ++i) {
            if (places_[i].group != places_[i - 1].group) ++count;
        }
        return count;
    }

    std::string GroupName(const LStockLine& line) const {
        const LStockItem& item = stock_.items[line.item];
        const std::string location = OrNone(stock_.names.Name(line.location), "(no location)");
        const std::string category = OrNone(stock_.names.Name(item.category), "(no category)");
        switch (group_) {
            case LStockGroup::kLocation:
                return location;
            case LStockGroup::kCategory:
                return category;
            case LStockGroup::kSupplier:
                return OrNone(stock_.names.Name(item.supplier), "(no supplier)");
            case LStockGroup::kLocationAndCategory:
                break;
        }
        return location + ", " + category;
    }

private:
    LGroupKey KeyOf(const LStockLine& line) const {
        const LStockItem& item = stock_.items[line.item];
        switch (group_) {
            case LStockGroup::kLocation:
                return {line.location, line.location};
            case LStockGroup::kCategory:
                return {item.category, item.category};
            case LStockGroup::kSupplier:
                return {item.supplier, item.supplier};
            case LStockGroup::kLocationAndCategory:
                break;
        }
        return {line.location, item.category};
    }

    // Texts are folded once each, not once for every comparison or line.
    template <typename TextOf>
    static std::vector<size_t> Rank(size_t count, TextOf&& textOf) {
        std::vector<std::pair<std::string, size_t>> sorted;
        sorted.reserve(count);
        for (size_t i = 0; i < count; ++i) sorted.emplace_back(FoldCase(textOf(i)), i);
        std::sort(sorted.begin(), sorted.end());
        std::vector<size_t> ranks(count);
        for (size_t rank = 0; rank < count; ++rank) ranks[sorted[rank].second] = rank;
        return ranks;
    }
    void RankNames() {
        nameRanks_ = Rank(stock_.names.Count(),
                          [&](size_t i) -> const std::string& { return stock_.names.Name(i); });
    }
    std::vector<size_t> RankItems() const {
        return Rank(stock_.items.size(),
                    [&](size_t i) -> const std::string& { return stock_.items[i].code; });
    }

    const LStockLines& stock_;
    const LStockGroup group_;
    std::vector<size_t> nameRanks_;
    std::vector<LPlace> places_;
};

struct LStockSum {
    explicit LStockSum(int digits) : amount(digits) {}
    double quantity = 0;
    LMoneyTotal amount;
    void Add(double lineQuantity, const LMoney& lineTotal) {
        quantity += lineQuantity;
        amount.Add(lineTotal);
    }
};

// Fills the rows of one report.
class LRowFormat {
public:
    LRowFormat(const LProfile& profile, const LInventoryLayout& layout, const LStockLines& stock)
        : profile_(profile), layout_(layout), stock_(stock) {}

    void Fill(LReportRow& row, const LStockLine& line, const LMoney& lineTotal) const {
        const LStockItem& item = stock_.items[line.item];
        row.itemId = item.id;
        row.hasPicture = item.hasPicture;
        for (size_t i = 0; i < row.cells.size(); ++i) {
            row.cells[i] = Cell(line, item, lineTotal, layout_.cells[i]);
        }
    }
    void FillSum(LReportRow& row, const std::string& label, const LStockSum& sum) const {
        row.cells.front() = label;
        for (size_t i = 0; i < row.cells.size(); ++i) {
            if (layout_.cells[i] == kQuantity) {
                row.cells[i] = profile_.FormatQuantity(sum.quantity);
            }
            if (layout_.cells[i] == kLineTotal) {
                row.cells[i] = profile_.FormatMoney(sum.amount.Total());
            }
        }
    }

private:
    std::string Cell(const LStockLine& line, const LStockItem& item, const LMoney& lineTotal,
                     LStockCell cell) const {
        switch (cell) {
            case kItem:
                return item.code;
            case kDescription:
                return item.description;
            case kLocation:
                return stock_.names.Name(line.location);
            case kCategory:
                return stock_.names.Name(item.category);
            case kQuantity:
                return profile_.FormatQuantity(line.quantity);
            case kCost:
                return profile_.FormatMoney(item.cost);
            case kPrice:
                return profile_.FormatMoney(item.price);
            case kLineTotal:
                break;
        }
        return profile_.FormatMoney(lineTotal);
    }

    const LProfile& profile_;
    const LInventoryLayout& layout_;
    const LStockLines& stock_;
};

}  // namespace

LInventoryReport::LInventoryReport(const LProfile& profile, const LInventoryLayout& layout)
    : LReport(profile, layout.title, layout.columns), layout_(layout) {}

void LInventoryReport::GenerateReport() {
    Clear();
    const LStockLines stock = ReadStockLines(Profile(), choice_, layout_.detail);
    const LRowFormat format(Profile(), layout_, stock);
    const LGroupedLines grouped(stock, layout_.group);
    const int digits = Profile().CurrencyDigits();
    ReserveRows(stock.lines.size() + 2 * grouped.GroupCount() + 1);
    LStockSum total(digits), subtotal(digits);
    std::optional<size_t> group;
    std::string groupName;
    const auto endGroup = [&] {
        if (!group) return;
        format.FillSum(AddRow(LReportRowKind::kSubtotal), "Total " + groupName, subtotal);
        subtotal = LStockSum(digits);
    };
    for (const LGroupedLines::LPlace& place : grouped.Places()) {
        const LStockLine& line = stock.lines[place.line];
        if (group != place.group) {
            endGroup();
            group = place.group;
            groupName = grouped.GroupName(line);
            AddRow(LReportRowKind::kGroup).cells.front() = groupName;
        }
        const LMoney lineTotal = LineAmount(line.quantity, stock.items[line.item].cost);
        format.Fill(AddRow(), line, lineTotal);
        subtotal.Add(line.quantity, lineTotal);
        total.Add(line.quantity, lineTotal);
    }
    endGroup();
    if (group) format.FillSum(AddRow(LReportRowKind::kTotal), "Total", total);
}

LReportInventoryLocCat::LReportInventoryLocCat(const LProfile& profile)
    : LInventoryReport(profile, kLocCat) {
    SetLocationAndCategory(kReportAll, kReportAll);
}
void LReportInventoryLocCat::SetLocationAndCategory(const std::string& location,
                                                    const std::string& category) {
    Choice().location = location;
    Choice().category = category;
    SetSummary1("Location", location + " \t Category: " + category);
}

LReportInventoryAll::LReportInventoryAll(const LProfile& profile)
    : LInventoryReport(profile, kAll) {}

LReportInventoryLocation::LReportInventoryLocation(const LProfile& profile)
    : LInventoryReport(profile, kOneLocation) {
    SetLocation(kReportAll);
}
void LReportInventoryLocation::SetLocation(const std::string& location) {
    Choice().location = location;
    SetSummary1("Location", location);
}

LReportInventoryCategory::LReportInventoryCategory(const LProfile& profile)
    : LInventoryReport(profile, kOneCategory) {
    SetCategory(kReportAll);
}
void LReportInventoryCategory::SetCategory(const std::string& category) {
    Choice().category = category;
    SetSummary1("Category", category);
}

LReportImageCategory::LReportImageCategory(const LProfile& profile)
    : LInventoryReport(profile, kImage) {
    SetCategory(kReportAll);
}
void LReportImageCategory::SetCategory(const std::string& category) {
    Choice().category = category;
    SetSummary1("Category", category);
}

LReportInventoryDefaultSupplier::LReportInventoryDefaultSupplier(const LProfile& profile)
    : LInventoryReport(profile, kSupplier) {
    SetSupplier(kReportAll);
}
void LReportInventoryDefaultSupplier::SetSupplier(const std::string& supplier) {
    Choice().supplier = supplier;
    SetSummary1("Supplier", supplier);
}
