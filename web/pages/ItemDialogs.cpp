#include "web/pages/ItemDialogs.h"

#include <array>

#include "documents/ItemPictures.h"
#include "inventory/MasterRecords.h"
#include "inventory/MovementLock.h"
#include "inventory/StockQuantities.h"
#include "platform/FileIo.h"
#include "web/framework/RunPage.h"
#include "web/framework/TabData.h"
#include "web/pages/ItemLines.h"
#include "web/pages/NameChoices.h"
#include "web/server/LWebletScripts.h"

namespace {

constexpr LDialogTab kTabs[] = {
    {"itemprop", "General", "item-general."},
    {"iteminventoryprop", "Inventory", "item-inventory."},
    {"itembomprop", "Components", "item-components."},
};

void ReceivePicture(LWebletForm& form) {
    LWebPostFileReceive(form, form.PostFiles(), kMaxUploadBytes);
}

std::string PictureOf(LWebletForm& form) {
    LItem item;
    if (!form.Profile().Items().Open(item, form.Parameter("id"))) return {};
    const std::string file = GetItemPictureFile(form.Profile(), item);
    return file.ends_with(".bmp") ? ReadFile(file).value_or("") : std::string();
}

void WLItemPicture(LWebletForm& form) {
    if (!AuthenticateAction(form)) return;
    const std::string picture = PictureOf(form);
    LPageWriter(form)
        .Printf(
            "HTTP/1.1 %s\r\nConnection: close\r\nCache-Control: private, no-cache\r\n"
            "Content-Type: image/bmp\r\n\r\n",
            picture.empty() ? "404 Not Found" : "200 OK")
        .Write(picture);
}

}  // namespace

void InstallItemScripts() {
    LWebletInstallScript("itemprop", WLWebDialogRun<LAppWebItemDialog>);
    LWebletInstallPostScript("itemprop", ReceivePicture);
    LWebletInstallScript("itempicture", WLItemPicture);
}

// --- all tabs ---

LItemTabDialog::LItemTabDialog(LWebletForm& form, LTab tab) : LTabbedDialog(form, kTabs, tab) {
    SetOkCancelPage("itemlist", "itemlist");
}

bool LItemTabDialog::Prepare() {
    const std::string id = Form().Parameter("id");
    if (!id.empty() && !Profile().Items().Open(item_, id)) {
        Redirect("itemlist");  // another tab was quicker
        return false;
    }
    SetTitle(id.empty() ? "New item" : "Item " + item_.GetString("Name"));
    PrepareTabs(item_.GetPrimaryKey());
    return true;
}

LHashTable LItemTabDialog::StoredFields(size_t tab) {
    switch (tab) {
        case kGeneral:
            return GeneralFieldsOf(Profile(), item_);
        case kInventory:
            return StockFieldsOf(Profile(), item_);
        default:
            return ComponentFieldsOf(Profile(), item_);
    }
}

bool LItemTabDialog::CmOk() {
    // Pictures are read outside the lock under which the rest is saved: large ones take a while.
    if (!CheckPicture() || !Save() || !SavePicture()) return false;
    CmCancel();
    if (!notice_.empty()) {
        AnswerScript("alert('%J');window.location = '%J';\n", notice_, OnOk());
    }
    return true;
}

bool LItemTabDialog::GetChosenPicture(std::string& name, std::string& path) {
    if (GetUploadFileOf(kItemPicture, name, path)) return true;
    for (const LTabFile& file : ReadTabFiles(Form(), DataName(kGeneral))) {
        name = file.name;
        path = file.path;
        return true;
    }
    return false;
}

bool LItemTabDialog::CheckPicture() {
    std::string name, path;
    if (!GetChosenPicture(name, path) || IsItemPicture(path)) return true;
    DropTabFile(Form(), DataName(kGeneral), std::to_string(kItemPicture));
    return ShowError(kGeneral, kItemPicture,
                     "\"" + name +
                         "\" is not a picture that can be read. Choose a PNG, JPEG, GIF, "
                         "BMP, TIFF or WebP file.");
}

