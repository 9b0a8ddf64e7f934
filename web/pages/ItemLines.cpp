#include "web/pages/ItemLines.h"

#include <algorithm>

#include "datastore/NumberText.h"
#include "inventory/LItem.h"
#include "web/server/WebletOutput.h"

namespace {

constexpr int kMaxLines = 500;
constexpr int kSpareLines = 3;

// Adds a line below the last one. The error row that a refusal puts into the table is no line.
constexpr std::string_view kMoreScript =
    "function LMoreLines(first) {"
    "var body = document.getElementById('lines' + first);"
    "var lines = body.querySelectorAll('tr.itemline');"
    "if (lines.length >= 500) return;"
    "var line = lines[lines.length - 1].cloneNode(true);"
    "line.querySelectorAll('input').forEach(function(input, part) {"
    "input.id = input.name = first + 2 * lines.length + part;"
    "input.value = '';"
    "input.removeAttribute('aria-invalid');"
    "input.setAttribute('aria-label',"
    "(part ? 'Quantity, line ' : 'Item code, line ') + (lines.length + 1));});"
    "line.cells[2].textContent = '';"
    "body.appendChild(line);"
    "line.querySelector('input').focus();}\n";

void AddLine(LFormControls& form, int first, int line, const LItemLineText& text) {
    const int code = ItemLineCode(first, line), quantity = ItemLineQuantity(first, line);
    form.AddRawHTML(FormatText(
        "<tr class=itemline><td><input type=text id=%d name=%d value='%H' list='codes%d' "
        "maxlength=259 autocomplete=off aria-label='Item code, line %d'></td>"
        "<td><input type=text id=%d name=%d value='%H' size=8 maxlength=40 inputmode=decimal "
        "autocomplete=off aria-label='Quantity, line %d'></td><td class=small>%H</td></tr>",
        code, code, text.code, first, line + 1, quantity, quantity, text.quantity, line + 1,
        text.note));
}

void AddSuggestions(LFormControls& form, const LProfile& profile, int first) {
    std::vector<std::string> codes;
    GetItemIndex(profile, codes);
    std::sort(codes.begin(), codes.end());
    form.AddRawHTML(FormatText("<datalist id='codes%d'>", first));
    for (const std::string& code : codes) form.AddRawHTML(FormatText("<option value='%H'>", code));
    form.AddRawHTML("</datalist>");
}

bool IsEmpty(const LItemLineText& line) {
    return TrimBlanks(line.code).empty() && TrimBlanks(line.quantity).empty();
}

}  // namespace

void AddItemLines(LFormControls& form, LPageScript& script, const LProfile& profile, int first,
                  const std::vector<LItemLineText>& lines) {
    form.StartRow().AddRawHTML(
        FormatText("<table class='stocktable linetable'><thead><tr><th>Item code</th>"
                   "<th>Quantity</th><th></th></tr></thead><tbody id='lines%d'>",
                   first));
    const int count = static_cast<int>(lines.size());
    for (int line = 0; line < std::min(count + kSpareLines, kMaxLines); ++line) {
        AddLine(form, first, line,
                line < count ? lines[static_cast<size_t>(line)] : LItemLineText{});
    }
    form.AddRawHTML("</tbody></table>");
    AddSuggestions(form, profile, first);
    form.StartRow().AddRawHTML(FormatText(
        "<button type=button class=button onclick='LMoreLines(%d)'>Another line</button>", first));
    script.Add("%s", kMoreScript);
}

std::vector<LItemLineText> ReadItemLines(const LHashTable& fields, int first) {
    std::vector<LItemLineText> lines;
    for (int line = 0; line < kMaxLines; ++line) {
        lines.push_back({fields.GetString(std::to_string(ItemLineCode(first, line))),
                         fields.GetString(std::to_string(ItemLineQuantity(first, line)))});
    }
    while (!lines.empty() && IsEmpty(lines.back())) lines.pop_back();
    return lines;
}

void WriteItemLines(LHashTable& fields, int first, const std::vector<LItemLineText>& lines) {
    for (size_t i = 0; i < lines.size(); ++i) {
        const int line = static_cast<int>(i);
        fields.SetString(std::to_string(ItemLineCode(first, line)), lines[i].code);
        fields.SetString(std::to_string(ItemLineQuantity(first, line)), lines[i].quantity);
    }
}
