#include "web/pages/ItemDialogs.h"

#include <algorithm>
#include <array>

#include "inventory/MasterRecords.h"
#include "inventory/MovementLock.h"
#include "inventory/StockQuantities.h"
#include "platform/RandomSource.h"
#include "web/framework/LHtmlList.h"
#include "web/framework/PageTargets.h"
#include "web/framework/TabData.h"
#include "web/pages/NameChoices.h"

namespace {

constexpr size_t kDraftLetters = 8;

bool IsDraftName(std::string_view text) {
    return text.size() == kDraftLetters &&
           std::all_of(text.begin(), text.end(), [](char c) { return c >= 'a' && c <= 'z'; });
}

}  // namespace

// --- both tabs ---

LItemTabDialog::LItemTabDialog(LWebletForm& form, LTab tab)
    : LWebDialogEAWithNavTabs(form), tab_(tab) {
    SetOkCancelPage("itemlist", "itemlist");
    KeepParameter("id");
}

bool LItemTabDialog::Prepare() {
    const std::string id = Form().Parameter("id");
    if (!id.empty() && !Profile().Items().Open(item_, id)) {
        Redirect("itemlist");  // another tab was quicker
        return false;
    }
    const std::string draft = Form().Parameter("draft");
    draft_ = IsDraftName(draft) ? draft : RandomLetters(kDraftLetters);
    SetTitle(id.empty() ? "New item" : "Item " + item_.GetString("Name"));
    SetTabName(TabDataName(tab_));
    Tabs().AddTab(TabPage(LTab::kGeneral), "General");
    Tabs().AddTab(TabPage(LTab::kInventory), "Inventory");
    Tabs().Select(static_cast<size_t>(tab_));
    return true;
}

std::string LItemTabDialog::TabDataName(LTab tab) const {
    return (tab == LTab::kGeneral ? "item-general." : "item-inventory.") + draft_;
}

std::string LItemTabDialog::TabPage(LTab tab) const {
    return WLMakeLink(tab == LTab::kGeneral ? "itemprop" : "iteminventoryprop",
                      {{"id", item_.GetPrimaryKey()}, {"draft", draft_}});
}

void LItemTabDialog::Generate() {
    PassPriviligies(Script());
    AddHiddenField("draft", draft_);
    GenerateTab(ShownFields());
}

LHashTable LItemTabDialog::ShownFields() {
    if (std::optional<LHashTable> kept = ReadTabData(Form(), TabDataName(tab_))) return *kept;
    return tab_ == LTab::kGeneral ? GeneralFieldsOf(Profile(), item_)
                                  : StockFieldsOf(Profile(), item_);
}

LHashTable LItemTabDialog::Fields(LTab tab) {
    if (tab == tab_) return Form().Parameters();
    if (std::optional<LHashTable> kept = ReadTabData(Form(), TabDataName(tab))) return *kept;
    return tab == LTab::kGeneral ? GeneralFieldsOf(Profile(), item_)
                                 : StockFieldsOf(Profile(), item_);
}

bool LItemTabDialog::CmOk() {
    if (!Save()) return false;
    CmCancel();
    return true;
}

// All checks come before anything is stored. The lock keeps sales out between reading the stock
// that nobody touched and storing it again.
bool LItemTabDialog::Save() {
    const LMovementLock lock(Profile());
    if (item_.IsBound()) {
        const std::string id = item_.GetPrimaryKey();
        if (!Profile().Items().Open(item_, id)) {
            PopupBoxError("This item has been deleted in the meantime.");
            return false;
        }
    }
    const LItemInput general = GeneralInput(Fields(LTab::kGeneral), item_);
    LItemError error = LItemCheckGeneral(Profile(), general);
    LStockFieldsError stockError;
    std::optional<LItemStockInput> stock;
    if (error.IsNone()) {
        stock = StockInput(Profile(), Fields(LTab::kInventory), item_, stockError);
        if (!stock) return ShowError(LTab::kInventory, stockError.control, stockError.message);
        error = LItemSaveGeneral(Profile(), item_, general);
    }
    if (error.IsNone()) error = LItemSaveStock(Profile(), item_, *stock);
    if (error.IsNone()) return true;
    const bool isStock = error.field == LItemField::kLocations;
    return ShowError(isStock ? LTab::kInventory : LTab::kGeneral,
                     isStock ? ItemRowControl(0, kRowQuantity)
                             : GeneralControlOf(error.field.value_or(LItemField::kCode)),
                     error.message);
}

