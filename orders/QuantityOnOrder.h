// What has been ordered and has not arrived yet.
#pragma once

#include <functional>
#include <span>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

#include "datastore/LProfile.h"
#include "inventory/LNameMap.h"

// The quantities on order of all items at all locations, from one pass over the recorded orders.
// Drafts and templates do not count; a received order has nothing to come, a partly received one
// what is still to come.
class LQuantitiesOnOrder {
public:
    explicit LQuantitiesOnOrder(const LProfile& profile);

    struct LAtLocation {
        std::string_view locationName;  // lives as long as the table
        double quantity = 0;            // in the item's unit
    };
    // Where some of the item is on order, by its key; letter case counts.
    std::span<const LAtLocation> Of(std::string_view itemId) const;
    // 0 for what nobody has ordered.
    double Of(std::string_view itemId, std::string_view locationName) const {
        return At(Of(itemId), locationName);
    }
    // The quantity at the location of that name; letter case counts.
    static double At(std::span<const LAtLocation> places, std::string_view locationName);

private:
    // Hashed: ten thousand items ask.
    struct LHash {
        using is_transparent = void;
        size_t operator()(std::string_view text) const {
            return std::hash<std::string_view>()(text);
        }
    };
    using LByItem =
        std::unordered_map<std::string, std::vector<LAtLocation>, LHash, std::equal_to<>>;

    void Add(std::string_view itemId, std::string_view locationName, double quantity);

    const LNameMap locations_;
    LByItem byItem_;
};

// The same for one item at one location. Reads all orders: who asks more than once makes the table.
double GetOrderedQuantity(const LProfile& profile, std::string_view itemId,
                          std::string_view locationName);
