#include "service/engine/SampleOrders.h"

#include <optional>
#include <vector>

#include "inventory/ItemSave.h"
#include "inventory/LItem.h"
#include "inventory/MasterRecords.h"
#include "orders/LPOrderList.h"
#include "orders/OrderEditor.h"
#include "orders/OrderReceiving.h"
#include "orders/RecurringSchedule.h"

namespace {

struct LSampleLine {
    const char* code;
    double quantity;
    double received;
};
struct LSampleOrder {
    const char *supplier, *location;
    int issuedDaysAgo;
    int arrivesInDays;  // from today; negative: in the past
    const char *shipBy, *notes;
    std::vector<LSampleLine> lines;
};

const LSampleOrder kReceived{"Northgate Fixings",
                             "Stockroom",
                             23,
                             -16,
                             "Supplier's van",
                             "",
                             {{"WS-5070", 20, 20}, {"PLUG-8", 40, 40}, {"ANCHOR-M8", 10, 10}}};
const LSampleOrder kPartial{"Calder Timber and Board",
                            "Yard",
                            8,
                            -2,
                            "Lorry with crane",
                            "Please ring before you unload; the gate is locked.",
                            {{"BATTEN-2538", 120, 120}, {"OSB-11", 24, 10}, {"PLY-12", 8, 0}}};
const LSampleOrder kOpen{"Brightwell Paints",
                         "Stockroom",
                         2,
                         5,
                         "Parcel service",
                         "",
                         {{"FENCE-BRN-5", 24, 0}, {"STAIN-OAK-25", 12, 0}, {"BRUSH-50", 60, 0}}};
// Nobody stocks the heater yet: its code becomes an item once the order is recorded.
constexpr char kNewCode[] = "HEATER-500";
constexpr char kNewDescription[] = "Frost heater 500 W, wall mounted";
constexpr LMoney kNewCost{1840, 2};
const LSampleOrder kDraft{"Tamar Plumbing Supplies",
                          "Shop Floor",
                          0,
                          10,
                          "",
                          "",
                          {{"PIPE-CU-15", 30, 0}, {"ELB-15", 80, 0}, {kNewCode, 6, 0}}};
const LSampleOrder kMonthly{"Sparrow Electrical Wholesale",
                            "Stockroom",
                            0,
                            3,
                            "Parcel service",
                            "",
                            {{"BATT-AA-4", 60, 0}, {"BATT-AAA-4", 50, 0}, {"LED-E27-9W", 40, 0}}};

class LSampleOrders {
public:
    LSampleOrders(LUserInterface& ui, const LProfile& profile, const LDate& today)
        : ui_(ui), profile_(profile), today_(today) {}

    LSampleOrdersResult Add() {
        KeepDraft();  // before the others, each of which takes a draft's number on its way
        RecordAndReceive(kReceived);
        RecordAndReceive(kPartial);
        RecordAndReceive(kOpen);
        KeepTemplate();
        return result_;
    }

private:
    bool Succeeded(const LOrderError& error, const LSampleOrder& sample) {
        if (!error.IsNone()) Fail(std::string(sample.supplier) + ": " + error.message);
        return error.IsNone();
    }
    void Fail(const std::string& problem) {
        if (result_.problem.empty()) result_.problem = problem;
    }

    LOrderInput InputOf(const LSampleOrder& sample) {
        LOrderInput input = LOrderNewInput(profile_);
        input.supplier = sample.supplier;
        input.date = profile_.FormatDate(today_.AddDays(-sample.issuedDaysAgo));
        input.receiptDate = profile_.FormatDate(today_.AddDays(sample.arrivesInDays));
        input.shipBy = sample.shipBy;
        input.notes = sample.notes;
        LLocation location;
        if (OpenLocation(LLocationList(profile_), location, sample.location)) {
            input.locationId = location.GetPrimaryKey();
            input.shippingAddress = location.GetString("Address");
        }
        for (const LSampleLine& line : sample.lines) input.lines.push_back(LineOf(line));
        return input;
    }

    LOrderLineInput LineOf(const LSampleLine& sample) {
        LOrderLineInput line;
        line.code = sample.code;
        line.quantity = profile_.FormatNumber(sample.quantity, 0, false);
        LItem item;
        if (OpenItem(profile_, item, sample.code)) {
            line.description = item.GetString("Description");
            line.measure = item.GetString("Measure");
            line.unitCost = profile_.FormatMoneyInput(item.Cost());
        }
        return line;
    }

    void RecordAndReceive(const LSampleOrder& sample) {
        LOrderInput input = InputOf(sample);
        if (!Succeeded(LOrderEditorRecord(ui_, profile_, input), sample)) return;
        ++result_.recorded;
        LReceipt receipt;
        receipt.supplier = sample.supplier;
        receipt.locationName = sample.location;
        receipt.orderId = input.id;
        receipt.date = today_.AddDays(sample.arrivesInDays);
        for (const LSampleLine& line : sample.lines) {
            if (line.received > 0) Receive(receipt, line);
        }
    }

    void Receive(LReceipt& receipt, const LSampleLine& line) {
        LItem item;
        const bool isThere = OpenItem(profile_, item, line.code);
        receipt.itemId = item.GetPrimaryKey();
        receipt.quantity = line.received;
        receipt.unitCost = item.Cost();
        item.Invalidate();
        if (!isThere || !LOrderReceiveItem(profile_, receipt)) {
            return Fail(std::string("cannot receive ") + line.code);
        }
        ++result_.receipts;
    }

    void KeepDraft() {
        LOrderInput input = InputOf(kDraft);
        LOrderLineInput& heater = input.lines.back();
        heater.description = kNewDescription;
        heater.measure = "each";
        heater.unitCost = profile_.FormatMoneyInput(
            WithDigits(kNewCost, profile_.CurrencyDigits()).value_or(kNewCost));
        Succeeded(LOrderEditorSaveDraft(profile_, input), kDraft);
    }

    void KeepTemplate() {
        LOrderInput input = InputOf(kMonthly);
        if (!Succeeded(LOrderEditorSaveRecurring(ui_, profile_, input), kMonthly)) return;
        LRecurringScheduleInput schedule;
        schedule.start = today_.AddDays(14);
        schedule.updatePrices = true;
        LPOrder recurring;
        if (!LRecurringPOrderList(profile_).Open(recurring, input.id) ||
            !LRecurringScheduleSave(recurring, schedule)) {
            Fail("cannot save the recurring order");
        }
    }

    LUserInterface& ui_;
    const LProfile& profile_;
    const LDate today_;
    LSampleOrdersResult result_;
};

}  // namespace

LSampleOrdersResult AddSampleOrders(LUserInterface& ui, const LProfile& profile,
                                    const LDate& today) {
    return LSampleOrders(ui, profile, today).Add();
}