// Beside its field, or above the form when the field stands on the other tab. Always false.
bool LItemTabDialog::ShowError(LTab tab, int control, const std::string& message) {
    if (tab == tab_) {
        PopupControlDataInvalid(control, message);
    } else {
        PopupBoxError((tab == LTab::kGeneral ? "General: " : "Inventory: ") + message);
    }
    return false;
}

void LItemTabDialog::CmCancel() {
    DropTabData(Form(), TabDataName(LTab::kGeneral));
    DropTabData(Form(), TabDataName(LTab::kInventory));
}

// --- what an item is ---

void LAppWebItemDialog::GenerateTab(const LHashTable& fields) {
    StartRow().AddStatic("Code").AddInput(kItemCode, Field(fields, kItemCode));
    StartRow()
        .AddStatic("Description")
        .AddEdit(kItemDescription, Field(fields, kItemDescription), 2);
    GenerateCategory(fields);
    LInputOptions amount;
    amount.widthChars = 12;
    StartRow().AddStatic("Cost").AddInputNumber(kItemCost, Field(fields, kItemCost), amount);
    StartRow().AddStatic("Price").AddInputNumber(kItemPrice, Field(fields, kItemPrice), amount);
    std::vector<LOption> taxes;
    for (const std::string& name : GetTaxNames(Profile())) {
        taxes.push_back({std::to_string(taxes.size()), name});
    }
    StartRow().AddStatic("Tax").AddPullDownListEx(kItemTax, taxes, Field(fields, kItemTax));
    StartRow()
        .AddStatic("Unit of measure")
        .AddEditablePullDownList(kItemMeasure, GetNameList(Profile(), "UnitMeasure"),
                                 Field(fields, kItemMeasure));
    LInputOptions address;
    address.inputMode = "url";
    StartRow().AddStatic("Web page").AddInput(kItemWebSite, Field(fields, kItemWebSite), address);
    StartRow().AddStatic("Notes").AddEdit(kItemNotes, Field(fields, kItemNotes), 3);
    GenerateCustomFields(fields);
}

// Choosing another category offers its sub-categories.
void LAppWebItemDialog::GenerateCategory(const LHashTable& fields) {
    const std::string name = Field(fields, kItemCategory);
    LInputOptions look;
    look.hint = "A new name makes a new category";
    look.onChange = "offerSubCategories(this.value)";
    StartRow()
        .AddStatic("Category")
        .AddEditablePullDownList(kItemCategory, SortedNames(Profile(), "Categories"), name, look);
    LCategory category;
    std::vector<std::string> subCategories;
    if (OpenCategory(LCategoryList(Profile()), category, name)) {
        subCategories = GetSubCategories(category);
    }
    StartRow()
        .AddStatic("Sub-category")
        .AddEditablePullDownList(kItemSubCategory, subCategories, Field(fields, kItemSubCategory));
    Script().Add(
        "function offerSubCategories(name) {"
        "fetch('getsubcate?name=' + encodeURIComponent(name)).then(function(answer) {"
        "return answer.text();}).then(function(text) {"
        "var list = document.getElementById('list%d');list.textContent = '';"
        "text.split('\\n').forEach(function(line) {if (!line) return;"
        "var option = document.createElement('option');option.value = line;"
        "list.appendChild(option);});});}\n",
        static_cast<int>(kItemSubCategory));
}

