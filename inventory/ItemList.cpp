#include "inventory/ItemList.h"

#include <array>
#include <vector>

#include "inventory/ItemSave.h"
#include "inventory/LBuildableStock.h"
#include "platform/CaseFolding.h"

namespace {

constexpr std::array<std::string_view, 4> kStockFilterNames{
    "All", "Below warning level", "Above warning level", "Quantity greater than zero"};

bool Excludes(std::string_view filter, std::string_view value) {
    return !filter.empty() && filter != "All" && filter != value;
}

// A location without an ideal quantity is not watched: it never counts as low.
bool IsBelowWarning(const LocationAndQuantities& stock) {
    return stock.quantity <= stock.warnQuantity && stock.idealQuantity != 0;
}

bool Passes(LStockFilter filter, const LocationAndQuantities& stock) {
    switch (filter) {
        case LStockFilter::kBelowWarning:
            return IsBelowWarning(stock);
        case LStockFilter::kAboveWarning:
            return !IsBelowWarning(stock);
        case LStockFilter::kAboveZero:
            return stock.quantity > 0;
        case LStockFilter::kAll:
            break;
    }
    return true;
}

class LItemListReader {
public:
    LItemListReader(const LProfile& profile, const LItemListFilter& filter,
                    const std::function<void(const LItemRow&)>& visit,
                    const std::function<void(const LItem&)>& nowhere)
        : profile_(profile),
          filter_(filter),
          visit_(visit),
          nowhere_(nowhere),
          categories_(profile, "Categories"),
          locations_(profile, "Locations"),
          taxes_(GetTaxNames(profile)),
          search_(FoldCase(filter.searchText)),
          buildable_(profile) {}

    void Read() {
        LItem item;
        const auto iterator = profile_.Items().CreateIteratorBase(item);
        for (; item.IsBound(); iterator->Next(item)) {
            if (IsWanted(item)) VisitRows(item);
        }
    }

private:
    bool IsWanted(const LItem& item) const {
        return !Excludes(filter_.category, categories_.Name(item.GetView("Category"))) &&
               !Excludes(filter_.subCategory, item.GetView("SubCategory")) && IsFound(item);
    }
    bool IsFound(const LItem& item) const {
        return search_.empty() ||
               FoldCase(item.GetView("Name")).find(search_) != std::string::npos ||
               FoldCase(item.GetView("Description")).find(search_) != std::string::npos;
    }

    void VisitRows(const LItem& item) {
        if (item.IsBuilt()) return VisitEntries(item, buildable_.Of(item));
        VisitEntries(item, ParseLocationAndQuantities(item.GetView("LocationsAndQuantities")));
    }
    void VisitEntries(const LItem& item, const LStockEntries& entries) {
        if (entries.empty()) return VisitNowhere(item);
        const std::string_view category = categories_.Name(item.GetView("Category"));
        const std::string_view tax = TaxName(item.GetInt("TaxRate", 0));
        for (const LocationAndQuantities& stock : entries) {
            const std::string_view location = locations_.Name(stock.location);
            if (Excludes(filter_.location, location) || !Passes(filter_.stock, stock)) continue;
            visit_({item, category, tax, location, stock, IsBelowWarning(stock)});
        }
    }
    void VisitNowhere(const LItem& item) {
        const bool isAnyPlace = !Excludes(filter_.location, {});
        if (nowhere_ && isAnyPlace && filter_.stock == LStockFilter::kAll) nowhere_(item);
    }
    // What is no index of the list: below it the default tax, above it none that exists any more.
    std::string_view TaxName(int index) const {
        if (index < 0) return taxes_.front();
        const size_t place = static_cast<size_t>(index);
        return place < taxes_.size() ? std::string_view(taxes_[place]) : std::string_view();
    }

    const LProfile& profile_;
    const LItemListFilter& filter_;
    const std::function<void(const LItemRow&)>& visit_;
    const std::function<void(const LItem&)>& nowhere_;
    const LNameMap categories_, locations_;
    const std::vector<std::string> taxes_;
    const std::string search_;
    LBuildableStock buildable_;
};

}  // namespace

void FillItemList(const LProfile& profile, const LItemListFilter& filter,
                  const std::function<void(const LItemRow&)>& visit,
                  const std::function<void(const LItem&)>& nowhere) {
    LItemListReader(profile, filter, visit, nowhere).Read();
}

std::string_view StockFilterName(LStockFilter filter) {
    return kStockFilterNames[static_cast<size_t>(filter)];
}

LStockFilter StockFilterFromName(std::string_view name) {
    for (size_t i = 0; i < kStockFilterNames.size(); ++i) {
        if (kStockFilterNames[i] == name) return static_cast<LStockFilter>(i);
    }
    return LStockFilter::kAll;
}
