#include "service/email/EmailAddress.h"

#include <gtest/gtest.h>

namespace {

struct LCase {
    std::string text;
    bool isValid;
    const char* why;
};

TEST(EmailAddress, OneAddress) {
    const std::string local64(64, 'a'), label63(63, 'b');
    const std::string domain(label63 + "." + label63 + "." + label63.substr(0, 57) + ".com");
    const LCase kCases[] = {
        {"a@b.c", true, "the shortest form"},
        {"first.last+tag=1/x@mail-1.example.co.uk", true, "every byte that needs no quotes"},
        {"o'neill@example.com", true, ""},
        {"J\u00fcrgen@\u00fcbung.example", true, "characters beyond ASCII"},
        {"a@xn--bung-zra.example", true, "a domain in its coded form"},
        {local64 + "@example.com", true, "64 bytes"},
        {local64 + "@" + domain, true, "254 bytes"},
        {"a@1.example", true, "a label of digits only"},
        {"", false, ""},
        {"name", false, "no @"},
        {"@example.com", false, "no local part"},
        {"name@", false, "no domain"},
        {"name@localhost", false, "no dot in the domain"},
        {"a@b@c.de", false, "two of them"},
        {".a@b.c", false, "a dot at the start"},
        {"a.@b.c", false, "and at the end"},
        {"a..b@c.d", false, "and two together"},
        {"a@.c", false, ""},
        {"a@b.", false, ""},
        {"a@b..c", false, ""},
        {"a@-b.c", false, "a hyphen at the start of a label"},
        {"a@b-.c", false, "and at its end"},
        {"a@b_c.d", false, "no letter, digit or hyphen"},
        {"a@127.0.0.1", false, "an address of the network"},
        {"a@[127.0.0.1]", false, ""},
        {"a b@c.d", false, "a blank"},
        {" a@b.c", false, "not trimmed here"},
        {"a@b.c\r\nBcc: x@y.z", false, "a line of its own in the message's head"},
        {std::string("a\0@b.c", 6), false, "a byte 0"},
        {"\"a b\"@c.d", false, "quoted forms are not taken"},
        {"<a@b.c>", false, ""},
        {"a@b.c,d@e.f", false, "a list"},
        {"a\xC3@b.c", false, "a character cut short"},
        {"a\xC0\xAF@b.c", false, "a longer form of an ASCII character"},
        {"a\xED\xA0\x80@b.c", false, "half a pair"},
        {"a\xF4\x90\x80\x80@b.c", false, "beyond the last character"},
        {"a\u00a0@b.c", false, "a blank beyond ASCII"},
        {"a\u200b@b.c", false, "one that cannot be seen"},
        {local64 + "a@example.com", false, "65 bytes"},
        {"a@" + label63 + "b.com", false, "a label of 64 bytes"},
        {local64 + "a@" + domain, false, "255 bytes"},
    };
    for (const LCase& c : kCases) {
        EXPECT_EQ(ValidateAddressSingle(c.text), c.isValid) << c.text << ": " << c.why;
    }
}

TEST(EmailAddress, Lists) {
    const LCase kCases[] = {
        {"a@b.c", true, ""},
        {" a@b.c , d@e.f ", true, "blanks around"},
        {"Ann Smith <a@b.c>, d@e.f", true, "a display name"},
        {"\"Smith, Ann\" <a@b.c>", true, "a comma in a quoted name"},
        {"\"The \\\"A, B\\\" Co\" <a@b.c>,d@e.f", true, "a quote inside a quoted name"},
        {"<a@b.c>", true, "an empty display name"},
        {"", false, ""},
        {",", false, ""},
        {"a@b.c,", false, "an empty part"},
        {"a@b.c;d@e.f", false, "not a comma"},
        {"a@b.c d@e.f", false, ""},
        {"Ann <a@b.c> x", false, ""},
        {"Ann <a@b.c", false, ""},
        {"Ann a@b.c>", false, ""},
        {"Ann <<a@b.c>>", false, ""},
        {"Ann < a@b.c >", false, "blanks inside the brackets"},
        {"Ann\r\nBcc: x <a@b.c>", false, "a line of its own in the message's head"},
        {"\"never closed, a@b.c", false, ""},
        {"\"x\\", false, "a backslash at the end"},
    };
    for (const LCase& c : kCases) {
        EXPECT_EQ(ValidateAddress(c.text), c.isValid) << c.text << ": " << c.why;
    }
}

}  // namespace
