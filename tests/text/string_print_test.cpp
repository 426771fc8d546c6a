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
    } kCases[] = {
        {"%d", -42, "-42"},       {"%5d", -42, "-  42"},      {"%05d", 42, "00042"},    {"%-5d|", 42, "42   |"},
        {"%+d", 42, "+42"},       {"% d", 42, " 42"},         {"%+ d", 42, "+42"},      {"%+05d", 7, "+0007"},
        {"%.4d", -42, "-0042"},   {"%8.4d", -42, "-   0042"}, {"%u", -1, "4294967295"}, {"%x", 31, "1f"},
        {"%#x", 31, "0x1f"},      {"%#X", 31, "0X1F"},        {"%o", 8, "10"},          {"%#o", 8, "010"},
        {"%08x", -1, "ffffffff"}, {"%hd", 65537, "1"},        {"%hu", -1, "65535"},     {"%ld", -7, "-7"},
        {"%lx", 255, "ff"},       {"%-05d", 42, "42000"},     {"%5u", 42, "   42"},     {"%d%%", 5, "5%"}};
    for (const auto& c : kCases) {
        SCOPED_TRACE(c.format);
        EXPECT_STREQ(ORVustring::printf(c.format, c.value).c_str(false), c.text);
        EXPECT_EQ(Plain(ORVwstring::printf(ORVwstring(c.format, -1).T_str(), c.value)), c.text);
    }
    EXPECT_STREQ(ORVustring::printf("%i", INT32_MIN).c_str(), "-2147483648");
    EXPECT_STREQ(ORVustring::printf("%*.*d|%-*d|%*d", 6, 3, 5, 4, 7, -3, 8).c_str(false), "   005|7   |8  ");
}

// Where the engine follows the standard library it is compared with it.
TEST(StringPrint, FloatingPointAsTheStandardLibrary) {
    static constexpr const char* kFormats[] = {"%f",      "%.0f",    "%#.0f", "%.3f",   "%10.2f", "%-10.2f|", "%+f",
                                               "% f",     "%010.3f", "%e",    "%.0e",   "%#.0e",  "%.12E",    "%g",
                                               "%#g",     "%.3g",    "%G",    "%#.10g", "%012g",  "%-12g|",   "%.30f",
                                               "%.1500f", "%.1200e", "%.0g",  "%Lf",    "%+.1e"};
    constexpr double kMost = std::numeric_limits<double>::max(), kInf = std::numeric_limits<double>::infinity();
    const double kValues[] = {0.0,    -0.0, 1.0,      -1.5,  0.1,     123456.789, 1e-5, 1e15,  1e22,
                              5e-324, 2.5,  999999.5, 1e300, -1e-300, kMost,      kInf, -kInf, std::nan("")};
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
    const auto p = [](const char* format, auto... args) { return ORVustring::printf(format, args...); };
    const ORVustring object("été");
    const ORVwstring wide(u"é😀");
    const struct {
        ORVustring got;
        const char* text;
    } kCases[] = {{p("<%s>", "abc"), "<abc>"},   {p("%5s|", "abc"), "  abc|"}, {p("%-5s|", "abc"), "abc  |"},
                  {p("<%.2s>", "abcd"), "<ab>"}, {p("%3.2s", "abcd"), "abc"},  {p("%.0s|", "abc"), "abc|"},
                  {p("%S!", u"é"), "é!"},        {p("%.3S", u"éé"), "é\xC3"},  {p("%a|", &object), "été|"},
                  {p("%6a", &object), " été"},   {p("%A", &wide), "é😀"},       {p("%c%3c", 'a', 'b'), "a  b"},
                  {p("%-3c|", 'c'), "c  |"},     {p("abc%5"), "abc"},          {p("%5%||"), "%||"}};
    for (const auto& c : kCases) EXPECT_STREQ(c.got.c_str(), c.text);
    EXPECT_STREQ(p("%8p", reinterpret_cast<void*>(0x1f)).c_str(), "    0x1f");
    EXPECT_STREQ(p("<%3s>", static_cast<const char*>(nullptr)).c_str(), "<   >");
    EXPECT_STREQ(p("x%dy%az", 1, static_cast<ORVustring*>(nullptr)).c_str(), "x1y") << "a null object stops";
    EXPECT_STREQ(p("x%Az", static_cast<ORVwstring*>(nullptr)).c_str(), "x");
    EXPECT_TRUE(p(nullptr).empty());
    EXPECT_EQ(p("a%cb", 0).length(), 3u);
    EXPECT_TRUE(ORVwstring::printf(u"%s %S %A %a", "é", u"€", &wide, &object) == u"é € é😀 été");
    EXPECT_TRUE(ORVwstring::printf(u"%.3s|", "éé") == u"é|") << "no half character in wide text";
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
        va_start(args, format);
        result += ORVustring::vprintf(format, args);
        va_end(args);
        return result;
    };
    EXPECT_STREQ(pass("%s=%.1f;", "x", 2.5).c_str(false), "x=2.5;x=2.5;");
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
