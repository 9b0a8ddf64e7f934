#include "web/server/WebletOutput.h"

#include <gtest/gtest.h>

#include <cstdint>
#include <limits>

namespace {

TEST(WebletOutput, PutsArgumentsWhereTheFormatSays) {
    EXPECT_EQ(FormatText("plain"), "plain");
    EXPECT_EQ(FormatText("%s-%d-%u-%lu-%i", "a", -5, 7u, size_t{9}, int64_t{-1}), "a--5-7-9--1");
    EXPECT_EQ(FormatText("100%%"), "100%");
    EXPECT_EQ(FormatText("%s %H", 12, 1.5), "12 1.500000") << "a text directive takes numbers";
    EXPECT_EQ(FormatText("%.2f|%.0f|%f", 2.005, -1.0, 3), "2.00|-1|3.000000");
    EXPECT_EQ(FormatText("%.2d|%02d|%4d|%05d", 5, 7, 42, -42), "05|07|  42|-0042");
    EXPECT_EQ(FormatText("%d", std::numeric_limits<int64_t>::min()), "-9223372036854775808");
    EXPECT_EQ(FormatText("%d %d", 1e30, std::numeric_limits<double>::quiet_NaN()),
              "9200000000000000000 0");
    EXPECT_EQ(FormatText("%s", std::string("a\0b", 3)), std::string("a\0b", 3));
}

TEST(WebletOutput, EscapesForHtml) {
    EXPECT_EQ(FormatText("<a title='%H'>", "<b> & \"c\" 'd' %s"),
              "<a title='&lt;b&gt; &amp; &quot;c&quot; &#39;d&#39; %s'>");
}

TEST(WebletOutput, EscapesForScriptsAndAddresses) {
    EXPECT_EQ(EscapeScript("it's \"x\"\\\n"), "it\\x27s \\x22x\\x22\\\\\\n");
    EXPECT_EQ(EscapeScript("</script><!--&"), "\\x3C/script\\x3E\\x3C!--\\x26");
    EXPECT_EQ(EscapeScript("a\xe2\x80\xa8"
                           "b\xe2\x80\xa9\xe2\x80\xaa"),
              "a\\u2028b\\u2029\xe2\x80\xaa");
    EXPECT_EQ(EscapeScript(std::string_view("\0\r\x7f", 3)), "\\x00\\x0D\\x7F");
    EXPECT_EQ(EscapeScript("\xe2\x80"), "\xe2\x80") << "cut inside a character";
    EXPECT_EQ(FormatText("%U", "a b/\xc3\xa9~-._&=?"), "a%20b%2F%C3%A9~-._%26%3D%3F");
}

}  // namespace
