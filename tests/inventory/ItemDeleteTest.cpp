#include "inventory/ItemDelete.h"

#include <gtest/gtest.h>
#include <unistd.h>

#include <fstream>
#include <string>
#include <vector>

#include "inventory/OrderReferences.h"
#include "platform/FileIo.h"
#include "tests/inventory/LTestBusiness.h"
#include "tests/support/LScriptedUserInterface.h"

namespace {

constexpr char kTitle[] = "Delete Items";
constexpr char kQuestion[] = "Are you sure you want to delete the selected item(s)?";

class ItemDelete : public testing::Test {
protected:
    // What was said beside the question.
    std::vector<std::string> Delete(decltype(LItemsDelete)& operation,
                                    const std::vector<LItemListRow>& rows,
                                    const char* answer = "Delete") {
        LScriptedUserInterface ui;
        ui.ExpectDelete(kTitle, kQuestion, answer);
        isDone_ = operation(ui, shop_.Profile(), rows);
        std::vector<std::string> texts;
        for (const auto& shown : ui.Informed()) {
            EXPECT_EQ(shown.title, kTitle);
            texts.push_back(shown.text);
        }
        return texts;
    }
    std::string Field(std::string_view name) { return shop_.Stored("Items", a_, name); }
    bool IsThere(const std::string& key) { return shop_.Profile().Items().TestRecordExists(key); }

