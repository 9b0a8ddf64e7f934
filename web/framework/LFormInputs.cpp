// The controls that something can be entered into.
#include <algorithm>

#include "web/framework/LFormControls.h"
#include "web/framework/LPageWriter.h"

namespace {

std::string_view Checked(bool checked) { return checked ? " checked" : ""; }
std::string_view Disabled(bool disabled) { return disabled ? " disabled" : ""; }

}  // namespace

void LFormControls::StartInput(int id, std::string_view type) {
    StartControl(id);
    out_.Printf("<input type=%s id=%d name=%d", type, id, id);
}

// The attributes that all inputs share.
void LFormControls::PrintLook(int id, const LInputOptions& options) {
    if (!options.name.empty()) out_.Printf(" aria-label='%H'", options.name);
    if (!options.hint.empty()) out_.Printf(" aria-describedby=hint%d", id);
    if (!options.onChange.empty()) out_.Printf(" onchange='%H'", options.onChange);
    out_.Printf("%s>", Disabled(options.disabled));
}

void LFormControls::PrintHint(int id, const LInputOptions& options) {
    if (options.hint.empty()) return;
    out_.Printf("<div class='muted small' id=hint%d>%H</div>", id, options.hint);
}

void LFormControls::EndInput(int id, const LInputOptions& options) {
    out_.Printf(" size=%d maxlength=%lu", options.widthChars, options.maxLength);
    if (!options.inputMode.empty()) out_.Printf(" inputmode=%H", options.inputMode);
    if (!options.autocomplete.empty()) out_.Printf(" autocomplete='%H'", options.autocomplete);
    PrintLook(id, options);
    PrintHint(id, options);
}

LFormControls& LFormControls::AddInput(int id, std::string_view value,
                                       const LInputOptions& options) {
    StartInput(id, "text");
    out_.Printf(" value='%H'", value);
    EndInput(id, options);
    return *this;
}

LFormControls& LFormControls::AddInputReadOnly(int id, std::string_view value,
                                               const LInputOptions& options) {
    FlushStatic(id);
    StartCell();
    out_.Printf("<input type=text id=%d name=%d value='%H' readonly", id, id, value);
    EndInput(id, options);
    return *this;
}

LFormControls& LFormControls::AddInputEmailAddress(int id, std::string_view value,
                                                   const LInputOptions& options) {
    // Not of the type "email": browsers would complain in words of their own.
    StartInput(id, "text");
    out_.Printf(" value='%H' autocapitalize=off spellcheck=false", value);
    LInputOptions mail = options;
    if (mail.inputMode.empty()) mail.inputMode = "email";
    EndInput(id, mail);
    return *this;
}

LFormControls& LFormControls::AddInputPassword(int id, std::string_view value,
                                               std::string_view purpose,
                                               const LInputOptions& options) {
    StartInput(id, "password");
    out_.Printf(" value='%H'", value);
    LInputOptions secret = options;
    secret.autocomplete = purpose;
    EndInput(id, secret);
    return *this;
}

LFormControls& LFormControls::AddInputNumber(int id, std::string_view value,
                                             const LInputOptions& options) {
    StartInput(id, "text");
    out_.Printf(" value='%H' style='text-align:right'", value);
    LInputOptions number = options;
    if (number.inputMode.empty()) number.inputMode = "decimal";
    EndInput(id, number);
    return *this;
}

LFormControls& LFormControls::AddInputWithButton(int id, std::string_view value,
                                                 std::string_view caption, std::string_view script,
                                                 const LInputOptions& options) {
    StartInput(id, "text");
    out_.Printf(" value='%H'", value);
    EndInput(id, options);
    out_.Printf(" <input type=button value='%H' onclick='%H'>", caption, script);
    return *this;
}

LFormControls& LFormControls::AddEdit(int id, std::string_view value, int rows,
                                      const LInputOptions& options) {
    StartControl(id);
    out_.Printf("<textarea id=%d name=%d rows=%d cols=%d", id, id, rows, options.widthChars);
    PrintLook(id, options);
    // Browsers drop the first line break; one that belongs to the text must not be that one.
    out_.Printf("\n%H</textarea>", value);
    PrintHint(id, options);
    return *this;
}

