#include "web/pages/MainPage.h"

void InvMainPage::Generate() {
    const std::string business = Profile().BusinessName();
    SetTitle(business.empty() ? "Main" : business);
    AddStockLinks();
    AddTradeLinks();
    AddSettingUpLinks();
}

void InvMainPage::AddStockLinks() {
    AddSection("Stock");
    AddLink("itemlist", "Items", "What you stock, how many, and where");
    if (!IsViewer()) {
        AddLink("itempurchasesell?type=receive", "Receive", "Put a delivery into stock");
        AddLink("itempurchasesell?type=sell", "Sell",
                "Sell, or write off what was damaged or lost");
        AddLink("itemtransfer", "Move", "Take stock from one location to another");
    }
    AddLink("itemlist?stock=Below%20warning%20level", "Low stock",
            "Items at or below their warning");
    AddLink("orderlowstockitems", "Order low stock",
            "Order what falls short of its ideal quantity");
    AddLink("itemreceivelist", "Receiving history", "What came in, and from whom");
    AddLink("itemselllist", "Sales history", "What went out, and to whom");
    AddLink("transferlist", "Transfers", "What moves between locations, and how far it has come");
    AddLink("reports", "Reports", "Stock and its value, low stock, backorders, sales and profit");
}

void InvMainPage::AddTradeLinks() {
    AddSection("Buying and selling");
    AddLink("orderlist", "Purchase orders", "What you order, and what has come of it");
    AddLink("itemonorderlist", "Items on order", "What is still to come");
    AddLink("orderschedule", "Recurring orders", "What is ordered again and again");
    AddLink("supplierlist", "Suppliers", "Whom you buy from");
    AddLink("customerlist", "Customers", "Whom you sell to");
}

void InvMainPage::AddSettingUpLinks() {
    AddSection("Setting up");
    AddLink("catlist", "Categories", "How items are grouped");
    AddLink("loclist", "Locations", "Where stock lies");
    if (WLIsAdministator(Form())) AddLink("userlist", "Users", "Who may log on, and as what");
    AddLink("chooseprofile", "Choose business", "Work on another business");
    AddLink("changepassword", "Change password", "Choose a new password for yourself");
}
