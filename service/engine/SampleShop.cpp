#include "service/engine/SampleShop.h"

#include <algorithm>
#include <cmath>
#include <random>
#include <vector>

#include "inventory/ItemSave.h"
#include "inventory/LItem.h"
#include "inventory/MasterRecords.h"
#include "inventory/StockMovements.h"
#include "inventory/StockQuantities.h"
#include "service/engine/SampleOrders.h"
#include "service/engine/SampleShopData.h"

namespace {

constexpr char kShopFloor[] = "Shop Floor";
constexpr char kStockroom[] = "Stockroom";
constexpr char kYard[] = "Yard";
constexpr int kDaysOfTrade = 61;
constexpr int kDaysBetweenDeliveries = 9;
constexpr double kTradingDaysPerMonth = 26;

// Setting up a shop needs no questions.
class LSilentUserInterface final : public LUserInterface, private LProcessInterface {
public:
    std::string Ask(std::string_view, std::string_view, const std::vector<std::string>&) override {
        return {};
    }
    void Inform(std::string_view, std::string_view) override {}
    std::optional<std::string> PickFolder(std::string_view) override { return std::nullopt; }
    std::optional<std::string> PickSaveFile(std::string_view, std::string_view) override {
        return std::nullopt;
    }
    bool RunProcess(std::string_view,
                    const std::function<bool(LProcessInterface&)>& process) override {
        return process(*this);
    }

private:
    void SetStatus(std::string_view) override {}
    void SetProgress(double) override {}
    bool IsCancelled() const override { return false; }
};

// One filling of one business.
class LSampleShop {
public:
    LSampleShop(const LProfile& profile, const LDate& today) : profile_(profile), today_(today) {}

    LSampleResult Fill() {
        if (!LAppDataBaseList<LItem>(profile_.Store(), "Items").IsEmpty()) {
            Fail("the business already has items");
        }
        MakeLocations();
        MakeParties();
        for (const LSampleItem& sample : SampleItems()) MakeItem(sample);
        for (int day = kDaysOfTrade; day >= 0 && result_.problem.empty(); --day) {
            Trade(today_.AddDays(-day), day == kDaysOfTrade);
        }
        MakeOrders();
        return result_;
    }

private:
    struct Stocked {
        const LSampleItem* sample;
        std::string id;
        std::string store;  // where deliveries go
        double onFloor = 0, inStore = 0;
    };

    void Fail(const std::string& problem) {
        if (result_.problem.empty()) result_.problem = problem;
    }
    bool HasFailed() const { return !result_.problem.empty(); }

    LMoney Money(int cents) const {
        return WithDigits({cents, 2}, profile_.CurrencyDigits()).value_or(LMoney{cents, 2});
    }

    // The location that every new business has becomes the shop floor.
    void MakeLocations() {
        if (HasFailed()) return;
        const LLocationList list(profile_);
        LLocation floor;
        if (!OpenLocation(list, floor, "Main")) floor.Invalidate();
        SaveLocation(floor, {kShopFloor, "12 Harbour Lane\r\nHarbour Lane HL1 1AA"});
        LLocation stockroom;
        SaveLocation(stockroom,
                     {kStockroom, "12a Harbour Lane, rear entrance\r\nHarbour Lane HL1 1AA"});
        LLocation yard;
        SaveLocation(yard, {kYard, "Rope Walk\r\nHarbour Lane HL1 3RW"});
    }

    void SaveLocation(LLocation& location, const LLocationInput& input) {
        const auto error = LLocationSave(ui_, profile_, location, input);
        if (!error.IsNone()) Fail(error.message);
    }

