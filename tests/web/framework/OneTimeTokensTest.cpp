#include "web/framework/OneTimeTokens.h"

#include <atomic>
#include <thread>

#include "tests/web/framework/FrameworkFixture.h"
#include "web/framework/LWebDialog.h"
#include "web/framework/RunPage.h"

namespace {

enum { kMode = 101 };
std::atomic<int> deeds{0};

// Moves stock, as it were: what counts is how often.
class LMoveDialog : public LWebDialog {
public:
    explicit LMoveDialog(LWebletForm& form) : LWebDialog(form) {
        UseOneTimeToken();
        SetOkCancelPage("done", "main");
        AddTools({"Again", "again", [] { return ++deeds, true; }});
    }

protected:
    void Generate() override { StartRow().AddStatic("Mode").AddInput(kMode, {}); }
    bool CmOk() override {
        if (GetText(kMode) == "refuse") return false;
        if (GetText(kMode) == "half") {
            ++deeds;
            TokenStaysSpent();
            return false;
        }
        std::this_thread::sleep_for(std::chrono::milliseconds(50));
        ++deeds;
        return true;
    }
};

class OneTimeTokens : public LFrameworkTest {
protected:
    OneTimeTokens() {
        deeds = 0;
        LWebletInstallScript("move", WLWebDialogRun<LMoveDialog>);
    }
    static LTestAnswer Move(LTestBrowser browser, const std::string& token,
                            const std::string& mode = "", std::string_view label = "  OK  ") {
        return browser.Submit("move", {{"101", mode}, {"token", token}}, label);
    }
};

TEST_F(OneTimeTokens, AFormThatWasSentDoesNotActAgainAndSaysSo) {
    LTestBrowser browser = LoggedOn();
    const std::string token = browser.Get("move").Hidden("token");
    ASSERT_FALSE(token.empty());
    EXPECT_EQ(Move(browser, token).body, "window.location = 'done';\n");
    for (const char* label : {"  OK  ", "Again"}) {
        const LTestAnswer again = Move(browser, token, "", label);
        EXPECT_TRUE(again.Has("This has already been recorded.")) << label;
        EXPECT_FALSE(again.Has("window.location")) << label;
    }
    EXPECT_EQ(deeds, 1);
    EXPECT_TRUE(Move(browser, browser.Get("move").Hidden("token")).Has("done")) << "a new form";
    EXPECT_EQ(deeds, 2);
}

TEST_F(OneTimeTokens, PressedByManyAtOnceItActsOnce) {
    LTestBrowser browser = LoggedOn();
    for (int round = 0; round < 3; ++round) {
        deeds = 0;
        const std::string token = browser.Get("move").Hidden("token");
        std::atomic<int> refused{0};
        std::vector<std::thread> hands;
        for (int i = 0; i < 8; ++i) {
            hands.emplace_back([&] {
                if (Move(browser, token).Has("already been recorded")) ++refused;
            });
        }
        for (std::thread& hand : hands) hand.join();
        EXPECT_EQ(deeds, 1);
        EXPECT_EQ(refused, 7);
    }
}

TEST_F(OneTimeTokens, ARefusedFormMayBeSentAgainUnlessPartOfItWasDone) {
    LTestBrowser browser = LoggedOn();
    const std::string token = browser.Get("move").Hidden("token");
    EXPECT_EQ(Move(browser, token, "refuse").body, "DisableSubmits(false)");
    EXPECT_TRUE(Move(browser, token).Has("window.location")) << "corrected";

    const std::string half = browser.Get("move").Hidden("token");
    EXPECT_EQ(Move(browser, half, "half").body, "DisableSubmits(false)");
    EXPECT_TRUE(Move(browser, half).Has("already been recorded"));
}

TEST_F(OneTimeTokens, WithoutATokenAFormActsAsEver) {
    LTestBrowser browser = LoggedOn();
    EXPECT_TRUE(browser.Submit("move", {}).Has("window.location"));
    EXPECT_TRUE(browser.Submit("move", {}).Has("window.location"));
    EXPECT_EQ(deeds, 2);
}

TEST_F(OneTimeTokens, TokensThatThisSessionNeverHadDoNothing) {
    LTestBrowser ann = LoggedOn(), bob = LoggedOn();
    const std::string token = ann.Get("move").Hidden("token");
    bob.Get("move");
    const std::string ofBob = bob.Get("move").Hidden("token");
    for (const std::string& strange :
         {token, std::string("x"), std::string("-"), ofBob.substr(0, ofBob.find('-')),
          ofBob + std::string(100, 'a')}) {
        EXPECT_TRUE(Move(bob, strange).Has("open for too long")) << strange;
    }
    EXPECT_EQ(deeds, 0);
}

TEST_F(OneTimeTokens, AFormIsNeverForgottenIntoActingTwice) {
    LTestBrowser browser = LoggedOn();
    const std::string first = browser.Get("move").Hidden("token");
    const std::string kept = browser.Get("move").Hidden("token");
    EXPECT_TRUE(Move(browser, first).Has("window.location"));
    LWebletInstallScript("take", [](LWebletForm& form) {
        for (int i = 0; i < 150; ++i) TakeOneTimeToken(form, IssueOneTimeToken(form));
    });
    browser.Get("take");  // more than a session remembers one by one
    deeds = 0;
    EXPECT_FALSE(Move(browser, first).Has("window.location"));
    EXPECT_FALSE(Move(browser, kept).Has("window.location")) << "cannot be told from the first";
    EXPECT_EQ(deeds, 0);
    EXPECT_TRUE(Move(browser, browser.Get("move").Hidden("token")).Has("window.location"));
}

}  // namespace
