// The pages that ask before something is changed.
#include "web/framework/LPageWriter.h"
#include "web/framework/OneTimeTokens.h"
#include "web/framework/PageTargets.h"
#include "web/framework/StandardPages.h"

namespace {

constexpr std::string_view kConfirmation = "confirmed";
// Where this request's answer is kept: names of real headers are in lower case, so no browser can
// set it.
constexpr std::string_view kTakenMark = "Confirmed";
// Longer addresses would be cut by the server; some bytes less for the slash before them.
constexpr size_t kLongestLink = kMaxTextBytes - 9;

LHashTable RepeatedParameters(LWebletForm& form) {
    LHashTable parameters = form.Parameters();
    parameters.SetString(kConfirmation, IssueOneTimeToken(form));
    return parameters;
}

std::string RepeatingLink(const LWebletForm& form, const LHashTable& parameters) {
    return FormatText("%U?%s", form.PageName(), parameters.SaveHTTPString());
}

void PrintYesForm(LPageWriter& out, const LWebletForm& form, const LHashTable& parameters,
                  std::string_view caption) {
    out.Printf("<form action='%H' method=post style='display:inline'>", form.PageName());
    for (const auto& [name, value] : parameters) {
        out.Printf("<input type=hidden name='%H' value='%H'>", name, value);
    }
    out.Printf("<input type=submit class='button primary' value='%H'></form>", caption);
}

void PrintYes(LPageWriter& out, LWebletForm& form, std::string_view caption) {
    const LHashTable parameters = RepeatedParameters(form);
    const std::string link = RepeatingLink(form, parameters);
    if (link.size() > kLongestLink) return PrintYesForm(out, form, parameters, caption);
    out.Printf("<a class='button primary' href='%H'>%H</a>", link, caption);
}

}  // namespace

void WLConfirmYesNo(LWebletForm& form, std::string_view title, std::string_view question,
                    std::string_view yesCaption, std::string_view noCaption) {
    LPageWriter out(form);
    WLStandardHeader(out, form, WLPrintTopNavLinks(form), title, form.Session().GetString("user"),
                     {});
    WLStartContent(out, form, title);
    out.Printf("<div class=notice><p style='white-space:pre-line'>%H</p><p>", question);
    PrintYes(out, form, yesCaption);
    out.Printf(" <a class=button href='%H'>%H</a></p></div>",
               WLSafePage(form.Parameter("oncancel")), noCaption);
    WLEndContent(out);
    WLStandardPageFooter(out, form);
}

void WLConfirmMsgYesNo(LWebletForm& form, std::string_view title, std::string_view question) {
    WLConfirmYesNo(form, title, question);
}

void WLConfirmDeleteYesNo(LWebletForm& form, std::string_view name) {
    WLConfirmYesNo(form, "Delete", FormatText("Do you want to delete \"%s\"?", name));
}

bool WLIsConfirmed(LWebletForm& form) {
    LHashTable& marks = form.Headers();
    if (!marks.TestExists(kTakenMark)) {
        const std::string token = form.Parameter(kConfirmation);
        const bool confirmed = !token.empty() && !form.IsFromOtherSite() &&
                               TakeOneTimeToken(form, token) == LTokenAnswer::kTaken;
        marks.SetString(kTakenMark, confirmed ? "1" : "0");
    }
    return marks.GetBool(kTakenMark, false);
}
