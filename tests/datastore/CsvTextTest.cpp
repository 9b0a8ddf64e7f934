#include "datastore/CsvText.h"

#include <gtest/gtest.h>

#include <random>

namespace {

using Row = std::vector<std::string>;

std::vector<Row> ReadAllRows(std::string_view text) {
    LCsvReader reader(text);
    std::vector<Row> rows;
    for (Row row; reader.Next(row);) rows.push_back(row);
    return rows;
}

TEST(CsvText, FieldsAreQuotedOnlyWhereTheyMustBe) {
    EXPECT_EQ(FormatCsvRow({"1", "a b", ""}), "1,a b,");
    EXPECT_EQ(FormatCsvRow({"Smith, J.", "5\" pipe", "a\r\nb", " x", "y\t"}),
              "\"Smith, J.\",\"5\"\" pipe\",\"a\r\nb\",\" x\",\"y\t\"");
    EXPECT_EQ(FormatCsvRow({""}), "\"\"");
    EXPECT_EQ(FormatCsvRow({}), "");
}

TEST(CsvText, ListFieldsSplitAtTheirCommas) {
    const struct {
        const char* text;
        Row elements;
    } kCases[] = {
        {"\"1/12.00/5.00/20.00\",\"3/0.00/0.00/0.00\",",
         {"1/12.00/5.00/20.00", "3/0.00/0.00/0.00"}},
        {"", {}},
        {"a,,b", {"a", "", "b"}},
        {"\"a\"\"b\",", {"a\"b"}},
        {"\"a, b\" , \"c\"", {"a, b ", "c"}},
        {"\"never closed, x", {"never closed, x"}},
        {"a\"b,c\"d", {"a\"b", "c\"d"}},
    };
    for (const auto& c : kCases) EXPECT_EQ(ParseCsvRow(c.text), c.elements) << c.text;
}

TEST(CsvText, RowsEndAtLineEndsOutsideQuotes) {
    EXPECT_EQ(ReadAllRows("\xEF\xBB\xBF"
                          "a,b\r\n\r\n\nc,\"d\ne\"\n,\nlast"),
              (std::vector<Row>{{"a", "b"}, {"c", "d\ne"}, {"", ""}, {"last"}}));
    EXPECT_EQ(ReadAllRows(""), std::vector<Row>{});
    EXPECT_EQ(ReadAllRows("\r\n\n"), std::vector<Row>{});
}

TEST(CsvText, EveryRowComesBackAsItWas) {
    std::mt19937 random(4180);
    constexpr std::string_view kBytes = "ab,,\"\"\r\n \t\xC3\xA4;/";
    std::vector<Row> rows;
    std::string file;
    for (int i = 0; i < 3000; ++i) {
        Row row(1 + random() % 5);
        for (std::string& field : row) {
            for (size_t n = random() % 6; n > 0; --n) field += kBytes[random() % kBytes.size()];
        }
        const std::string text = FormatCsvRow(row);
        if (!row.back().empty()) {
            ASSERT_EQ(ParseCsvRow(text), row) << text;
        }
        file += text + "\r\n";
        rows.push_back(std::move(row));
    }
    EXPECT_EQ(ReadAllRows(file), rows);
}

}  // namespace
