#include "web/pages/ItemListPage.h"

#include <algorithm>
#include <array>
#include <deque>
#include <functional>
#include <vector>

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

constexpr LHtmlListColumn kNowhereColumns[] = {
    {"Code", 20},
    {"Description", 40},
    {"Why", 40},
    {"Delete", 0, LCellAlign::kCenter, false},
};

constexpr LHtmlListAction kActions[] = {
    {"Receive", "itempurchasesell?type=receive&"},
    {"Sell", "itempurchasesell?type=sell&"},
    {"Move", "itemtransfer?"},
    {"Delete", "itemdelete?"},
};

std::string OnOneLine(std::string_view text) {
    std::string line(text);
    for (size_t pos = 0; (pos = line.find("\r\n", pos)) != std::string::npos; ++pos) {
        line.replace(pos, 2, " ");
    }
    return line;
}

// What the list shows of an item; kept until all items are read and their order is known.
struct LListedItem {
    explicit LListedItem(const LItemRow& row)
        : key(row.item.GetPrimaryKey()),
          code(row.item.GetView("Name")),
          description(OnOneLine(row.item.GetView("Description"))),
          category(row.categoryName),
          tax(row.taxName),
          measure(row.item.GetView("Measure")),
          cost(row.item.Cost()),
          price(row.item.Price()),
          order(code) {}

    std::string key, code, description, category, tax, measure;
    LMoney cost, price;
    LListSortKey order;
};

struct LListedRow {
    const LListedItem* item;
    std::string location;
    double quantity, warnQuantity, idealQuantity;
    bool isBelowWarning;
};

// The rows of the table. They become markup only when they are printed, so that the browser takes
// in the first while the last are still being made.
class LItemRows {
public:
    LItemRows(const LProfile& profile, LHtmlList& table, bool mayChange)
        : profile_(profile),
          table_(table),
          mayChange_(mayChange),
          common_(table.MakeRow()),
          row_(table.MakeRow()) {}

    void Add(const LItemRow& row) {
        // The rows of an item come one after the other.
        if (items_.empty() || items_.back().key != row.item.GetPrimaryKey()) {
            items_.emplace_back(row);
        }
        rows_.push_back({&items_.back(), std::string(row.locationName), row.stock.quantity,
                         row.stock.warnQuantity, row.stock.idealQuantity, row.isBelowWarning});
    }

    // By code.
    void Print(LPageWriter& out) {
        std::stable_sort(rows_.begin(), rows_.end(),
                         [](const LListedRow& left, const LListedRow& right) {
                             return left.item->order < right.item->order;
                         });
        table_.PrintStart(out);
        const LListedItem* item = nullptr;
        for (const LListedRow& row : rows_) {
            if (row.item != item) StartItem(*(item = row.item));
            PrintRow(out, row);
        }
        table_.PrintEnd(out);
    }

private:
    // The cells that all rows of an item share.
    void StartItem(const LListedItem& item) {
        common_.Clear();
        common_.AddCellLink(WLMakeLink("itemprop", {{"id", item.key}}), item.code);
        common_.AddCell(item.description).AddCell(item.category).AddCell(item.tax);
        AddMoney(common_, item.cost);
        AddMoney(common_, item.price);
        common_.AddCell(item.measure);
    }
    void PrintRow(LPageWriter& out, const LListedRow& row) {
        row_.Clear();
        row_.StartAs(common_).AddCell(row.location);
        AddQuantity(row_, row.quantity);
        AddQuantity(row_, row.warnQuantity);
        AddQuantity(row_, row.idealQuantity);
        if (mayChange_) {
            row_.AddCellActions(FormatText("id=%U&loc=%U", row.item->key, row.location));
        }
        if (row.isBelowWarning) row_.SetClass("low");
        table_.PrintRow(out, row_);
    }
    void AddMoney(LHtmlListRow& row, const LMoney& amount) {
        // Amounts of any number of digits sort by value.
        double order = static_cast<double>(amount.minorUnits);
        for (int digit = 0; digit < amount.digits; ++digit) order /= 10;
        row.AddCellWithOrder(profile_.FormatMoney(amount), order);
    }
    // The same quantities come again and again in a long list.
    void AddQuantity(LHtmlListRow& row, double quantity) {
        LShownQuantity& shown = shown_[std::hash<double>()(quantity) % shown_.size()];
        if (shown.text.empty() || shown.quantity != quantity) {
            shown = {quantity, profile_.FormatQuantity(quantity)};
        }
        row.AddCellWithOrder(shown.text, quantity);
    }

    struct LShownQuantity {
        double quantity = 0;
        std::string text;
    };

    const LProfile& profile_;
    LHtmlList& table_;
    const bool mayChange_;
    std::deque<LListedItem> items_;  // they stay where they are
    std::vector<LListedRow> rows_;
    std::array<LShownQuantity, 256> shown_;
    LHtmlListRow common_, row_;
};

std::span<const LHtmlListColumn> ShownColumns(std::span<const LHtmlListColumn> columns,
                                              bool mayChange) {
    return mayChange ? columns : columns.first(columns.size() - 1);
}

// Without a row of its own in the list, an item must still be found, to be mended or deleted.
void AddNowhere(LHtmlList& table, const LItem& item, bool mayChange) {
    const std::string& id = item.GetPrimaryKey();
    LHtmlListRow row = table.MakeRow();
    row.AddCellLink(WLMakeLink("itemprop", {{"id", id}}), item.GetView("Name"));
    row.AddCell(OnOneLine(item.GetView("Description")));
    row.AddCell(item.IsBuilt() ? "Built from items that are missing or kept nowhere"
                               : "Kept at no location");
    if (mayChange) {
        row.AddCellPrintF("<a href='%H' aria-label='Delete %H'>Delete</a>",
                          WLMakeLink("itemdelete", {{"id", id}}), item.GetView("Name"));
    }
    table.AddOrdered(std::move(row));
}

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
    LHtmlList table;
    table.SetColumns(ShownColumns(kColumns, !IsViewer()));
    if (!IsViewer()) table.SetRowActions(kActions);
    table.SetSort(0, true);
    table.SetName("Items");
    table.SetEmptyText("No item matches. Choose other filters, or add a new item.");
    LItemRows rows(Profile(), table, !IsViewer());
    LHtmlList nowhere;
    nowhere.SetColumns(ShownColumns(kNowhereColumns, !IsViewer()));
    nowhere.SetSort(0, true);
    nowhere.SetName("Items without stock at any location");
    FillItemList(
        Profile(), filter, [&](const LItemRow& row) { rows.Add(row); },
        [&](const LItem& item) { AddNowhere(nowhere, item, !IsViewer()); });
    if (nowhere.RowCount() > 0) table.SetEmptyText("No item that lies at a location matches.");
    rows.Print(Out());
    if (nowhere.RowCount() == 0) return;
    Out().Write("<h2 class=sectionhead>Items kept nowhere</h2>");
    nowhere.Print(Out());
}
