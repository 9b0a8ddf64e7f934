#include "web/server/RequestReader.h"

#include <gtest/gtest.h>

#include <array>

#include "web/server/ByteRange.h"
#include "web/server/RequestOrigin.h"

namespace {

struct LLineCase {
    std::string line;
    const char* method;
    const char* path;
    const char* query;
    double version;
    const char* why;
};

TEST(RequestLine, IsSplitAtWhiteSpace) {
    const std::array<LLineCase, 9> kCases{{
        {"GET / HTTP/1.1", "GET", "/", "", 1.1, "the usual"},
        {"GET\t /a \t HTTP/1.0  junk", "GET", "/a", "", 1.0, "any white space, any amount"},
        {"GET /a?x=%20&y HTTP/1.1", "GET", "/a", "x=%20&y", 1.1, "the query is not"},
        {"GET /a?b?c HTTP/1.1", "GET", "/a", "b?c", 1.1, "cut at the first question mark"},
        {"GET /a%3fb HTTP/1.1", "GET", "/a?b", "", 1.1, "an escaped one is part of the path"},
        {"GET /a HTTP/2", "GET", "/a", "", 2, "a whole number"},
        {"GET /a HTTP/inf", "GET", "/a", "", 0, "no number"},
        {"GET /a HTTP", "GET", "/a", "", 0, "no slash"},
        {"", "", "", "", 0, "nothing"},
    }};
    for (const LLineCase& row : kCases) {
        const LRequestLine request = ParseRequestLine(row.line);
        EXPECT_EQ(request.method, row.method) << row.why;
        EXPECT_EQ(request.path, row.path) << row.why;
        EXPECT_EQ(request.query, row.query) << row.why;
        EXPECT_EQ(request.version, row.version) << row.why;
    }
}

TEST(RequestLine, CutsWhatIsLonger) {
    const std::string longText(300, 'x');
    const LRequestLine request = ParseRequestLine(longText + " /" + longText + "?q HTTP/1.1");
    EXPECT_EQ(request.method, longText.substr(0, 259));
    EXPECT_EQ(request.path, "/" + longText.substr(0, 258));
    EXPECT_EQ(request.query, "");
    EXPECT_EQ(request.version, 1.1);
}

TEST(Headers, AreStoredInLowerCaseAndTheLastWins) {
    LHashTable headers;
    for (const char* line :
         {"Host:  a b ", "X-Time: 12:30", "x-time: 13:00", "no colon", "Empty:"}) {
        ParseHeaderLine(line, headers);
    }
    EXPECT_EQ(headers.GetString("host"), "a b ");
    EXPECT_EQ(headers.GetString("x-time"), "13:00");
    EXPECT_TRUE(headers.TestExists("empty"));
    EXPECT_FALSE(headers.TestExists("no colon"));
}

TEST(Cookies, AreDecodedAndCut) {
    LHashTable cookies;
    ParseCookies("a=1;  b=x%20y;c;=nameless;d=p=q; e=", cookies);
    EXPECT_EQ(cookies.SaveHTTPString(), "a=1&b=x%20y&c=&d=p%3Dq&e=");

    const std::string longText(300, 'n');
    ParseCookies(longText + "=" + longText, cookies);
    EXPECT_EQ(cookies.GetString(longText.substr(0, 259)), longText.substr(0, 259));
}

TEST(ContentLength, IsAPlainNumberOrNone) {
    EXPECT_EQ(ParseContentLength("3000000"), 3000000u);
    EXPECT_EQ(ParseContentLength("007 "), 7u);
    EXPECT_EQ(ParseContentLength("99999999999999999999"), UINT64_MAX) << "too long, not short";
    for (const char* text : {"", "-1", "+1", "3,000", "1e3", "0x10", "5, 5", "five", "1 1"}) {
        EXPECT_EQ(ParseContentLength(text), std::nullopt) << text;
    }
}

TEST(ByteRange, SelectsFromAFileOfFiftyBytes) {
    using Kind = LByteRange::Kind;
    struct LCase {
        const char* text;
        Kind kind;
        int64_t first, last;
        const char* why;
    };
    constexpr std::array<LCase, 13> kCases{{
        {"bytes=0-9", Kind::kPart, 0, 9, "both ends"},
        {"bytes=10-", Kind::kPart, 10, 49, "to the end"},
        {"bytes=-5", Kind::kPart, 45, 49, "the last five"},
        {"bytes=-100", Kind::kPart, 0, 49, "more than there are"},
        {"bytes=10-99", Kind::kPart, 10, 49, "cut to the end"},
        {"bytes=0-99999999999999999999", Kind::kPart, 0, 49, "a number no integer holds"},
        {"bytes=50-", Kind::kBad, 0, -1, "behind the end"},
        {"bytes=9-3", Kind::kBad, 0, -1, "backwards"},
        {"bytes=-0", Kind::kBad, 0, -1, "the last none"},
        {"bytes=0-1,5-6", Kind::kWhole, 0, -1, "several"},
        {"bytes=a-b", Kind::kWhole, 0, -1, "no numbers"},
        {"lines=0-9", Kind::kWhole, 0, -1, "another unit"},
        {"", Kind::kWhole, 0, -1, "no header"},
    }};
    for (const LCase& row : kCases) {
        const LByteRange range = ParseByteRange(row.text, 50);
        EXPECT_EQ(range.kind, row.kind) << row.text << ": " << row.why;
        EXPECT_EQ(range.first, row.first) << row.text << ": " << row.why;
        EXPECT_EQ(range.last, row.last) << row.text << ": " << row.why;
    }
    EXPECT_EQ(ParseByteRange("bytes=-5", 0).kind, Kind::kBad) << "an empty file has no byte";
}

TEST(RequestOrigin, TellsOtherSitesFromOurs) {
    struct LCase {
        const char* site;
        const char* origin;
        const char* host;
        bool isOther;
    };
    constexpr std::array<LCase, 12> kCases{{
        {"", "", "shop:1097", false},  // no browser
        {"same-origin", "http://evil", "shop", false},
        {"same-site", "", "shop", false},
        {"none", "", "shop", false},
        {"cross-site", "http://shop", "shop", true},
        {"", "http://shop:1097", "shop:1097", false},
        {"", "https://Shop", "shop:443", false},
        {"", "http://shop:80", "shop", false},
        {"", "http://evil", "shop", true},
        {"", "http://shop:8080", "shop", true},
        {"", "null", "shop", true},
        {"", "null", "", true},
    }};
    for (const LCase& row : kCases) {
        LHashTable headers;
        headers.SetString("sec-fetch-site", row.site);
        headers.SetString("origin", row.origin);
        headers.SetString("host", row.host);
        EXPECT_EQ(IsRequestFromOtherSite(headers), row.isOther)
            << row.site << " " << row.origin << " " << row.host;
    }
}

}  // namespace