    LTestBusiness shop_;
    std::string yard_ = shop_.AddLocation("Yard");  // the key "2"
    std::string a_ =
        shop_.AddItem("A", "\"1/5.00/1.00/2.00\",\"2/3.00/4.00/6.00\",\"1/7.00/0.00/0.00\",");
    std::string b_ = shop_.AddItem("B", "\"1/1.00/0.00/0.00\",");
    bool isDone_ = false;
};

const std::vector<std::string> kNothingSaid;
const std::vector<std::string> kInTransaction{
    "Item A cannot be deleted because it is referenced in a transaction."};

TEST_F(ItemDelete, TakesARowAwayAndTheRecordWithTheLast) {
    EXPECT_EQ(Delete(LItemsDelete, {{"A", "Main"}}), kNothingSaid);
    EXPECT_TRUE(isDone_);
    EXPECT_EQ(Field("LocationsAndQuantities"), "\"2/3.00/4.00/6.00\",");
    EXPECT_EQ(Field("Quantity") + Field("WarnQuantity") + Field("IdealQuantity"),
              "3.0000004.0000006.000000");
    EXPECT_EQ(Delete(LItemsDelete, {{"A", "Yard"}, {"gone", "Main"}, {"B", "Main"}}), kNothingSaid);
    EXPECT_TRUE(isDone_);
    EXPECT_FALSE(IsThere(a_) || IsThere(b_));
}

TEST_F(ItemDelete, AnyOtherAnswerLeavesAllAsItIs) {
    for (const char* answer : {"Cancel", ""}) {
        EXPECT_EQ(Delete(LItemsDelete, {{"B", "Main"}}, answer), kNothingSaid);
        EXPECT_FALSE(isDone_);
        EXPECT_TRUE(IsThere(b_));
    }
}

TEST_F(ItemDelete, AComponentStaysAndSoDoTheRowsBehindIt) {
    shop_.AddBuiltItem("Kit", "\"A/1.00\",");
    const std::string before = shop_.ItemFile(a_);
    EXPECT_EQ(Delete(LItemsDelete, {{"A", "Main"}, {"B", "Main"}}),
              std::vector<std::string>{"This item cannot be deleted because it is being used in "
                                       "another item's Bill of Materials."});
    EXPECT_FALSE(isDone_);
    EXPECT_EQ(shop_.ItemFile(a_), before);
    EXPECT_TRUE(IsThere(b_));
    EXPECT_EQ(Delete(LItemsDelete, {{"Kit", "Main"}}), kNothingSaid) << "a built item itself goes";
}

TEST_F(ItemDelete, AnOrderKeepsTheRecordWithoutTheLocation) {
    for (const char* list : {"Orders", "OrdersDrafts", "OrdersRecurring"}) {
        const std::string item = shop_.AddItem("A", "\"1/5.00/0.00/0.00\",");
        const std::string order = shop_.Add(list, {{"ItemCount", "2"}, {"Item2ID", item}});
        ASSERT_TRUE(shop_.Profile().Items().Delete(a_));
        a_ = item;
        EXPECT_EQ(Delete(LItemsDelete, {{"A", "Main"}, {"B", "Main"}}), kInTransaction) << list;
        EXPECT_EQ(Field("LocationsAndQuantities"), "") << list;
        EXPECT_EQ(Field("Quantity"), "0.000000") << list;
        EXPECT_TRUE(IsThere(b_)) << list;
        ASSERT_TRUE(shop_.Profile().List(list).Delete(order));
    }
}

TEST_F(ItemDelete, TheHistoryKeepsTheRecord) {
    const std::string folder = shop_.Profile().DatabaseFolder();
    for (const char* history : {"/Sellhistory", "/ReceiveHistory"}) {
        const std::string file = folder + history + "/2026-03-01.csv";
        ASSERT_TRUE(MakeFolderTree(folder + history));
        std::ofstream(file) << "1.00," + b_ + ",$2.00,Main,Hill,$2.00,\r\n";
        EXPECT_EQ(Delete(LItemsDelete, {{"B", "Main"}}),
                  std::vector<std::string>{
                      "Item B cannot be deleted because it is referenced in a transaction."})
            << history;
        EXPECT_TRUE(IsThere(b_)) << history;
        ASSERT_EQ(::unlink(file.c_str()), 0);
    }
    EXPECT_EQ(Delete(LItemsDelete, {{"B", "Main"}}), kNothingSaid);
}

TEST_F(ItemDelete, ThePictureGoesWithTheRecordAndNoOtherFileDoes) {
    for (const auto& [name, goes] :
         {std::pair("0abcdef.bmp", true), std::pair("notes.txt", false)}) {
        const std::string file = shop_.Home().File(name);
        shop_.Home().WriteFile(name, "x");
        const std::string key = shop_.Add("Items", {{"Name", "C"}, {"ImageFile", file}});
        EXPECT_EQ(Delete(LItemsDelete, {{"C", "Main"}}), kNothingSaid);
        EXPECT_FALSE(IsThere(key));
        EXPECT_NE(FileExists(file), goes) << name;
    }
}

TEST_F(ItemDelete, TheItemListWindowLooksAtOrdersFirstAndAtNothingElse) {
    shop_.AddBuiltItem("Kit", "\"B/1.00\",");
    const std::string picture = shop_.Home().File("0abcdef.bmp");
    shop_.Home().WriteFile("0abcdef.bmp", "x");
    const std::string c = shop_.Add("Items", {{"Name", "C"}, {"ImageFile", picture}});
    shop_.Add("OrdersDrafts", {{"ItemCount", "1"}, {"Item1ID", a_}});
    const std::string before = shop_.ItemFile(a_);
    EXPECT_EQ(Delete(LItemsDeleteFromItemList, {{"B", "Main"}, {"A", "Main"}, {"C", "Main"}}),
              std::vector<std::string>{
                  "You can not delete Item A because it may be referenced by orders"});
    EXPECT_FALSE(isDone_);
    EXPECT_FALSE(IsThere(b_)) << "a component goes here";
    EXPECT_EQ(shop_.ItemFile(a_), before);
    EXPECT_TRUE(IsThere(c));
    EXPECT_EQ(Delete(LItemsDeleteFromItemList, {{"C", "Main"}}), kNothingSaid);
    EXPECT_FALSE(IsThere(c));
    EXPECT_EQ(DeletedItemCode(shop_.Profile(), c), "C") << "for reports on the history";
    EXPECT_TRUE(FileExists(picture));
}

TEST(OrderReferences, AreFoundInLinesAndHeads) {
    LTestBusiness shop;
    shop.Add("OrdersRecurring", {{"Supplier", "7"},
                                 {"Location", "3"},
                                 {"ItemCount", "2147483647"},
                                 {"Item1ID", "11"},
                                 {"Item3ID", "12"}});
    shop.Add("Orders", {{"ItemCount", "1"}, {"Item1ID", "13"}, {"Item2ID", "14"}});
    for (const char* id : {"11", "12", "13"})
        EXPECT_TRUE(IsItemOnAnyOrder(shop.Profile(), id)) << id;
    for (const char* id : {"1", "14", "", "7"}) {
        EXPECT_FALSE(IsItemOnAnyOrder(shop.Profile(), id)) << id;
    }
    EXPECT_TRUE(IsSupplierOnAnyOrder(shop.Profile(), "7"));
    EXPECT_FALSE(IsSupplierOnAnyOrder(shop.Profile(), "3"));
    EXPECT_TRUE(IsLocationOnAnyOrder(shop.Profile(), "3"));
    EXPECT_FALSE(IsLocationOnAnyOrder(shop.Profile(), "")) << "orders without one name no location";
}

}  // namespace
