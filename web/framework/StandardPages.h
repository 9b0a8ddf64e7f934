// The header and foot of every page, and the pages that ask and tell.
#pragma once

#include <string>
#include <string_view>

#include "web/server/LWebletForm.h"
#include "web/server/StandardAnswers.h"

class LPageWriter;

// The head of an answer that the asking page runs as script.
inline constexpr std::string_view kScriptHead =
    "HTTP/1.1 200 OK\r\nConnection: close\r\nCache-Control: no-cache\r\n"
    "Content-Type: text/plain\r\n\r\n";

enum class LPageLayout { kNormal, kCompact };
// Compact for phones, as the User-Agent tells them, unless the person chose (cookie
// "quillmarsh_layout": "normal" or "compact").
LPageLayout WLPageLayout(LWebletForm& form);

// The head and the header of a page. `navLinks` is markup; title and user are text and may be
// empty; `style` is style rules, empty for none.
void WLStandardHeader(LWebletForm& form, std::string_view navLinks, std::string_view title,
                      std::string_view user, std::string_view style);
void WLStandardHeader(LPageWriter& out, LWebletForm& form, std::string_view navLinks,
                      std::string_view title, std::string_view user, std::string_view style);
// What begins and ends the matter of a page, between the header and the foot.
void WLStartContent(LPageWriter& out, LWebletForm& form, std::string_view title);
void WLEndContent(LPageWriter& out);
// "</body></html>".
void WLStandardFooter(LWebletForm& form);
// What ends a page for a person (the choice of layout), then the standard footer.
void WLStandardPageFooter(LWebletForm& form);
void WLStandardPageFooter(LPageWriter& out, LWebletForm& form);

// The links of every page for a person who is logged on: main, log off, help.
std::string WLPrintTopNavLinks(LWebletForm& form);

// A whole page with this title; `body` is markup of the program's own.
void WLMessagePage(LWebletForm& form, std::string_view title, std::string_view body);

// Where the pages below lead for OK and Cancel (or Yes and No) from now on in this request.
void WLSetOkCancelPage(LWebletForm& form, std::string_view onOk, std::string_view onCancel);

// Pages that ask before something is changed. Yes repeats the request with a confirmation that
// counts once and for this session only; No leads to "oncancel". Texts, not markup; "\n" breaks the
// line.
void WLConfirmYesNo(LWebletForm& form, std::string_view title, std::string_view question,
                    std::string_view yesCaption = "Yes", std::string_view noCaption = "No");
void WLConfirmMsgYesNo(LWebletForm& form, std::string_view title, std::string_view question);
void WLConfirmDeleteYesNo(LWebletForm& form, std::string_view name);
// Whether this request comes from a Yes. The first call takes the confirmation; the answer stays
// the same for the rest of the request.
bool WLIsConfirmed(LWebletForm& form);

// True when the request carries a session; otherwise the expired-session page has been sent.
[[nodiscard]] bool WLValidateSession(LWebletForm& form);
void WLSessionInvalidPage(LWebletForm& form);
