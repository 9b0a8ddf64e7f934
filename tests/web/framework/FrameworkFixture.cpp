#include "tests/web/framework/FrameworkFixture.h"

#include "web/server/StandardAnswers.h"
#include "web/server/WebletOutput.h"

namespace {

void BeginSession(LWebletForm& form) {
    form.Session().CreateNewSession(false);
    form.Session().SetString("user", "ann@example.com");
    wfprintf(form, "%sdocument.cookie = 'quillmarsh_sess=%s; path=/';", kHtmlHead,
             form.Session().Id());
}

}  // namespace

LFrameworkTest::LFrameworkTest() { LWebletInstallScript("begin", BeginSession); }

LTestBrowser LFrameworkTest::LoggedOn() {
    LTestBrowser browser(web_);
    browser.Get("begin");
    EXPECT_FALSE(browser.cookie.empty());
    return browser;
}
