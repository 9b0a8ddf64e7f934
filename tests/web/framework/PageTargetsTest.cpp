#include "web/framework/PageTargets.h"

#include <gtest/gtest.h>

TEST(PageTargets, OnlyPagesOfThisServerAreGoneTo) {
    struct LCase {
        std::string_view target, page, why;
    };
    constexpr LCase kCases[] = {
        {"itemlist", "itemlist", "a page"},
        {"itemprop?id=7&back=a:b", "itemprop?id=7&back=a:b", "a colon among the parameters"},
        {"/main", "/main", "a path from the root"},
        {"?id=1", "?id=1", "the same page"},
        {"", "main", "none"},
        {"//evil.example", "main", "another host"},
        {"http://evil.example/", "main", "scheme and host"},
        {"javascript:alert(1)", "main", "a scheme that is script"},
        {"JaVaScRiPt:alert(1)", "main", "in any letter case"},
        {"data:text/html,x", "main", "a scheme that is a page"},
        {"/\\evil.example", "main", "browsers read a backslash as a slash"},
        {"/\t/evil.example", "main", "browsers drop a tab"},
        {"\njavascript:alert(1)", "main", "and a line break"},
        {" //evil.example", "main", "and blanks in front"},
        {"main\r\nSet-Cookie: a=b", "main", "a header of the sender's own"},
        {"main\x7f", "main", "a control character"},
    };
    for (const LCase& one : kCases) EXPECT_EQ(WLSafePage(one.target), one.page) << one.why;
}

TEST(PageTargets, LinksCarryAnyText) {
    EXPECT_EQ(WLMakeLink("itemprop", {{"id", "a&b=c d/\xc3\xa4"}, {"x", ""}}),
              "itemprop?id=a%26b%3Dc%20d%2F%C3%A4&x=");
    EXPECT_EQ(WLMakeLink("main", {}), "main");
}
