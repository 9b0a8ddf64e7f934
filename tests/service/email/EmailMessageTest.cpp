#include "service/email/EmailMessage.h"

#include <gtest/gtest.h>

#include "service/email/EmailAddress.h"
#include "service/email/EmailLookups.h"
#include "service/email/EmailSettings.h"
#include "service/email/MimeEncoding.h"
#include "tests/support/LTempFolder.h"

namespace {

TEST(EmailMessage, HasItsHeadersAndNoOthers) {
    const LScopedEnvironment zone("TZ", "XXX-05:30");
    ::tzset();
    LEmailMessage message;
    message.from = "\"Smith, Ann\" <ann@example.com>, other@example.com";
    message.to = "J\u00fcrgen <j@example.com>,bob@example.com";
    message.subject = "Hi\r\nBcc: x@y.z";
    message.body = "text";
    message.date = 1;
    message.id = "<1@x>";
    std::string problem;
    EXPECT_EQ(
        BuildEmailMessage(message, problem),
        "MIME-Version: 1.0\r\nFrom: \"Smith, Ann\" <ann@example.com>\r\nTo: "
        "=?utf-8?B?SsO8cmdlbg==?= <j@example.com>,\r\n bob@example.com\r\nSubject: Hi  Bcc: "
        "x@y.z\r\nDate: Thu, 01 Jan 2070 05:30:01 +0530\r\nX-Mailer: Quillmarsh Stock Manager "
        "5.00\r\nMessage-ID: <1@x>\r\nContent-Transfer-Encoding: 7bit\r\nContent-Type: "
        "text/plain; charset=\"utf-8\"\r\n\r\ntext")
        << "the century is fixed";
}

TEST(EmailMessage, EncodesOnlyWhatItMust) {
    struct LCase {
        std::string text, encoded;
        const char* why;
    };
    const std::string x80(80, 'x');
    const LCase kSubjects[] = {
        {"Low stock: A-1", "Low stock: A-1", ""},
        {"=?utf-8?Q?x?=", "=?utf-8?B?PT91dGYtOD9RP3g/PQ==?=", "looks encoded"},
        {"Gr\u00fc\u00dfe", "=?utf-8?B?R3LDvMOfZQ==?=", ""},
        {x80.substr(0, 38) + "\u00fc",
         "=?utf-8?B?" + EncodeBase64(x80.substr(0, 38)) + "?=\r\n =?utf-8?B?w7w=?=",
         "no letter is cut in two"},
    };
    for (const LCase& one : kSubjects) EXPECT_EQ(LRFC2047Encode(one.text), one.encoded) << one.why;

    const LCase kTexts[] = {
        {"a\r\nb\nc", "7bit|a\r\nb\r\nc", "line ends"},
        {"From here\n", "quoted-printable|=46rom here\r\n", "mailbox files"},
        {"a \n", "quoted-printable|a=20\r\n", "a blank at the end of a line"},
        {"gr\u00fcn, mostly plain = 1", "quoted-printable|gr=C3=BCn, mostly plain =3D 1", ""},
        {"a\rb", "quoted-printable|a=0Db", "a return alone"},
        {std::string(1000, 'x').substr(0, 999) + "\u00fc", "", ""},
        {"\u00fc\u00e4\u00f6", "base64|w7zDpMO2\r\n", "mostly foreign letters"},
    };
    for (const LCase& one : kTexts) {
        const std::string part = EncodeTextPart(one.text);
        for (size_t at = 0, end = 0; end != std::string::npos; at = end + 2) {
            end = part.find("\r\n", at);
            EXPECT_LE(std::min(end, part.size()) - at, 76u) << one.text;
        }
        if (one.encoded.empty()) continue;
        const size_t bar = one.encoded.find('|');
        EXPECT_TRUE(
            part.starts_with("Content-Transfer-Encoding: " + one.encoded.substr(0, bar) + "\r\n"))
            << part;
        EXPECT_EQ(part.substr(part.find("\r\n\r\n") + 4), one.encoded.substr(bar + 1)) << one.why;
    }
    EXPECT_EQ(WithDotsDoubled(".\r\n..a\r\nb"), "..\r\n...a\r\nb\r\n.\r\n");
}

TEST(EmailMessage, AnAttachmentThatCannotBeReadIsNamed) {
    LTempFolder folder;
    LEmailMessage message;
    std::string problem;
    for (const std::string& path : {folder.File("gone"), folder.Path(), std::string("/dev/null")}) {
        message.attachments = {path};
        EXPECT_FALSE(BuildEmailMessage(message, problem)) << path;
        EXPECT_TRUE(problem.starts_with("Could not read the attachment " + path)) << problem;
    }
}

TEST(EmailAddress, ListsAreWalked) {
    std::string seen;
    const std::string list = " a@b.c,, \"X, \\\"Y\\\"\" <d@e.f> ,<g@h.i>, no address";
    for (LEmailAddressListIterator it(list); it.IsValid(); it.Next()) {
        seen += it.Current().name + "=" + it.Current().address + ";";
    }
    EXPECT_EQ(seen, "=a@b.c;X, \"Y\"=d@e.f;=g@h.i;=no address;");
    EXPECT_EQ(AddressWithAsciiDomain("a@b\u00fccher.example"), "a@xn--bcher-kva.example")
        << "the coded form";
}

TEST(EmailSettings, TheServerMayHaveAPort) {
    struct LCase {
        const char *text, *host;
        uint16_t port;
    };
    constexpr LCase kCases[] = {
        {" mail.example.com ", "mail.example.com", 587},
        {"mail.example.com:25", "mail.example.com", 25},
        {"::1", "::1", 587},
        {"[::1]:25", "::1", 25},
        {"[::1]", "::1", 587},
        {"a:0", "a", 587},
        {"a:65536", "a", 587},
        {"a:x", "a", 587},
        {"", "", 587},
    };
    for (const LCase& one : kCases) {
        const LMailServer server = ParseMailServer(one.text, 587);
        EXPECT_EQ(server.host, one.host) << one.text;
        EXPECT_EQ(server.port, one.port) << one.text;
    }
}

// An answer about "x.y" with these records, each a preference and a name in its coded form.
std::string Answer(const std::vector<std::pair<int, std::string>>& records) {
    const auto two = [](size_t value) {
        return std::string{static_cast<char>(value >> 8), static_cast<char>(value & 255)};
    };
    std::string out = two(1) + two(0x8180) + two(1) + two(records.size()) + two(0) + two(0);
    out += std::string("\1x\1y\0", 5) + two(15) + two(1);
    for (const auto& [preference, name] : records) {
        out += two(0xC00C) + two(15) + two(1) + two(0) + two(60) + two(name.size() + 2);
        out += two(static_cast<size_t>(preference)) + name;
    }
    return out;
}

TEST(EmailLookups, ExchangersComeInTheirOrder) {
    const std::string a("\1a\xC0\x0C", 4), b("\1b\xC0\x0C", 4), root("\0", 1), bad("\2\r\n\0", 4);
    const std::string answer = Answer({{20, a}, {10, b}, {300, bad}});
    EXPECT_EQ(ParseExchangers(answer, "x.y").hosts, (std::vector<std::string>{"b.x.y", "a.x.y"}));
    EXPECT_EQ(ParseExchangers(Answer({}), "x.y").hosts, std::vector<std::string>{"x.y"});
    EXPECT_EQ(ParseExchangers(Answer({{0, root}}), "x.y").result, LLookupResult::kNone);
    for (size_t size = 0; size < answer.size(); ++size) {
        std::string cut = answer.substr(0, size);
        ParseExchangers(cut, "x.y");
        cut = answer;
        for (const int value : {0, 0xC0, 0xFF}) {
            cut[size] = static_cast<char>(value);
            for (const std::string& host : ParseExchangers(cut, "x.y").hosts) {
                EXPECT_EQ(host.find_first_of("\r\n <>"), std::string::npos);
            }
        }
    }
}

}  // namespace