LFormControls& LFormControls::AddCheckBox(int id, std::string_view caption, bool checked,
                                          bool disabled) {
    FlushStatic(0);  // the caption is its label
    StartControl(id);
    out_.Printf("<input type=checkbox id=%d name=%d value=1%s%s><label for=%d>%H</label>", id, id,
                Checked(checked), Disabled(disabled), id, caption);
    return *this;
}

LFormControls& LFormControls::AddCheckBoxSimple(int id, std::string_view name, bool checked) {
    StartControl(id);
    out_.Printf("<input type=checkbox id=%d name=%d value=1 aria-label='%H'%s>", id, id, name,
                Checked(checked));
    return *this;
}

LFormControls& LFormControls::AddRadioButton(int id, int group, std::string_view caption,
                                             bool checked, bool disabled) {
    FlushStatic(0);
    StartControl(id);
    out_.Printf("<input type=radio id=%d name=%d value=%d%s%s><label for=%d>%H</label> ", id, group,
                id, Checked(checked), Disabled(disabled), id, caption);
    return *this;
}

LFormControls& LFormControls::AddPullDownList(int id, std::span<const std::string> texts,
                                              std::string_view selected,
                                              const LInputOptions& options) {
    StartControl(id);
    out_.Printf("<select id=%d name=%d", id, id);
    PrintLook(id, options);
    // What is stored stays chosen, even when it is no longer offered.
    if (!selected.empty() && std::find(texts.begin(), texts.end(), selected) == texts.end()) {
        out_.Printf("<option value='%H' selected>%H</option>", selected, selected);
    }
    for (const std::string& text : texts) {
        out_.Printf("<option value='%H'%s>%H</option>", text, text == selected ? " selected" : "",
                    text);
    }
    out_.Write("</select>");
    PrintHint(id, options);
    return *this;
}

LFormControls& LFormControls::AddPullDownListEx(int id, std::span<const LOption> options,
                                                std::string_view selectedValue,
                                                const LInputOptions& look) {
    StartControl(id);
    out_.Printf("<select id=%d name=%d", id, id);
    PrintLook(id, look);
    for (const LOption& option : options) {
        out_.Printf("<option value='%H'%s", option.value,
                    option.value == selectedValue ? " selected" : "");
        if (!option.info.empty()) out_.Printf(" data-info='%H'", option.info);
        out_.Printf(">%H</option>", option.text);
    }
    out_.Write("</select>");
    PrintHint(id, look);
    return *this;
}

LFormControls& LFormControls::AddEditablePullDownList(int id, std::span<const std::string> texts,
                                                      std::string_view value,
                                                      const LInputOptions& options) {
    StartControl(id);
    if (!comboStyle_) out_.Write("<link href=combobox.css type='text/css' rel=stylesheet>");
    comboStyle_ = true;
    out_.Printf("<span class=combobox><input type=text id=%d name=%d value='%H' list=list%d", id,
                id, value, id);
    LInputOptions look = options;
    look.autocomplete = "off";  // the list is the help
    EndInput(id, look);
    out_.Printf("<datalist id=list%d>", id);
    for (const std::string& text : texts) out_.Printf("<option value='%H'></option>", text);
    out_.Write("</datalist></span>");
    return *this;
}

LFormControls& LFormControls::AddFileInput(int id, std::string_view accept,
                                           const LInputOptions& options) {
    StartInput(id, "file");
    if (!accept.empty()) out_.Printf(" accept='%H'", accept);
    PrintLook(id, options);
    PrintHint(id, options);
    return *this;
}

LFormControls& LFormControls::AddDateInput(int id, const std::optional<LDate>& date) {
    StartInput(id, "date");
    out_.Printf(" value='%H'>", date ? date->ToStored() : std::string());
    return *this;
}
