#include "web/pages/ItemListPage.h"

#include "inventory/MasterRecords.h"
#include "web/framework/LHtmlList.h"
#include "web/framework/PageTargets.h"
#include "web/pages/ListFilterForm.h"
#include "web/pages/NameChoices.h"

namespace {

constexpr LHtmlListColumn kColumns[] = {
    {"Code", 9},
    {"Description", 22},
    {"Category", 10},
    {"Tax", 5},
    {"Cost", 7, LCellAlign::kRight},
    {"Price", 7, LCellAlign::kRight},
    {"Unit", 5},
    {"Location", 9},
    {"Quantity", 7, LCellAlign::kRight},
    {"Warning", 6, LCellAlign::kRight},
    {"Ideal", 6, LCellAlign::kRight},
    {"Actions", 0, LCellAlign::kRight, false},
};

std::string OnOneLine(std::string_view text) {
    std::string line(text);
    for (size_t pos = 0; (pos = line.find("\r\n", pos)) != std::string::npos; ++pos) {
        line.replace(pos, 2, " ");
    }
    return line;
}

// The rows of the table, formatted one by one as they are read.
class LItemRows {
public:
    LItemRows(const LProfile& profile, LHtmlList& table, bool mayChange)
        : profile_(profile), table_(table), mayChange_(mayChange) {}

    void Add(const LItemRow& item) {
        LHtmlListRow row = table_.MakeRow();
        const std::string& key = item.item.GetPrimaryKey();
        row.AddCellLink(WLMakeLink("itemprop", {{"id", key}}), item.item.GetView("Name"));
        row.AddCell(OnOneLine(item.item.GetView("Description")));
        row.AddCell(item.categoryName);
        row.AddCell(item.taxName);
        AddMoney(row, item.item.Cost());
        AddMoney(row, item.item.Price());
        row.AddCell(item.item.GetView("Measure"));
        row.AddCell(item.locationName);
        AddQuantity(row, item.stock.quantity);
        AddQuantity(row, item.stock.warnQuantity);
        AddQuantity(row, item.stock.idealQuantity);
        if (mayChange_) AddActions(row, item);
        if (item.isBelowWarning) row.SetClass("low");
        table_.AddOrdered(std::move(row));
    }

private:
    void AddMoney(LHtmlListRow& row, const LMoney& amount) {
        double order = static_cast<double>(amount.minorUnits);
        for (int digit = amount.digits; digit < kOrderDigits; ++digit) order *= 10;
        row.AddCellWithOrder(profile_.FormatMoney(amount), order);
    }
    void AddQuantity(LHtmlListRow& row, double quantity) {
        row.AddCellWithOrder(profile_.FormatQuantity(quantity), quantity);
    }
    void AddActions(LHtmlListRow& row, const LItemRow& item) {
        const std::string& key = item.item.GetPrimaryKey();
        const std::string_view code = item.item.GetView("Name");
        const std::string where = FormatText("id=%U&amp;loc=%U", key, item.locationName);
        row.AddCellPrintF(
            "<span class=rowactions><a href='itempurchasesell?type=receive&amp;%s' "
            "aria-label='Receive %H'>Receive</a> <a href='itempurchasesell?type=sell&amp;%s' "
            "aria-label='Sell %H'>Sell</a> <a href='itemtransfer?%s' "
            "aria-label='Move %H'>Move</a> <a href='itemdelete?%s' "
            "aria-label='Delete %H'>Delete</a></span>",
            where, code, where, code, where, code, where, code);
    }

    static constexpr int kOrderDigits = 6;  // amounts of any number of digits sort by value
    const LProfile& profile_;
    LHtmlList& table_;
    bool mayChange_;
};

}  // namespace

LItemListFilter LAppWebItemsPage::ReadFilter() {
    LItemListFilter filter;
    filter.category = Form().Parameter("category");
    filter.subCategory = Form().Parameter("subcategory");
    filter.location = Form().Parameter("location");
    filter.stock = StockFilterFromName(Form().Parameter("stock"));
    filter.searchText = Form().Parameter("search");
    return filter;
}

void LAppWebItemsPage::PrintBody() {
    const LItemListFilter filter = ReadFilter();
    PrintFilters(filter);
    Out().Flush();  // something to look at while the items are read
    PrintTable(filter);
}

void LAppWebItemsPage::PrintFilters(const LItemListFilter& filter) {
    LListFilterForm filters(Out(), "itemlist");
    filters.AddChoice("category", "Category", WithAll(SortedNames(Profile(), "Categories")),
                      filter.category);
    LCategory category;
    if (!filter.category.empty() &&
        OpenCategory(LCategoryList(Profile()), category, filter.category)) {
        filters.AddChoice("subcategory", "Sub-category", WithAll(GetSubCategories(category)),
                          filter.subCategory);
    }
    filters.AddChoice("location", "Location", WithAll(SortedNames(Profile(), "Locations")),
                      filter.location);
    std::vector<std::string> stocks;
    for (const LStockFilter stock : {LStockFilter::kAll, LStockFilter::kBelowWarning,
                                     LStockFilter::kAboveWarning, LStockFilter::kAboveZero}) {
        stocks.emplace_back(StockFilterName(stock));
    }
    filters.AddChoice("stock", "Stock", stocks, StockFilterName(filter.stock));
    if (!IsViewer()) filters.AddAction("itemprop", "New item");
}

void LAppWebItemsPage::PrintTable(const LItemListFilter& filter) {
    const std::span<const LHtmlListColumn> columns(kColumns);
    LHtmlList table;
    table.SetColumns(IsViewer() ? columns.first(columns.size() - 1) : columns);
    table.SetSort(0, true);
    table.SetName("Items");
    table.SetEmptyText("No item matches. Choose other filters, or add a new item.");
    LItemRows rows(Profile(), table, !IsViewer());
    FillItemList(Profile(), filter, [&](const LItemRow& row) { rows.Add(row); });
    table.Print(Out());
}
