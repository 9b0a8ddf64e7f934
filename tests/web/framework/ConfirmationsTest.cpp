#include <atomic>

#include "tests/web/framework/FrameworkFixture.h"
#include "web/framework/LWebUserInterface.h"
#include "web/framework/StandardPages.h"

namespace {

std::atomic<int> deletions{0};

void Delete(LWebletForm& form) {
    if (!WLValidateSession(form)) return;
    WLSetOkCancelPage(form, "loclist", "loclist");
    if (!WLIsConfirmed(form)) return WLConfirmDeleteYesNo(form, form.Parameter("id"));
    ++deletions;
    EXPECT_TRUE(WLIsConfirmed(form)) << "asked once more in the same request";
    WLRedirect(form, "loclist");
}

// An operation that asks by itself, and tells what it could not do.
void DeleteAsking(LWebletForm& form) {
    LWebUserInterface ui(form);
    if (AskDelete(ui, "Delete Locations", "Really <all>?\nAll of them?")) {
        ++deletions;
        if (form.Parameter("tell") == "1") ui.Inform("Delete", "\"<Shop>\" is in use.");
    }
    ui.Finish("loclist");
}

class Confirmations : public LFrameworkTest {
protected:
    Confirmations() {
        deletions = 0;
        LWebletInstallScript("locdelete", Delete);
        LWebletInstallScript("ask", DeleteAsking);
    }
    static std::string Unescaped(std::string text) {
        for (size_t at = 0; (at = text.find("&amp;", at)) != std::string::npos;) {
            text.replace(at, 5, "&");
        }
        return text;
    }
    static std::string YesOf(const LTestAnswer& page) {
        return Unescaped(page.Between("<a class='button primary' href='", "'"));
    }
};

TEST_F(Confirmations, OnlyYesActsAndActsOnce) {
    LTestBrowser browser = LoggedOn();
    const LTestAnswer page = browser.Get("locdelete?id=%3CShop%3E%20%26%20Co");
    EXPECT_TRUE(page.Has("Do you want to delete &quot;&lt;Shop&gt; &amp; Co&quot;?"));
    EXPECT_TRUE(page.Has("<a class=button href='loclist'>No</a>"));
    EXPECT_EQ(deletions, 0);

    const std::string yes = YesOf(page);
    EXPECT_NE(yes.find("id=%3CShop%3E%20%26%20Co"), std::string::npos) << yes;
    EXPECT_EQ(browser.Get(yes).Location(), "loclist");
    EXPECT_EQ(deletions, 1);
    EXPECT_FALSE(YesOf(browser.Get(yes)).empty()) << "a reload asks again";
    EXPECT_EQ(deletions, 1);
}

TEST_F(Confirmations, NobodyElseCanSayYes) {
    LTestBrowser ann = LoggedOn(), bob = LoggedOn();
    const std::string yes = YesOf(ann.Get("locdelete?id=1"));
    bob.Get(yes);
    EXPECT_EQ(deletions, 0) << "another session's Yes";
    for (const char* guess : {"1", "", "yes", "true"}) {
        ann.Get(std::string("locdelete?id=1&confirmed=") + guess);
        EXPECT_EQ(deletions, 0) << guess;
    }
    LTestBrowser lured = ann;
    lured.headers = "Sec-Fetch-Site: cross-site\r\n";
    lured.Get(yes);
    EXPECT_EQ(deletions, 0) << "a link on another site";
    LTestBrowser forger = ann;
    forger.headers = "Confirmed: 1\r\n";
    forger.Get("locdelete?id=1");
    EXPECT_EQ(deletions, 0) << "a header of the client's own";
    ann.Get(yes);
    EXPECT_EQ(deletions, 1);
}

TEST_F(Confirmations, WhatIsTooLongForAnAddressIsSentAsAForm) {
    LTestBrowser browser = LoggedOn();
    const std::string ids(300, '7');
    const LTestAnswer page = browser.Post("locdelete", {{"id", ids}});
    EXPECT_TRUE(YesOf(page).empty());
    EXPECT_EQ(page.Hidden("id"), ids);
    const LTestAnswer done = browser.Post(
        "locdelete", {{"id", page.Hidden("id")}, {"confirmed", page.Hidden("confirmed")}});
    EXPECT_EQ(done.Location(), "loclist");
    EXPECT_EQ(deletions, 1);
}

TEST_F(Confirmations, AnOperationsOwnQuestionBecomesThePage) {
    LTestBrowser browser = LoggedOn();
    const LTestAnswer page = browser.Get("ask?tell=1");
    EXPECT_TRUE(page.Has("<title>Quillmarsh - Delete Locations</title>"));
    EXPECT_TRUE(page.Has("Really &lt;all&gt;?\nAll of them?"));
    EXPECT_TRUE(page.Has("href='loclist'>No</a>"));
    EXPECT_EQ(deletions, 0);

    const LTestAnswer done = browser.Get(YesOf(page));
    EXPECT_EQ(deletions, 1);
    EXPECT_TRUE(done.Has("&quot;&lt;Shop&gt;&quot; is in use.")) << "what it told";
    EXPECT_EQ(browser.Get(YesOf(browser.Get("ask"))).Location(), "loclist") << "nothing told";
}

}  // namespace
