#include "web/pages/MovementDialog.h"

#include <algorithm>

#include "inventory/MasterRecords.h"
#include "inventory/OrderReferences.h"
#include "inventory/StockMovements.h"
#include "inventory/StockQuantities.h"
#include "orders/OrderListView.h"
#include "orders/OrderReceiving.h"
#include "web/pages/NameChoices.h"

namespace {

enum {
    kMoveCode = 101,
    kMoveLocation = 102,
    kMoveQuantity = 103,
    kMoveAmount = 104,
    kMoveParty = 105,
    kMoveWriteOff = 106,
    kMoveDate = 107,
    kMoveText = 108,
    kMoveOrder = 109
};

}  // namespace

LAppWebItemPurchaseSellDialog::LAppWebItemPurchaseSellDialog(LWebletForm& form)
    : LWebDialogEA(form) {
    SetOkCancelPage("itemlist", "itemlist");
    for (const char* name : {"id", "type", "loc"}) KeepParameter(name);
    UseOneTimeToken();
}

bool LAppWebItemPurchaseSellDialog::Prepare() {
    isSale_ = Form().Parameter("type") == "sell";
    SetTitle(isSale_ ? "Sell stock" : "Receive stock");
    const std::string id = Form().Parameter("id");
    if (id.empty() || Profile().Items().Open(item_, id)) return true;
    Redirect("itemlist");  // another tab was quicker
    return false;
}

void LAppWebItemPurchaseSellDialog::Generate() {
    GenerateItem();
    GenerateLocation();
    LInputOptions number;
    number.widthChars = 12;
    StartRow().AddStatic("Quantity").AddInputNumber(kMoveQuantity, "", number);
    std::string amount;
    if (item_.IsBound()) {
        amount = Profile().FormatMoneyInput(OwnAmount());
    } else {
        number.hint = isSale_ ? "Empty: the item's own price" : "Empty: the item's own cost";
    }
    StartRow()
        .AddStatic(isSale_ ? "Unit price" : "Unit cost")
        .AddInputNumber(kMoveAmount, amount, number);
    GenerateParty();
    StartRow().AddStatic("Date").AddDateInput(kMoveDate, LDate::Today());
    StartRow().AddStatic("Reference").AddInput(kMoveText, "");
}

void LAppWebItemPurchaseSellDialog::GenerateItem() {
    if (item_.IsBound()) {
        StartRow().AddStatic("Item").AddStaticBold(item_.GetString("Name"));
        StartRow().AddStatic("").AddStatic(item_.GetString("Description"));
        return;
    }
    std::vector<std::string> codes;
    GetItemIndex(Profile(), codes);
    std::sort(codes.begin(), codes.end());
    StartRow().AddStatic("Item code").AddEditablePullDownList(kMoveCode, codes, "");
}

// Says with each location what lies there.
void LAppWebItemPurchaseSellDialog::GenerateLocation() {
    std::vector<LOption> options;
    for (const std::string& name : SortedNames(Profile(), "Locations")) {
        std::string text = name;
        if (item_.IsBound()) {
            const double stock = GetItemsInStock(Profile(), item_, name);
            text += " (" + Profile().FormatQuantity(stock) + " in stock)";
        }
        options.push_back({name, text});
    }
    StartRow()
        .AddStatic("Location")
        .AddPullDownListEx(kMoveLocation, options, Form().Parameter("loc"));
}

void LAppWebItemPurchaseSellDialog::GenerateParty() {
    if (!isSale_) {
        StartRow()
            .AddStatic("Supplier")
            .AddEditablePullDownList(kMoveParty, SortedNames(Profile(), "Suppliers"),
                                     item_.GetString("Supplier"));
        GenerateOrder();
        return;
    }
    LInputOptions look;
    look.hint = "A new name is kept as a new customer";
    StartRow()
        .AddStatic("Customer")
        .AddEditablePullDownList(kMoveParty, SortedNames(Profile(), "Customers"), "", look);
    StartRow().AddStatic("").AddCheckBox(kMoveWriteOff, "Damaged or lost: write it off", false);
}

