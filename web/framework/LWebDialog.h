// A page with one form, whose submits travel by script.
#pragma once

#include <functional>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "datastore/LDate.h"
#include "platform/LUserInterface.h"
#include "web/framework/LFormControls.h"
#include "web/framework/LWebPage.h"

// With these blanks.
inline constexpr std::string_view kOkLabel = "  OK  ";
inline constexpr std::string_view kCancelLabel = "Cancel";

// A further submit button. Its name is its label: plain letters, digits and blanks, since browsers
// send it as it stands. Empty target: back to the page that the browser came from. `command`
// returns false when it refused; it has shown why then.
struct LSpecialSubmit {
    std::string name;
    std::string target;
    std::function<bool()> command = {};
};

// Run answers the request: the first display (Prepare, InitDialog, header, Generate, buttons), a
// submit (Prepare, then CmOk, CmCancel or a special submit; answered with script) or an AJAX
// command. What a submit needs to know (special submits, labels, the one-time token) is settled in
// the constructor or in Prepare.
class LWebDialog : public LWebPage, public LFormControls {
public:
    explicit LWebDialog(LWebletForm& form)
        : LWebPage(form), LFormControls(Out(), Script()), okLabel_(kOkLabel) {}

    void Open() final { Run(); }
    void Run();

protected:
    // Opens what the parameters name; for displays and submits alike. False when the request has
    // been answered otherwise, by a redirect for example.
    virtual bool Prepare() { return true; }
    // Before a first display: fills in what the controls will show.
    virtual void InitDialog() {}
    // The rows of the form.
    void Generate() override {}
    // Saves what was entered. False when nothing was saved; the reason has been shown then.
    virtual bool CmOk() { return true; }
    virtual void CmCancel() {}
    // Decides whether a pressed OK or special submit may act; a false one passes for done. The form
    // is shown without what could be changed then.
    virtual bool MayChange() { return true; }
    // Before a pressed OK or special submit acts: false, and the reason shown, when not all of what
    // was sent has arrived.
    virtual bool CheckReceived() { return true; }
    // Above the form, below the header.
    virtual void PrintAboveForm() {}
    // Behind the form: the functions that a submit needs.
    virtual void AddDialogScript();

    // While answering a submit: the script that leads there; otherwise a redirect.
    void Redirect(std::string_view page) override;
    // Answers a submit with statements of the program's own; text of other origin through %J.
    template <typename... Arguments>
    void AnswerScript(std::string_view format, const Arguments&... arguments) {
        answered_ = true;
        Out().Printf(format, arguments...);
    }
    bool IsSubmit() const { return inSubmit_; }

    // What was entered. Missing controls read as empty, 0, off.
    std::string GetText(int id) const;
    std::string GetTextAndTrim(int id) const;
    std::string GetControlValue(int id) const { return GetText(id); }
    int GetControlValueInt(int id, int defaultValue = 0) const;
    bool GetCheck(int id) const;
    int GetRadioCheck(int group) const;  // the chosen button's id; 0 for none
    std::string PDLGetText(int id) const { return GetText(id); }
    std::optional<LDate> GetDate(int id);  // as browsers send it, or in the profile's order

    // Each answers the submit. The message is text; "\n" breaks the line.
    void PopupControlDataInvalid(int id, std::string_view message);
    // Above the form; on a first display it is shown there as well.
    void PopupBoxError(std::string_view message);
    // Shows a refusal at the control that `controlOf(field)` names. True when there is none.
    template <typename Field, typename ControlOf>
    [[nodiscard]] bool ShowFieldError(const LFieldError<Field>& error, ControlOf&& controlOf) {
        if (error.IsNone()) return true;
        if (error.message.empty()) return false;
        if (error.field) {
            PopupControlDataInvalid(controlOf(*error.field), error.message);
        } else {
            PopupBoxError(error.message);
        }
        return false;
    }
    // Shown at the next display of this page in this session.
    void LeaveError(std::string_view message);

    // Where OK and Cancel lead when the request does not say.
    void SetOkCancelPage(std::string onOk, std::string onCancel);
    std::string OnOk() const;      // safe to go to
    std::string OnCancel() const;  // safe to go to
    void AddTools(LSpecialSubmit submit) { tools_.push_back(std::move(submit)); }
    void SetOkLabel(std::string label) { okLabel_ = std::move(label); }
    void SetWithoutOk() { okLabel_.clear(); }  // a form that only shows
    void SetWithoutCancel() { withCancel_ = false; }
    // The submit that the Enter key presses; the OK button by default.
    void SetSubmitDefault(std::string label) { submitDefault_ = std::move(label); }
    // Draws a box of this CSS width around the controls.
    void SetBoxed(std::string width = "auto") { boxWidth_ = std::move(width); }
    // Tick boxes beside the buttons.
    struct LButtonRowCheck {
        int id;
        std::string caption;
        bool checked;
    };
    void AddButtonRowCheck(LButtonRowCheck check) { checks_.push_back(std::move(check)); }
    // The named parameter of the first request comes with the submit too ("id" for example).
    void KeepParameter(std::string name) { kept_.push_back(std::move(name)); }

    // The form acts once: its OK and its special submits take a token that is kept with the
    // session; sent again it says so and changes nothing. A refused OK gives the token back, unless
    // TokenStaysSpent was called because part of the work was done. A submit without a token acts.
    void UseOneTimeToken() { usesToken_ = true; }
    void TokenStaysSpent() { tokenStaysSpent_ = true; }

private:
    void RunFirstDisplay();
    void RunSubmit(const std::string& pressed);
    void AnswerSubmit(const std::string& pressed);
    void RunSpecial(const std::string& pressed);
    void RunCommand(const std::function<bool()>& command, const std::string& target);
    bool TakeToken();
    void PrintDialog();
    void PrintErrorText();
    void PrintButtonRow();
    void PrintButton(std::string_view label, std::string_view attributes);
    void PrintHiddenTail();

    bool inSubmit_ = false, answered_ = false;
    bool withCancel_ = true, usesToken_ = false, tokenStaysSpent_ = false;
    std::string okLabel_, submitDefault_, boxWidth_, errorText_;
    std::string onOk_ = "main", onCancel_ = "main";
    std::vector<LSpecialSubmit> tools_;
    std::vector<LButtonRowCheck> checks_;
    std::vector<std::string> kept_;
};
