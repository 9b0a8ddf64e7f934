// What the tabs of the item dialog hold, as texts by control id: read from a record, from a request
// or from what another tab kept, and turned into what the item operations take.
#pragma once

#include <optional>
#include <string>
#include <vector>

#include "datastore/LHashTable.h"
#include "datastore/LProfile.h"
#include "inventory/ItemSave.h"
#include "inventory/LItem.h"

enum LItemControl {
    kItemCode = 101,
    kItemDescription = 102,
    kItemCategory = 103,
    kItemSubCategory = 104,
    kItemCost = 105,
    kItemPrice = 106,
    kItemTax = 107,
    kItemMeasure = 108,
    kItemWebSite = 109,
    kItemNotes = 110,
    kItemCustom1 = 111,
    kItemCustom2 = 112,
    kItemPicture = 113,        // a file
    kItemRemovePicture = 114,  // a check box
    kItemSupplier = 201,
    kItemSupplierId = 202,
    kItemWarningEmail = 203,
    kItemRowCount = 204,
    kItemIsBuilt = 301,
    kItemComponents = 401,  // lines, see ItemLines.h
    kItemFirstRow = 1000    // kItemRowStep ids for each location, see LItemRowPart
};

// A row of the stock table: what is typed, and what stood there when it was shown, so that a
// quantity which nobody touched does not undo a sale made meanwhile.
enum LItemRowPart {
    kRowQuantity = 0,
    kRowIdeal = 1,
    kRowWarning = 2,
    kRowShown = 3,  // the three texts as shown, at kRowShown + part
    kRowLocation = 6,
    kItemRowStep = 10
};
constexpr int ItemRowControl(int row, int part) {
    return kItemFirstRow + row * kItemRowStep + part;
}

// The general tab.
LHashTable GeneralFieldsOf(const LProfile& profile, const LItem& item);
LItemInput GeneralInput(const LHashTable& fields, const LItem& item);
// The control that a refusal of the general part belongs to.
int GeneralControlOf(LItemField field);

// The inventory tab: supplier, warning e-mail, and a row for each location of the business.
LHashTable StockFieldsOf(const LProfile& profile, const LItem& item);
struct LTabFieldError {
    int control = 0;
    std::string message;
};
// Rows that were not touched are taken from `item` as it is stored now; hold the business's
// movement lock from before the item was read until the input is saved. Nothing when a text is no
// number: `error` then names the control.
std::optional<LItemStockInput> StockInput(const LProfile& profile, const LHashTable& fields,
                                          const LItem& item, LTabFieldError& error);
int StockRowCount(const LHashTable& fields);

// The components tab: whether the item is built, and a line for each component.
LHashTable ComponentFieldsOf(const LProfile& profile, const LItem& item);
// Sets what the general input says of them. False when a line is wrong: `error` names its control.
bool ComponentsInput(const LProfile& profile, const LHashTable& fields, LItemInput& input,
                     LTabFieldError& error);
// What a component is and costs, on one line; says so when there is no such item.
std::string ComponentNote(const LProfile& profile, std::string_view code);

std::string Field(const LHashTable& fields, int control);  // empty when missing
