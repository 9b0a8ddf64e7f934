#include "platform/CaseFolding.h"

#include <gtest/gtest.h>

using namespace std::string_literals;

TEST(CaseFolding, ComparesTextsAsPeopleReadThem) {
    struct Case {
        std::string left, right;
        bool equal;
        const char* why;
    };
    const Case kCases[] = {
        {"Bolt M8", "bOLT m8", true, "plain letters"},
        {"Bolt", "Bolts", false, "one is longer"},
        {"Säge ÄÖÜ", "SÄGE äöü", true, "letters beyond ASCII"},
        {"Säge", "Sage", false, "an accent is part of the letter"},
        {"ΣΊΣΥΦΟΣ", "σίσυφος", true, "a final sigma is a sigma"},
        {"Straße", "STRASSE", false, "folding is one letter for one letter"},
        {"I", "ı", false, "not by Turkish rules, whatever the locale"},
        {"MIÄ", "miä", true, "nor beside other letters"},
        {"\U00010400", "\U00010428", true, "outside the basic plane"},
        {"\u212A", "k", true, "the Kelvin sign, where ASCII meets the rest"},
        {"@[`{", "`{@[", false, "the neighbours of the letters are none"},
        {"a\0B"s, "A\0b"s, true, "a byte 0 ends nothing"},
        {"", "", true, "nothing"},
    };
    for (const Case& c : kCases) {
        EXPECT_EQ(EqualIgnoringCase(c.left, c.right), c.equal) << c.why;
        EXPECT_EQ(EqualIgnoringCase(c.right, c.left), c.equal) << c.why;
        EXPECT_EQ(FoldCase(c.left) == FoldCase(c.right), c.equal) << c.why;
    }
}

TEST(CaseFolding, BytesThatAreNoUtf8StandForThemselves) {
    const std::string_view kCases[] = {
        "\xff",          // never a start
        "\xc3",          // cut in a character
        "\xe2\x82",      // cut in a longer one
        "\xc0\xaf",      // an overlong slash
        "\xed\xa0\x80",  // half a surrogate pair
        "\xf4\x90\x80\x80",
        "\x80\x80\x80",
    };
    for (const std::string_view bytes : kCases) {
        EXPECT_EQ(FoldCase(bytes), bytes);
        const std::string text = std::string("Ä").append(bytes).append("Z");
        EXPECT_EQ(FoldCase(text), std::string("ä").append(bytes).append("z"));
        EXPECT_TRUE(ContainsIgnoringCase(text, bytes));
    }
}
