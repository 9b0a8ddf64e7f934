#include "web/framework/LFormControls.h"

#include "web/framework/LHtmlList.h"
#include "web/framework/LPageWriter.h"

LFormControls& LFormControls::StartRow() {
    EndRow();
    out_.Write("<tr class=dc>");
    inRow_ = true;
    hasCell_ = false;
    return *this;
}

void LFormControls::EndRow() {
    if (!inRow_) return;
    if (static_ && !hasCell_) static_->attributes += " colspan=2";
    FlushStatic(0);
    EndCell();
    out_.Write("</tr>\n");
    inRow_ = false;
}

void LFormControls::EndCell() {
    if (inCell_) out_.Write("</td>");
    inCell_ = false;
}

void LFormControls::StartCell() {
    if (!inRow_) StartRow();
    if (inCell_) {
        out_.Write(" ");
        return;
    }
    // Without a text before it, what stands in the row has its whole width.
    out_.Write(hasCell_ ? "<td>" : "<td colspan=2>");
    inCell_ = hasCell_ = true;
}

// Writes the text that waits; as the label of a control when there is one.
void LFormControls::FlushStatic(int labelFor) {
    if (!static_) return;
    EndCell();
    if (labelFor != 0 && !static_->text.empty()) {
        out_.Printf("<td%s><label for=%d>%H</label></td>", static_->attributes, labelFor,
                    static_->text);
    } else {
        out_.Printf("<td%s>%H</td>", static_->attributes, static_->text);
    }
    hasCell_ = true;
    static_.reset();
}

LFormControls& LFormControls::AddText(std::string_view text, std::string_view attributes) {
    if (!inRow_) StartRow();
    FlushStatic(0);
    static_ = LStatic{std::string(text), std::string(attributes)};
    return *this;
}

LFormControls& LFormControls::AddStatic(std::string_view text) { return AddText(text, ""); }

LFormControls& LFormControls::AddStaticBold(std::string_view text) {
    return AddText(text, " style='font-weight:bold'");
}

LFormControls& LFormControls::AddStaticSmall(std::string_view text) {
    return AddText(text, " class=small");
}

void LFormControls::StartControl(int id, LFocus focus) {
    FlushStatic(id);
    StartCell();
    if (focus == LFocus::kTakes && firstControl_ == 0) firstControl_ = id;
}

LFormControls& LFormControls::AddButton(int id, std::string_view caption, std::string_view script) {
    FlushStatic(0);
    StartCell();
    out_.Printf("<input type=button id=%d value='%H' onclick='%H'>", id, caption, script);
    return *this;
}

LFormControls& LFormControls::AddHyperLinkSpanRightSmall(std::string_view target,
                                                         std::string_view caption) {
    FlushStatic(0);
    StartCell();
    out_.Printf("<span class='rightsmall small' style='float:right'><a href='%H'>%H</a></span>",
                target, caption);
    return *this;
}

LFormControls& LFormControls::AddList(LHtmlList& list) {
    FlushStatic(0);
    StartCell();
    list.Print(out_);
    return *this;
}

LFormControls& LFormControls::AddVerticalSpace(int pixels) {
    EndRow();
    out_.Printf("<tr class=dc><td colspan=2 style='height:%dpx;padding:0'></td></tr>\n", pixels);
    return *this;
}

LFormControls& LFormControls::AddRawHTML(std::string_view markup) {
    FlushStatic(0);
    StartCell();
    out_.Write(markup);
    return *this;
}

LFormControls& LFormControls::StartGroupBox(std::string_view title) {
    EndRow();
    out_.Printf(
        "<tr class=dc><td colspan=2><fieldset><legend>%H</legend><table class=dgroup "
        "border=0>\n",
        title);
    return *this;
}

LFormControls& LFormControls::EndGroupBox() {
    EndRow();
    out_.Write("</table></fieldset></td></tr>\n");
    return *this;
}

LFormControls& LFormControls::AddHiddenField(std::string_view name, std::string_view value) {
    hidden_ += FormatText("<input type=hidden name='%H' value='%H'>", name, value);
    return *this;
}

void LFormControls::CallWhenChanged(int id) {
    enablingCalls_ += FormatText(
        "LAddEventListener(document.getElementById('%d'), 'onchange', enablectls);\n", id);
}

void LFormControls::EnableControlOnCheck(int checkBox, int control) {
    enabling_ += FormatText(
        "\ndocument.getElementById('%d').disabled = !document.getElementById('%d').checked;",
        control, checkBox);
    CallWhenChanged(checkBox);
}

void LFormControls::EnableControlOnSelectChange(int list, int control,
                                                std::span<const std::string> values) {
    std::string wanted;
    for (const std::string& value : values) {
        wanted += FormatText("%s'%J'", wanted.empty() ? "" : ", ", value);
    }
    enabling_ += FormatText(
        "\ndocument.getElementById('%d').disabled = "
        "[%s].indexOf(document.getElementById('%d').value) < 0;",
        control, wanted, list);
    CallWhenChanged(list);
}

void LFormControls::AddControlScript() {
    script_.Add(
        "function enablectls() {%s\n}\nLAddEventListener(window, 'onload', enablectls);\n%s",
        enabling_, enablingCalls_);
    script_.Add("function validatedata() {%s\nreturn true;}\n", validation_);
}
