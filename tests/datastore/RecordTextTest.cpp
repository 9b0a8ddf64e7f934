#include "datastore/RecordText.h"

#include <gtest/gtest.h>

#include <random>

namespace {

using Pairs = std::vector<std::pair<std::string, std::string>>;

Pairs PairsOf(std::string_view text) {
    Pairs pairs;
    LRecordTextReader reader(text);
    std::string_view name, value;
    while (reader.Next(name, value)) pairs.emplace_back(name, value);
    return pairs;
}

// The grammar once more, byte by byte and without any table, to compare with.
std::string PlainItem(std::string_view text, size_t& pos, std::string_view stops) {
    const auto digit = [](char c) {
        const size_t at = std::string_view("0123456789abcdef")
                              .find(static_cast<char>(c >= 'A' && c <= 'F' ? c + 32 : c));
        return c == '\0' || at == std::string_view::npos ? 0 : static_cast<int>(at);
    };
    std::string out;
    for (; pos < text.size() && stops.find(text[pos]) == std::string_view::npos; ++pos) {
        char c = text[pos];
        if (c == '%') {
            if (text.size() - pos < 3) {
                pos = text.size();
                return out;
            }
            c = static_cast<char>(digit(text[pos + 1]) * 16 + digit(text[pos + 2]));
            pos += 2;
        } else if (c == '+') {
            c = ' ';
        }
        if (c != '\0') out += c;
    }
    return out;
}

Pairs PlainPairs(std::string_view text) {
    Pairs pairs;
    for (size_t pos = 0; pos < text.size(); ++pos) {
        const std::string name = PlainItem(text, pos, "=&");
        std::string value;
        if (pos < text.size() && text[pos] == '=') value = PlainItem(text, ++pos, "&");
        if (!name.empty()) pairs.emplace_back(name, value);
    }
    return pairs;
}

}  // namespace

TEST(RecordText, DecodesEveryItem) {
    using namespace std::string_view_literals;
    struct Case {
        std::string_view text, value, why;
    };
    constexpr Case kCases[] = {
        {"a+b%2fc"sv, "a b/c"sv, "blank; lower-case digits"sv},
        {"a%2Bb%2B"sv, "a+b+"sv, "an escaped plus is a plus"sv},
        {"%G1"sv, "\x01"sv, "a digit that is none counts as 0"sv},
        {"%1G%zzx"sv, "\x10x"sv, "both digits none: a byte 0, which is dropped"sv},
        {"%%41"sv,
         "\x04"
         "1"sv,
         "the second % is a digit that counts as 0"sv},
        {"x%00y\0z"sv, "xyz"sv, "a byte 0 is dropped, escaped or not"sv},
        {"ab%2"sv, "ab"sv, "cut inside an escape"sv},
        {"ab%"sv, "ab"sv, "cut behind the percent sign"sv},
        {"%C3%A4\xC3\xA4"sv, "ää"sv, "bytes of 128 and more stand for themselves"sv},
        {"*'()\r\n\t"sv, "*'()\r\n\t"sv, "what the encoder escapes need not be escaped"sv},
    };
    for (const Case& c : kCases) EXPECT_EQ(DecodeText(c.text), c.value) << c.why;
    EXPECT_EQ(DecodeText("a=b&c"), "a=b&c") << "a whole text has no pairs";
}

TEST(RecordText, SplitsPairs) {
    struct Case {
        std::string_view text;
        Pairs pairs;
        std::string_view why;
    };
    const Case kCases[] = {
        {"", {}, "an empty text has no pairs"},
        {"x&=y&z=", {{"x", ""}, {"z", ""}}, "the nameless pair is dropped"},
        {"a=b=c&d==", {{"a", "b=c"}, {"d", "="}}, "only the first = ends the name"},
        {"%00=1&b=2", {{"b", "2"}}, "a name that decodes to nothing"},
        {"a%=b", {{"a\x0b", ""}}, "the = is eaten as a digit"},
        {"a=1%&b=2", {{"a", "1\x0b=2"}}, "so is the &"},
        {"a=1&b%2", {{"a", "1"}, {"b", ""}}, "a name cut inside an escape"},
    };
    for (const Case& c : kCases) EXPECT_EQ(PairsOf(c.text), c.pairs) << c.text << ": " << c.why;
}

TEST(RecordText, EncodesEveryByteAndReadsItBack) {
    EXPECT_EQ(EncodeText("a b&c=d"), "a%20b%26c%3Dd");
    EXPECT_EQ(EncodeText("AZaz09!-._~"), "AZaz09!-._~");
    EXPECT_EQ(EncodeText("+*'()/\n\xFF"), "%2B%2A%27%28%29%2F%0A%FF");
    std::string all;
    for (int byte = 1; byte < 256; ++byte) all += static_cast<char>(byte);
    EXPECT_EQ(DecodeText(EncodeText(all)), all);
    EXPECT_EQ(PairsOf(EncodeText(all) + "=" + EncodeText(all)), (Pairs{{all, all}}));
}

TEST(RecordTextFuzz, AgreesWithThePlainReading) {
    std::mt19937 random(20240131);
    const std::string valid =
        "Name=PART-1&Description=Hex%20bolt%2C+M8&Notes=%C3%A4%0D%0A&x=&Name=2";
    constexpr std::string_view kSpecial("%&=+\0aF0G~", 10);
    for (int round = 0; round < 60000; ++round) {
        std::string text = round % 2 == 0 ? valid : std::string(random() % 40, ' ');
        for (size_t changes = round % 2 == 0 ? random() % 6 : text.size(); changes > 0; --changes) {
            if (text.empty()) break;
            const bool anyByte = random() % 4 == 0;
            text[random() % text.size()] =
                anyByte ? static_cast<char>(random()) : kSpecial[random() % kSpecial.size()];
        }
        if (random() % 8 == 0) text.resize(random() % (text.size() + 1));
        // A copy of exact size, so that a read beyond the end is found.
        const std::vector<char> exact(text.begin(), text.end());
        const std::string_view view(exact.data(), exact.size());
        ASSERT_EQ(PairsOf(view), PlainPairs(view)) << EncodeText(text);
        size_t pos = 0;
        ASSERT_EQ(DecodeText(view), PlainItem(view, pos, "")) << EncodeText(text);
        std::string noZeros = text;
        std::erase(noZeros, '\0');
        ASSERT_EQ(DecodeText(EncodeText(text)), noZeros);
    }
}
