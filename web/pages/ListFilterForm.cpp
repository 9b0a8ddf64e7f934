#include "web/pages/ListFilterForm.h"

#include "web/framework/LPageWriter.h"

LListFilterForm::LListFilterForm(LPageWriter& out, std::string_view page) : out_(out) {
    out_.Printf("<form class=toolbar action='%H' method=get>", page);
}

LListFilterForm::~LListFilterForm() {
    out_.Write("<div class=actions><input type=submit value='Show'>")
        .Write(actions_)
        .Write("</div></form>");
}

void LListFilterForm::AddChoice(std::string_view name, std::string_view caption,
                                std::span<const std::string> choices, std::string_view selected) {
    out_.Printf("<div><label for='filter-%H'>%H</label>", name, caption);
    out_.Printf("<select id='filter-%H' name='%H' onchange='this.form.submit()'>", name, name);
    for (const std::string& choice : choices) {
        out_.Printf("<option%s>%H</option>", choice == selected ? " selected" : "", choice);
    }
    out_.Write("</select></div>");
}

void LListFilterForm::AddText(std::string_view name, std::string_view caption,
                              std::span<const std::string> suggestions, std::string_view value) {
    out_.Printf("<div class=grow><label for='filter-%H'>%H</label>", name, caption);
    out_.Printf("<input type=text id='filter-%H' name='%H' list='filter-%H-list' value='%H'>", name,
                name, name, value);
    out_.Printf("<datalist id='filter-%H-list'>", name);
    for (const std::string& text : suggestions) out_.Printf("<option value='%H'>", text);
    out_.Write("</datalist></div>");
}

void LListFilterForm::AddDate(std::string_view name, std::string_view caption,
                              std::string_view storedDate) {
    out_.Printf("<div><label for='filter-%H'>%H</label>", name, caption);
    out_.Printf("<input type=date id='filter-%H' name='%H' value='%H'></div>", name, name,
                storedDate);
}

void LListFilterForm::AddAction(std::string_view target, std::string_view caption) {
    actions_ += FormatText(" <a class='button primary' href='%H'>%H</a>", target, caption);
}
