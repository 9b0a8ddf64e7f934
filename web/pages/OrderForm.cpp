#include "web/pages/OrderForm.h"

#include <algorithm>

#include "inventory/OrderReferences.h"
#include "web/pages/ItemForm.h"

namespace {

std::string RowField(const LHashTable& fields, int row, int part) {
    return Field(fields, OrderRowControl(row, part));
}

LOrderLineInput LineFrom(const LHashTable& fields, int row) {
    LOrderLineInput line;
    line.code = RowField(fields, row, kOrderRowCode);
    line.description = RowField(fields, row, kOrderRowDescription);
    line.measure = RowField(fields, row, kOrderRowMeasure);
    line.quantity = RowField(fields, row, kOrderRowQuantity);
    line.unitCost = RowField(fields, row, kOrderRowCost);
    line.taxName = RowField(fields, row, kOrderRowTax);
    line.storedLine = fields.GetInt(std::to_string(OrderRowControl(row, kOrderRowStored)), 0);
    return line;
}

}  // namespace

LOrderInput OrderInputFrom(const LHashTable& fields, std::string id) {
    LOrderInput input;
    input.id = std::move(id);
    input.supplier = Field(fields, kOrderSupplier);
    input.date = Field(fields, kOrderDate);
    input.receiptDate = Field(fields, kOrderReceiptDate);
    input.locationId = Field(fields, kOrderLocation);
    input.shipBy = Field(fields, kOrderShipBy);
    input.trackingRef = Field(fields, kOrderTracking);
    input.address = Field(fields, kOrderAddress);
    input.isSameAsBillTo = !Field(fields, kOrderSameAsBillTo).empty();
    input.shippingAddress =
        input.isSameAsBillTo ? input.address : Field(fields, kOrderShippingAddress);
    input.notes = Field(fields, kOrderNotes);
    input.internalNotes = Field(fields, kOrderInternalNotes);
    input.isNotTaxed = !Field(fields, kOrderUntaxed).empty();
    const int rates = fields.GetInt(std::to_string(kOrderRates), 0);
    if (rates == kOrderUseOldRates) input.taxRates = LTaxRates::kStored;
    if (rates == kOrderUseNewRates) input.taxRates = LTaxRates::kPresent;
    const int rows =
        std::clamp(fields.GetInt(std::to_string(kOrderRowCount), 0), 0, kMaxOrderLines + 1);
    for (int row = 0; row < rows; ++row) input.lines.push_back(LineFrom(fields, row));
    return input;
}

int OrderControlOf(const LOrderError& error) {
    switch (error.field.value_or(LOrderField::kLines)) {
        case LOrderField::kDate:
            return kOrderDate;
        case LOrderField::kReceiptDate:
            return kOrderReceiptDate;
        case LOrderField::kSupplier:
            return kOrderSupplier;
        case LOrderField::kLocation:
            return kOrderLocation;
        case LOrderField::kQuantity:
            return OrderRowControl(std::max(error.line, 0), kOrderRowQuantity);
        case LOrderField::kUnitCost:
            return OrderRowControl(std::max(error.line, 0), kOrderRowCost);
        default:
            return OrderRowControl(std::max(error.line, 0), kOrderRowCode);
    }
}
