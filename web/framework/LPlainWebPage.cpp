#include "web/framework/LPlainWebPage.h"

#include "web/server/StandardAnswers.h"

void LPlainWebPage::Open() {
    out_.Write(kHtmlHead);
    out_.Write(
        "<html><head><title>Quillmarsh Stock Manager</title>"
        "<link href=s.css type='text/css' rel=stylesheet>"
        "<link href=print.css type='text/css' media=print rel=stylesheet>");
    if (!style_.empty()) out_.Printf("<style type='text/css'>%s</style>", style_);
    out_.Write("</head><body>");
    out_.Flush();
    PrintBody();
    script_.Print(out_);
    out_.Write("</body></html>");
    out_.Flush();
}
