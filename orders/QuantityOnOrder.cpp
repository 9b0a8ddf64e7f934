#include "orders/QuantityOnOrder.h"

#include <algorithm>

#include "inventory/OrderReferences.h"
#include "orders/LPOrderList.h"

LQuantitiesOnOrder::LQuantitiesOnOrder(const LProfile& profile) : locations_(profile, "Locations") {
    LRecordedPOrderList(profile).ForEach([&](const LPOrder& order) {
        const eStockReceivedStatus status = order.GetStockReceivedStatus();
        if (status == StockFullyReceived) return true;
        const std::string_view location = locations_.Name(order.GetView("Location"));
        for (int line = 0; line < order.GetItemCount(); ++line) {
            double quantity = order.GetItemQty(line);
            if (status == StockPartiallyReceived) quantity -= order.GetItemQtyReceived(line);
            Add(order.GetView(LOrderLineField(line + 1, "ID")), location, quantity);
        }
        return true;
    });
}

void LQuantitiesOnOrder::Add(std::string_view itemId, std::string_view locationName,
                             double quantity) {
    auto found = byItem_.find(itemId);
    if (found == byItem_.end()) found = byItem_.try_emplace(std::string(itemId)).first;
    std::vector<LAtLocation>& places = found->second;
    const auto place = std::find_if(places.begin(), places.end(), [&](const LAtLocation& at) {
        return at.locationName == locationName;
    });
    if (place != places.end()) {
        place->quantity += quantity;
    } else {
        places.push_back({locationName, quantity});
    }
}

std::span<const LQuantitiesOnOrder::LAtLocation> LQuantitiesOnOrder::Of(
    std::string_view itemId) const {
    const auto found = byItem_.find(itemId);
    if (found == byItem_.end()) return {};
    return found->second;
}

double LQuantitiesOnOrder::At(std::span<const LAtLocation> places, std::string_view locationName) {
    for (const LAtLocation& at : places) {
        if (at.locationName == locationName) return at.quantity;
    }
    return 0;
}

double GetOrderedQuantity(const LProfile& profile, std::string_view itemId,
                          std::string_view locationName) {
    return LQuantitiesOnOrder(profile).Of(itemId, locationName);
}
