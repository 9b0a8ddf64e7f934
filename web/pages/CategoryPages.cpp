#include "web/pages/CategoryPages.h"

#include <algorithm>

#include "web/pages/LDialogUserInterface.h"
#include "web/pages/LTextAnswer.h"
#include "web/pages/MasterList.h"

namespace {

enum { kCatName = 101, kCatFirstSub = 200, kCatFirstOldSub = 500, kCatSubCount = 102 };

constexpr int kMaxSubCategories = 200;
constexpr int kSpareRows = 3;  // empty inputs for new sub-categories

constexpr LHtmlListColumn kColumns[] = {
    {"Name", 30},
    {"Sub-categories", 60},
    {"Delete", 0, LCellAlign::kCenter, false},
};

std::string JoinNames(const std::vector<std::string>& names) {
    std::string text;
    for (const std::string& name : names) text += (text.empty() ? "" : ", ") + name;
    return text;
}

}  // namespace

void LAppWebCatPage::PrintBody() {
    LMasterList list(Out(), {"catprop", "catdelete", "New category"}, !IsViewer());
    list.SetColumns(kColumns);
    list.SetTexts("Categories", "There are no categories yet. Add one, or name one on an item.");
    LCategoryList(Profile()).ForEach([&](const LCategory& category) {
        list.AddRow(category.GetPrimaryKey(), category.GetView("Name"),
                    {JoinNames(GetSubCategories(category))});
        return true;
    });
    list.Print();
}

LAppWebCatDialog::LAppWebCatDialog(LWebletForm& form) : LWebDialogEA(form) {
    SetOkCancelPage("catlist", "catlist");
    KeepParameter("id");
}

bool LAppWebCatDialog::Prepare() {
    const std::string id = Form().Parameter("id");
    SetTitle(id.empty() ? "New category" : "Category");
    if (id.empty() || LCategoryList(Profile()).Open(category_, id)) return true;
    Redirect("catlist");  // another tab was quicker
    return false;
}

// Each sub-category travels with the name it had, so that a change is a rename that items follow.
void LAppWebCatDialog::Generate() {
    StartRow().AddStatic("Name").AddInput(kCatName, category_.GetString("Name"));
    const std::vector<std::string> names = GetSubCategories(category_);
    const int stored = std::min(static_cast<int>(names.size()), kMaxSubCategories);
    for (int i = 0; i < stored + kSpareRows; ++i) {
        const std::string name = i < stored ? names[static_cast<size_t>(i)] : "";
        const std::string spoken = FormatText("Sub-category %d", i + 1);
        StartRow()
            .AddStatic(i == 0 ? "Sub-categories" : "")
            .AddInput(kCatFirstSub + i, name, {.name = spoken});
        AddHiddenField(std::to_string(kCatFirstOldSub + i), name);
    }
    AddHiddenField(std::to_string(kCatSubCount), std::to_string(stored + kSpareRows));
}

bool LAppWebCatDialog::CmOk() {
    LCategoryInput input;
    input.name = GetTextAndTrim(kCatName);
    if (!TakeSubCategories(input)) return false;
    return ShowFieldError(LCategorySave(Profile(), category_, input), [](LCategoryField field) {
        return field == LCategoryField::kName ? kCatName : kCatFirstSub;
    });
}

// An emptied input takes its sub-category out, which is refused while items use it.
bool LAppWebCatDialog::TakeSubCategories(LCategoryInput& input) {
    const int count =
        std::clamp(GetControlValueInt(kCatSubCount), 0, kMaxSubCategories + kSpareRows);
    std::vector<std::string> emptied;
    int firstEmptied = kCatFirstSub;
    for (int i = 0; i < count; ++i) {
        const std::string name = GetTextAndTrim(kCatFirstSub + i);
        const std::string oldName = GetText(kCatFirstOldSub + i);
        if (name.empty() && oldName.empty()) continue;
        input.subCategories.push_back(name.empty() ? oldName : name);
        if (name.empty()) {
            if (emptied.empty()) firstEmptied = kCatFirstSub + i;
            emptied.push_back(oldName);
        } else if (!oldName.empty() && oldName != name) {
            input.renamedSubCategories.emplace_back(oldName, name);
        }
    }
    if (emptied.empty()) return true;
    LDialogUserInterface ui;
    LSubCategoriesDelete(ui, Profile(), category_, input, emptied);
    if (ui.Told().empty()) return true;
    PopupControlDataInvalid(firstEmptied, ui.Told());
    return false;
}

void WLCatDelete(LWebletForm& form) { WLMasterDelete(form, "catlist", LCategoriesDelete); }

void WLCatAdd(LWebletForm& form) {
    if (!AuthenticateAction(form)) return;
    LCategoryInput input;
    input.name = form.Parameter("name");
    LCategory category;
    std::string answer = input.name;
    if (form.IsPost() && WLMayChange(form) &&
        !OpenCategory(LCategoryList(form.Profile()), category, input.name)) {
        const auto error = LCategorySave(form.Profile(), category, input);
        if (!error.IsNone()) answer = error.message;
    }
    LTextAnswer(form, {answer}).Open();
}

void VWAJAXGetSubCate(LWebletForm& form) {
    if (!AuthenticateAction(form)) return;
    LCategory category;
    std::vector<std::string> names;
    if (OpenCategory(LCategoryList(form.Profile()), category, form.Parameter("name"))) {
        names = GetSubCategories(category);
    }
    LTextAnswer(form, names).Open();
}
