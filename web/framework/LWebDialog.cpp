#include "web/framework/LWebDialog.h"

#include <charconv>

#include "datastore/NumberText.h"
#include "platform/CaseFolding.h"
#include "web/framework/OneTimeTokens.h"
#include "web/framework/PageTargets.h"
#include "web/framework/StandardPages.h"

namespace {

constexpr std::string_view kEnableSubmits = "DisableSubmits(false)";
constexpr std::string_view kAlreadyRecorded = "This has already been recorded.";
constexpr std::string_view kFormTooOld =
    "This form has been open for too long. Please open it again.";

// The page that the browser came from, as a path of this server; empty when it came from elsewhere.
std::string RefererPage(const LWebletForm& form) {
    const std::string referer = form.Header("referer");
    const size_t scheme = referer.find("://");
    if (scheme == std::string::npos) return {};
    const size_t path = referer.find('/', scheme + 3);
    if (path == std::string::npos) return {};
    const std::string host = referer.substr(scheme + 3, path - scheme - 3);
    return EqualIgnoringCase(host, form.Header("host")) ? referer.substr(path) : std::string();
}

// Text as markup in which every line break shows.
std::string LinesToHtml(std::string_view text) {
    std::string html;
    for (const char byte : EscapeHtml(text)) {
        if (byte == '\n') {
            html += "<br>";
        } else if (byte != '\r') {
            html += byte;
        }
    }
    return html;
}

// Takes away what an earlier answer put onto the page.
constexpr std::string_view kRemoveEarlierError =
    "var old = document.getElementById('invalidTag');\n"
    "if (old) old.parentNode.removeChild(old);\n"
    "var wrong = document.querySelector('[aria-invalid]');\n"
    "if (wrong) wrong.removeAttribute('aria-invalid');\n";

}  // namespace

void LWebDialog::Run() {
    if (!Authenticate() || SendAJAXCommands()) return;
    std::string pressed = Form().Parameter("submit");
    if (pressed.empty()) pressed = Form().Parameter("submitdef");
    // A link can carry a pressed button, also one on another site; what it gets is the form, not
    // the deed. Posts of other sites are refused by the server: browsers name the origin of a post.
    if (pressed.empty() || !Form().IsPost() || Form().IsFromOtherSite()) {
        RunFirstDisplay();
    } else {
        RunSubmit(pressed);
    }
}

void LWebDialog::RunFirstDisplay() {
    if (!Prepare() || Form().HasAnswered()) return;
    const std::string left = "error:" + Form().PageName();
    if (Form().Session().TestExists(left)) {
        errorText_ = Form().Session().GetString(left);
        Form().Session().DeleteField(left);
    }
    InitDialog();
    if (Form().HasAnswered()) return;
    PrintHeader();
    PrintDialog();
    PrintFooter();
}

// Whatever goes wrong in a command, the person is told and the buttons come back; the connection
// thread then logs it.
void LWebDialog::RunSubmit(const std::string& pressed) {
    inSubmit_ = true;
    Out().Write(kScriptHead);
    try {
        AnswerSubmit(pressed);
    } catch (...) {
        if (!answered_) PopupBoxError("This could not be done. Please try again.");
        Out().Flush();
        throw;
    }
    Out().Flush();
}

void LWebDialog::AnswerSubmit(const std::string& pressed) {
    if (!Prepare()) {
        if (!answered_) AnswerScript("%s", kEnableSubmits);
    } else if (!okLabel_.empty() && pressed == okLabel_) {
        RunCommand([this] { return CmOk(); }, OnOk());
    } else if (pressed == kCancelLabel) {
        CmCancel();
        if (!answered_) Redirect(OnCancel());
    } else {
        RunSpecial(pressed);
    }
}

void LWebDialog::RunSpecial(const std::string& pressed) {
    for (const LSpecialSubmit& tool : tools_) {
        if (!EqualIgnoringCase(tool.name, pressed)) continue;
        const std::string target = tool.target.empty() ? RefererPage(Form()) : tool.target;
        RunCommand(tool.command, WLSafePage(target));
        return;
    }
    AnswerScript("%s", kEnableSubmits);
}

