#include "orders/OrderWriter.h"

#include <utility>

#include "inventory/MasterRecords.h"
#include "inventory/OrderReferences.h"
#include "orders/OrderItems.h"

namespace {

// What a line keeps of the stored one that it was made from.
struct LStoredLine {
    std::string itemId, taxChoice, taxRate;
    double received = 0;
};

std::vector<LStoredLine> StoredLines(const LTaxOptions& options, const LPOrder& order) {
    std::vector<LStoredLine> lines;
    for (int line = 0; line < order.GetItemCount(); ++line) {
        lines.push_back({order.GetItemID(line), LOrderLineTaxChoice(options, order, line),
                         order.GetString(LOrderLineField(line + 1, "TaxRate")),
                         order.GetItemQtyReceived(line)});
    }
    return lines;
}

// Each is handed out once: a copied line has received nothing.
LStoredLine TakeStoredLine(std::vector<LStoredLine>& lines, const LOrderReadLine& line) {
    const bool isThere =
        line.storedLine >= 1 && static_cast<size_t>(line.storedLine) <= lines.size();
    return isThere ? std::exchange(lines[static_cast<size_t>(line.storedLine) - 1], {})
                   : LStoredLine();
}

std::string ChoiceOf(const LOrderReadLine& line) {
    return line.taxName.empty() ? std::string(kTaxDefaultName) : line.taxName;
}

}  // namespace

bool LOrderWriter::Compute(const LPOrder& stored, LPOrder& order) const {
    order.CopyRecord(stored);
    std::vector<std::string> ids;
    for (const LOrderReadLine& line : read_.lines) ids.push_back(line.code);
    return Fill(order, ids);
}

LOrderError LOrderWriter::Check(const LPOrder& stored) const {
    const auto refuse = [](LOrderField field, std::string message) {
        LOrderError error;
        static_cast<LFieldError<LOrderField>&>(error) =
            LFieldError<LOrderField>::At(field, std::move(message));
        return error;
    };
    LPOrder order;
    if (!Compute(stored, order)) {
        return refuse(LOrderField::kLines,
                      "The total of this order is too large. Check the quantities and costs.");
    }
    const bool isGone =
        !input_.locationId.empty() && !LLocationList(profile_).TestRecordExists(input_.locationId);
    if (!isGone) return {};
    return refuse(LOrderField::kLocation, "This location has been deleted in the meantime.");
}

bool LOrderWriter::Write(LPOrder& order, LNewItems newItems) const {
    LSupplier supplier;
    std::vector<std::string> ids;
    if (!KeepSupplier(order, supplier)) return false;
    if (!FindItems(supplier.GetString("Name"), newItems, ids)) return false;
    order.SetString("Supplier", supplier.GetPrimaryKey());
    if (!Fill(order, ids)) return false;
    AddToNameList(profile_, "ShipBy", input_.shipBy);
    return order.Flush();
}

bool LOrderWriter::Fill(LPOrder& order, const std::vector<std::string>& itemIds) const {
    FillHead(order);
    FillLines(order, itemIds);
    LOrderStoreTaxRates(options_, order, rates_);
    return LOrderSumTotals(profile_, order, rates_);
}

void LOrderWriter::FillHead(LPOrder& order) const {
    order.SetString("Date", read_.date);
    order.SetString("Receipt Date", read_.receiptDate);
    order.SetString("Location", input_.locationId);
    order.SetString("ShipBy", input_.shipBy);
    order.SetString("TrackingRef", input_.trackingRef);
    order.SetString("Address", input_.address);
    order.SetString("ShippingAddress", input_.shippingAddress);
    order.SetString("Notes", input_.notes);
    order.SetString("NotesIternal", input_.internalNotes);
    order.SetBool("SameAsBillTo", input_.isSameAsBillTo);
    order.SetInt("OrderType", kOrderTypePurchase);
    const bool wasNotTaxed = order.GetInt("TaxRate", 0) == kOrderNotTaxed;
    if (wasNotTaxed != input_.isNotTaxed) {
        order.SetInt("TaxRate", input_.isNotTaxed ? kOrderNotTaxed : 0);
    }
}

void LOrderWriter::FillLines(LPOrder& order, const std::vector<std::string>& itemIds) const {
    std::vector<LStoredLine> stored = StoredLines(options_, order);
    order.SetItemCount(static_cast<int>(read_.lines.size()));
    int at = -1;
    for (const LOrderReadLine& line : read_.lines) {
        ++at;
        const LStoredLine from = TakeStoredLine(stored, line);
        const std::string& itemId = itemIds[static_cast<size_t>(at)];
        order.SetItemID(at, itemId);
        order.SetItemDescription(at, line.description);
        order.SetItemMeasure(at, line.measure);
        order.SetItemQty(at, line.quantity);
        order.SetItemUnitValue(at, line.unitCost.minorUnits);
        order.SetItemUnitValueDigits(at, line.unitCost.digits);
        order.SetItemTaxName(at, ChoiceOf(line));
        // Another choice of tax has no rate of old.
        const bool keepsTax = ChoiceOf(line) == from.taxChoice;
        order.SetString(LOrderLineField(at + 1, "TaxRate"), keepsTax ? from.taxRate : "");
        // Another item on the line has not been received yet.
        const double received = itemId == from.itemId ? from.received : 0;
        if (received != order.GetItemQtyReceived(at)) order.SetItemQtyReceived(at, received);
    }
}

// The supplier of the name that was entered, made when nobody bears it; unbound for no name.
bool LOrderWriter::KeepSupplier(const LPOrder& order, LSupplier& supplier) const {
    if (read_.supplier.empty()) return true;
    const LSupplierList suppliers(profile_);
    // Of two that share a name the order keeps the one it had.
    const bool isKept = suppliers.Open(supplier, order.GetView("Supplier")) &&
                        supplier.GetView("Name") == read_.supplier;
    if (isKept || OpenSupplier(suppliers, supplier, read_.supplier)) return true;
    suppliers.CreateNewRecord(supplier);
    supplier.SetString("Name", read_.supplier);
    return supplier.Flush();
}

bool LOrderWriter::FindItems(std::string_view supplierName, LNewItems newItems,
                             std::vector<std::string>& ids) const {
    LOrderItems items(profile_);
    LNewOrderItem newItem;
    newItem.supplierName = supplierName;
    newItem.locationId = input_.locationId;
    for (const LOrderReadLine& line : read_.lines) {
        std::string id = line.code.empty() ? std::string() : items.Find(line.code);
        // Where the code would be the key of another item the line cannot name its own without it.
        const bool mustMake = newItems == LNewItems::kMake || !items.IsKeyFree(line.code);
        if (id.empty() && !line.code.empty() && mustMake) {
            newItem.code = line.code;
            newItem.description = line.description;
            newItem.unitCost = line.unitCost;
            newItem.taxIndex = ListNameToTax(options_, ChoiceOf(line));
            id = items.Create(newItem);
            if (id.empty()) return false;
        }
        ids.push_back(id.empty() ? line.code : id);
    }
    return true;
}
