// How a dialog is written.
#include "web/framework/LWebDialog.h"
#include "web/framework/OneTimeTokens.h"

namespace {

constexpr std::string_view kDisableSubmits =
    "function DisableSubmits(bDisable) {submits = document.getElementsByName('submit');"
    "for (i = 0; i < submits.length; i++) {submits[i].disabled = bDisable;}}";

constexpr std::string_view kCmSubmit =
    "function CmSubmit() {window.onbeforeunload = null;DisableSubmits(true);"
    "SimpleAjaxCall('%J', GetParams('dialogform') + 'submit=' + document.pressed, "
    "HandleAjaxJSReturn, function() { DisableSubmits(false); }, "
    "function() { DisableSubmits(false); }, 1200000);return false;}";

}  // namespace

void LWebDialog::PrintDialog() {
    Script().Include("ajax.js");
    Script().PrintIncludes(Out());
    PrintErrorText();
    PrintAboveForm();
    Out().Write("<div class=centerwrapper>");
    Out().Printf("<form id=dialogform action='%H' method=post style='width:100%%'",
                 Form().PageName());
    Out().Write(" novalidate onsubmit='return LSubmitDialog()'>");
    if (boxWidth_.empty()) {
        Out().Write("<table id=controltable style='border:0px;'>");
    } else {
        Out().Printf("<table id=controltable style='border:#bbbbbb 1px solid; width:%s'>",
                     boxWidth_);
    }
    Generate();
    EndRow();
    PrintButtonRow();
    PrintHiddenTail();
    Out().Write("</td></tr></table></form>").Write("</div>\n");
    AddDialogScript();
}

void LWebDialog::PrintErrorText() {
    if (errorText_.empty()) return;
    Out().Printf("<div%s style='color:#a00000; font-weight:bold; padding:0px 12px;'>%H</div><br>",
                 " id=invalidTag role=alert", errorText_);
}

void LWebDialog::PrintButton(std::string_view label, std::string_view attributes) {
    Out().Printf(
        "<td><input type=submit name=submit value='%H' %s onclick='document.pressed=this.value' "
        "style='font-family: Arial,sans-serif; font-size: 10pt;'></td>",
        label, attributes);
}

void LWebDialog::PrintButtonRow() {
    Out().Printf(
        "<tr style='background-color:#fbfbfb;'><td colspan=2 style='%sborder-bottom: 1px solid "
        "#bbbbbb;'><table border=0>",
        boxWidth_.empty() ? "" : "border-top: 1px solid #bbbbbb; ");
    Out().Write("<tr>");
    if (!okLabel_.empty()) PrintButton(okLabel_, "class=default");
    if (withCancel_) PrintButton(kCancelLabel, "");
    for (const LSpecialSubmit& tool : tools_) PrintButton(tool.name, "");
    for (const LButtonRowCheck& check : checks_) {
        Out().Printf(
            "<td><input type=checkbox id=%d name=%d value=1%s><label for=%d>%H</label></td>",
            check.id, check.id, check.checked ? " checked" : "", check.id, check.caption);
    }
    Out().Write("</tr>");
    Out().Printf("<input type=hidden name=submitdef value='%H'>",
                 submitDefault_.empty() ? okLabel_ : submitDefault_);
    Out().Write("</table></td></tr>");
}

void LWebDialog::PrintHiddenTail() {
    Out().Write("<tr style='display:none'><td colspan=2>");
    for (const std::string& name : kept_) {
        Out().Printf("<input type=hidden name='%H' value='%H'>", name, Form().Parameter(name));
    }
    Out().Write(HiddenFields());
    if (usesToken_) {
        Out().Printf("<input type=hidden name=%s value='%H'>", kTokenField,
                     IssueOneTimeToken(Form()));
    }
    Out().Printf("<input type=hidden name=onok value='%H'>", OnOk());
    Out().Printf("<input type=hidden name=oncancel value='%H'>", OnCancel());
}

void LWebDialog::AddDialogScript() {
    Script().Add("%s\n", kDisableSubmits);
    Script().Add(kCmSubmit, Form().PageName());
    Script().Add("\n");
    AddControlScript();
    if (!MayChange()) Script().AddStartUp("LDisableEditing();");  // behind what enables controls
    if (FirstControl() == 0) return;
    Script().Add(
        "LAddEventListener(window, 'onload', function() "
        "{setTimeout('document.getElementById(%d).focus();', 1)});",
        FirstControl());
}