    void MakeParties() {
        for (const LSampleParty& party : SampleSuppliers()) {
            if (HasFailed()) return;
            LSupplier supplier;
            const auto error = LSupplierSave(profile_, supplier,
                                             {party.name, party.contact, party.contactFirst,
                                              Address(party), party.phone, "", "", party.email});
            error.IsNone() ? void(++result_.suppliers) : Fail(error.message);
        }
        for (const LSampleParty& party : SampleCustomers()) {
            if (HasFailed()) return;
            LCustomerInput input;
            input.name = party.name;
            input.contact = party.contact;
            input.contactFirst = party.contactFirst;
            input.address = party.address;
            input.city = party.city;
            input.zipCode = party.zipCode;
            input.phone = party.phone;
            input.email = party.email;
            LCustomer customer;
            const auto error = LCustomerSave(profile_, customer, input);
            error.IsNone() ? void(++result_.customers) : Fail(error.message);
        }
    }

    static std::string Address(const LSampleParty& party) {
        return std::string(party.address) + "\r\n" + party.city + " " + party.zipCode;
    }

    static bool IsBulky(const LSampleItem& sample) {
        const std::string_view category = sample.category;
        return category == "Timber" || category == "Building Materials" ||
               std::string_view(sample.subCategory) == "Growing";
    }

    void MakeItem(const LSampleItem& sample) {
        if (HasFailed()) return;
        LItemInput input;
        input.code = sample.code;
        input.description = sample.description;
        input.cost = profile_.FormatMoneyInput(Money(sample.costCents));
        input.price = profile_.FormatMoneyInput(Money(sample.priceCents));
        input.measure = sample.measure;
        input.category = sample.category;
        input.subCategory = sample.subCategory;
        LItem item;
        LItemError error = LItemSaveGeneral(profile_, item, input);
        if (error.IsNone()) {
            const std::string store = IsBulky(sample) ? kYard : kStockroom;
            error = LItemSaveStock(profile_, item, StockInput(sample, store));
            stocked_.push_back({&sample, item.GetPrimaryKey(), store});
            ++result_.items;
        }
        if (!error.IsNone()) Fail(std::string(sample.code) + ": " + error.message);
    }

    static LItemStockInput StockInput(const LSampleItem& sample, const std::string& store) {
        const double ideal = sample.idealQuantity;
        LItemStockInput input;
        input.supplier = SampleSuppliers()[sample.supplier].name;
        input.supplierId = std::string(input.supplier.substr(0, 2)) + "-" + sample.code;
        input.rows.push_back({store, 0, ideal, std::ceil(ideal / 5)});
        input.rows.push_back({kShopFloor, 0, ideal, std::ceil(ideal / 4)});  // stored in front
        return input;
    }

    // A day: deliveries in the morning, customers until the evening; closed on Sundays.
    void Trade(const LDate& date, bool isOpening) {
        for (size_t i = 0; i < stocked_.size() && !HasFailed(); ++i) {
            Stocked& item = stocked_[i];
            if (isOpening) {
                Receive(item, kShopFloor, item.sample->idealQuantity, date, "Opening stock");
                Receive(item, item.store, item.sample->idealQuantity, date, "Opening stock");
            } else if (IsDeliveryDay(date, i)) {
                Restock(item, date);
            }
        }
        if (!isOpening && !IsSunday(date)) Sell(date);
    }

    // Each supplier comes on its own day; a few things are never reordered, so that the list of low
    // stock has something to show.
    bool IsDeliveryDay(const LDate& date, size_t index) const {
        const bool isNeglected = index % 11 == 5;
        const int offset = stocked_[index].sample->supplier;
        return !isNeglected && !IsSunday(date) &&
               (DaysToToday(date) + offset) % kDaysBetweenDeliveries == 0;
    }

    int DaysToToday(const LDate& date) const {
        int days = 0;
        for (LDate day = date; day < today_; day = day.AddDays(1)) ++days;
        return days;
    }

    static bool IsSunday(const LDate& date) {
        std::tm time{};
        time.tm_year = date.year - 1900;
        time.tm_mon = date.month - 1;
        time.tm_mday = date.day;
        time.tm_hour = 12;
        return std::mktime(&time) >= 0 && time.tm_wday == 0;
    }

