#include "web/framework/LHtmlList.h"

#include <algorithm>
#include <charconv>
#include <cmath>
#include <string>

#include "platform/CaseFolding.h"
#include "web/framework/LPageWriter.h"

namespace {

std::string_view AlignName(LCellAlign align) {
    switch (align) {
        case LCellAlign::kCenter:
            return "center";
        case LCellAlign::kRight:
            return "right";
        default:
            return "left";
    }
}

// While a long table arrives, only what lists.js will show first is laid out: laying out all of it
// again and again takes browsers many seconds.
constexpr std::string_view kHideWhileLoading =
    "<style type='text/css'>.scripted .hlwrap:not([data-ready]):not([data-plain]) "
    "tbody tr:nth-child(n+101) { display: none }</style>";

constexpr std::array<bool, 256> MarkSpecialBytes() {
    std::array<bool, 256> marks{};
    for (const unsigned char byte : {'&', '<', '>', '"', '\''}) marks[byte] = true;
    return marks;
}
constexpr std::array<bool, 256> kIsSpecial = MarkSpecialBytes();

// Nearly every cell is plain text, and a long list has hundreds of thousands of them.
void AppendEscaped(std::string& out, std::string_view text) {
    const auto isSpecial = [](char byte) { return kIsSpecial[static_cast<unsigned char>(byte)]; };
    if (std::none_of(text.begin(), text.end(), isSpecial)) {
        out += text;
        return;
    }
    const LFormatArgument argument(text);
    AppendFormatted(out, "%H", {&argument, 1});
}

// Whole texts only: "12 mm" is a text.
bool ReadNumber(std::string_view text, double& value) {
    const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), value);
    return error == std::errc() && end == text.data() + text.size() && std::isfinite(value);
}

// Whether the text is that number to everybody who reads it. Most are short and plain, as "12.00".
bool ShowsNumber(std::string_view text, double number) {
    double value = 0, scale = 0;
    for (const char byte : text) {
        if (byte == '.' && scale == 0) {
            scale = 1;
        } else if (byte >= '0' && byte <= '9') {
            value = value * 10 + (byte - '0');
            scale *= 10;
        } else {
            return ReadNumber(text, value) && value == number;
        }
    }
    return !text.empty() && value == number * (scale == 0 ? 1 : scale);
}

}  // namespace

LListSortKey::LListSortKey(std::string_view text) : isNumber_(ReadNumber(text, number_)) {
    if (!isNumber_) text_ = FoldCase(text);
}

bool LListSortKey::operator<(const LListSortKey& other) const {
    if (isNumber_ != other.isNumber_) return isNumber_;
    return isNumber_ ? number_ < other.number_ : text_ < other.text_;
}

LHtmlListRow::LHtmlListRow(const LHtmlList& list) : list_(&list) { html_.reserve(list.rowBytes_); }

LHtmlListCell::LHtmlListCell(LHtmlListRow& row, std::string_view order, std::string_view arguments)
    : row_(row) {
    const auto& columns = row.list_->columns_;
    AddMarkup(row.column_ < columns.size() ? std::string_view(columns[row.column_].cellStart)
                                           : "<td align=left class=hltd");
    if (!order.empty()) AddMarkup(" data-order='").AddText(order).AddMarkup("'");
    if (!arguments.empty()) AddMarkup(" data-args='").AddText(arguments).AddMarkup("'");
    if (row.span_ > 1) AddMarkup(FormatText(" colspan=%lu", row.span_));
    AddMarkup(">");
}

LHtmlListCell::~LHtmlListCell() {
    AddMarkup("</td>");
    row_.column_ += row_.span_;
    row_.span_ = 1;
}

LHtmlListCell& LHtmlListCell::AddText(std::string_view text) {
    AppendEscaped(row_.html_, text);
    return *this;
}

LHtmlListCell& LHtmlListCell::AddMarkup(std::string_view html) {
    row_.html_ += html;
    return *this;
}

void LHtmlListRow::KeepKey(std::string_view key) {
    if (static_cast<int>(column_) != list_->sortColumn_) return;
    key_ = LListSortKey(key);
}

LHtmlListRow& LHtmlListRow::AddCell(std::string_view text) {
    KeepKey(text);
    LHtmlListCell(*this).AddText(text);
    return *this;
}

LHtmlListRow& LHtmlListRow::AddCellWithOrder(std::string_view text, std::string_view order) {
    KeepKey(order);
    LHtmlListCell(*this, order).AddText(text);
    return *this;
}

LHtmlListRow& LHtmlListRow::AddCellWithOrder(std::string_view text, double order) {
    if (ShowsNumber(text, order)) return AddCell(text);  // it sorts as it stands
    std::array<char, 32> digits;
    const auto end = std::to_chars(digits.data(), digits.data() + digits.size(), order).ptr;
    return AddCellWithOrder(text, std::string_view(digits.data(), end));
}

LHtmlListRow& LHtmlListRow::AddCellHtml(std::string_view html, std::string_view order) {
    KeepKey(order);
    LHtmlListCell(*this, order).AddMarkup(html);
    return *this;
}

LHtmlListRow& LHtmlListRow::AddCellLink(std::string_view target, std::string_view text) {
    KeepKey(text);
    LHtmlListCell(*this)
        .AddMarkup("<a href='")
        .AddText(target)
        .AddMarkup("'>")
        .AddText(text)
        .AddMarkup("</a>");
    return *this;
}

LHtmlListRow& LHtmlListRow::AddCellImageLink(std::string_view target, std::string_view image,
                                             std::string_view name) {
    return AddCellPrintF("<a href='%H' title='%H'><img src='%H' alt='%H' border=0></a>", target,
                         name, image, name);
}

