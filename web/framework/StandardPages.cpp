#include "web/framework/StandardPages.h"

#include "web/framework/LPageWriter.h"

namespace {

constexpr std::string_view kLayoutCookie = "quillmarsh_layout";
constexpr std::string_view kProduct = "Quillmarsh Stock Manager";
constexpr std::string_view kMakerLine = "Stock for small businesses";

bool IsPhone(std::string_view userAgent) {
    for (const std::string_view word : {"Mobile", "Android", "iPhone"}) {
        if (userAgent.find(word) != std::string_view::npos) return true;
    }
    return false;
}

void PrintHead(LPageWriter& out, std::string_view title, std::string_view style) {
    out.Write(kHtmlHead).Write("<html><head><title>Quillmarsh");
    if (!title.empty()) out.Printf(" - %H", title);
    out.Write(
        "</title><link href=s.css type='text/css' rel=stylesheet>"
        "<link href=print.css type='text/css' media=print rel=stylesheet>");
    if (!style.empty()) out.Printf("<style type='text/css'>%s</style>", style);
}

void PrintCompactHeader(LPageWriter& out, std::string_view navLinks) {
    out.Write("<meta name='viewport' content='width=device-width'>").Write("</head><body>");
    out.Printf(
        "<div class=headernavlinks style='font-size: 16pt; line-height: 44px; margin-top: 3px'>"
        "%s</div>",
        navLinks);
}

void PrintNormalHeader(LPageWriter& out, std::string_view navLinks, std::string_view title,
                       std::string_view user) {
    out.Write("</head><body><table class=headertable border=0>");
    out.Printf(
        "<tr class=headerrow1 style='height: %spx'><td class=headerapp style='font-size: %spt; "
        "cursor: pointer; cursor: hand' onclick=\"document.location='main'\" "
        "title='Click to go to the Main Page'>%H</td>",
        "44", "16", kProduct);
    out.Printf("<td class=headertitle>%H</td>", title);
    if (!navLinks.empty()) out.Printf("<td class=headernavlinks>%s</td>", navLinks);
    out.Printf("</tr><tr class=headerrow2><td>v&nbsp;5.00 &nbsp;%H</td>", kMakerLine);
    if (!user.empty()) out.Printf("<td class=headeruser colspan=3>Logged on as %H</td>", user);
    out.Write("</tr></table>").Write("<br>");
}

}  // namespace

LPageLayout WLPageLayout(LWebletForm& form) {
    const std::string chosen = form.Cookies().GetString(kLayoutCookie);
    if (chosen == "normal") return LPageLayout::kNormal;
    if (chosen == "compact") return LPageLayout::kCompact;
    return IsPhone(form.Header("user-agent")) ? LPageLayout::kCompact : LPageLayout::kNormal;
}

void WLStandardHeader(LWebletForm& form, std::string_view navLinks, std::string_view title,
                      std::string_view user, std::string_view style) {
    LPageWriter out(form);
    WLStandardHeader(out, form, navLinks, title, user, style);
}

void WLStandardHeader(LPageWriter& out, LWebletForm& form, std::string_view navLinks,
                      std::string_view title, std::string_view user, std::string_view style) {
    PrintHead(out, title, style);
    if (WLPageLayout(form) == LPageLayout::kCompact) {
        PrintCompactHeader(out, navLinks);
    } else {
        PrintNormalHeader(out, navLinks, title, user);
    }
}

void WLStartContent(LPageWriter& out, LWebletForm& form, std::string_view title) {
    // The head has no room for the language, which readers of the screen need to choose a voice.
    // The class tells styles that scripts run.
    out.Write(
        "<script type='text/javascript'>document.documentElement.lang = 'en'; "
        "document.documentElement.className = 'scripted';</script>");
    out.Write("<main>");
    if (title.empty()) return;
    // The header shows the title already, except in the compact layout.
    const bool compact = WLPageLayout(form) == LPageLayout::kCompact;
    out.Printf("<h1 class=%s>%H</h1>", compact ? "pagetitle" : "visuallyhidden", title);
}

void WLEndContent(LPageWriter& out) { out.Write("</main>\n"); }

void WLStandardFooter(LWebletForm& form) { LPageWriter(form).Write("</body></html>"); }

void WLStandardPageFooter(LWebletForm& form) {
    LPageWriter out(form);
    WLStandardPageFooter(out, form);
}

void WLStandardPageFooter(LPageWriter& out, LWebletForm& form) {
    const bool compact = WLPageLayout(form) == LPageLayout::kCompact;
    out.Printf(
        "<p class='layoutchoice muted noprint'><a href='#' onclick=\"document.cookie = '%s=%s; "
        "path=/; max-age=31536000'; location.reload(); return false;\">%H</a></p>",
        kLayoutCookie, compact ? "normal" : "compact",
        compact ? "Full layout" : "Layout for phones");
    out.Write("</body></html>");
}

std::string WLPrintTopNavLinks(LWebletForm& form) {
    return FormatText(
        "<a href=\"main?sess=%s\" class=toptext>Main</a>&nbsp;|&nbsp;"
        "<a href=\"logoff?sess=%s\" class=toptext>Log Off</a>&nbsp;|&nbsp;"
        "<a href=\"help/index.html\" target=\"_blank\" class=toptext>Help</a>",
        form.Session().Id(), form.Session().Id());
}

void WLMessagePage(LWebletForm& form, std::string_view title, std::string_view body) {
    LPageWriter out(form);
    const LWebletSessionData& session = form.Session();
    WLStandardHeader(out, form, session.IsLoaded() ? WLPrintTopNavLinks(form) : std::string(),
                     title, session.GetString("user"), {});
    WLStartContent(out, form, title);
    out.Printf("<div class=notice>%s</div>", body);
    WLEndContent(out);
    WLStandardPageFooter(out, form);
}

void WLSetOkCancelPage(LWebletForm& form, std::string_view onOk, std::string_view onCancel) {
    form.Parameters().SetString("onok", onOk);
    form.Parameters().SetString("oncancel", onCancel);
}

bool WLValidateSession(LWebletForm& form) {
    if (form.Session().IsLoaded()) return true;
    WLSessionInvalidPage(form);
    return false;
}

void WLSessionInvalidPage(LWebletForm& form) {
    WLSetOkCancelPage(form, "logon", "logon");
    WLMessagePage(form, "Session Expired",
                  "<center>Your session is expired. Please <a href=\"logon\"><b>Click Here</b></a> "
                  "to relogin.</center>");
}
