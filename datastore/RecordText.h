// The text form of named values: pairs "name=value" joined by "&", other bytes as "%XX". It is the
// content of every record file and the body of every web form.
#pragma once

#include <cstddef>
#include <memory>
#include <string>
#include <string_view>

// Letters, digits and "!-._~" stand for themselves; every other byte becomes "%" and two upper-case
// hexadecimal digits. A blank is "%20", never "+".
void AppendEncoded(std::string& out, std::string_view text);
std::string EncodeText(std::string_view text);

// A whole text that is one name or value. "+" is a blank, "%XX" the byte, a digit that is not
// hexadecimal counts as 0, a byte 0 is dropped, a "%" cut short ends the text. "&" and "=" stand
// for themselves.
std::string DecodeText(std::string_view text);

// Walks the pairs of a record text. A pair without "=" has an empty value, a pair whose decoded
// name is empty is skipped, duplicates come as they stand. `text` must outlive the reader; the
// views of a pair live as long as the reader.
class LRecordTextReader {
public:
    explicit LRecordTextReader(std::string_view text) : text_(text) {}
    bool Next(std::string_view& name, std::string_view& value);

private:
    std::string_view text_;
    size_t pos_ = 0;
    std::unique_ptr<char[]>
        decoded_;  // as long as the text, filled from the front: pairs never move
    size_t used_ = 0;
};

// The pieces below work on bare memory, for whoever lays texts out itself (a record's fields).

// Decodes the next pair that has a name and moves `pos` behind it. The bytes of both go to `out`,
// which moves behind them; there must be room for `end - pos` bytes. False at the end of the text.
bool DecodePair(const char*& pos, const char* end, char*& out, std::string_view& name,
                std::string_view& value);

// Writes "name=value" encoded at `out` and returns the place behind it. There must be room for
// kEncodedBytes for each byte of both, the "=" and kEncodeSlack: it writes whole words.
inline constexpr size_t kEncodedBytes = 3, kEncodeSlack = 4;
char* EncodePair(std::string_view name, std::string_view value, char* out);