// The orders that the delivery may belong to: recorded, not fully received, with a line for the
// item where it is known.
void LAppWebItemPurchaseSellDialog::GenerateOrder() {
    std::vector<LOption> orders{{"", "None", {}}};
    FillOrderList(Profile(), {LOrdersShown::kRecorded, true, false}, [&](const LOrderRow& row) {
        if (item_.IsBound() && !OrderHasLineFor(row.order, item_.GetPrimaryKey())) return;
        const std::string& id = row.order.GetPrimaryKey();
        orders.push_back({id, id + " " + std::string(row.supplierName), {}});
    });
    if (orders.size() == 1) return;
    StartRow()
        .AddStatic("Purchase order")
        .AddPullDownListEx(kMoveOrder, orders, Form().Parameter("order"));
}

bool LAppWebItemPurchaseSellDialog::CmOk() {
    return ReadItem() && ReadNumbers() && (isSale_ ? Sell() : Receive());
}

LMoney LAppWebItemPurchaseSellDialog::OwnAmount() const {
    return isSale_ ? item_.Price() : item_.Cost();
}

bool LAppWebItemPurchaseSellDialog::ReadItem() {
    if (item_.IsBound() || OpenItem(Profile(), item_, GetTextAndTrim(kMoveCode))) return true;
    PopupControlDataInvalid(kMoveCode, "Enter the code of an item.");
    return false;
}

bool LAppWebItemPurchaseSellDialog::ReadNumbers() {
    const std::optional<double> quantity = Profile().ParseNumber(GetText(kMoveQuantity));
    if (!quantity || *quantity <= 0) {
        PopupControlDataInvalid(kMoveQuantity, "Enter a quantity greater than 0.");
        return false;
    }
    // Where the form did not know the item it could not show the item's own amount.
    const bool mayBeEmpty = Form().Parameter("id").empty() || (isSale_ && GetCheck(kMoveWriteOff));
    const std::string amountText = GetTextAndTrim(kMoveAmount);
    const std::optional<LMoney> amount =
        mayBeEmpty && amountText.empty() ? OwnAmount() : Profile().ParseMoney(amountText);
    if (!amount || amount->minorUnits < 0) {
        PopupControlDataInvalid(kMoveAmount,
                                "Enter a proper currency value. For description only (non charge "
                                "items) enter 0.");
        return false;
    }
    const std::optional<LDate> date = GetDate(kMoveDate);
    if (!date) {
        PopupControlDataInvalid(kMoveDate, "Enter the date of the day.");
        return false;
    }
    quantity_ = *quantity;
    unitAmount_ = *amount;
    date_ = *date;
    return true;
}

bool LAppWebItemPurchaseSellDialog::Receive() {
    LReceipt receipt;
    receipt.supplier = GetTextAndTrim(kMoveParty);
    receipt.itemId = item_.GetPrimaryKey();
    receipt.locationName = GetText(kMoveLocation);
    receipt.text = GetTextAndTrim(kMoveText);
    receipt.quantity = quantity_;
    receipt.unitCost = unitAmount_;
    receipt.date = date_;
    receipt.orderId = GetText(kMoveOrder);
    if (!receipt.orderId.empty() && !Profile().Orders().TestRecordExists(receipt.orderId)) {
        PopupControlDataInvalid(kMoveOrder, "This order has been deleted in the meantime.");
        return false;
    }
    if (LOrderReceiveItem(Profile(), receipt)) return true;
    if (item_.IsBuilt()) TokenStaysSpent();  // some components may be in stock already
    PopupBoxError("The stock could not be received. Check the item and the location.");
    return false;
}

bool LAppWebItemPurchaseSellDialog::Sell() {
    LSale sale;
    sale.isWriteOff = GetCheck(kMoveWriteOff);
    sale.customer = GetTextAndTrim(kMoveParty);
    sale.reference = GetTextAndTrim(kMoveText);
    sale.date = date_;
    sale.lines.push_back({item_.GetString("Name"), GetText(kMoveLocation), quantity_, unitAmount_});
    int linesSold = 0;
    const LSaleError error = LSellStock(Profile(), sale, linesSold);
    if (!ShowFieldError(error, [](LSaleField) { return static_cast<int>(kMoveParty); })) {
        return false;
    }
    if (linesSold == 1) return true;
    if (item_.IsBuilt()) TokenStaysSpent();  // some components may be out of stock already
    PopupBoxError("The stock could not be sold. Check the item and the location.");
    return false;
}
