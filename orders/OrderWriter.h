// Writing what was entered into an order record, its lines, rates and totals included. For the
// operations of the editor.
#pragma once

#include <string>
#include <vector>

#include "inventory/Parties.h"
#include "orders/LPOrder.h"
#include "orders/OrderInput.h"
#include "orders/OrderTaxes.h"

enum class LNewItems { kMake, kLater };

// Used under the movement lock; the input must outlive it.
class LOrderWriter {
public:
    LOrderWriter(const LProfile& profile, const LOrderInput& input, const LOrderRead& read,
                 LTaxRates rates)
        : profile_(profile), input_(input), read_(read), options_(profile), rates_(rates) {}

    // Fills `order`, unbound, with what would be stored over `stored`. False when an amount does
    // not fit. Neither supplier nor items are made.
    [[nodiscard]] bool Compute(const LPOrder& stored, LPOrder& order) const;
    // Whether everything can be written over `stored`; otherwise why not.
    LOrderError Check(const LPOrder& stored) const;
    // Makes the supplier and, as told, items, then writes all fields into the bound order and saves
    // it. After Check. False when something could not be stored.
    [[nodiscard]] bool Write(LPOrder& order, LNewItems newItems) const;

private:
    void FillHead(LPOrder& order) const;
    void FillLines(LPOrder& order, const std::vector<std::string>& itemIds) const;
    [[nodiscard]] bool Fill(LPOrder& order, const std::vector<std::string>& itemIds) const;
    bool KeepSupplier(const LPOrder& order, LSupplier& supplier) const;
    bool FindItems(std::string_view supplierName, LNewItems newItems,
                   std::vector<std::string>& ids) const;

    const LProfile& profile_;
    const LOrderInput& input_;
    const LOrderRead& read_;
    const LTaxOptions options_;
    const LTaxRates rates_;
};