LHtmlListRow& LHtmlListRow::AddCellPullDownList(int id, std::span<const std::string> texts,
                                                std::string_view selected, std::string_view name) {
    KeepKey(selected);
    LHtmlListCell cell(*this, selected);
    cell.AddMarkup(FormatText("<select id=%d name=%d aria-label='%H'>", id, id, name));
    for (const std::string& text : texts) {
        cell.AddMarkup(
            FormatText("<option%s>%H</option>", text == selected ? " selected" : "", text));
    }
    cell.AddMarkup("</select>");
    return *this;
}

LHtmlListRow& LHtmlListRow::SpanNext(size_t count) {
    span_ = std::max<size_t>(count, 1);
    return *this;
}

LHtmlListRow& LHtmlListRow::SetClass(std::string_view name) {
    class_ = name;
    return *this;
}

LHtmlListRow& LHtmlListRow::AddCellActions(std::string_view query) {
    const LHtmlListCell cell(*this, {}, query);
    return *this;
}

LHtmlListRow& LHtmlListRow::StartAs(const LHtmlListRow& other) {
    html_ += other.html_;  // not assigned: the space that is reserved for the rest stays
    key_ = other.key_;
    column_ = other.column_;
    return *this;
}

void LHtmlListRow::Clear() {
    html_.clear();
    key_ = {};
    class_.clear();
    column_ = 0;
    span_ = 1;
}

void LHtmlList::SetColumns(std::span<const LHtmlListColumn> columns) {
    columns_.clear();
    for (const LHtmlListColumn& column : columns) AddColumn(column, LTitleKind::kText);
}

void LHtmlList::AddColumn(const LHtmlListColumn& column, LTitleKind kind) {
    LColumn& added = columns_.emplace_back();
    added.column = column;
    added.title = kind == LTitleKind::kText ? EscapeHtml(column.title) : std::string(column.title);
    added.cellStart = FormatText("<td align=%s class=hltd%s", AlignName(column.align),
                                 column.hidden ? " style='display:none'" : "");
}

LHtmlListRow& LHtmlList::StartRow() {
    if (!rows_.empty()) LearnSize(rows_.back());
    return rows_.emplace_back(*this);
}

void LHtmlList::Add(LHtmlListRow row) {
    LearnSize(row);
    rows_.push_back(std::move(row));
}

void LHtmlList::AddOrdered(LHtmlListRow row) {
    ordered_ = true;
    Add(std::move(row));
}

void LHtmlList::LearnSize(const LHtmlListRow& row) {
    rowBytes_ = std::max(rowBytes_, row.html_.size());
}

void LHtmlList::SetSort(size_t column, bool ascending) {
    sortColumn_ = static_cast<int>(column);
    ascending_ = ascending;
}

void LHtmlList::SetRowActions(std::span<const LHtmlListAction> actions) {
    actions_.clear();
    for (const LHtmlListAction& action : actions) {
        actions_ += FormatText("%s\n%s\n", action.caption, action.target);
    }
}

void LHtmlList::Print(LPageWriter& out) {
    std::vector<const LHtmlListRow*> order;
    order.reserve(rows_.size());
    for (const LHtmlListRow& row : rows_) order.push_back(&row);
    if (ordered_) {
        std::stable_sort(order.begin(), order.end(),
                         [this](const LHtmlListRow* left, const LHtmlListRow* right) {
                             return ascending_ ? *left < *right : *right < *left;
                         });
    }
    PrintStart(out);
    for (const LHtmlListRow* row : order) PrintRow(out, *row);
    PrintEnd(out);
}

void LHtmlList::PrintTitle(LPageWriter& out, size_t index) const {
    const LHtmlListColumn& column = columns_[index].column;
    out.Printf("<th scope=col align=%s", AlignName(column.align));
    if (column.widthPercent > 0) out.Printf(" width='%d%%'", column.widthPercent);
    if (column.hidden) out.Write(" style='display:none'");
    if (column.sortable) out.Write(" data-sortable=1");
    if (static_cast<int>(index) == sortColumn_) {
        out.Printf(" aria-sort=%s", ascending_ ? "ascending" : "descending");
    }
    out.Printf(">%s</th>", columns_[index].title);
}

void LHtmlList::PrintStart(LPageWriter& out) {
    printedRows_ = 0;
    out.Write(kHideWhileLoading);
    out.Printf("<div class=hlwrap data-name='%H'%s", name_, plain_ ? " data-plain=1" : "");
    if (!actions_.empty()) out.Printf(" data-actions='%H'", actions_);
    out.Write(">");
    out.Printf("<table style='width:%d%%' class='hltbl'%s%s>", widthPercent_,
               id_ != 0 ? FormatText(" id=%d", id_) : "",
               sortColumn_ >= 0
                   ? FormatText(" data-sortcolumn=%d data-asc=%d", sortColumn_, ascending_)
                   : "");
    out.Write("<thead><tr style='height:25px' class=hlhtr>");
    for (size_t index = 0; index < columns_.size(); ++index) PrintTitle(out, index);
    out.Write("</tr></thead><tbody>");
}

void LHtmlList::PrintRow(LPageWriter& out, const LHtmlListRow& row) {
    ++printedRows_;
    out.Write("<tr");
    if (!row.class_.empty()) out.Write(" class='").Write(EscapeHtml(row.class_)).Write("'");
    out.Write(">").Write(row.html_).Write("</tr>\n");
}

void LHtmlList::PrintEnd(LPageWriter& out) {
    out.Write("</tbody></table>");
    if (printedRows_ == 0) out.Printf("<div class=empty>%H</div>", emptyText_);
    out.Write("</div><script type='text/javascript' src='lists.js'></script>");
}
