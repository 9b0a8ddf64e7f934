#include "web/framework/LWebPage.h"

#include "web/framework/StandardPages.h"

void LWebPage::Open() {
    if (!Authenticate() || SendAJAXCommands()) return;
    Generate();
    if (Form().HasAnswered()) return;
    PrintHeader();
    // The browser fetches styles while the body is still being made.
    if (!IsBodyQuick()) Out().Flush();
    PrintBody();
    PrintFooter();
}

bool LWebPage::Authenticate() { return WLValidateSession(Form()); }

void LWebPage::Redirect(std::string_view page) {
    WLRedirect(Form(), page);
    Form().SetAnswered();
}

void LWebPage::PrintHeader() {
    std::string links;
    if (Form().Session().IsLoaded()) {
        for (const LNavLink& link : navLinks_) {
            links += FormatText("<a href=\"%H\" class=toptext>%H</a>&nbsp;|&nbsp;", link.target,
                                link.caption);
        }
        links += WLPrintTopNavLinks(Form());
    }
    WLStandardHeader(Out(), Form(), links, title_, Form().Session().GetString("user"), Style());
    WLStartContent(Out(), Form(), title_);
}

void LWebPage::PrintFooter() {
    WLEndContent(Out());
    Script().Print(Out());
    WLStandardPageFooter(Out(), Form());
    Out().Flush();
}
