// Receiving or selling stock of one item.
#pragma once

#include "inventory/LItem.h"
#include "web/accounts/BusinessPages.h"

// "type" says which: "receive" or "sell". "id" names the item and "loc" the location to begin with;
// without "id" the form asks for the item's code.
class LAppWebItemPurchaseSellDialog : public LWebDialogEA {
public:
    explicit LAppWebItemPurchaseSellDialog(LWebletForm& form);

protected:
    bool Prepare() override;
    void Generate() override;
    bool CmOk() override;

private:
    void GenerateItem();
    void GenerateLocation();
    void GenerateParty();
    void GenerateOrder();
    LMoney OwnAmount() const;  // the item's price or cost
    bool ReadItem();
    bool ReadNumbers();
    bool Receive();
    bool Sell();

    bool isSale_ = false;
    LItem item_;
    double quantity_ = 0;
    LMoney unitAmount_;
    LDate date_;
};
