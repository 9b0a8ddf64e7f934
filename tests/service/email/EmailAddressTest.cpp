#include "service/email/EmailAddress.h"

#include <gtest/gtest.h>

namespace {

TEST(EmailAddress, OneAddress) {
    const std::string local64(64, 'a'), label63(63, 'b');
    const std::string domain(label63 + "." + label63 + "." + label63.substr(0, 57) + ".com");
    const std::string kValid[] = {"a@b.c", "o'neill@example.com", "a@1.example",
                                  "first.last+tag=1/x@mail-1.example.co.uk",
                                  // beyond ASCII, and a domain in its coded form
                                  "J\u00fcrgen@\u00fcbung.example", "a@xn--bung-zra.example",
                                  // the longest: 64 bytes, labels of 63, 254 in all
                                  local64 + "@" + domain};
    for (const std::string& text : kValid) EXPECT_TRUE(ValidateAddressSingle(text)) << text;

    const std::string kInvalid[] = {
        // parts that are missing or too many
        "", "name", "@example.com", "name@", "name@localhost", "a@b@c.de", ".a@b.c", "a.@b.c",
        "a..b@c.d", "a@.c", "a@b.", "a@b..c", "a@b.c,d@e.f", "<a@b.c>",
        // bytes that need quotes, brackets or another place; a head line of its own
        "a@-b.c", "a@b-.c", "a@b_c.d", "a@127.0.0.1", "a@[127.0.0.1]", "a b@c.d", " a@b.c",
        "\"a b\"@c.d", "a@b.c\r\nBcc: x@y.z", std::string("a\0@b.c", 6),
        // no UTF-8: cut short, not the shortest form, half a pair, beyond the last character
        "a\xC3@b.c", "a\xC0\xAF@b.c", "a\xED\xA0\x80@b.c", "a\xF4\x90\x80\x80@b.c",
        // a blank beyond ASCII and one that cannot be seen
        "a\u00a0@b.c", "a\u200b@b.c",
        // one byte too long: local part, label, all of it
        local64 + "a@example.com", "a@" + label63 + "b.com", local64 + "a@" + domain};
    for (const std::string& text : kInvalid) EXPECT_FALSE(ValidateAddressSingle(text)) << text;
}

TEST(EmailAddress, Lists) {
    for (const char* text :
         {"a@b.c", " a@b.c , d@e.f ", "Ann Smith <a@b.c>, d@e.f", "\"Smith, Ann\" <a@b.c>",
          "\"The \\\"A, B\\\" Co\" <a@b.c>,d@e.f", "<a@b.c>"}) {
        EXPECT_TRUE(ValidateAddress(text)) << text;
    }
    for (const char* text : {"", ",", "a@b.c,", "a@b.c;d@e.f", "a@b.c d@e.f", "Ann <a@b.c> x",
                             "Ann <a@b.c", "Ann a@b.c>", "Ann <<a@b.c>>", "Ann < a@b.c >",
                             "Ann\r\nBcc: x <a@b.c>", "\"never closed, a@b.c", "\"x\\"}) {
        EXPECT_FALSE(ValidateAddress(text)) << text;
    }
}

}  // namespace
