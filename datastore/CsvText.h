// Rows of comma-separated values, as RFC 4180 writes them; also the quoted lists inside fields.
#pragma once

#include <string>
#include <string_view>
#include <vector>

// One row without its line end: a field that holds a comma, a double quote, a line break or blanks
// at its ends is put in double quotes, a quote inside is doubled.
std::string FormatCsvRow(const std::vector<std::string>& fields);

// Splits a list field at its commas, honouring quotes. A text that ends with a comma has no further
// element; the quotes are removed, doubled ones become one. A quote that is never closed ends with
// the text.
std::vector<std::string> ParseCsvRow(std::string_view row);

// Walks the rows of a whole file: quoted line breaks belong to their field; CR LF and LF both end a
// row. Lines without anything in them are skipped. A row that ends with a comma has an empty last
// field, so that every row that FormatCsvRow wrote comes back as it was.
class LCsvReader {
public:
    explicit LCsvReader(std::string_view text) : text_(text) {}
    bool Next(std::vector<std::string>& fields);
    // Where the row that Next gave last begins and ends in the text, its line end included.
    size_t RowStart() const { return rowStart_; }
    size_t RowEnd() const { return pos_; }

private:
    std::string_view text_;
    size_t pos_ = 0;
    size_t rowStart_ = 0;
};
