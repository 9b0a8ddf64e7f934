#include "reports/InventoryReports.h"

#include <algorithm>
#include <numeric>
#include <optional>

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

const std::string& OrNone(const std::string& name, const std::string& none) {
    return name.empty() ? none : name;
}

std::string GroupName(const LStockLine& line, LStockGroup group) {
    static const std::string kNoLocation = "(no location)", kNoCategory = "(no category)",
                             kNoSupplier = "(no supplier)";
    switch (group) {
        case LStockGroup::kLocation:
            return OrNone(line.location, kNoLocation);
        case LStockGroup::kCategory:
            return OrNone(line.category, kNoCategory);
        case LStockGroup::kSupplier:
            return OrNone(line.supplier, kNoSupplier);
        case LStockGroup::kLocationAndCategory:
            break;
    }
    return OrNone(line.location, kNoLocation) + ", " + OrNone(line.category, kNoCategory);
}

// What orders the lines: each text ends with a byte that sorts before all others.
std::string SortKey(const LStockLine& line, LStockGroup group) {
    constexpr char kEnd = '\0';
    std::string key;
    if (group == LStockGroup::kSupplier) key += FoldCase(line.supplier) + kEnd;
    if (group == LStockGroup::kCategory) key += FoldCase(line.category) + kEnd;
    if (group == LStockGroup::kLocation) key += FoldCase(line.location) + kEnd;
    if (group == LStockGroup::kLocationAndCategory) {
        key += FoldCase(line.location) + kEnd + FoldCase(line.category) + kEnd;
    }
    key += FoldCase(GroupName(line, group)) + kEnd + GroupName(line, group) + kEnd;
    return key + FoldCase(line.code) + kEnd + FoldCase(line.location);
}

struct LStockSum {
    explicit LStockSum(int digits) : amount(digits) {}
    double quantity = 0;
    LMoneyTotal amount;
    void Add(const LStockLine& line) {
        quantity += line.quantity;
        amount.Add(LineAmount(line.quantity, line.cost));
    }
};

// Fills the rows of one report.
class LRowFormat {
public:
    LRowFormat(const LProfile& profile, const LInventoryLayout& layout)
        : profile_(profile), layout_(layout) {}

    void Fill(LReportRow& row, const LStockLine& line) const {
        row.itemId = line.itemId;
        row.hasPicture = line.hasPicture;
        for (size_t i = 0; i < row.cells.size(); ++i) row.cells[i] = Cell(line, layout_.cells[i]);
    }
    void FillSum(LReportRow& row, const std::string& label, const LStockSum& sum) const {
        row.cells.front() = label;
        for (size_t i = 0; i < row.cells.size(); ++i) {
            if (layout_.cells[i] == kQuantity) row.cells[i] = Quantity(sum.quantity);
            if (layout_.cells[i] == kLineTotal) {
                row.cells[i] = profile_.FormatMoney(sum.amount.Total());
            }
        }
    }

private:
    std::string Quantity(double quantity) const { return profile_.FormatQuantity(quantity); }
    std::string Cell(const LStockLine& line, LStockCell cell) const {
        switch (cell) {
            case kItem:
                return line.code;
            case kDescription:
                return line.description;
            case kLocation:
                return line.location;
            case kCategory:
                return line.category;
            case kQuantity:
                return Quantity(line.quantity);
            case kCost:
                return profile_.FormatMoney(line.cost);
            case kPrice:
                return profile_.FormatMoney(line.price);
            case kLineTotal:
                break;
        }
        return profile_.FormatMoney(LineAmount(line.quantity, line.cost));
    }

    const LProfile& profile_;
    const LInventoryLayout& layout_;
};

// Places of the lines in the order of the report.
std::vector<size_t> SortedPlaces(const std::vector<LStockLine>& lines, LStockGroup group) {
    std::vector<std::string> keys;
    keys.reserve(lines.size());
    for (const LStockLine& line : lines) keys.push_back(SortKey(line, group));
    std::vector<size_t> places(lines.size());
    std::iota(places.begin(), places.end(), size_t{0});
    std::stable_sort(places.begin(), places.end(),
                     [&](size_t left, size_t right) { return keys[left] < keys[right]; });
    return places;
}

}  // namespace

LInventoryReport::LInventoryReport(const LProfile& profile, const LInventoryLayout& layout)
    : LReport(profile, layout.title, layout.columns), layout_(layout) {}

void LInventoryReport::GenerateReport() {
    Clear();
    const LRowFormat format(Profile(), layout_);
    const auto lines = ReadStockLines(Profile(), choice_, layout_.detail);
    const int digits = Profile().CurrencyDigits();
    LStockSum total(digits), subtotal(digits);
    std::optional<std::string> group;
    const auto endGroup = [&] {
        if (!group) return;
        format.FillSum(AddRow(LReportRowKind::kSubtotal), "Total " + *group, subtotal);
        subtotal = LStockSum(digits);
    };
    for (const size_t place : SortedPlaces(lines, layout_.group)) {
        const LStockLine& line = lines[place];
        std::string name = GroupName(line, layout_.group);
        if (group != name) {
            endGroup();
            group = std::move(name);
            AddRow(LReportRowKind::kGroup).cells.front() = *group;
        }
        format.Fill(AddRow(), line);
        subtotal.Add(line);
        total.Add(line);
    }
    endGroup();
    if (!lines.empty()) format.FillSum(AddRow(LReportRowKind::kTotal), "Total", total);
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
