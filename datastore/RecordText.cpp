#include "datastore/RecordText.h"

#include <array>
#include <cstdint>
#include <cstring>

namespace {

enum class LTextItem { kName, kValue, kWhole };

enum Action : uint8_t { kCopy, kBlank, kEscape, kStop, kDrop };

using ActionTable = std::array<Action, 256>;

constexpr ActionTable MakeActions(LTextItem item) {
    ActionTable table{};
    table['+'] = kBlank;
    table['%'] = kEscape;
    table['\0'] = kDrop;
    if (item != LTextItem::kWhole) table['&'] = kStop;
    if (item == LTextItem::kName) table['='] = kStop;
    return table;
}

constexpr std::array<ActionTable, 3> kActions{
    MakeActions(LTextItem::kName), MakeActions(LTextItem::kValue), MakeActions(LTextItem::kWhole)};

constexpr std::array<uint8_t, 256> MakeDigits() {
    std::array<uint8_t, 256> digits{};  // what is no hexadecimal digit counts as 0
    for (unsigned i = 0; i < 10; ++i) digits['0' + i] = static_cast<uint8_t>(i);
    for (unsigned i = 0; i < 6; ++i)
        digits['A' + i] = digits['a' + i] = static_cast<uint8_t>(10 + i);
    return digits;
}

constexpr std::array<uint8_t, 256> kHexDigits = MakeDigits();

// What a byte becomes: itself, or "%XX".
struct Encoding {
    std::array<char, 4> text;
    uint8_t size;
};

constexpr bool StandsForItself(unsigned byte) {
    return (byte >= 'A' && byte <= 'Z') || (byte >= 'a' && byte <= 'z') ||
           (byte >= '0' && byte <= '9') || byte == '!' || byte == '-' || byte == '.' ||
           byte == '_' || byte == '~';
}

constexpr std::array<Encoding, 256> MakeEncodings() {
    constexpr std::string_view kDigits = "0123456789ABCDEF";
    std::array<Encoding, 256> table{};
    for (unsigned byte = 0; byte < 256; ++byte) {
        if (StandsForItself(byte)) {
            table[byte] = {{static_cast<char>(byte)}, 1};
        } else {
            table[byte] = {{'%', kDigits[byte >> 4], kDigits[byte & 15]}, 3};
        }
    }
    return table;
}

constexpr std::array<Encoding, 256> kEncodings = MakeEncodings();

unsigned char ToByte(char c) { return static_cast<unsigned char>(c); }

// Decodes one item and returns where it ended: at its "&", in a name also at its "=", or at `end`.
//
// item = *( "+" / "%" digit digit / other ), up to "&", in a name also up to "="
const char* DecodeItem(const char* pos, const char* end, LTextItem item, char*& out) {
    const ActionTable& actions = kActions[static_cast<size_t>(item)];
    char* to = out;  // kept in a register; `out` may alias what is written
    for (; pos != end; ++pos) {
        const Action action = actions[ToByte(*pos)];
        if (action == kCopy) {
            *to++ = *pos;
        } else if (action == kBlank) {
            *to++ = ' ';
        } else if (action == kEscape) {
            if (end - pos < 3) {  // cut short: the text ends here
                pos = end;
                break;
            }
            const char byte =
                static_cast<char>(kHexDigits[ToByte(pos[1])] << 4 | kHexDigits[ToByte(pos[2])]);
            pos += 2;
            if (byte != '\0') *to++ = byte;
        } else if (action == kStop) {
            break;
        }
    }
    out = to;
    return pos;
}

char* EncodeItem(std::string_view text, char* out) {
    for (const char c : text) {
        const Encoding& encoding = kEncodings[ToByte(c)];
        if (encoding.size == 1) [[likely]] {
            *out++ = c;
        } else {
            std::memcpy(out, encoding.text.data(), encoding.text.size());
            out += encoding.size;
        }
    }
    return out;
}

}  // namespace

char* EncodePair(std::string_view name, std::string_view value, char* out) {
    out = EncodeItem(name, out);
    *out++ = '=';
    return EncodeItem(value, out);
}

void AppendEncoded(std::string& out, std::string_view text) {
    const size_t before = out.size();
    out.resize(before + kEncodedBytes * text.size() + kEncodeSlack);
    const char* end = EncodeItem(text, out.data() + before);
    out.resize(static_cast<size_t>(end - out.data()));
}

std::string EncodeText(std::string_view text) {
    std::string out;
    AppendEncoded(out, text);
    return out;
}

std::string DecodeText(std::string_view text) {
    std::string out(text.size(), '\0');
    char* end = out.data();
    DecodeItem(text.data(), text.data() + text.size(), LTextItem::kWhole, end);
    out.resize(static_cast<size_t>(end - out.data()));
    return out;
}

bool DecodePair(const char*& pos, const char* end, char*& out, std::string_view& name,
                std::string_view& value) {
    while (pos < end) {
        char* const nameStart = out;
        const char* at = DecodeItem(pos, end, LTextItem::kName, out);
        char* const valueStart = out;
        if (at != end && *at == '=') at = DecodeItem(at + 1, end, LTextItem::kValue, out);
        pos = at == end ? end : at + 1;  // behind the "&"
        if (valueStart != nameStart) {
            name = {nameStart, static_cast<size_t>(valueStart - nameStart)};
            value = {valueStart, static_cast<size_t>(out - valueStart)};
            return true;
        }
        out = nameStart;
    }
    return false;
}

bool LRecordTextReader::Next(std::string_view& name, std::string_view& value) {
    if (decoded_ == nullptr) decoded_ = std::make_unique_for_overwrite<char[]>(text_.size());
    const char* pos = text_.data() + pos_;
    char* out = decoded_.get() + used_;
    const bool found = DecodePair(pos, text_.data() + text_.size(), out, name, value);
    pos_ = static_cast<size_t>(pos - text_.data());
    used_ = static_cast<size_t>(out - decoded_.get());
    return found;
}
