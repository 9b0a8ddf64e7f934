// Tables of rows and titled columns, sorted, searched and paged by lists.js.
#pragma once

#include <array>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "web/server/WebletOutput.h"

class LPageWriter;
class LHtmlList;
class LHtmlListRow;

enum class LCellAlign { kLeft, kCenter, kRight };

struct LHtmlListColumn {
    std::string_view title;
    int widthPercent = 0;  // 0: as its content asks
    LCellAlign align = LCellAlign::kLeft;
    bool sortable = true;
    bool hidden = false;
};

// What rows are ordered by: numbers by value and before texts, texts ignoring case.
class LListSortKey {
public:
    LListSortKey() = default;
    explicit LListSortKey(std::string_view text);
    bool operator<(const LListSortKey& other) const;

private:
    std::string text_;  // folded; empty for a number
    double number_ = 0;
    bool isNumber_ = false;
};

// One cell of a row while it is written: begun when it is made, closed when it goes.
class LHtmlListCell {
public:
    // `order` is what the column is sorted by in place of what the cell shows; empty: nothing else.
    // `arguments` are those of the row's actions.
    explicit LHtmlListCell(LHtmlListRow& row, std::string_view order = {},
                           std::string_view arguments = {});
    ~LHtmlListCell();
    LHtmlListCell(const LHtmlListCell&) = delete;
    LHtmlListCell& operator=(const LHtmlListCell&) = delete;

    LHtmlListCell& AddText(std::string_view text);    // of any origin
    LHtmlListCell& AddMarkup(std::string_view html);  // of the program's own

private:
    LHtmlListRow& row_;
};

// One row, filled cell by cell in the order of the columns. Each cell is written out when it is
// added; of its sort keys only that of the list's chosen column is kept.
class LHtmlListRow {
public:
    explicit LHtmlListRow(const LHtmlList& list);

    LHtmlListRow& AddCell(std::string_view text);
    // `order` is what the column is sorted by: a number with "." as decimal mark, a stored date, or
    // any text.
    LHtmlListRow& AddCellWithOrder(std::string_view text, std::string_view order);
    LHtmlListRow& AddCellWithOrder(std::string_view text, double order);
    // `format` is markup; texts go through %H.
    template <typename... Arguments>
    LHtmlListRow& AddCellPrintF(std::string_view format, const Arguments&... arguments) {
        return AddCellHtml(FormatText(format, arguments...));
    }
    template <typename... Arguments>
    LHtmlListRow& AddCellPrintFWithOrder(std::string_view order, std::string_view format,
                                         const Arguments&... arguments) {
        return AddCellHtml(FormatText(format, arguments...), order);
    }
    // `target` is an address of this server; sorted by the text.
    LHtmlListRow& AddCellLink(std::string_view target, std::string_view text);
    // A picture of the web folder as a link; `name` says in words what it does.
    LHtmlListRow& AddCellImageLink(std::string_view target, std::string_view image,
                                   std::string_view name);
    // `name` says in words what is chosen.
    LHtmlListRow& AddCellPullDownList(int id, std::span<const std::string> texts,
                                      std::string_view selected, std::string_view name);
    // Markup of the program's own.
    LHtmlListRow& AddCellHtml(std::string_view html, std::string_view order = {});
    // The next cell covers `count` columns.
    LHtmlListRow& SpanNext(size_t count);
    // A style class that marks the whole row, such as "low" or "total".
    LHtmlListRow& SetClass(std::string_view name);

    // The cell of the row's actions, see LHtmlList::SetRowActions. `query` says what they work on:
    // "id=7&loc=Main" with values percent-encoded.
    LHtmlListRow& AddCellActions(std::string_view query);
    // Begins this empty row with the cells of another.
    LHtmlListRow& StartAs(const LHtmlListRow& other);

    // Makes the row empty again, for the next one that is printed and not kept.
    void Clear();

    // By the chosen column's sort key.
    bool operator<(const LHtmlListRow& other) const { return key_ < other.key_; }

private:
    friend class LHtmlList;
    friend class LHtmlListCell;
    void KeepKey(std::string_view key);

    const LHtmlList* list_;
    std::string html_;  // the cells so far
    LListSortKey key_;  // of the chosen column
    size_t column_ = 0, span_ = 1;
    std::string class_;
};

// A link at the end of every row: `target` is a page of this server up to where the row's arguments
// follow, "itemprop?" or "orderprop?type=1&" for example.
struct LHtmlListAction {
    std::string_view caption, target;
};

// Fill it, then Print it; or, where the order of adding is the order of showing, PrintStart,
// PrintRow for each row as it is read, PrintEnd, which keeps nothing.
class LHtmlList {
public:
    void SetColumns(std::span<const LHtmlListColumn> columns);
    // `title` is markup of the program's own.
    void AddColumnRawHTML(const LHtmlListColumn& column) { AddColumn(column, LTitleKind::kMarkup); }
    size_t ColumnCount() const { return columns_.size(); }

    void SetId(int id) { id_ = id; }  // the element's id; 0: none
    void SetWidthPercent(int percent) { widthPercent_ = percent; }
    // The rows are, or with AddOrdered will be, in the order of this column. Before the first row.
    void SetSort(size_t column, bool ascending);
    // What the rows are, before their count: "Items" for example.
    void SetName(std::string name) { name_ = std::move(name); }
    // Shown instead of rows when there are none: say kindly what to do next.
    void SetEmptyText(std::string text) { emptyText_ = std::move(text); }
    // Without search box, count line and pages: tables in a dialog whose rows belong to its fields.
    void SetPlain() { plain_ = true; }

    // What the cells of AddCellActions show. lists.js writes these links, only for the rows that it
    // shows: written here, they would be half of a long list. Each is named by its caption and the
    // text of the row's first cell.
    void SetRowActions(std::span<const LHtmlListAction> actions);

    LHtmlListRow MakeRow() const { return LHtmlListRow(*this); }
    void Add(LHtmlListRow row);
    // Adds at the place that the chosen sort gives it, after equal rows. (Sorted when printed.)
    void AddOrdered(LHtmlListRow row);
    // Adds an empty row to be filled in place; valid until the next row.
    LHtmlListRow& StartRow();
    size_t RowCount() const { return rows_.size(); }

    void Print(LPageWriter& out);
    void PrintStart(LPageWriter& out);
    void PrintRow(LPageWriter& out, const LHtmlListRow& row);
    void PrintEnd(LPageWriter& out);

private:
    friend class LHtmlListRow;
    friend class LHtmlListCell;
    enum class LTitleKind { kText, kMarkup };
    struct LColumn {
        LHtmlListColumn column;
        std::string title;      // as it is written
        std::string cellStart;  // a cell's tag as far as it is the same in every row
    };
    void AddColumn(const LHtmlListColumn& column, LTitleKind kind);
    void LearnSize(const LHtmlListRow& row);
    void PrintTitle(LPageWriter& out, size_t index) const;

    std::vector<LColumn> columns_;
    std::vector<LHtmlListRow> rows_;
    int id_ = 0, widthPercent_ = 100;
    int sortColumn_ = -1;
    bool ascending_ = true, ordered_ = false, plain_ = false;
    size_t printedRows_ = 0;
    size_t rowBytes_ = 0;  // what a further row will need
    std::string actions_;  // caption, target, caption ..., each with a line feed behind it
    std::string name_, emptyText_ = "There is nothing here yet.";
};
