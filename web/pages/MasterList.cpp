#include "web/pages/MasterList.h"

#include "web/accounts/PageCheck.h"
#include "web/framework/LWebUserInterface.h"
#include "web/framework/PageTargets.h"

LMasterList::LMasterList(LPageWriter& out, const LMasterListPages& pages, bool mayChange)
    : out_(out), pages_(pages), mayChange_(mayChange) {}

void LMasterList::SetColumns(std::span<const LHtmlListColumn> columns) {
    table_.SetColumns(mayChange_ ? columns : columns.first(columns.size() - 1));
    table_.SetSort(0, true);
}

void LMasterList::SetTexts(std::string name, std::string emptyText) {
    table_.SetName(std::move(name));
    table_.SetEmptyText(std::move(emptyText));
}

void LMasterList::AddRow(std::string_view key, std::string_view name,
                         std::initializer_list<std::string_view> cells) {
    LHtmlListRow row = table_.MakeRow();
    row.AddCellLink(WLMakeLink(pages_.dialog, {{"id", key}}), name.empty() ? "(no name)" : name);
    for (const std::string_view cell : cells) row.AddCell(cell);
    if (mayChange_) {
        row.AddCellPrintF("<a href='%H' aria-label='Delete %H'>Delete</a>",
                          WLMakeLink(pages_.deletion, {{"id", key}}), name);
    }
    table_.AddOrdered(std::move(row));
}

void LMasterList::Print() {
    if (mayChange_) {
        out_.Printf("<div class=toolbar><a class='button primary' href='%H'>%H</a></div>",
                    pages_.dialog, pages_.newCaption);
    }
    table_.Print(out_);
}

void WLMasterDelete(LWebletForm& form, std::string_view listPage, LMasterDelete operation) {
    if (!AuthenticateAction(form)) return;
    if (!WLMayChange(form)) return WLRedirect(form, listPage);
    LWebUserInterface ui(form);
    operation(ui, form.Profile(), {form.Parameter("id")});
    ui.Finish(listPage);
}

std::string SingleLine(std::string_view text) {
    std::string line;
    while (!text.empty()) {
        const size_t end = text.find_first_of("\r\n");
        const std::string_view part = text.substr(0, end);
        if (!part.empty() && !line.empty()) line += ", ";
        line += part;
        text = end == std::string_view::npos ? std::string_view() : text.substr(end + 1);
    }
    return line;
}
