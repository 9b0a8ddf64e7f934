#include "web/framework/LAJAXWebPage.h"

#include "web/server/StandardAnswers.h"

namespace {
constexpr std::string_view kTextHead =
    "HTTP/1.1 200 OK\r\nConnection: close\r\nCache-Control: no-cache\r\n"
    "Content-Type: text/plain; charset=utf-8\r\n\r\n";
}  // namespace

void LAJAXWebPage::Open() {
    Out().Write(kTextHead);
    if (Authenticate()) PrintBody();
    Out().Flush();
}

bool LAJAXWebPage::Authenticate() { return Form().Session().IsLoaded(); }
