#include "inventory/LItem.h"

#include <gtest/gtest.h>

#include <array>
#include <filesystem>
#include <string>

#include "tests/inventory/LTestBusiness.h"

namespace {

TEST(LItemCode, IsFoundExactlyAndOnlySo) {
    LTestBusiness shop;
    const std::string key = shop.AddItem("ABC", "");
    LItem item;
    EXPECT_TRUE(OpenItem(shop.Profile(), item, "ABC"));
    EXPECT_EQ(item.GetPrimaryKey(), key);
    EXPECT_TRUE(CheckItemExist(shop.Profile(), "abc")) << "refused as a duplicate";
    for (const char* other : {"abc", "", "AB"}) {
        EXPECT_FALSE(OpenItem(shop.Profile(), item, other)) << other;
        EXPECT_FALSE(item.IsBound()) << other;
    }
    EXPECT_TRUE(CheckItemExist({"Öse", "Nut"}, "ÖSE"));
    EXPECT_FALSE(CheckItemExist({"Öse", "Nut"}, "Bolt"));
}

// What is remembered is a hint: other processes rename, delete and add behind our back.
TEST(LItemCode, FollowsRenamesAndDeletesByOthers) {
    LTestBusiness shop;
    const LFileStoreListBase& items = shop.Profile().Items();
    const std::string first = shop.AddItem("A", ""), second = shop.AddItem("B", "");
    LItem item;
    ASSERT_TRUE(OpenItem(shop.Profile(), item, "A"));
    ASSERT_TRUE(OpenItem(shop.Profile(), item, "B"));
    for (const auto& [key, name] : {std::pair(first, "B"), std::pair(second, "A")}) {
        LRecord record;
        ASSERT_TRUE(items.Open(record, key));
        record.SetString("Name", name);
    }
    ASSERT_TRUE(OpenItem(shop.Profile(), item, "A"));
    EXPECT_EQ(item.GetPrimaryKey(), second) << "the codes were swapped";
    ASSERT_TRUE(items.Delete(second));
    EXPECT_FALSE(OpenItem(shop.Profile(), item, "A"));
    const std::string third = shop.AddItem("A", "");
    ASSERT_TRUE(OpenItem(shop.Profile(), item, "A"));
    EXPECT_EQ(item.GetPrimaryKey(), third);
}

TEST(LItemCode, IsRememberedForEachBusinessApart) {
    LTestBusiness shop;
    LTempFolder otherFolder;
    const LProfile other(otherFolder.Path());
    shop.AddItem("filler", "");
    const std::string key = shop.AddItem("A", "");
    LItem item;
    other.Items().CreateNewRecord(item);
    item.SetString("Name", "A");
    ASSERT_TRUE(item.Flush());
    ASSERT_NE(item.GetPrimaryKey(), key);
    ASSERT_TRUE(OpenItem(shop.Profile(), item, "A"));
    ASSERT_TRUE(OpenItem(other, item, "A"));
    EXPECT_NE(item.GetPrimaryKey(), key);
    ASSERT_TRUE(OpenItem(shop.Profile(), item, "A"));
    EXPECT_EQ(item.GetPrimaryKey(), key);
}

TEST(LItem, NamesTheFirstLocationThatHoldsSomeOfIt) {
    LTestBusiness shop;
    const std::string yard = shop.AddLocation("Yard"), attic = shop.AddLocation("Attic");
    shop.AddItem("none", "\"1/0.00/1.00/2.00\",\"" + yard + "/-3.00/0.00/0.00\",");
    shop.AddItem("attic", "\"1/0.00/0.00/0.00\",\"" + attic + "/2.00/0.00/0.00\",");
    shop.AddBuiltItem("built", "\"attic/2.00\",");
    std::string name = "untouched";
    GetFirstLocationForTheItem(shop.Profile(), "missing", name);
    EXPECT_EQ(name, "untouched");
    for (const auto& [code, expected] :
         {std::pair("none", ""), std::pair("attic", "Attic"), std::pair("built", "Attic")}) {
        GetFirstLocationForTheItem(shop.Profile(), code, name);
        EXPECT_EQ(name, expected) << code;
    }
}

TEST(LItem, FindsItsPictureAlsoAfterTheBusinessMoved) {
    LTestBusiness shop;
    const std::string folder = shop.Profile().Items().Folder();
    LItem item;
    EXPECT_EQ(GetItemPictureFile(shop.Profile(), item), "");
    item.SetString("ImageFile", "/gone/Items/0abcdef.bmp");
    EXPECT_EQ(GetItemPictureFile(shop.Profile(), item), "");
    std::filesystem::copy_file("/proc/self/comm", folder + "/0abcdef.bmp");
    EXPECT_EQ(GetItemPictureFile(shop.Profile(), item), folder + "/0abcdef.bmp");
}

TEST(CheckDouble, IsLaxInExactlyThisWay) {
    struct Case {
        std::string_view text;
        bool passes;
        const char* why;
    };
    const std::array<Case, 17> kCases{{
        {"12", true, "digits"},
        {"  -1.5", true, "leading blanks and a sign"},
        {"+.5", true, "no digit before the point"},
        {".", true, "a lone point"},
        {"1/2", true, "a slash counts as a digit"},
        {"\xB5", true, "low seven bits of 5"},
        {"\xAF", true, "low seven bits of /"},
        {"", false, "empty"},
        {"   ", false, "only blanks"},
        {"-", false, "a lone sign"},
        {"--1", false, "two signs"},
        {"1 ", false, "a trailing blank"},
        {"1.2.3", false, "two points"},
        {"1,5", false, "a comma"},
        {"1e3", false, "an exponent"},
        {"\xAE", false, "low seven bits of a point are no point"},
        {":", false, "just above 9"},
    }};
    for (const Case& row : kCases) EXPECT_EQ(CheckDouble(row.text), row.passes) << row.why;
}

TEST(ToPlainNumber, TurnsTheBusinessesSymbolsIntoThePlainForm) {
    LTestBusiness shop;
    shop.SetOption("DecimalSymbol", ",");
    shop.SetOption("ThousandsSymbol", ".");
    const std::array<std::array<const char*, 3>, 6> kCases{{
        {"1,5", "1.5", "the comma is the decimal symbol"},
        {" -1.234,5 ", "-1234.5", "grouped"},
        {"1234", "1234", "nothing to do"},
        {"1.5", "1.5", "no group of three: stays, and is refused when it is read"},
        {"1,5,5", "1,5,5", "no number"},
        {"abc", "abc", "no number"},
    }};
    for (const auto& [text, plain, why] : kCases) {
        EXPECT_EQ(ToPlainNumber(shop.Profile(), text), plain) << why;
    }
}

}  // namespace
