#include "web/framework/LWebNavTabs.h"

#include "web/framework/LPageWriter.h"

void LWebNavTabs::AddTab(std::string target, std::string caption) {
    tabs_.push_back({std::move(target), std::move(caption)});
}

void LWebNavTabs::PrintNavTabs(LPageWriter& out) const { PrintNavTabsSaving(out, {}); }

void LWebNavTabs::PrintNavTabsSaving(LPageWriter& out, std::string_view tabName) const {
    if (tabs_.empty()) return;
    out.Write("<nav class=navtabs aria-label=Tabs>");
    for (size_t index = 0; index < tabs_.size(); ++index) {
        const LTab& tab = tabs_[index];
        out.Printf("<a class=navtab href='%H'", tab.target);
        if (index == selected_) out.Write(" aria-current=page");
        if (!tabName.empty()) {
            out.Printf(" onclick=\"return LSaveTab('%H', this.href)\"", EscapeScript(tabName));
        }
        out.Printf(">%H</a>", tab.caption);
    }
    out.Write("</nav>");
}
