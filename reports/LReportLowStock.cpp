#include "reports/LReportLowStock.h"

#include <algorithm>

#include "inventory/LItem.h"
#include "inventory/LNameMap.h"
#include "inventory/StockQuantities.h"
#include "platform/CaseFolding.h"

namespace {

constexpr LReportColumn kColumns[] = {{"Item", 9, kReportLeft},
                                      {"Description", 16, kReportLeft, true},
                                      {"Location", 14, kReportLeft},
                                      {"Quantity", 8, kReportRight},
                                      {"Warn Qty", 10, kReportRight},
                                      {"Ideal Qty", 10, kReportRight},
                                      kReportColumnsEnd};

struct LLowLine {
    std::string itemId, foldedCode, code, description, locationId;
    double quantity = 0, warnQuantity = 0, idealQuantity = 0;
};

bool IsLow(const LocationAndQuantities& entry) {
    return entry.idealQuantity > 0 && entry.warnQuantity >= entry.quantity;
}

std::vector<LLowLine> ReadLowLines(const LProfile& profile) {
    std::vector<LLowLine> lines;
    LItem item;
    const auto iterator = profile.Items().CreateIteratorBase(item);
    for (; item.IsBound(); iterator->Next(item)) {
        if (item.IsBuilt()) continue;
        for (const LocationAndQuantities& entry :
             ParseLocationAndQuantities(item.GetView("LocationsAndQuantities"))) {
            if (!IsLow(entry)) continue;
            const std::string code(item.GetView("Name"));
            lines.push_back({item.GetPrimaryKey(), FoldCase(code), code,
                             item.GetString("Description"), entry.location, entry.quantity,
                             entry.warnQuantity, entry.idealQuantity});
        }
    }
    std::stable_sort(lines.begin(), lines.end(), [](const LLowLine& left, const LLowLine& right) {
        return left.foldedCode < right.foldedCode;
    });
    return lines;
}

}  // namespace

LReportLowStock::LReportLowStock(const LProfile& profile)
    : LReport(profile, "Low Level Stock", kColumns) {}

void LReportLowStock::GenerateReport() {
    Clear();
    const LNameMap locations(Profile(), "Locations");
    for (const LLowLine& line : ReadLowLines(Profile())) {
        AddCells(
            {line.code, line.description, std::string(locations.Name(line.locationId)),
             Profile().FormatQuantity(line.quantity), Profile().FormatQuantity(line.warnQuantity),
             Profile().FormatQuantity(line.idealQuantity)},
            line.itemId);
    }
}
