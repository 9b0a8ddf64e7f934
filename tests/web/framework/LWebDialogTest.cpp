#include "web/framework/LWebDialog.h"

#include <atomic>
#include <stdexcept>

#include "tests/web/framework/FrameworkFixture.h"
#include "web/framework/LHtmlList.h"
#include "web/framework/LWebDialogWithNavTabs.h"
#include "web/framework/RunPage.h"
#include "web/framework/StandardPages.h"

namespace {

enum { kName = 101, kNotes = 102, kOn = 103, kKind = 104, kGroup = 200, kFirst = 201, kSecond };

std::atomic<int> saves{0};

// Saves unless the name says otherwise.
class LThingDialog : public LWebDialogWithNavTabs {
public:
    explicit LThingDialog(LWebletForm& form) : LWebDialogWithNavTabs(form) {
        SetTitle("Thing");
        SetOkCancelPage("thinglist", "thinglist?c=1");
        KeepParameter("id");
        AddTools({"Copy Thing", "copied", [] { return ++saves, true; }});
        AddTools({"Recount", "", [] { return true; }});
        AddTools({"Refuse", "copied", [this] { return PopupBoxError("No <copy>\nmade"), false; }});
    }

protected:
    bool Prepare() override {
        if (Form().Parameter("id") != "gone") return true;
        Redirect("thinglist");
        return false;
    }
    void InitDialog() override {
        Tabs().AddTab("thing2?id=1", "More");
        SetTabName("thing:1");
        name_ = Form().Parameter("name");
        if (name_ == "wrong") PopupBoxError("Look at <this>");
    }
    void Generate() override {
        StartRow().AddStatic("Name <&>").AddInput(kName, name_, {.hint = "As printed"});
        StartRow().AddStatic("Notes").AddEdit(kNotes, "\nline 1\n</textarea>");
        StartRow().AddCheckBox(kOn, "On sale", true);
        StartRow()
            .AddStatic("Kind")
            .AddRadioButton(kFirst, kGroup, "First", false)
            .AddRadioButton(kSecond, kGroup, "Second", true);
        const std::vector<std::string> kinds{"a'", "b"};
        StartRow().AddStatic("List").AddPullDownList(kKind, kinds, "gone kind");
        AddHiddenField("more", "'x'");
        EnableControlOnCheck(kOn, kName);
        EnableControlOnSelectChange(kKind, kNotes, kinds);
        AddValidation("if (bad()) return false;");
    }
    bool CmOk() override {
        if (GetTextAndTrim(kName).empty()) {
            PopupControlDataInvalid(kName, "Please enter a <name>.\nIt's \"needed\".");
            return false;
        }
        if (GetText(kName) == "mute") return false;
        if (GetText(kName) == "broken") throw std::runtime_error("broken");
        ++saves;
        if (GetText(kName) == "elsewhere") Redirect("a'b");
        return true;
    }

private:
    std::string name_;
};

class LWebDialogs : public LFrameworkTest {
protected:
    LWebDialogs() {
        saves = 0;
        LWebletInstallScript("thing", WLWebDialogRun<LThingDialog>);
    }
};

TEST_F(LWebDialogs, TheFormIsWrittenToTheByte) {
    LTestBrowser browser = LoggedOn();
    const LTestAnswer page = browser.Get("thing?id=%27%3E&onok=itemlist");
    // In this order.
    const std::string_view kPieces[] = {
        "<script type='text/javascript' src='ajax.js'></script>",
        "<div class=centerwrapper><form id=dialogform action='thing' method=post "
        "style='width:100%'",
        "<table id=controltable style='border:0px;'>",
        "<tr class=dc><td><label for=101>Name &lt;&amp;&gt;</label></td><td>"
        "<input type=text id=101 name=101 value=''",
        "<textarea id=102 name=102 rows=4 cols=40>\n\nline 1\n&lt;/textarea&gt;</textarea>",
        "<input type=checkbox id=103 name=103 value=1 checked><label for=103>On sale</label>",
        "<td>Kind</td><td><input type=radio id=201 name=200 value=201><label for=201>First</label>",
        "<input type=radio id=202 name=200 value=202 checked>",
        "<option value='gone kind' selected>gone kind</option><option value='a&#39;'>a&#39;",
        "<tr style='background-color:#fbfbfb;'><td colspan=2 style='",
        "border-bottom: 1px solid #bbbbbb;'><table border=0>",
        "<input type=submit name=submit value='  OK  ' class=default "
        "onclick='document.pressed=this.value' style='font-family: Arial,sans-serif; font-size: "
        "10pt;'>",
        "<input type=submit name=submit value='Cancel'  onclick='document.pressed=this.value' "
        "style='font-family: Arial,sans-serif; font-size: 10pt;'>",
        "value='Copy Thing'",
        "<input type=hidden name=submitdef value='  OK  '></table></td></tr>",
        "<input type=hidden name='id' value='&#39;&gt;'>",
        "<input type=hidden name='more' value='&#39;x&#39;'>",
        "<input type=hidden name=onok value='itemlist'><input type=hidden name=oncancel "
        "value='thinglist?c=1'></td></tr></table></form>",
        "function DisableSubmits(bDisable) {submits = document.getElementsByName('submit');for (i "
        "= 0; i < submits.length; i++) {submits[i].disabled = bDisable;}}",
        "function CmSubmit() {window.onbeforeunload = null;DisableSubmits(true);SimpleAjaxCall("
        "'thing', GetParams('dialogform') + 'submit=' + document.pressed, HandleAjaxJSReturn, "
        "function() { DisableSubmits(false); }, function() { DisableSubmits(false); }, "
        "1200000);return false;}",
        "function enablectls() {\ndocument.getElementById('101').disabled = "
        "!document.getElementById('103').checked;",
        "['a\\x27', 'b'].indexOf(document.getElementById('104').value) < 0;\n}\n"
        "LAddEventListener(window, 'onload', enablectls);",
        "function validatedata() {if (bad()) return false;\nreturn true;}\n",
        "LAddEventListener(window, 'onload', function() "
        "{setTimeout('document.getElementById(101).focus();', 1)});",
    };
    size_t at = 0;
    for (const std::string_view piece : kPieces) {
        const size_t found = page.body.find(piece, at);
        ASSERT_NE(found, std::string::npos) << piece << "\nin " << page.body.substr(at);
        at = found + piece.size();
    }
    EXPECT_TRUE(page.Has("onclick=\"return LSaveTab('thing:1', this.href)\">More</a>"));
}

TEST_F(LWebDialogs, AnErrorKnownBeforehandStandsAboveTheForm) {
    EXPECT_TRUE(LoggedOn()
                    .Get("thing?name=wrong")
                    .Has(" style='color:#a00000; font-weight:bold; padding:0px 12px;'>Look at "
                         "&lt;this&gt;</div>"
                         "<br>"));
}

TEST_F(LWebDialogs, EachButtonHasItsAnswer) {
    struct LCase {
        std::string label, name, answer;
        int saves;
        const char* why;
    };
    const LCase kCases[] = {
        {"  OK  ", "x", "window.location = 'thinglist';\n", 1, "saved"},
        {"  OK  ", "mute", "DisableSubmits(false)", 0, "refused without a word"},
        {"  OK  ", "elsewhere", "window.location = 'a\\x27b';\n", 1, "answered by itself"},
        {"OK", "x", "DisableSubmits(false)", 0, "the blanks belong to the label"},
        {"Cancel", "x", "window.location = 'thinglist?c=1';\n", 0, "cancelled"},
        {"copy thing", "x", "window.location = 'copied';\n", 1, "a special one, in any case"},
        {"Recount", "x", "window.location = 'main';\n", 0, "no target, no page to go back to"},
        {"undefined", "x", "DisableSubmits(false)", 0, "no button of this form"},
    };
    LTestBrowser browser = LoggedOn();
    for (const LCase& one : kCases) {
        saves = 0;
        const LTestAnswer answer = browser.Submit("thing", {{"101", one.name}}, one.label);
        EXPECT_EQ(answer.head,
                  "HTTP/1.1 200 OK\r\nConnection: close\r\nCache-Control: no-cache\r\n"
                  "Content-Type: text/plain\r\n\r\n")
            << one.why;
        EXPECT_EQ(answer.body, one.answer) << one.why;
        EXPECT_EQ(saves, one.saves) << one.why;
    }
    EXPECT_EQ(browser.Post("thing", {{"101", "x"}, {"submitdef", "  OK  "}}).body,
              "window.location = 'thinglist';\n")
        << "the Enter key where no button was pressed";
}

TEST_F(LWebDialogs, ASpecialSubmitWithoutTargetGoesBackToThePageOfThisServerOnly) {
    struct LCase {
        const char *referer, *page;
    };
    for (const LCase& one :
         {LCase{"http://localhost/itemlist?a=1", "/itemlist?a=1"},
          LCase{"http://evil.example/itemlist", "main"}, LCase{"http://localhost//evil", "main"},
          LCase{"http://localhost", "main"}, LCase{"javascript:alert(1)", "main"}}) {
        LTestBrowser browser = LoggedOn();
        browser.headers = "Referer: " + std::string(one.referer) + "\r\n";
        EXPECT_EQ(browser.Submit("thing", {}, "Recount").body,
                  "window.location = '" + std::string(one.page) + "';\n")
            << one.referer;
    }
}

TEST_F(LWebDialogs, AWrongFieldIsShownAboveItsRowAsText) {
    const LTestAnswer answer = LoggedOn().Submit("thing", {{"101", " \t"}});
    EXPECT_TRUE(answer.Has("DisableSubmits(false);")) << "or nobody could press OK again";
    EXPECT_TRUE(answer.Has("document.getElementById('invalidTag')"));
    EXPECT_TRUE(answer.Has("error.id = 'invalidTag';"));
    EXPECT_TRUE(answer.Has("document.getElementById('101')"));
    EXPECT_TRUE(
        answer.Has("Please enter a \\x26lt;name\\x26gt;.\\x3Cbr\\x3EIt\\x26#39;s "
                   "\\x26quot;needed\\x26quot;."));
    EXPECT_TRUE(answer.Has("control.focus();"));
    EXPECT_TRUE(answer.body.ends_with("window.scroll(0,0);\n"));
    EXPECT_EQ(saves, 0);
    const LTestAnswer box = LoggedOn().Submit("thing", {}, "Refuse");
    EXPECT_TRUE(box.Has("No \\x26lt;copy\\x26gt;\\x3Cbr\\x3Emade"));
    EXPECT_FALSE(box.Has("window.location"));
}

TEST_F(LWebDialogs, NoTargetLeadsOutOfThisServerOrIntoScript) {
    LTestBrowser browser = LoggedOn();
    EXPECT_EQ(browser.Submit("thing", {{"101", "x"}, {"onok", "//evil.example"}}).body,
              "window.location = 'main';\n");
    EXPECT_EQ(browser.Submit("thing", {{"oncancel", "//evil.example"}}, "Cancel").body,
              "window.location = 'main';\n");
    EXPECT_EQ(browser.Submit("thing", {{"101", "x"}, {"onok", "a';alert(1);'</script>"}}).body,
              "window.location = 'a\\x27;alert(1);\\x27\\x3C/script\\x3E';\n");
    const LTestAnswer page = browser.Get("thing?onok=a%27%3E%3Cscript%3E&name=%27%3E%3Cscript%3E");
    EXPECT_FALSE(page.Has("'><script>"));
}

// Browsers tell where a post comes from, but for a plain address of the local network not where a
// link does.
TEST_F(LWebDialogs, AButtonPressedByALinkOnlyShowsTheForm) {
    LTestBrowser browser = LoggedOn();
    EXPECT_TRUE(browser.Get("thing?101=x&submit=++OK++").Has("<form id=dialogform"));
    EXPECT_EQ(saves, 0);
}

TEST_F(LWebDialogs, ABrokenCommandIsToldAndTheButtonsComeBack) {
    const LTestAnswer answer = LoggedOn().Submit("thing", {{"101", "broken"}});
    EXPECT_TRUE(answer.Has("DisableSubmits(false);"));
    EXPECT_TRUE(answer.Has("This could not be done. Please try again."));
}

TEST_F(LWebDialogs, WhatIsGoneRedirectsInTheWayOfTheRequest) {
    LTestBrowser browser = LoggedOn();
    EXPECT_EQ(browser.Get("thing?id=gone").Location(), "thinglist");
    EXPECT_EQ(browser.Submit("thing", {{"id", "gone"}, {"101", "x"}}).body,
              "window.location = 'thinglist';\n");
    EXPECT_EQ(saves, 0);
}

}  // namespace
