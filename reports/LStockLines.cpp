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

    std::vector<LStockLine> Read() {
        LItem item;
        const auto iterator = profile_.Items().CreateIteratorBase(item);
        for (; item.IsBound(); iterator->Next(item)) {
            const std::string_view category = categories_.Name(item.GetView("Category"));
            if (!ReportWants(choice_.category, category)) continue;
            if (!ReportWants(choice_.supplier, item.GetView("Supplier"))) continue;
            ReadItem(item, category);
        }
        return std::move(lines_);
    }

private:
    void ReadItem(const LItem& item, std::string_view category) {
        const LStockEntries entries =
            item.IsBuilt() ? buildable_.Of(item)
                           : ParseLocationAndQuantities(item.GetView("LocationsAndQuantities"));
        if (detail_ == LStockLineDetail::kByItem) return AddItem(item, category, entries);
        for (const LocationAndQuantities& entry : entries) {
            const std::string_view location = locations_.Name(entry.location);
            if (!ReportWants(choice_.location, location)) continue;
            LStockLine& line = AddLine(item, category);
            line.location = location;
            line.quantity = entry.quantity;
        }
    }

    void AddItem(const LItem& item, std::string_view category, const LStockEntries& entries) {
        LStockLine& line = AddLine(item, category);
        line.hasPicture = !GetItemPictureFile(profile_, item).empty();
        for (const LocationAndQuantities& entry : entries) line.quantity += entry.quantity;
    }

    LStockLine& AddLine(const LItem& item, std::string_view category) {
        LStockLine& line = lines_.emplace_back();
        line.itemId = item.GetPrimaryKey();
        line.code = item.GetView("Name");
        line.description = item.GetView("Description");
        line.category = category;
        line.supplier = item.GetView("Supplier");
        line.cost = item.Cost();
        line.price = item.Price();
        return line;
    }

    const LProfile& profile_;
    const LStockLineChoice& choice_;
    const LStockLineDetail detail_;
    const LNameMap locations_, categories_;
    LBuildableStock buildable_;
    std::vector<LStockLine> lines_;
};

}  // namespace

std::vector<LStockLine> ReadStockLines(const LProfile& profile, const LStockLineChoice& choice,
                                       LStockLineDetail detail) {
    return LStockLineReader(profile, choice, detail).Read();
}