// Runs what a button stands for, if the person may and the form was not sent before, and goes on to
// `target` when it was done.
void LWebDialog::RunCommand(const std::function<bool()>& command, const std::string& target) {
    if (command && MayChange()) {
        if (!CheckReceived() || !TakeToken()) return;
        if (!command()) {
            if (usesToken_ && !tokenStaysSpent_) {
                GiveBackOneTimeToken(Form(), Form().Parameter(kTokenField));
            }
            if (!answered_) AnswerScript("%s", kEnableSubmits);
            return;
        }
    }
    if (!answered_) Redirect(target);
}

bool LWebDialog::TakeToken() {
    const std::string token = Form().Parameter(kTokenField);
    if (!usesToken_ || token.empty()) return true;
    switch (TakeOneTimeToken(Form(), token)) {
        case LTokenAnswer::kTaken:
            return true;
        case LTokenAnswer::kSpent:
            PopupBoxError(kAlreadyRecorded);
            return false;
        default:
            PopupBoxError(kFormTooOld);
            return false;
    }
}

void LWebDialog::Redirect(std::string_view page) {
    if (!inSubmit_) return LWebPage::Redirect(page);
    AnswerScript("window.location = '%J';\n", page);
}

std::string LWebDialog::GetText(int id) const { return Form().Parameter(std::to_string(id)); }

std::string LWebDialog::GetTextAndTrim(int id) const {
    return std::string(TrimBlanks(GetText(id)));
}

int LWebDialog::GetControlValueInt(int id, int defaultValue) const {
    const std::string text = GetTextAndTrim(id);
    int value = 0;
    const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), value);
    return error == std::errc() && end == text.data() + text.size() ? value : defaultValue;
}

bool LWebDialog::GetCheck(int id) const { return !GetText(id).empty() && GetText(id) != "0"; }

int LWebDialog::GetRadioCheck(int group) const { return GetControlValueInt(group); }

std::optional<LDate> LWebDialog::GetDate(int id) { return Form().Profile().ParseDate(GetText(id)); }

void LWebDialog::PopupControlDataInvalid(int id, std::string_view message) {
    AnswerScript(
        "DisableSubmits(false);\n%s"
        "var control = document.getElementById('%d');\n"
        "var row = control ? control.closest('tr') : null;\n"
        "if (row) {\n"
        "    var error = document.createElement('tr');\n"
        "    error.id = 'invalidTag';\n"
        "    error.innerHTML = '<td colspan=' + row.cells.length * 2 + '>"
        "<div role=alert id=invalidText>%s</div></td>';\n"
        "    row.parentNode.insertBefore(error, row);\n"
        "    control.setAttribute('aria-invalid', 'true');\n"
        "    control.setAttribute('aria-errormessage', 'invalidText');\n"
        "    control.focus();\n"
        "} else {\n"
        "    LTell('%s');\n"
        "}\n"
        "window.scroll(0,0);\n",
        kRemoveEarlierError, id, EscapeScript(LinesToHtml(message)), EscapeScript(message));
}

void LWebDialog::PopupBoxError(std::string_view message) {
    if (!inSubmit_) {
        errorText_ = message;
        return;
    }
    AnswerScript(
        "DisableSubmits(false);\n%s"
        "var form = document.getElementById('dialogform');\n"
        "var error = document.createElement('div');\n"
        "error.id = 'invalidTag';\n"
        "error.setAttribute('role', 'alert');\n"
        "error.style.cssText = 'color:#a00000; font-weight:bold; padding:12px;';\n"
        "error.innerHTML = '%s';\n"
        "form.parentNode.insertBefore(error, form);\n"
        "window.scroll(0,0);\n",
        kRemoveEarlierError, EscapeScript(LinesToHtml(message)));
}

void LWebDialog::LeaveError(std::string_view message) {
    Form().Session().SetString("error:" + Form().PageName(), message);
}

void LWebDialog::SetOkCancelPage(std::string onOk, std::string onCancel) {
    onOk_ = std::move(onOk);
    onCancel_ = std::move(onCancel);
}

std::string LWebDialog::OnOk() const {
    const std::string asked = Form().Parameter("onok");
    return asked.empty() ? onOk_ : WLSafePage(asked);
}

std::string LWebDialog::OnCancel() const {
    const std::string asked = Form().Parameter("oncancel");
    return asked.empty() ? onCancel_ : WLSafePage(asked);
}
