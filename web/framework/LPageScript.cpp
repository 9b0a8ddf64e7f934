#include "web/framework/LPageScript.h"

#include <algorithm>

#include "web/framework/LPageWriter.h"

void LPageScript::Include(std::string_view file) {
    if (std::find(includes_.begin(), includes_.end(), file) != includes_.end()) return;
    includes_.emplace_back(file);
}

void LPageScript::AddStartUpText(const std::string& statements) {
    Include("ajax.js");
    Add("LAddEventListener(window, 'onload', function() {%s});\n", statements);
}

void LPageScript::PrintIncludes(LPageWriter& out) {
    for (; printedIncludes_ < includes_.size(); ++printedIncludes_) {
        out.Printf("<script type='text/javascript' src='%s'></script>",
                   includes_[printedIncludes_]);
    }
}

void LPageScript::Print(LPageWriter& out) {
    PrintIncludes(out);
    if (text_.empty()) return;
    out.Write("<script type='text/javascript'>\n").Write(text_).Write("</script>");
    text_.clear();
}
