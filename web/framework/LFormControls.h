// The controls of a form, written row by row.
#pragma once

#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "datastore/LDate.h"
#include "platform/TextLimits.h"
#include "web/framework/LPageScript.h"

class LHtmlList;
class LPageWriter;

// How an input looks and what it takes.
struct LInputOptions {
    int widthChars = 40;
    size_t maxLength = kMaxTextBytes;    // in characters, as browsers count
    std::string_view inputMode = {};     // "decimal", "numeric", "tel", "url" ...
    std::string_view autocomplete = {};  // what browsers may fill in, in their words
    std::string_view name = {};          // said in place of a label where no text labels it
    std::string_view hint = {};          // a line of help below the input
    std::string_view onChange = {};      // script
    bool disabled = false;
};

// Every control has an integer id, which is its element's id and its field's name. A row is a row
// of the control table: a text begins a cell, the controls after it share the next cell, and the
// first of them is bound to the text as its label. All calls return the object, so that a row reads
// as one line. Values are texts of any origin: they are escaped here.
class LFormControls {
public:
    LFormControls(LPageWriter& out, LPageScript& script) : out_(out), script_(script) {}
    LFormControls(const LFormControls&) = delete;
    LFormControls& operator=(const LFormControls&) = delete;

    LFormControls& StartRow();  // ends the row before it

    LFormControls& AddStatic(std::string_view text);
    LFormControls& AddStaticBold(std::string_view text);
    LFormControls& AddStaticSmall(std::string_view text);
    LFormControls& AddInput(int id, std::string_view value, const LInputOptions& options = {});
    LFormControls& AddInputReadOnly(int id, std::string_view value,
                                    const LInputOptions& options = {});
    LFormControls& AddInputEmailAddress(int id, std::string_view value,
                                        const LInputOptions& options = {});
    // `purpose` tells password keepers: "current-password" or "new-password".
    LFormControls& AddInputPassword(int id, std::string_view value,
                                    std::string_view purpose = "current-password",
                                    const LInputOptions& options = {});
    // An input that the person types a number into, in the profile's format.
    LFormControls& AddInputNumber(int id, std::string_view value,
                                  const LInputOptions& options = {});
    // An input with a button beside it that runs `script`.
    LFormControls& AddInputWithButton(int id, std::string_view value, std::string_view caption,
                                      std::string_view script, const LInputOptions& options = {});
    LFormControls& AddEdit(int id, std::string_view value, int rows = 4,
                           const LInputOptions& options = {});
    LFormControls& AddCheckBox(int id, std::string_view caption, bool checked,
                               bool disabled = false);
    LFormControls& AddCheckBoxSimple(int id, std::string_view name, bool checked);
    // Buttons of one group share the group's field, whose value is the chosen button's id.
    LFormControls& AddRadioButton(int id, int group, std::string_view caption, bool checked,
                                  bool disabled = false);
    LFormControls& AddPullDownList(int id, std::span<const std::string> texts,
                                   std::string_view selected, const LInputOptions& options = {});
    struct LOption {
        std::string value, text;
        std::string info = {};  // for the page's script: the option's data-info
    };
    LFormControls& AddPullDownListEx(int id, std::span<const LOption> options,
                                     std::string_view selectedValue,
                                     const LInputOptions& look = {});
    // A pull-down list that also takes any other text.
    LFormControls& AddEditablePullDownList(int id, std::span<const std::string> texts,
                                           std::string_view value,
                                           const LInputOptions& options = {});
    // An input that a file is chosen with, in an upload dialog. `accept` is what browsers offer,
    // such as "image/*".
    LFormControls& AddFileInput(int id, std::string_view accept = {},
                                const LInputOptions& options = {});
    LFormControls& AddDateInput(int id, const std::optional<LDate>& date);
    LFormControls& AddButton(int id, std::string_view caption, std::string_view script);
    LFormControls& AddHyperLinkSpanRightSmall(std::string_view target, std::string_view caption);
    LFormControls& AddList(LHtmlList& list);
    LFormControls& AddVerticalSpace(int pixels);
    LFormControls& AddRawHTML(std::string_view markup);
    LFormControls& StartGroupBox(std::string_view title);
    LFormControls& EndGroupBox();
    LFormControls& AddHiddenField(std::string_view name, std::string_view value);

    // `control` can be used only while `checkBox` is ticked.
    void EnableControlOnCheck(int checkBox, int control);
    // `control` can be used only while the list shows one of `values`.
    void EnableControlOnSelectChange(int list, int control, std::span<const std::string> values);
    // Statements for validatedata(), which runs before a submit; "return false;" stops it.
    void AddValidation(std::string_view script) { validation_ += script; }

protected:
    void EndRow();
    // The functions enablectls and validatedata; after the last control.
    void AddControlScript();
    int FirstControl() const { return firstControl_; }  // 0: none that takes the focus
    const std::string& HiddenFields() const { return hidden_; }

private:
    enum class LFocus { kTakes, kLeaves };
    struct LStatic {
        std::string text, attributes;
    };
    LFormControls& AddText(std::string_view text, std::string_view attributes);
    void FlushStatic(int labelFor);
    void StartCell();
    void EndCell();
    void StartControl(int id, LFocus focus = LFocus::kTakes);
    void StartInput(int id, std::string_view type);
    void EndInput(int id, const LInputOptions& options);
    void PrintLook(int id, const LInputOptions& options);
    void PrintHint(int id, const LInputOptions& options);
    void CallWhenChanged(int id);

    LPageWriter& out_;
    LPageScript& script_;
    std::optional<LStatic> static_;  // written when it is known what it labels
    bool inRow_ = false, inCell_ = false, hasCell_ = false, comboStyle_ = false;
    int firstControl_ = 0;
    std::string hidden_, enabling_, enablingCalls_, validation_;
};