bool LItemTabDialog::SavePicture() {
    std::string name, path;
    const bool isRemoved = !Field(Fields(kGeneral), kItemRemovePicture).empty();
    const bool isChosen = GetChosenPicture(name, path);
    bool isDone = true;
    if (isChosen) {
        isDone = SaveItemPicture(Profile(), item_, path, GetItemPictureFile(Profile(), item_));
    } else if (isRemoved) {
        isDone = RemoveItemPicture(Profile(), item_);
    }
    if (!isDone) PopupBoxError("The item has been saved, but its picture could not be stored.");
    return isDone;
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
    LItemInput general = GeneralInput(Fields(kGeneral), item_);
    LTabFieldError error;
    // A bill that nobody looked at stays as it is stored, also where it names what is gone.
    const std::optional<LHashTable> components = EnteredFields(kComponents);
    if (components && !ComponentsInput(Profile(), *components, general, error)) {
        return ShowError(kComponents, error.control, error.message);
    }
    const LItemError generalError = LItemCheckGeneral(Profile(), general);
    if (!generalError.IsNone()) return ShowItemError(generalError);
    const std::optional<LItemStockInput> stock =
        StockInput(Profile(), Fields(kInventory), item_, error);
    if (!stock) return ShowError(kInventory, error.control, error.message);
    return SaveAll(general, *stock);
}

bool LItemTabDialog::SaveAll(const LItemInput& general, const LItemStockInput& stock) {
    LItemError error = LItemSaveGeneral(Profile(), item_, general, &notice_);
    if (error.IsNone()) error = LItemSaveStock(Profile(), item_, stock);
    return error.IsNone() || ShowItemError(error);
}

bool LItemTabDialog::ShowItemError(const LItemError& error) {
    switch (error.field.value_or(LItemField::kCode)) {
        case LItemField::kLocations:
            return ShowError(kInventory, ItemRowControl(0, kRowQuantity), error.message);
        case LItemField::kComponents:
            return ShowError(kComponents, ItemLineCode(kItemComponents, 0), error.message);
        default:
            return ShowError(kGeneral, GeneralControlOf(error.field.value_or(LItemField::kCode)),
                             error.message);
    }
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
    GeneratePicture(fields);
}

void LAppWebItemDialog::GeneratePicture(const LHashTable& fields) {
    if (!GetItemPictureFile(Profile(), Item()).empty()) {
        StartRow().AddStatic("Picture").AddRawHTML(
            FormatText("<img class=itempicture src='itempicture?id=%U' alt='Picture of %H'>",
                       Item().GetPrimaryKey(), Item().GetView("Name")));
        StartRow().AddStatic("").AddCheckBox(kItemRemovePicture, "Remove this picture",
                                             !Field(fields, kItemRemovePicture).empty());
    }
    std::string name, path;
    LInputOptions look;
    look.hint = "It is kept small: 120 by 72 pixels at most";
    if (GetChosenPicture(name, path)) {
        name = "Chosen: " + name;
        look.hint = name;
    }
    StartRow().AddStatic("New picture").AddFileInput(kItemPicture, "image/*", look);
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

// --- what it is made of ---

void LAppWebItemBOMDialog::GenerateTab(const LHashTable& fields) {
    StartRow().AddStatic("").AddCheckBox(kItemIsBuilt, "Built from components",
                                         !Field(fields, kItemIsBuilt).empty());
    StartGroupBox("Components of one unit");
    std::vector<LItemLineText> lines = ReadItemLines(fields, kItemComponents);
    for (LItemLineText& line : lines) line.note = ComponentNote(Profile(), line.code);
    AddItemLines(*this, Script(), Profile(), kItemComponents, lines);
    StartRow().AddStaticSmall(
        "A built item keeps no stock of its own: selling or receiving it moves its components. "
        "What "
        "the item had in stock before is dropped.");
    EndGroupBox();
    // Who enters a component means it.
    Script().AddStartUp(
        "document.getElementById('lines%d').addEventListener('input', function() {"
        "document.getElementById('%d').checked = true;});",
        static_cast<int>(kItemComponents), static_cast<int>(kItemIsBuilt));
}
