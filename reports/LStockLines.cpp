#include "reports/LStockLines.h"

#include "inventory/LBuildableStock.h"
#include "inventory/LItem.h"
#include "inventory/LNameMap.h"
#include "inventory/StockQuantities.h"
#include "reports/LReport.h"

namespace {

class LStockLineReader {
public:
    LStockLineReader(const LProfile& profile, const LStockLineChoice& choice,
                     LStockLineDetail detail)
        : profile_(profile),
          choice_(choice),
          detail_(detail),
          locations_(profile, "Locations"),
          categories_(profile, "Categories"),
          buildable_(profile) {}

    LStockLines Read() {
        LItem item;
        const auto iterator = profile_.Items().CreateIteratorBase(item);
        for (; item.IsBound(); iterator->Next(item)) {
            const std::string_view category = categories_.Name(item.GetView("Category"));
            if (!ReportWants(choice_.category, category)) continue;
            if (!ReportWants(choice_.supplier, item.GetView("Supplier"))) continue;
            ReadItem(item, category);
        }
        return std::move(result_);
    }

private:
    void ReadItem(const LItem& item, std::string_view category) {
        const LStockEntries entries =
            item.IsBuilt() ? buildable_.Of(item)
                           : ParseLocationAndQuantities(item.GetView("LocationsAndQuantities"));
        const size_t linesBefore = result_.lines.size(), place = result_.items.size();
        if (detail_ == LStockLineDetail::kByItem) {
            LStockLine& line = result_.lines.emplace_back(LStockLine{place, NumberOf(""), 0});
            for (const LocationAndQuantities& entry : entries) line.quantity += entry.quantity;
        } else {
            for (const LocationAndQuantities& entry : entries) {
                const std::string_view location = locations_.Name(entry.location);
                if (!ReportWants(choice_.location, location)) continue;
                result_.lines.push_back({place, NumberOf(location), entry.quantity});
            }
        }
        if (result_.lines.size() > linesBefore) AddItem(item, category);
    }

    void AddItem(const LItem& item, std::string_view category) {
        LStockItem& added = result_.items.emplace_back();
        added.id = item.GetPrimaryKey();
        added.code = item.GetView("Name");
        added.description = item.GetView("Description");
        added.category = NumberOf(category);
        added.supplier = NumberOf(item.GetView("Supplier"));
        added.cost = item.Cost();
        added.price = item.Price();
        if (detail_ == LStockLineDetail::kByItem) {
            added.hasPicture = !GetItemPictureFile(profile_, item).empty();
        }
    }

    size_t NumberOf(std::string_view name) { return result_.names.Add(name); }

    const LProfile& profile_;
    const LStockLineChoice& choice_;
    const LStockLineDetail detail_;
    const LNameMap locations_, categories_;
    LBuildableStock buildable_;
    LStockLines result_;
};

}  // namespace

size_t LNameNumbers::Add(std::string_view name) {
    const auto found = numbers_.find(name);
    if (found != numbers_.end()) return found->second;
    names_.emplace_back(name);
    return numbers_.emplace(name, names_.size() - 1).first->second;
}

LStockLines ReadStockLines(const LProfile& profile, const LStockLineChoice& choice,
                           LStockLineDetail detail) {
    return LStockLineReader(profile, choice, detail).Read();
}
