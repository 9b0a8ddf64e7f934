// What has been ordered and has not arrived yet.
#pragma once

#include <functional>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

#include "datastore/LProfile.h"

// The quantities on order of all items at all locations, from one pass over the recorded orders.
// Drafts and templates do not count; a received order has nothing to come, a partly received one
// what is still to come.
class LQuantitiesOnOrder {
public:
    explicit LQuantitiesOnOrder(const LProfile& profile);

    // In the item's unit; 0 for what nobody has ordered. Letter case counts in both: the item's key
    // and the location's name.
    double Of(std::string_view itemId, std::string_view locationName) const;

private:
    // Hashed: ten thousand items ask once for each of their locations.
    struct LHash {
        using is_transparent = void;
        size_t operator()(std::string_view text) const {
            return std::hash<std::string_view>()(text);
        }
    };
    struct LAtLocation {
        std::string locationName;
        double quantity = 0;
    };
    using LByItem =
        std::unordered_map<std::string, std::vector<LAtLocation>, LHash, std::equal_to<>>;

    void Add(std::string_view itemId, std::string_view locationName, double quantity);

    LByItem byItem_;
};

// The same for one item at one location. Reads all orders: who asks more than once makes the table.
double GetOrderedQuantity(const LProfile& profile, std::string_view itemId,
                          std::string_view locationName);
