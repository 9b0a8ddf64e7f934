// What the editor of an order does: checking, keeping drafts, recording, templates, the list.
#include "orders/OrderEditor.h"

#include <gtest/gtest.h>
#include <sys/resource.h>

#include <csignal>
#include <functional>
#include <thread>

#include "inventory/LItem.h"
#include "orders/LPOrderList.h"
#include "orders/OrderItems.h"
#include "orders/OrderListView.h"
#include "orders/OrderRecording.h"
#include "tests/orders/LOrderShop.h"
#include "tests/support/LScriptedUserInterface.h"

namespace {

struct LEditorShop : LOrderShop {
    std::string bolt = Add("Items", {{"Name", "BOLT"}});
    std::string acme = Add("Suppliers", {{"Name", "Acme"}});

    LOrderInput Input() const {
        LOrderInput input = LOrderNewInput(profile);
        input.supplier = "Acme";
        input.date = "2024-03-04";
        input.receiptDate = "2024-03-04";
        input.lines.push_back({"BOLT", "A bolt", "box", "2", "10.00", "", 0});
        return input;
    }
    // Records it; the number of the order, or the complaint.
    std::string Record(LOrderInput& input) const {
        LScriptedUserInterface ui;
        const LOrderError error = LOrderEditorRecord(ui, profile, input);
        return error.IsNone() ? input.id : error.message;
    }
    int Count(const LFileStoreListBase& list) const {
        LRecord record;
        int count = 0;
        const auto iterator = list.CreateIteratorBase(record);
        for (; record.IsBound(); iterator->Next(record)) ++count;
        return count;
    }
};

TEST(OrderValidation, TheFirstComplaintNamesItsField) {
    struct LCase {
        std::function<void(LOrderInput&)> spoil;
        LOrderField field;
        const char *title, *message;
        int line;
    };
    constexpr const char* kNoDate = "Please enter a valid date.";
    constexpr const char* kBlank =
        "Purchase order cannot be blank. Please add at least one item to this order.";
    const LCase kCases[] = {
        {[](LOrderInput& in) { in.date = "31/31/2024"; }, LOrderField::kDate, "Date Required",
         kNoDate, -1},
        {[](LOrderInput& in) { in.receiptDate = ""; }, LOrderField::kReceiptDate, "Date Required",
         kNoDate, -1},
        {[](LOrderInput& in) { in.receiptDate = "2024-03-03"; }, LOrderField::kReceiptDate,
         "Invalid Date", "The receipt date must be after the issue date.", -1},
        {[](LOrderInput& in) { in.supplier = " \t"; }, LOrderField::kSupplier,
         "Supplier Name Required", "Please enter the supplier name.", -1},
        {[](LOrderInput& in) { in.lines.clear(); }, LOrderField::kLines, "Empty Order",
         "Please add items to the order.", -1},
        {[](LOrderInput& in) {
             in.lines = {{" ", "", "", "0", "", "", 0}};
         },
         LOrderField::kLines, "", kBlank, -1},
        {[](LOrderInput& in) {
             in.lines.insert(in.lines.begin(), {{}, {"X", "", "", "-1", "", "", 0}});
         },
         LOrderField::kQuantity, "", "Quantity cannot be negative.", 1},
        {[](LOrderInput& in) { in.lines[0].code = " "; }, LOrderField::kItem, "",
         "Item code cannot be blank.", 0},
        {[](LOrderInput& in) { in.lines[0].quantity = "two"; }, LOrderField::kQuantity, "",
         "The entered value \"two\" is not valid number.", 0},
        {[](LOrderInput& in) { in.lines[0].unitCost = "1.2.3"; }, LOrderField::kUnitCost, "",
         "The entered value \"1.2.3\" is not valid.", 0},
        {[](LOrderInput& in) { in.locationId = "99"; }, LOrderField::kLocation, "",
         "This location has been deleted in the meantime.", -1},
        {[](LOrderInput& in) { in.lines[0].quantity = "1" + std::string(200, '0'); },
         LOrderField::kLines, "",
         "The total of this order is too large. Check the quantities and costs.", -1},
    };
    const LEditorShop shop;
    for (const LCase& c : kCases) {
        LOrderInput input = shop.Input();
        input.lines[0].code = "NEW";
        c.spoil(input);
        LScriptedUserInterface ui;
        const LOrderError error = LOrderEditorRecord(ui, shop.profile, input);
        EXPECT_EQ(error.field, c.field) << c.message;
        EXPECT_EQ(error.message, c.message);
        EXPECT_EQ(error.title, c.title) << c.message;
        EXPECT_EQ(error.line, c.line) << c.message;
    }
    EXPECT_EQ(shop.Count(shop.profile.Items()), 1) << "nothing was made on the way";
    EXPECT_EQ(shop.Count(shop.profile.OrdersDrafts()), 0);
    EXPECT_EQ(shop.Stored("Misc", "Order", "DraftNumber"), "");
}

TEST(OrderEditor, RecordingADraftMovesItToTheNextNumber) {
    LEditorShop shop;
    shop.Settings("Tax", {{"TaxRate1", "10"}, {"DefaultRate", "1"}});
    LOrderInput input = shop.Input();
    input.lines.push_back({"", "", "", "", "", "", 0});
    input.lines.push_back({"bolt", "", "", "0.125", "4", "None", 0});
    ASSERT_TRUE(LOrderEditorSaveDraft(shop.profile, input).IsNone());
    EXPECT_EQ(input.id, "DFT1");
    EXPECT_EQ(shop.Stored("OrdersDrafts", "DFT1", "IsDraft"), "1");
    EXPECT_EQ(shop.Stored("OrdersDrafts", "DFT1", "Total"), "2250");

    LPOrder order;
    ASSERT_TRUE(LPOrderOpen(shop.profile, order, "DFT1"));
    input = LOrderInputOf(shop.profile, order);
    EXPECT_EQ(input.lines[1].quantity, "0.125") << "no decimal is lost";
    order.Invalidate();
    EXPECT_EQ(shop.Record(input), "10000");
    EXPECT_EQ(shop.Count(shop.profile.OrdersDrafts()), 0);
    ASSERT_TRUE(LPOrderOpen(shop.profile, order, "10000"));
    EXPECT_FALSE(order.GetBool("IsDraft", true));
    EXPECT_EQ(order.GetOrderType(), 1);
    EXPECT_EQ(order.GetTotal(), 2250);
    EXPECT_EQ(order.GetItemCount(), 2);
    EXPECT_EQ(order.GetItemID(1), shop.bolt) << "a code in other letters is the same item";
    EXPECT_EQ(order.GetString("Item1TaxRate"), "10/");
    EXPECT_EQ(shop.Stored("Items", shop.bolt, "OrderDate"), "2024-03-04");
    std::string id = "10000";
    EXPECT_TRUE(LOrderRecord(shop.profile, id)) << "it stays as it is";
    EXPECT_EQ(id, "10000");
}

TEST(OrderEditor, NewNamesBecomeItemsAndSuppliers) {
    const LEditorShop shop;
    LOrderInput input = shop.Input();
    input.supplier = " Newco ";
    input.lines = {{"WIDGET", "A widget", "", "3", "1.505", "None", 0},
                   {"widget", "again", "", "1", "9", "", 0},
                   {shop.bolt, "its code is another item's key", "", "1", "1", "", 0}};
    LOrderInput draft = input;
    draft.lines.resize(2);
    ASSERT_TRUE(LOrderEditorSaveDraft(shop.profile, draft).IsNone());
    EXPECT_EQ(shop.Count(shop.profile.Items()), 1) << "not with the first save of a draft";
    ASSERT_EQ(shop.Record(input), "10000");
    LItem item;
    ASSERT_TRUE(shop.profile.Items().Open(item, "WIDGET"));
    EXPECT_EQ(item.GetString("Name"), "WIDGET");
    EXPECT_EQ(item.GetString("Description"), "A widget");
    EXPECT_EQ(item.GetString("Supplier"), "Newco");
    EXPECT_EQ(item.GetString("LocationsAndQuantities"), "\"1/0/1/1\",");
    EXPECT_EQ(item.Cost(), (LMoney{1505, 3}));
    EXPECT_EQ(item.GetInt("TaxRate", 0), 1);
    EXPECT_EQ(item.GetFloat("IdealQuantity") + item.GetFloat("WarnQuantity"), 2);
    LPOrder order;
    ASSERT_TRUE(LPOrderOpen(shop.profile, order, "10000"));
    EXPECT_EQ(order.GetItemID(1), "WIDGET");
    EXPECT_NE(order.GetItemID(2), shop.bolt);
    EXPECT_EQ(LOrderLineCode(shop.profile, order, 2), shop.bolt);
    std::string supplier;
    order.GetSupplierName(shop.profile, supplier);
    EXPECT_EQ(supplier, "Newco");
    EXPECT_EQ(shop.Count(shop.profile.List("Suppliers")), 2);
}

TEST(OrderEditor, ADraftsNewCodesBecomeItemsWhenAsked) {
    const LEditorShop shop;
    LOrderInput draft = shop.Input();
    draft.lines.push_back({"WIDGET", "", "", "1", "1", "", 0});
    ASSERT_TRUE(LOrderEditorSaveDraft(shop.profile, draft).IsNone());
    const auto namesNewItems = [&] {
        LPOrder order;
        return LPOrderOpen(shop.profile, order, draft.id) &&
               LOrderNamesNewItems(shop.profile, order);
    };
    EXPECT_TRUE(namesNewItems());
    EXPECT_EQ(LOrderRegisterItems(shop.profile, draft.id), 1);
    EXPECT_FALSE(namesNewItems());
    EXPECT_EQ(LOrderRegisterItems(shop.profile, draft.id), 0);
    EXPECT_EQ(LOrderRegisterItems(shop.profile, "DFT9"), -1);
    EXPECT_EQ(shop.Stored("Items", "WIDGET", "Name"), "WIDGET");
}

TEST(OrderEditor, DeletingAsksForOneOrSeveral) {
    const LEditorShop shop;
    LOrderInput input;
    for (int order = 0; order < 3; ++order) ASSERT_EQ(shop.Record(input = shop.Input()).size(), 5U);
    LScriptedUserInterface ui;
    ui.ExpectDelete("Delete Orders", "Are you sure you want to delete the selected 2 orders?");
    EXPECT_TRUE(LOrdersDelete(ui, shop.profile, {"10000", "10001"}));
    ui.ExpectDelete("Delete Order", "Are you sure you want to delete the selected order?");
    EXPECT_TRUE(LOrdersDelete(ui, shop.profile, {"10002"}));
    EXPECT_EQ(shop.Count(shop.profile.Orders()), 0);
}

TEST(OrderEditor, ARecordedOrderIsSavedAgainUnderItsNumber) {
    const LEditorShop shop;
    LOrderInput input = shop.Input();
    input.lines.push_back({"NUT", "", "", "5", "1", "", 0});
    ASSERT_EQ(shop.Record(input), "10000");
    {
        LPOrder order;
        ASSERT_TRUE(LPOrderOpen(shop.profile, order, "10000"));
        order.MarkStockReceived(shop.profile, "NUT", "", 2);
    }
    const auto record = [&](const char* answer) {
        LScriptedUserInterface ui;
        ui.ExpectAsk("Record order",
                     "Stock has been received for this order, would you like to record it anyway?",
                     {"Record", "Cancel"}, answer);
        return LOrderEditorRecord(ui, shop.profile, input);
    };
    LPOrder order;
    ASSERT_TRUE(LPOrderOpen(shop.profile, order, "10000"));
    input = LOrderInputOf(shop.profile, order);
    order.Invalidate();
    input.lines.erase(input.lines.begin());
    const LOrderError cancelled = record("Cancel");
    EXPECT_TRUE(cancelled.failed && cancelled.message.empty());
    EXPECT_EQ(shop.Stored("Orders", "10000", "ItemCount"), "2");
    ASSERT_TRUE(record("Record").IsNone());
    ASSERT_TRUE(LPOrderOpen(shop.profile, order, "10000"));
    EXPECT_EQ(order.GetItemCount(), 1);
    EXPECT_EQ(order.GetItemQtyReceived(0), 2) << "counts move with their line";
    EXPECT_EQ(order.GetStockReceivedStatus(), StockPartiallyReceived);
    EXPECT_EQ(order.GetTotal(), 500);
    order.Invalidate();
    ASSERT_TRUE(LOrderDelete(shop.profile, "10000"));
    EXPECT_EQ(shop.Record(input), "This order has been recorded or deleted in the meantime.");
    EXPECT_EQ(shop.Count(shop.profile.Orders()), 0);
}

TEST(OrderEditor, OldRatesAreKeptWhenThePersonSaysSo) {
    LEditorShop shop;
    shop.Settings("Tax", {{"TaxRate1", "10"}, {"DefaultRate", "1"}});
    LOrderInput input = shop.Input();
    ASSERT_EQ(shop.Record(input), "10000");
    shop.Settings("Tax", {{"TaxRate1", "20"}, {"TaxInclusive", "1"}});
    const auto record = [&](const char* answer) {
        LPOrder order;
        EXPECT_TRUE(LPOrderOpen(shop.profile, order, "10000"));
        input = LOrderInputOf(shop.profile, order);
        order.Invalidate();
        LScriptedUserInterface ui;
        ui.ExpectAsk(
            "Tax Rates",
            "Tax rates or tax inclusivity has been changed. Do you want to use old tax rates?",
            {"Use Old", "Use New"}, answer);
        EXPECT_TRUE(LOrderEditorRecord(ui, shop.profile, input).IsNone());
        EXPECT_TRUE(LOrderEditorRecord(ui, shop.profile, input).IsNone()) << "asked once";
        return shop.Stored("Orders", "10000", "Total") + " " +
               shop.Stored("Orders", "10000", "TaxAmount1") + " " +
               shop.Stored("Orders", "10000", "Item1TaxRate");
    };
    EXPECT_EQ(record("Use Old"), "2200 200 10/");
    EXPECT_EQ(LOrderEditorTotals(shop.profile, input)->total.minorUnits, 2200);
    EXPECT_EQ(record("Use New"), "2000 333 20/");
}

TEST(OrderEditor, TemplatesAndDraftsOfARecordedOrderAreOrdersOfTheirOwn) {
    const LEditorShop shop;
    LOrderInput input = shop.Input();
    ASSERT_EQ(shop.Record(input), "10000");
    LOrderInput recurring = input, draft = input;
    LScriptedUserInterface ui;
    ASSERT_TRUE(LOrderEditorSaveRecurring(ui, shop.profile, recurring).IsNone());
    EXPECT_EQ(recurring.id, "RCR1");
    ASSERT_TRUE(LOrderEditorSaveRecurring(ui, shop.profile, recurring).IsNone());
    EXPECT_EQ(recurring.id, "RCR1");
    EXPECT_EQ(shop.Stored("OrdersRecurring", "RCR1", "IsDraft"), "0");
    const std::string question = "Do you want to save this order as a draft?";
    LOrderError error;
    for (const auto& [answer, mayClose] : {std::pair("Cancel", false), {"Discard", true}}) {
        ui.ExpectAsk("Purchase Order", question, {"Save", "Discard", "Cancel"}, answer);
        EXPECT_EQ(LOrderEditorCancel(ui, shop.profile, draft, error), mayClose);
    }
    EXPECT_EQ(shop.Count(shop.profile.OrdersDrafts()), 0);
    ui.ExpectAsk("Purchase Order", question, {"Save", "Discard", "Cancel"}, "Save");
    EXPECT_TRUE(LOrderEditorCancel(ui, shop.profile, draft, error));
    EXPECT_EQ(shop.Stored("OrdersDrafts", draft.id, "IsDraft"), "1");
    EXPECT_EQ(shop.Count(shop.profile.Orders()), 1);
    EXPECT_TRUE(LOrderRecord(shop.profile, recurring.id)) << "an order is made of the template";
    EXPECT_EQ(recurring.id, "10001");
    EXPECT_EQ(shop.Count(shop.profile.OrdersRecurring()), 1);
}

TEST(OrderEditor, OfPeopleWhoRecordOneDraftTogetherOneDoes) {
    const LEditorShop shop;
    LOrderInput input = shop.Input();
    ASSERT_TRUE(LOrderEditorSaveDraft(shop.profile, input).IsNone());
    std::array<LOrderInput, 4> inputs{input, input, input, input};
    std::vector<std::thread> people;
    for (LOrderInput& mine : inputs) {
        people.emplace_back([&] {
            const LProfile profile(shop.profile.DatabaseFolder());
            LScriptedUserInterface ui;
            LOrderEditorRecord(ui, profile, mine);
        });
    }
    for (std::thread& person : people) person.join();
    EXPECT_EQ(shop.Count(shop.profile.Orders()), 1);
    EXPECT_EQ(shop.Count(shop.profile.OrdersDrafts()), 0);
}

// Files that cannot grow past a size, as on a disk that is nearly full.
class LFileSizeLimit {
public:
    explicit LFileSizeLimit(rlim_t bytes) {
        ::signal(SIGXFSZ, SIG_IGN);
        ::getrlimit(RLIMIT_FSIZE, &old_);
        const rlimit limit{bytes, old_.rlim_max};
        ::setrlimit(RLIMIT_FSIZE, &limit);
    }
    ~LFileSizeLimit() { ::setrlimit(RLIMIT_FSIZE, &old_); }
    LFileSizeLimit(const LFileSizeLimit&) = delete;
    LFileSizeLimit& operator=(const LFileSizeLimit&) = delete;

private:
    rlimit old_{};
};

TEST(OrderEditor, ADiskThatIsFullCostsNoDraft) {
    for (const rlim_t room : {0, 100, 400}) {
        const LEditorShop shop;
        LOrderInput input = shop.Input();
        input.notes = std::string(500, 'n');
        ASSERT_TRUE(LOrderEditorSaveDraft(shop.profile, input).IsNone());
        std::string id = input.id;
        {
            const LFileSizeLimit full(room);
            EXPECT_FALSE(LOrderRecord(shop.profile, id)) << room;
        }
        EXPECT_EQ(shop.Stored("OrdersDrafts", id, "Total"), "2000") << room;
        EXPECT_EQ(shop.Count(shop.profile.Orders()), 0) << room;
        EXPECT_TRUE(LOrderRecord(shop.profile, id)) << "once there is room again";
    }
}

TEST(OrderList, ShowsWhatPassesTheFilterAndAddsItUp) {
    const LEditorShop shop;
    for (const int status : {0, 1, 2}) {
        LOrderInput input = shop.Input();
        input.lines[0].unitCost = "1.005";
        const std::string id = shop.Record(input);
        LPOrder order;
        ASSERT_TRUE(LPOrderOpen(shop.profile, order, id));
        order.SetStockReceivedStatus(status);
    }
    LOrderInput draft = shop.Input();
    ASSERT_TRUE(LOrderEditorSaveDraft(shop.profile, draft).IsNone());
    const auto shown = [&](const LOrderListFilter& filter) {
        std::string text;
        LOrderSummary summary(shop.profile);
        FillOrderList(shop.profile, filter, [&](const LOrderRow& row) {
            text += shop.profile.FormatMoney(row.total) + " " + std::string(row.supplierName) +
                    " " + std::string(row.status) + (row.isDraft ? "draft" : "") + "; ";
            summary.Add(row.total);
        });
        return std::pair(text, summary.Text());
    };
    EXPECT_EQ(shown({LOrdersShown::kDraft}),
              std::pair(std::string("$20.00 Acme draft; "), std::string("1 Orders. Total $20.00")));
    EXPECT_EQ(shown({LOrdersShown::kAll}).second, "4 Orders. Total $26.03");
    EXPECT_EQ(shown({LOrdersShown::kRecorded, true, true}).first, "$2.010 Acme Partial; ");
    EXPECT_EQ(shown({LOrdersShown::kRecorded, true}).second, "2 Orders. Total $4.02");
}

}  // namespace
