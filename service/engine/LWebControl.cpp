#include "service/engine/LWebControl.h"

#include <string_view>

#include "service/link/LinkPages.h"
#include "web/accounts/AccountPages.h"
#include "web/accounts/AccountScripts.h"
#include "web/accounts/LogonPages.h"
#include "web/framework/FrameworkScripts.h"
#include "web/framework/RunPage.h"
#include "web/pages/CategoryPages.h"
#include "web/pages/CustomerPages.h"
#include "web/pages/HistoryPages.h"
#include "web/pages/ItemActions.h"
#include "web/pages/ItemDialogs.h"
#include "web/pages/ItemListPage.h"
#include "web/pages/LocationPages.h"
#include "web/pages/LowStockPages.h"
#include "web/pages/MainPage.h"
#include "web/pages/MovementDialog.h"
#include "web/pages/OrderActions.h"
#include "web/pages/OrderDialog.h"
#include "web/pages/OrderListPage.h"
#include "web/pages/RecurringPages.h"
#include "web/pages/ReportDialogs.h"
#include "web/pages/ReportPages.h"
#include "web/pages/SupplierPages.h"
#include "web/pages/TransferDialogs.h"
#include "web/pages/TransferPages.h"
#include "web/server/LWebletScripts.h"

namespace {

struct LWebScript {
    std::string_view name;
    LWebletScript script;
};

// Papers that this version cannot draw yet.
void WLNotBuilt(LWebletForm& form) { WLNotBuiltYet(form); }

// Every page of the program, in the order of installation. Names are part of what links, bookmarks
// and partner programs rely on, capitals and odd spellings included. Of a name that the modules
// below installed before, the row here wins.
constexpr LWebScript WebScriptArray[] = {
    {"", WLWebPageRun<InvMainPage>},
    {"logon", WLWebDialogRun<LAppWebAccountLogonPage>},
    {"logoff", WLLogout},
    {"main", WLWebPageRun<InvMainPage>},
    {"userlist", WLWebPageRun<LAppWebAccountsPage>},
    {"userprop", WLWebDialogRun<LAppWebAccountDialog>},
    {"userdelete", WLUserDelete},
    {"itemlist", WLWebPageRun<LAppWebItemsPage>},
    {"itemreceivelist", WLWebPageRun<LAppWebItemReceiveListPage>},
    {"itemselllist", WLWebPageRun<LAppWebItemSellListPage>},
    {"checkcat", WLCatAdd},
    {"itemprop", WLWebDialogRun<LAppWebItemDialog>},
    {"itemtransfer", WLWebDialogRun<LAppWebItemTransferDialog>},
    {"itempurchasesell", WLWebDialogRun<LAppWebItemPurchaseSellDialog>},
    {"itemdelete", WLItemDelete},
    {"catlist", WLWebPageRun<LAppWebCatPage>},
    {"catprop", WLWebDialogRun<LAppWebCatDialog>},
    {"catdelete", WLCatDelete},
    {"transferlist", WLWebPageRun<LWebTransferListPage>},
    {"transferview", WLWebDialogRun<LWebTransferViewDialog>},
    {"transfernote", WLWebDialogRun<LWebTransferNoteDialog>},
    {"transfersend", WLWebDialogRun<LWebTransferSendReceiveDialog>},
    {"transferreceive", WLWebDialogRun<LWebTransferSendReceiveDialog>},
    {"transfercancel", WLTransferCancel},
    {"generateTransferPDF", WLNotBuilt},
    {"supplierlist", WLWebPageRun<LAppWebSupplierPage>},
    {"supplierprop", WLWebDialogRun<LAppWebSupplierDialog>},
    {"supplierdelete", WLSupplierDelete},
    {"customerlist", WLWebPageRun<LAppWebCustomerPage>},
    {"customerprop", WLWebDialogRun<LAppWebCustomerDialog>},
    {"customerdelete", WLCustomerDelete},
    {"customerotherprop", WLWebDialogRun<LWebCustomerOtherDialog>},
    {"loclist", WLWebPageRun<LAppWebLocPage>},
    {"locprop", WLWebDialogRun<LAppWebLocDialog>},
    {"locdelete", WLLocDelete},
    {"reports", WLWebPageRun<LWebReportsPage>},
    {"generatereport", LWebReportsPage::GenerateReport},
    {"reportlowlevel", LWebReportsPage::GenerateReport},
    {"reportbackorder", LWebReportsPage::GenerateReport},
    {"reportlocation", WLWebDialogRun<LWebReportLocCatDialog>},
    {"reportcatimage", WLWebDialogRun<LWebReportCatImgDialog>},
    {"reportsupplier", WLWebDialogRun<LWebReportSupplierDialog>},
    {"reportsales", WLWebDialogRun<LWebReportSalesDialog>},
    {"chooseprofile", WLWebDialogRun<LWebSelectProfileDialog>},
    {"getsubcate", VWAJAXGetSubCate},
    {"orderlist", WLWebPageRun<LWebOrdersPage>},
    {"orderprop", WLWebDialogRun<LWebOrderDialog>},
    {"orderdelete", WLOrderDelete},
    {"orderreceive", WLOrderReceive},
    {"orderreturn", WLOrderReturn},
    {"orderregitems", WLOrderRegItems},
    {"orderschedule", WLWebDialogRun<LWebOrderRecurringDialog>},
    {"itemonorderlist", WLWebPageRun<LWebItemsOnOrderPage>},
    {"runrecurringorder", WLProcessRunRecurringOrder},
    {"ocbtaxtselchange", VWAJAXOCBTaxSelChange},
    {"orderchangeloc", VWAJAXOderLocationChange},
    {"orderlowstockitems", WLWebDialogRun<LWebOrderLowStockItemsDialog>},
    {"iteminventoryprop", WLWebDialogRun<LAppWebItemInventoryDialog>},
    {"itembomprop", WLWebDialogRun<LAppWebItemBOMDialog>},
    {"reportredirect", WLWebPageRun<LWebPageDownloadAndRedirect>},
    {"generatesuppreport", WLGenerateSuppReport},
    {"generateloccatreport", WLGenerateLocCatReport},
    {"generateimagecat", WLGenerateImageCatReport},
    {"generatesales", WLGenerateSalesReport},
    {"generateOrderPDF", WLNotBuilt},
    {"ratechanged", WLUseOldTaxRate},
    {"link-quantitychange", WLLinkQuantityChange},
    {"link-sync", WLLinkSync},
    {"link-locreq", WLLinkLocations},
};

}  // namespace

void LWebControl::StartServer() {
    InstallAccountScripts();
    InstallFrameworkScripts();
    InstallItemScripts();
    for (const LWebScript& row : WebScriptArray) LWebletInstallScript(row.name, row.script);
    LWebletServer::StartServer();
}