    void Restock(Stocked& item, const LDate& date) {
        const double ideal = item.sample->idealQuantity;
        const double missing = 2 * ideal - item.onFloor - item.inStore;
        if (missing < ideal / 2) return;
        const double quantity = std::ceil(missing);
        const double toFloor = std::max(0.0, std::min(quantity, ideal - item.onFloor));
        Receive(item, kShopFloor, toFloor, date, "Weekly delivery");
        Receive(item, item.store, quantity - toFloor, date, "Weekly delivery");
    }

    void Receive(Stocked& item, const std::string& location, double quantity, const LDate& date,
                 const char* text) {
        if (quantity <= 0 || HasFailed()) return;
        LReceipt receipt;
        receipt.supplier = SampleSuppliers()[item.sample->supplier].name;
        receipt.itemId = item.id;
        receipt.locationName = location;
        receipt.text = text;
        receipt.quantity = quantity;
        receipt.unitCost = Money(item.sample->costCents);
        receipt.date = date;
        if (!ReceiveItem(profile_, receipt)) {
            return Fail(std::string("cannot receive ") + item.sample->code);
        }
        (location == kShopFloor ? item.onFloor : item.inStore) += quantity;
        ++result_.receipts;
    }

    void Sell(const LDate& date) {
        for (Stocked& item : stocked_) {
            const double chance =
                std::min(0.45, item.sample->soldPerMonth / kTradingDaysPerMonth / 3);
            if (HasFailed() || Fraction() >= chance) continue;
            const double perSale = item.sample->soldPerMonth / kTradingDaysPerMonth / chance;
            const double wanted = std::max(1.0, std::round(perSale * (0.5 + Fraction())));
            SellOne(item, wanted, date);
        }
    }

    // From the floor while it lasts, then from the store; what is nowhere is not sold.
    void SellOne(Stocked& item, double wanted, const LDate& date) {
        const bool fromFloor = item.onFloor >= wanted || item.inStore < wanted;
        double& stock = fromFloor ? item.onFloor : item.inStore;
        const double quantity = std::min(wanted, stock);
        if (quantity <= 0) return;

        LSale sale;
        sale.date = date;
        sale.isWriteOff = Fraction() < 0.015;
        if (!sale.isWriteOff) sale.customer = CustomerName();
        sale.reference = sale.isWriteOff ? "Damaged on the shelf" : "";
        sale.lines.push_back({item.sample->code, fromFloor ? kShopFloor : item.store, quantity,
                              Money(item.sample->priceCents)});
        int sold = 0;
        const LSaleError error = LSellStock(profile_, sale, sold);
        if (!error.IsNone() || sold != 1) {
            return Fail(std::string("cannot sell ") + item.sample->code);
        }
        stock -= quantity;
        ++result_.sales;
    }

    void MakeOrders() {
        if (HasFailed()) return;
        const LSampleOrdersResult made = AddSampleOrders(ui_, profile_, today_);
        result_.orders = made.recorded;
        result_.receipts += made.receipts;
        if (!made.problem.empty()) Fail(made.problem);
    }

    std::string CustomerName() {
        const auto customers = SampleCustomers();
        if (Fraction() < 0.6) return customers[0].name;
        const auto index = 1 + static_cast<size_t>(Fraction() * double(customers.size() - 1));
        return customers[std::min(index, customers.size() - 1)].name;
    }

    double Fraction() { return double(random_() >> 8) / double(1U << 24); }

    const LProfile& profile_;
    LDate today_;
    LSilentUserInterface ui_;
    std::mt19937 random_{20260411};  // always the same shop
    std::vector<Stocked> stocked_;
    LSampleResult result_;
};

}  // namespace

LSampleResult FillSampleShop(const LProfile& profile, const LDate& today) {
    return LSampleShop(profile, today).Fill();
}
