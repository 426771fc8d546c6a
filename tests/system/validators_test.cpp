#include "dorvutil/system/validators.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

namespace dorvutil {
namespace {

// `length` bytes of labels with 63 letters each but the last.
std::string LongHostname(std::size_t length) {
    std::string name;
    while (name.size() + 64 < length) name += std::string(63, 'a') + '.';
    return name + std::string(length - name.size(), 'b');
}

const struct {
    const char* name;
    bool (*verify)(const ORVustring&);
    std::vector<std::string> valid, invalid;
} kFormats[] = {
    {"e-mail",
     Verify_EmailFormat,
     {"a@b.de", "first.last+tag@mail.example.org", "\"two words\"@example.org", "\"a@b\"@example.org", "a@[10.0.0.1]",
      "a@[::1]", std::string(64, 'a') + "@" + LongHostname(255)},
     {"a", "@b.de", "a@", "a@b", "a.@b.de", "a@b..de", "a@b@c.de", "a@[10.0.0.1", "a@10.0.0.1]", "a@[]", "a@[",
      "a@[b.de]", "a@[1.2.3.4]x", "two words@b.de", std::string(65, 'a') + "@" + LongHostname(255),
      std::string(65, 'a') + "@b.de", std::string(64, 'a') + "@" + LongHostname(256)}},
    {"local part",
     Verify_EmailLocalPartFormat,
     {"a", "a.b", "\"\"", "\"a\"b", "\" ,\\@()[]<>:;\"", "a!#$%&'*+-/=?^_`{|}~", std::string(64, 'a'), "\xC3\xA4"},
     {".a",  "a.",  ".",   "a..b", "\"a..b\"", "\"",  "a\"", "\"a\"\"", "a b", "a,b",     "a\\b",
      "a@b", "a(b", "a)b", "a[b",  "a]b",      "a<b", "a>b", "a:b",     "a;b", "\"a\" b", std::string(65, 'a')}},
    {"host name",
     Verify_HostnameFormat,
     {"a.b", "1.2", "xn--a.de", "a-b.c-d", "EXAMPLE.Org", std::string(63, 'a') + ".de", LongHostname(255)},
     {"localhost", ".", ".a.b", "a.b.", "a..b", "-a.b", "a-.b", "a.-b", "a.b-", "a_b.c", "a b.c", "\xC3\xA4.de",
      std::string(64, 'a') + ".de", LongHostname(256)}},
    {"IPv4 address",
     Verify_IPAddressFormat,
     {"0.0.0.0", "255.255.255.255", "10.1.2.3", "001.02.3.000"},
     {"256.1.1.1", "1.1.1.256", "1.2.3", "1.2.3.4.5", "1..2.3", "01234.1.1.1", ".1.2.3", ".1.2.3.4", "1.2.3.4.",
      "1.2.3.", "a.2.3.4", "1.2.3.-4", "1.2.3. 4", "1234", "."}},
    {"IPv6 address",
     Verify_IPAddressFormat,
     {"::", "::1", "1::", "1::2", "1:2:3:4:5:6:7:8", "ABCD:ef01::", "::ffff:10.0.0.1", "1:2:3:4:5:6:7::",
      "::2:3:4:5:6:7:8", "1:2:3:4:5:6:7:10.0.0.1", "1:2", "::10.0.0.1", "1000:2000:3000:4000:5000:6000:7000:8000"},
     {"1::2::3",
      "::1::",
      ":::",
      "1:::2",
      "::::",
      ":",
      ":1",
      "1:",
      "1:2:",
      ":1:2",
      "::1:",
      ":1::2",
      "12345::",
      "::12345",
      "g::",
      "1:2:3:4:5:6:7:8:9",
      "1:2:3:4:5:6:7:8::",
      "::1:2:3:4:5:6:7:8",
      "1:2:3:4:5:6:7:8:10.0.0.1",
      "::10.0.0",
      "::10.0.0.256",
      "10.0.0.1::",
      "10.0.0.1:1",
      "::1.2.3.4:5",
      "::.1.2.3",
      "1::10.0.0.1.2",
      "fe80::1%eth0",
      "01000:2000:3000:4000:5000:6000:7000:8000"}},
    {"phone number",
     Verify_PhoneNumFormat,
     {"+1 (555) 123-4567 x89", "0", "X", " ", "++--"},
     {"555.1234", "1,2", "1/2", "555-CALL", "12\t34", "\xC2\xA0", "1\n"}},
};

TEST(Validators, TellValidFormsFromInvalidOnes) {
    for (const auto& format : kFormats) {
        SCOPED_TRACE(format.name);
        EXPECT_FALSE(format.verify(ORVustring()));
        EXPECT_FALSE(format.verify(""));
        for (const std::string& text : format.valid) EXPECT_TRUE(format.verify(text.c_str())) << text;
        for (const std::string& text : format.invalid) EXPECT_FALSE(format.verify(text.c_str())) << text;
    }
}

TEST(Validators, LookAtAllOfATextThatHoldsZeros) {
    EXPECT_FALSE(Verify_PhoneNumFormat(ORVustring("12\0a", 4)));
    EXPECT_FALSE(Verify_HostnameFormat(ORVustring("a.b\0", 4)));
    EXPECT_FALSE(Verify_IPAddressFormat(ORVustring("1.2.3.4\0", 8)));
}

}  // namespace
}  // namespace dorvutil
