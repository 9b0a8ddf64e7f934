#include "datastore/CsvText.h"

#include <algorithm>

namespace {

bool IsBlank(char byte) { return byte == ' ' || byte == '\t'; }

bool NeedsQuotes(std::string_view field) {
    const auto isSpecial = [](char byte) {
        return byte == ',' || byte == '"' || byte == '\r' || byte == '\n';
    };
    return !field.empty() && (IsBlank(field.front()) || IsBlank(field.back()) ||
                              std::any_of(field.begin(), field.end(), isSpecial));
}

void AppendField(std::string& row, std::string_view field, bool inQuotes) {
    if (!inQuotes) {
        row += field;
        return;
    }
    row += '"';
    for (const char byte : field) {
        if (byte == '"') row += '"';
        row += byte;
    }
    row += '"';
}

// Whether a line ends at `pos`: LF, or CR before LF.
bool IsLineEnd(std::string_view text, size_t pos) {
    return text[pos] == '\n' || text.substr(pos, 2) == "\r\n";
}

// `pos` stands behind the opening quote and is left behind the closing one, or at the end.
std::string ReadQuoted(std::string_view text, size_t& pos) {
    std::string out;
    while (pos < text.size()) {
        const char byte = text[pos++];
        if (byte == '"') {
            if (pos == text.size() || text[pos] != '"') break;
            ++pos;
        }
        out += byte;
    }
    return out;
}

enum class LCsvLines { kPartOfFields, kEndRows };

// field = [ blanks quoted ] other*; `pos` is left at the comma, the line end or the end. What
// follows a closing quote still belongs to the field, so that nothing typed by hand is lost.
std::string ReadField(std::string_view text, size_t& pos, LCsvLines lines) {
    std::string out;
    size_t start = pos;
    while (start < text.size() && IsBlank(text[start])) ++start;
    if (start < text.size() && text[start] == '"') {
        pos = start + 1;
        out = ReadQuoted(text, pos);
    }
    for (; pos < text.size() && text[pos] != ','; ++pos) {
        if (lines == LCsvLines::kEndRows && IsLineEnd(text, pos)) break;
        out += text[pos];
    }
    return out;
}

void SkipLineEnd(std::string_view text, size_t& pos) {
    if (pos < text.size()) pos += text[pos] == '\r' ? 2 : 1;
}

}  // namespace

std::string FormatCsvRow(const std::vector<std::string>& fields) {
    size_t size = fields.size();
    for (const std::string& field : fields) size += field.size() + 2;
    std::string row;
    row.reserve(size);
    // One empty field alone would be a line with nothing in it, which readers skip.
    const bool isBare = fields.size() == 1 && fields[0].empty();
    for (size_t i = 0; i < fields.size(); ++i) {
        if (i > 0) row += ',';
        AppendField(row, fields[i], isBare || NeedsQuotes(fields[i]));
    }
    return row;
}

std::vector<std::string> ParseCsvRow(std::string_view row) {
    std::vector<std::string> fields;
    for (size_t pos = 0; pos < row.size(); ++pos) {
        fields.push_back(ReadField(row, pos, LCsvLines::kPartOfFields));
    }
    return fields;
}

bool LCsvReader::Next(std::vector<std::string>& fields) {
    fields.clear();
    constexpr std::string_view kByteOrderMark = "\xEF\xBB\xBF";  // spreadsheets put it there
    if (pos_ == 0 && text_.starts_with(kByteOrderMark)) pos_ = kByteOrderMark.size();
    while (pos_ < text_.size() && IsLineEnd(text_, pos_)) SkipLineEnd(text_, pos_);
    rowStart_ = pos_;
    if (pos_ >= text_.size()) return false;
    for (;; ++pos_) {
        fields.push_back(ReadField(text_, pos_, LCsvLines::kEndRows));
        if (pos_ >= text_.size() || text_[pos_] != ',') break;
    }
    SkipLineEnd(text_, pos_);
    return true;
}
