#include "web/framework/LHtmlList.h"

#include "tests/web/framework/FrameworkFixture.h"
#include "web/framework/LPageWriter.h"

namespace {

constexpr LHtmlListColumn kColumns[] = {
    {"Item & Co", 40},
    {"Quantity", 20, LCellAlign::kRight},
    {"Key", 0, LCellAlign::kCenter, false, true},
};

LHtmlList* listToPrint = nullptr;

// Printed through a real answer, since that is what a writer writes to.
class LHtmlLists : public LFrameworkTest {
protected:
    LHtmlLists() {
        LWebletInstallScript("print", [](LWebletForm& form) {
            LPageWriter out(form);
            out.Write("HTTP/1.1 200 OK\r\n\r\n");
            listToPrint->Print(out);
        });
        list_.SetColumns(kColumns);
    }
    std::string Printed() {
        listToPrint = &list_;
        return LTestBrowser(web_).Get("print").body;
    }
    std::string PrintedRows() {
        const std::string all = Printed();
        const size_t start = all.find("<tbody>") + 7;
        return all.substr(start, all.find("</tbody>") - start);
    }
    LHtmlList list_;
};

TEST_F(LHtmlLists, TheTableSaysItsSortAndItsColumns) {
    list_.SetId(105);
    list_.SetWidthPercent(60);
    list_.SetSort(1, false);
    const std::string text = Printed();
    EXPECT_NE(text.find("<table style='width:60%' class='hltbl' id=105 data-sortcolumn=1 "
                        "data-asc=0><thead><tr style='height:25px' class=hlhtr>"),
              std::string::npos);
    EXPECT_NE(text.find(">Item &amp; Co</th>"), std::string::npos);
    EXPECT_NE(text.find("aria-sort=descending>Quantity</th>"), std::string::npos);
    EXPECT_NE(text.find("style='display:none'>Key</th></tr></thead><tbody></tbody></table>"),
              std::string::npos);
}

TEST_F(LHtmlLists, CellsAreWrittenToTheByteAndEscaped) {
    list_.StartRow()
        .AddCell("<script>'\"&")
        .AddCellWithOrder("1,500", 1500.5)
        .AddCellHtml("<b>x</b>", "a'b");
    list_.StartRow()
        .SetClass("low")
        .SpanNext(2)
        .AddCellPrintF("<i>%H</i>", "<")
        .AddCellLink("itemprop?id='1'", "a<b");
    EXPECT_EQ(PrintedRows(),
              "<tr><td align=left class=hltd>&lt;script&gt;&#39;&quot;&amp;</td>"
              "<td align=right class=hltd data-order='1500.5'>1,500</td>"
              "<td align=center class=hltd style='display:none' data-order='a&#39;b'><b>x</b></td>"
              "</tr>\n"
              "<tr class='low'><td align=left class=hltd colspan=2><i>&lt;</i></td>"
              "<td align=center class=hltd style='display:none'>"
              "<a href='itemprop?id=&#39;1&#39;'>a&lt;b</a></td></tr>\n");
}

std::string Order(const std::string& rows) {
    std::string order;
    for (size_t at = 0; (at = rows.find("id=", at)) != std::string::npos; ++at) {
        order += rows[at + 3];
    }
    return order;
}

TEST_F(LHtmlLists, OrderedRowsFollowTheChosenColumnsKeys) {
    struct LRow {
        const char *id, *text, *order;
    };
    // Numbers by value and before texts; texts ignoring case; equal ones as they were added.
    const LRow kRows[] = {{"1", "Zebra", "10"},  {"2", "\xc3\x84pfel", "9"},  {"3", "axle", "9"},
                          {"4", "bolt", "none"}, {"5", "\xc3\xa4pfel", "-1"}, {"6", "Axle", "1e2"}};
    struct LCase {
        size_t column;
        bool ascending;
        const char* order;
    };
    for (const LCase& one : {LCase{0, true, "364125"}, LCase{0, false, "251436"},
                             LCase{1, true, "523164"}, LCase{1, false, "461235"}}) {
        list_ = LHtmlList();
        list_.SetColumns(kColumns);
        list_.SetSort(one.column, one.ascending);
        for (const LRow& row : kRows) {
            list_.AddOrdered(list_.MakeRow()
                                 .AddCell(row.text)
                                 .AddCellWithOrder("x", row.order)
                                 .AddCellPrintF("id=%s", row.id));
        }
        EXPECT_EQ(Order(PrintedRows()), one.order) << one.column << one.ascending;
    }
}

}  // namespace
