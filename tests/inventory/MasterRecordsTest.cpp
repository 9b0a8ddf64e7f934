// Categories, suppliers, customers and name lists: saved, renamed, deleted, exported.
#include "inventory/MasterRecords.h"

#include <gtest/gtest.h>

#include "inventory/LItem.h"
#include "inventory/MailMerge.h"
#include "tests/inventory/LTestShop.h"
#include "tests/support/LScriptedUserInterface.h"

namespace {

using LShown = std::vector<LScriptedUserInterface::Shown>;
using LTexts = std::vector<std::string>;

template <typename Input>
Input Named(const char* name, const char* email = "") {
    Input input;
    input.name = name;
    input.email = email;
    return input;
}

class MasterRecords : public ::testing::Test {
protected:
    std::string AddCategory(const std::string& name, const LTexts& subCategories = {}) {
        LCategory category;
        EXPECT_TRUE(LCategorySave(shop_.profile, category, {name, subCategories, {}}).IsNone());
        return category.GetPrimaryKey();
    }
    std::string AddItemOf(const std::string& category, const std::string& subCategory) {
        const std::string key = shop_.AddItem("ITEM" + category + subCategory);
        LItem item;
        EXPECT_TRUE(shop_.profile.Items().Open(item, key));
        item.SetString("Category", category);
        item.SetString("SubCategory", subCategory);
        item.Flush();
        return key;
    }
    std::string SubCategoryOf(const std::string& itemKey) const {
        LItem item;
        EXPECT_TRUE(shop_.profile.Items().Open(item, itemKey));
        return item.GetString("SubCategory");
    }
    LTestShop shop_;
    LScriptedUserInterface ui_;
};

TEST_F(MasterRecords, CategoriesAreCheckedInTheseWords) {
    const std::string tools = AddCategory("Tools"), paint = AddCategory("Paint");
    const std::string kTaken =
        "There is another category with the same name already exists. Please use a different "
        "name.";
    const struct {
        std::string key, name;
        LTexts subCategories;
        bool fails;
        std::string message;
    } kCases[] = {
        {"", "", {}, true, "Please enter the Category name."},
        {"", "  ", {}, true, "Please enter the Category name."},
        {"", " All ", {}, true, "Please enter a valid category name"},
        {"", "Tools", {}, true, kTaken},
        {"", "", {"A", " "}, true, ""},  // rows first, without a message
        {paint, "Tools", {}, true, kTaken},
        {paint, "Paint", {}, false, ""},
        {paint, "tools", {}, false, ""},  // differs in case: another category
        {"", "ALL", {}, false, ""},
    };
    for (const auto& c : kCases) {
        LCategory category;
        if (!c.key.empty()) {
            ASSERT_TRUE(LCategoryList(shop_.profile).Open(category, c.key));
        }
        const auto error = LCategorySave(shop_.profile, category, {c.name, c.subCategories, {}});
        EXPECT_EQ(error.failed, c.fails) << c.name;
        EXPECT_EQ(error.message, c.message) << c.name;
    }
    LCategory found;
    EXPECT_TRUE(OpenCategory(LCategoryList(shop_.profile), found, "tools"));
    EXPECT_EQ(found.GetPrimaryKey(), paint);
    EXPECT_FALSE(OpenCategory(LCategoryList(shop_.profile), found, "TOOLS"));
}

TEST_F(MasterRecords, SubCategoriesAreStoredTrimmedWithoutBlanksBetween) {
    const std::string key = AddCategory("Tools", {" Saws ", "Hand drills", "Files"});
    LCategory category;
    ASSERT_TRUE(LCategoryList(shop_.profile).Open(category, key));
    EXPECT_EQ(category.GetString("Subcategory"), "Saws,Hand drills,Files");
    EXPECT_EQ(GetSubCategories(category), (LTexts{"Saws", "Hand drills", "Files"}));
    category.SetString("Subcategory", ",,a,");
    EXPECT_EQ(GetSubCategories(category), LTexts{"a"});
}

TEST_F(MasterRecords, RenamedSubCategoriesAreCarriedIntoTheItemsOfTheCategory) {
    const std::string tools = AddCategory("Tools", {"Saws", "Drills", "Files"});
    const std::string other = AddCategory("Other", {"Saws"});
    const std::string saw = AddItemOf(tools, "Saws"), drill = AddItemOf(tools, "Drills"),
                      lower = AddItemOf(tools, "saws"), foreign = AddItemOf(other, "Saws");
    LCategory category;
    ASSERT_TRUE(LCategoryList(shop_.profile).Open(category, tools));
    LCategoryInput input{
        "Hand tools", {"Drills", "Saws", "Files"}, {{"Saws", "Drills"}, {"Drills", "Saws"}}};
    EXPECT_TRUE(LCategorySave(shop_.profile, category, input).IsNone());
    EXPECT_EQ(SubCategoryOf(saw), "Drills") << "two may trade names";
    EXPECT_EQ(SubCategoryOf(drill), "Saws");
    EXPECT_EQ(SubCategoryOf(lower), "saws");
    EXPECT_EQ(SubCategoryOf(foreign), "Saws");

    input.name = "Other";  // refused: nothing may be carried either
    input.renamedSubCategories = {{"Saws", "Blades"}};
    EXPECT_TRUE(LCategorySave(shop_.profile, category, input).failed);
    EXPECT_EQ(SubCategoryOf(drill), "Saws");
    EXPECT_EQ(category.GetString("Name"), "Hand tools");
}

TEST_F(MasterRecords, SubCategoriesInUseOrJustRenamedStay) {
    const std::string tools = AddCategory("Tools", {"Saws", "Drills", "Files"});
    const std::string other = AddCategory("Other", {"Files"});
    AddItemOf(tools, "Saws");
    AddItemOf(other, "Files");
    LCategory category;
    ASSERT_TRUE(LCategoryList(shop_.profile).Open(category, tools));
    LCategoryInput input{"Tools", {"Saws", "Borers", "Files"}, {{"Drills", "Borers"}}};
    const char* const kQuestion = "Are you sure you want to delete the selected sub-category?";
    ui_.ExpectDelete("Delete Sub-Categories", kQuestion, "Cancel");
    EXPECT_FALSE(LSubCategoriesDelete(ui_, shop_.profile, category, input, {"Files"}));
    ui_.ExpectDelete("Delete Sub-Categories", kQuestion);
    EXPECT_TRUE(
        LSubCategoriesDelete(ui_, shop_.profile, category, input, {"Saws", "Borers", "Files"}));
    EXPECT_EQ(input.subCategories, (LTexts{"Saws", "Borers"}))
        << "another category's items do not count";
    EXPECT_EQ(ui_.Informed(),
              (LShown{{"Delete Subcategories",
                       "You can not delete subcategory \"Saws\" of category \"Tools\" because it "
                       "may be referenced by items"},
                      {"Delete Subcategories",
                       "You can not delete subcategory whose name has been changed"}}));
}

TEST_F(MasterRecords, CategoriesOfItemsAreNotDeletedAndTheOthersAre) {
    const std::string tools = AddCategory("Tools"), paint = AddCategory("Paint"),
                      wood = AddCategory("Wood");
    AddItemOf(tools, "");
    ui_.ExpectDelete("Delete Categories",
                     "Are you sure you want to delete the selected category(s)?");
    EXPECT_TRUE(LCategoriesDelete(ui_, shop_.profile, {tools, wood}));
    EXPECT_EQ(ui_.Informed(),
              (LShown{{"Delete Categories",
                       "You can not delete category Tools because it may be referenced by "
                       "items"}}));
    const LCategoryList list(shop_.profile);
    EXPECT_TRUE(list.TestRecordExists(tools) && list.TestRecordExists(paint));
    EXPECT_FALSE(list.TestRecordExists(wood));
}

TEST_F(MasterRecords, SuppliersAndCustomersAreCheckedInTheirOwnWords) {
    LSupplier supplier, hammer;
    EXPECT_TRUE(LSupplierSave(shop_.profile, hammer, Named<LSupplierInput>("Hammer")).IsNone());
    EXPECT_TRUE(LSupplierSave(shop_.profile, supplier, Named<LSupplierInput>(" Nails ")).IsNone());
    LCustomer customer, smith;
    EXPECT_TRUE(LCustomerSave(shop_.profile, smith, Named<LCustomerInput>("Smith")).IsNone());
    EXPECT_TRUE(LCustomerSave(shop_.profile, customer, Named<LCustomerInput>("Jones")).IsNone());
    const struct {
        const char *supplierName, *customerName, *email;
        bool isNew;
        const char *supplierMessage, *customerMessage;
    } kCases[] = {
        {" ", "", "", true, "Please enter the supplier name.", "Please enter the customer name."},
        {"x", "x", "nobody", true,
         "Email address is not valid. Email addresses must be in the form name@example.com.",
         "Email address is not valid. Email addresses must be in the for name@example.com."},
        {"HAMMER", "SMITH", "", true, "A supplier with the same name already exists.",
         "A customer with the same name already exists."},
        {"hammer", "smith ", "", false, "A supplier with this name already exists.",
         "A customer with this name already exists."},
        {"NAILS", "JONES", "a@example.com, b@example.com", false, "", ""},
    };
    for (const auto& c : kCases) {
        LSupplier newSupplier;
        LCustomer newCustomer;
        EXPECT_EQ(LSupplierSave(shop_.profile, c.isNew ? newSupplier : supplier,
                                Named<LSupplierInput>(c.supplierName, c.email))
                      .message,
                  c.supplierMessage);
        EXPECT_EQ(LCustomerSave(shop_.profile, c.isNew ? newCustomer : customer,
                                Named<LCustomerInput>(c.customerName, c.email))
                      .message,
                  c.customerMessage);
        EXPECT_TRUE(!c.isNew || (!newSupplier.IsBound() && !newCustomer.IsBound()));
    }
    EXPECT_EQ(supplier.GetString("Name"), "NAILS");
    EXPECT_EQ(customer.GetString("Name"), "JONES");
}

TEST_F(MasterRecords, EveryFieldOfACustomerIsStoredUnderItsName) {
    LCustomerInput input;
    const std::pair<const char*, std::string LCustomerInput::*> kFields[] = {
        {"Contact", &LCustomerInput::contact},
        {"ContactFirst", &LCustomerInput::contactFirst},
        {"Address", &LCustomerInput::address},
        {"City", &LCustomerInput::city},
        {"State", &LCustomerInput::state},
        {"ZIPCode", &LCustomerInput::zipCode},
        {"Country", &LCustomerInput::country},
        {"Phone", &LCustomerInput::phone},
        {"Phone2", &LCustomerInput::phone2},
        {"Fax", &LCustomerInput::fax},
        {"ShippingAddress", &LCustomerInput::shippingAddress},
        {"ShipCity", &LCustomerInput::shipCity},
        {"ShipState", &LCustomerInput::shipState},
        {"ShipZIPCode", &LCustomerInput::shipZipCode},
        {"ShipCountry", &LCustomerInput::shipCountry},
        {"SalesPerson", &LCustomerInput::salesPerson},
        {"Notes", &LCustomerInput::notes},
    };
    for (const auto& [name, member] : kFields) input.*member = std::string("my ") + name;
    input.name = "Smith";
    input.country.clear();
    LCustomer customer;
    ASSERT_TRUE(LCustomerSave(shop_.profile, customer, input).IsNone());
    LCustomer stored;
    ASSERT_TRUE(OpenCustomer(LCustomerList(shop_.profile), stored, "smith"));
    for (const auto& [name, member] : kFields) EXPECT_EQ(stored.GetString(name), input.*member);
    std::string billing;
    stored.GetBillingAddress(billing);
    EXPECT_EQ(billing, "my Address\r\nmy City\r\nmy State\r\nmy ZIPCode\r\n\r\n");
}

TEST_F(MasterRecords, ARenamedSupplierLeavesItsItemsAlone) {
    LSupplier supplier;
    LSupplierSave(shop_.profile, supplier, Named<LSupplierInput>("Hammer"));
    const std::string key = shop_.AddItem("BOLT");
    LItem item;
    ASSERT_TRUE(shop_.profile.Items().Open(item, key));
    item.SetString("Supplier", "Hammer");
    item.Flush();
    EXPECT_TRUE(LSupplierSave(shop_.profile, supplier, Named<LSupplierInput>("Mallet")).IsNone());
    ASSERT_TRUE(shop_.profile.Items().Open(item, key));
    EXPECT_EQ(item.GetString("Supplier"), "Hammer");
}

TEST_F(MasterRecords, SuppliersOnOrdersAreNotDeletedAndCustomersAlwaysAre) {
    LSupplier hammer, nails;
    LSupplierSave(shop_.profile, hammer, Named<LSupplierInput>("Hammer"));
    LSupplierSave(shop_.profile, nails, Named<LSupplierInput>("Nails"));
    LRecord order;
    shop_.profile.OrdersDrafts().CreateNewRecord(order, "DFT1");
    order.SetString("Supplier", hammer.GetPrimaryKey());
    order.Flush();
    ui_.ExpectDelete("Delete Suppliers",
                     "Are you sure you want to delete the selected supplier(s)?");
    EXPECT_TRUE(
        LSuppliersDelete(ui_, shop_.profile, {hammer.GetPrimaryKey(), nails.GetPrimaryKey()}));
    EXPECT_EQ(ui_.Informed(),
              (LShown{{"Delete Suppliers",
                       "You can not delete Supplier Hammer because it may be referenced by "
                       "orders"}}));
    EXPECT_TRUE(LSupplierList(shop_.profile).TestRecordExists(hammer.GetPrimaryKey()));
    EXPECT_FALSE(LSupplierList(shop_.profile).TestRecordExists(nails.GetPrimaryKey()));

    LCustomer customer;
    LCustomerSave(shop_.profile, customer, Named<LCustomerInput>("Smith"));
    ui_.ExpectDelete("Delete Customers",
                     "Are you sure you want to delete the selected customer(s)?");
    EXPECT_TRUE(LCustomersDelete(ui_, shop_.profile, {customer.GetPrimaryKey()}));
    EXPECT_TRUE(LCustomerList(shop_.profile).IsEmpty());
}

TEST_F(MasterRecords, NameListsHoldTheirTextsAsKeys) {
    for (const char* text : {"piece", " kg ", "Box/12", "piece", "", "  ", "m\u00b2"}) {
        AddToNameList(shop_.profile, "UnitMeasure", text);
    }
    EXPECT_EQ(GetNameList(shop_.profile, "UnitMeasure"),
              (LTexts{"Box/12", "kg", "m\u00b2", "piece"}));
    ui_.ExpectDelete("Delete Entries", "Are you sure you want to delete the selected entries?");
    EXPECT_TRUE(LNameListDelete(ui_, shop_.profile, "UnitMeasure", {"kg", "Box/12", "gone"}));
    EXPECT_EQ(GetNameList(shop_.profile, "UnitMeasure"), (LTexts{"m\u00b2", "piece"}));
    EXPECT_TRUE(GetNameList(shop_.profile, "ShipBy").empty());
}

TEST_F(MasterRecords, TheMailMergeFileHasAHeaderAndARowForEach) {
    LCustomer smith;
    auto input = Named<LCustomerInput>("Smith & Co");
    input.contact = "Smith";
    input.contactFirst = "Ann";
    input.address = "Mill House\r\n\r\n1 Mill Lane\nNorth Side\r\nUnit 4\r\nRear";
    input.city = "Leeds";
    input.notes = "say \"hello\"";
    ASSERT_TRUE(LCustomerSave(shop_.profile, smith, input).IsNone());
    const std::string header =
        "Customer,Contact,FirstName,Address1,Address2,Address3,Address4,City,State,ZIPCode,"
        "Country,Phone,Phone2,Fax,Email,ShipAddress1,ShipAddress2,ShipAddress3,ShipAddress4,"
        "ShipCity,ShipState,ShipZIPCode,ShipCountry,SalesPerson,Notes\r\n";
    const std::string row =
        "Smith & Co,Smith,Ann,Mill House,1 Mill Lane,North Side,\"Unit 4, Rear\",Leeds,,,,,,,,,,,,"
        ",,,,,\"say \"\"hello\"\"\"\r\n";
    const char* const kDone =
        "The csv data file has been exported, please run Mail Merge on your wordprocessor now to "
        "import the data";
    ui_.ExpectPick("Export to CSV", shop_.home.File("out.csv"));
    EXPECT_TRUE(LCustomersExportMailMerge(ui_, shop_.profile, {smith.GetPrimaryKey()}));
    EXPECT_EQ(shop_.home.ReadFile("out.csv"), header + row);

    LRecord options;
    shop_.profile.OpenSettings(options, "Options");
    options.SetBool("CSVBOMInclued", true);
    options.Flush();
    ui_.ExpectPick("Export to CSV", shop_.home.File("out.csv"));
    EXPECT_TRUE(LCustomersExportMailMerge(ui_, shop_.profile, {smith.GetPrimaryKey()}));
    EXPECT_EQ(shop_.home.ReadFile("out.csv"), "\xEF\xBB\xBF" + header + row);
    EXPECT_EQ(ui_.Informed(), (LShown{{"Export Complete", kDone}, {"Export Complete", kDone}}));
}

TEST_F(MasterRecords, AMailMergeThatCannotBeWrittenSaysSo) {
    EXPECT_FALSE(LCustomersExportMailMerge(ui_, shop_.profile, {}));
    ui_.ExpectPick("Export to CSV", shop_.home.File("no/such/folder/out.csv"));
    EXPECT_FALSE(LSuppliersExportMailMerge(ui_, shop_.profile, {"1"}));
    ui_.ExpectPick("Export to CSV", std::nullopt);
    EXPECT_FALSE(LSuppliersExportMailMerge(ui_, shop_.profile, {"1"}));
    EXPECT_EQ(ui_.Informed(),
              (LShown{{"Export to CSV", "Please select the customers to export"},
                      {"Export to CSV",
                       "Cannot open the file you selected for writing. Check you have write "
                       "access."}}));
}

}  // namespace