// Only those that the business has given a label.
void LAppWebItemDialog::GenerateCustomFields(const LHashTable& fields) {
    LRecord options;
    Profile().OpenSettings(options, "Options");
    for (const auto& [setting, control] :
         {std::pair("customField1", kItemCustom1), std::pair("customField2", kItemCustom2)}) {
        const std::string label = options.GetShortString(setting);
        if (label.empty()) {
            AddHiddenField(std::to_string(control), Field(fields, control));
        } else {
            StartRow().AddStatic(label).AddInput(control, Field(fields, control));
        }
    }
}

// --- what lies where ---

void LAppWebItemInventoryDialog::GenerateTab(const LHashTable& fields) {
    StartRow()
        .AddStatic("Supplier")
        .AddEditablePullDownList(kItemSupplier, SortedNames(Profile(), "Suppliers"),
                                 Field(fields, kItemSupplier));
    StartRow()
        .AddStatic("Supplier's item number")
        .AddInput(kItemSupplierId, Field(fields, kItemSupplierId));
    StartRow().AddStatic("").AddCheckBox(kItemWarningEmail,
                                         "Send an e-mail when the warning quantity is reached",
                                         !Field(fields, kItemWarningEmail).empty());
    if (Item().IsBuilt()) {
        GenerateDerivedStock();
    } else {
        GenerateStockTable(fields);
    }
}

void LAppWebItemInventoryDialog::GenerateStockTable(const LHashTable& fields) {
    const LNameMap locations(Profile(), "Locations");
    StartGroupBox("Stock by location");
    StartRow().AddRawHTML(
        "<table class=stocktable><thead><tr><th>Location</th><th>Quantity</th><th>Ideal</th>"
        "<th>Warning</th></tr></thead><tbody>");
    for (int row = 0; row < StockRowCount(fields); ++row) {
        const std::string key = Field(fields, ItemRowControl(row, kRowLocation));
        GenerateStockRow(fields, row, key, locations.Name(key));
    }
    AddRawHTML("</tbody></table>");
    AddHiddenField(std::to_string(kItemRowCount), std::to_string(StockRowCount(fields)));
    StartRow().AddStaticSmall(
        "Leave a location empty when the item is not kept there. An ideal quantity of 0 means that "
        "the location is not watched for low stock.");
    EndGroupBox();
}

void LAppWebItemInventoryDialog::GenerateStockRow(const LHashTable& fields, int row,
                                                  std::string_view location,
                                                  std::string_view name) {
    AddRawHTML(FormatText("<tr><th scope=row>%H</th>", name));
    constexpr std::array<const char*, 3> kCaptions{"Quantity", "Ideal quantity",
                                                   "Warning quantity"};
    for (const int part : {kRowQuantity, kRowIdeal, kRowWarning}) {
        const int control = ItemRowControl(row, part);
        AddRawHTML(FormatText(
            "<td><input type=text id=%d name=%d value='%H' size=8 maxlength=40 inputmode=decimal "
            "autocomplete=off aria-label='%H at %H'>",
            control, control, Field(fields, control), kCaptions[static_cast<size_t>(part)], name));
        const int shown = ItemRowControl(row, kRowShown + part);
        AddRawHTML(
            FormatText("<input type=hidden name=%d value='%H'></td>", shown, Field(fields, shown)));
    }
    AddRawHTML(FormatText("<td hidden><input type=hidden name=%d value='%H'></td></tr>",
                          ItemRowControl(row, kRowLocation), location));
}

// A built item's stock is what its components allow.
void LAppWebItemInventoryDialog::GenerateDerivedStock() {
    const LNameMap locations(Profile(), "Locations");
    std::string text;
    Item().GetBOMLocationsAndQuantities(Profile(), text);
    StartGroupBox("Stock by location");
    for (const LocationAndQuantities& entry : ParseLocationAndQuantities(text)) {
        StartRow()
            .AddStatic(std::string(locations.Name(entry.location)))
            .AddStatic(Profile().FormatQuantity(entry.quantity));
    }
    StartRow().AddStaticSmall("Built from components: this is how many they allow.");
    EndGroupBox();
}
