#include <gtest/gtest.h>

#include <cmath>
#include <cstdio>
#include <limits>
#include <string>

#include "dorvutil/frame/accessors.h"
#include "memory/failing_heap.h"
#include "text/string_support.h"

namespace dorvutil {
namespace {

TEST(StringPrint, Integers) {
    const struct {
        const char* format;
        std::int32_t value;
        const char* text;
    } kCases[] = {{"%d", -42, "-42"},
                  {"%5d", -42, "-  42"},
                  {"%05d", 42, "00042"},
                  {"%-5d|", 42, "42   |"},
                  {"%+d", 42, "+42"},
                  {"% d", 42, " 42"},
                  {"%+ d", 42, "+42"},
                  {"%+05d", 7, "+0007"},
                  {"%.4d", -42, "-0042"},
                  {"%8.4d", -42, "-   0042"},
                  {"%i", INT32_MIN, "-2147483648"},
                  {"%u", -1, "4294967295"},
                  {"%x", 31, "1f"},
                  {"%#x", 31, "0x1f"},
                  {"%#X", 31, "0X1F"},
                  {"%o", 8, "10"},
                  {"%#o", 8, "010"},
                  {"%08x", -1, "ffffffff"},
                  {"%hd", 65537, "1"},
                  {"%hu", -1, "65535"},
                  {"%ld", -7, "-7"},
                  {"%lx", 255, "ff"},
                  {"%-05d", 42, "42000"},
                  {"%5u", 42, "   42"},
                  {"%d%%", 5, "5%"}};
    for (const auto& c : kCases) {
        SCOPED_TRACE(c.format);
        EXPECT_STREQ(ORVustring::printf(c.format, c.value).c_str(false), c.text);
        EXPECT_EQ(Plain(ORVwstring::printf(Units<char16_t>(c.format).c_str(), c.value)), c.text);
    }
    EXPECT_STREQ(ORVustring::printf("%*.*d|%-*d|%*d", 6, 3, 5, 4, 7, -3, 8).c_str(false), "   005|7   |8  ");
}

// Where the engine follows the standard library it is compared with it.
TEST(StringPrint, FloatingPointAsTheStandardLibrary) {
    static constexpr const char* kFormats[] = {"%f",      "%.0f",    "%#.0f", "%.3f",   "%10.2f", "%-10.2f|", "%+f",
                                               "% f",     "%010.3f", "%e",    "%.0e",   "%#.0e",  "%.12E",    "%g",
                                               "%#g",     "%.3g",    "%G",    "%#.10g", "%012g",  "%-12g|",   "%.30f",
                                               "%.1500f", "%.1200e", "%.0g",  "%Lf",    "%+.1e"};
    const double kValues[] = {0.0,
                              -0.0,
                              1.0,
                              -1.5,
                              0.1,
                              123456.789,
                              1e-5,
                              1e15,
                              1e22,
                              5e-324,
                              2.5,
                              999999.5,
                              1e300,
                              -1e-300,
                              std::numeric_limits<double>::max(),
                              std::numeric_limits<double>::infinity(),
                              -std::numeric_limits<double>::infinity(),
                              std::nan("")};
    for (const char* const format : kFormats) {
        std::string standard(format);
        if (const std::size_t l = standard.find('L'); l != std::string::npos) standard.erase(l, 1);
        for (const double value : kValues) {
            if (value == 999999.5 && standard == "%#g") continue;  // some C libraries drop the zeros then
            char expected[4000];
            std::snprintf(expected, sizeof expected, standard.c_str(), value);
            ASSERT_STREQ(ORVustring::printf(format, value).c_str(false), expected) << format << " of " << value;
        }
    }
    EXPECT_STREQ(ORVustring::printf("%#g", 999999.5).c_str(false), "1.00000e+06");
    EXPECT_TRUE(ORVwstring::printf(u"%.2f", 1.5) == u"1.50");
}

TEST(StringPrint, Texts) {
    const ORVustring object("\xC3\xA9t\xC3\xA9");
    const ORVwstring wide(u"\u00E9\U0001F600");
    const struct {
        const char* name;
        ORVustring got;
        const char* text;
    } kCases[] = {{"s", ORVustring::printf("<%s>", "abc"), "<abc>"},
                  {"width", ORVustring::printf("<%5s|%-5s>", "abc", "abc"), "<  abc|abc  >"},
                  {"precision", ORVustring::printf("<%.2s>", "abcdef"), "<ab>"},
                  {"a width above the precision", ORVustring::printf("<%5.2s>", "abcdef"), "<abcde>"},
                  {"precision 0 is none", ORVustring::printf("<%.0s>", "abc"), "<abc>"},
                  {"null s", ORVustring::printf("<%3s>", static_cast<const char*>(nullptr)), "<   >"},
                  {"S", ORVustring::printf("%S!", u"\u00E9"), "\xC3\xA9!"},
                  {"cut S", ORVustring::printf("%.3S", u"\u00E9\u00E9"), "\xC3\xA9\xC3"},
                  {"a", ORVustring::printf("%a-%6a", &object, &object), "\xC3\xA9t\xC3\xA9- \xC3\xA9t\xC3\xA9"},
                  {"A", ORVustring::printf("%A", &wide), "\xC3\xA9\xF0\x9F\x98\x80"},
                  {"null a stops", ORVustring::printf("x%dy%az", 1, static_cast<ORVustring*>(nullptr)), "x1y"},
                  {"null A stops", ORVustring::printf("x%Az", static_cast<ORVwstring*>(nullptr)), "x"},
                  {"c", ORVustring::printf("%c|%3c|%-3c|", 'a', 'b', 'c'), "a|  b|c  |"},
                  {"format ends inside", ORVustring::printf("abc%5"), "abc"},
                  {"percent with a width", ORVustring::printf("%5%"), "%"},
                  {"pointer", ORVustring::printf("%8p", reinterpret_cast<void*>(0x1f)), "    0x1f"},
                  {"null format", ORVustring::printf(static_cast<const char*>(nullptr)), ""}};
    for (const auto& c : kCases) EXPECT_STREQ(c.got.c_str(false), c.text) << c.name;
    EXPECT_TRUE(ORVwstring::printf(u"%s %S %A %a", "\xC3\xA9", u"\u20AC", &wide, &object) ==
                u"\u00E9 \u20AC \u00E9\U0001F600 \u00E9t\u00E9");
    EXPECT_TRUE(ORVwstring::printf(u"%.3s|", "\xC3\xA9\xC3\xA9") == u"\u00E9|") << "no half character in wide text";
    EXPECT_EQ(ORVustring::printf("a%cb", 0).length(), 3u);
}

TEST(StringPrint, LengthSoFarAndExplicitArguments) {
    int so = -1, end = -1;
    EXPECT_STREQ(ORVustring::printf("ab%n%d%n", &so, 123, &end).c_str(false), "ab123");
    EXPECT_EQ(so, 2);
    EXPECT_EQ(end, 5);
    const auto pass = [](const char* format, ...) {
        std::va_list args;
        va_start(args, format);
        OrvPrintArgs list{&args};
        ORVustring result = ORVustring::printf(format, list);
        va_end(args);
        EXPECT_EQ(list.m_list, nullptr);
        return result;
    };
    EXPECT_STREQ(pass("%s=%d", "x", 5).c_str(false), "x=5");
    const auto passOn = [](const char* format, ...) {
        std::va_list args;
        va_start(args, format);
        ORVustring result = ORVustring::vprintf(format, args);
        va_end(args);
        return result;
    };
    EXPECT_STREQ(passOn("%s=%.1f", "x", 2.5).c_str(false), "x=2.5");
}

TEST(StringPrint, LimitsAndAllocations) {
    EXPECT_EQ(ORVustring::printf("%60000s|", "x").length(), 60001u);
    EXPECT_STREQ(ORVustring::printf("ab%70000dcd", 1).c_str(false), "ab") << "does not fit: ends before it";
    EXPECT_EQ(ORVustring::printf("%999999999999999999999d", 1).length(), 0u);
    EXPECT_EQ(ORVustring::printf("%65528d%s", 1, "x").length(), 65528u);
    EXPECT_EQ(ORVustring::printf("%*d", INT32_MIN, 1).length(), 0u);
    const ORVwstring wide(std::u16string(300, u'w').c_str());
    const FailingHeap counted(0);
    EXPECT_EQ(ORVustring::printf("%s %d %f %A", "some text", 42, 1.5, &wide).length(), 322u);
    EXPECT_EQ(FailingHeap::Calls(), 1) << "the result's own block";
}

}  // namespace
}  // namespace dorvutil
