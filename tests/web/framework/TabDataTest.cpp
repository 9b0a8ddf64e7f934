#include "web/framework/TabData.h"

#include "tests/web/framework/FrameworkFixture.h"
#include "web/framework/FrameworkScripts.h"
#include "web/server/WebletOutput.h"

namespace {

class TabData : public LFrameworkTest {
protected:
    TabData() {
        InstallFrameworkScripts();
        LWebletInstallScript("read", [](LWebletForm& form) {
            const auto fields = ReadTabData(form, form.Parameter("tab"));
            wfprintf(form, "HTTP/1.1 200 OK\r\n\r\n%s",
                     fields ? fields->SaveHTTPString() : std::string("none"));
        });
        LWebletInstallScript("drop",
                             [](LWebletForm& form) { DropTabData(form, form.Parameter("tab")); });
    }
    static LTestAnswer Save(LTestBrowser& browser, const std::string& tab,
                            const std::string& text = "x") {
        return browser.Post(
            "saveItemDialogTab",
            {{"101", text}, {"tabName", tab}, {"submit", "a"}, {"onok", "b"}, {"token", "c"}});
    }
};

TEST_F(TabData, KeepsWhatWasEnteredUntilItIsDropped) {
    LTestBrowser browser = LoggedOn(), other = LoggedOn();
    const std::string text = "a&b=c\r\n\xc3\xa4'<";
    EXPECT_EQ(Save(browser, "item:7.general", text).body, "");
    EXPECT_EQ(browser.Get("read?tab=item:7.general").body, "101=" + EncodeText(text));
    EXPECT_EQ(other.Get("read?tab=item:7.general").body, "none") << "another session";
    browser.Get("drop?tab=item:7.general");
    EXPECT_EQ(browser.Get("read?tab=item:7.general").body, "none");
}

TEST_F(TabData, KeepsTheTabsSavedLast) {
    LTestBrowser browser = LoggedOn();
    for (int tab = 0; tab < 16; ++tab) Save(browser, "t" + std::to_string(tab));
    Save(browser, "t0", "again");
    Save(browser, "one-more");
    EXPECT_EQ(browser.Get("read?tab=t0").body, "101=again");
    EXPECT_EQ(browser.Get("read?tab=t1").body, "none");
    EXPECT_EQ(browser.Get("read?tab=t2").body, "101=x");
}

TEST_F(TabData, RefusesWhatCannotBeKept) {
    LTestBrowser browser = LoggedOn();
    for (const char* tab : {"", "a/b", "a b", "<script>", "a\nb"}) {
        EXPECT_TRUE(Save(browser, tab).Has("LTell(")) << tab;
    }
    EXPECT_TRUE(Save(browser, std::string(65, 'a')).Has("LTell("));
    EXPECT_TRUE(Save(browser, "big", std::string(300000, 'a')).Has("LTell("));
    EXPECT_EQ(browser.Get("read?tab=big").body, "none");
    LTestBrowser stranger(web_);
    EXPECT_TRUE(Save(stranger, "t").Has("Your session is expired"));
}

}  // namespace
