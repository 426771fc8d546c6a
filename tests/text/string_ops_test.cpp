#include <gtest/gtest.h>

#include <random>
#include <string>

#include "dorvutil/frame/accessors.h"
#include "text/string_support.h"

namespace dorvutil {
namespace {

template <class S>
class StringOps : public testing::Test {
public:
    void SetUp() override { GetStringAllocator(); }
    static std::basic_string<UnitOf<S>> U(const std::string& ascii) { return Units<UnitOf<S>>(ascii); }
    static S M(const std::string& ascii) { return Make<S>(ascii); }
};
TYPED_TEST_SUITE(StringOps, BothWidths);

int Sign(int value) { return (value > 0) - (value < 0); }

TYPED_TEST(StringOps, Compare) {
    static constexpr struct {
        const char *a, *b;
        bool ignoreCase;
        int n, sign;
    } kCases[] = {{"", "", false, -1, 0},        {"", "a", false, -1, -1},    {"a", "", false, -1, 1},
                  {"abc", "abd", false, -1, -1}, {"abc", "abd", false, 2, 0}, {"abc", "ab", false, -1, 1},
                  {"abc", "ABC", false, -1, 1},  {"abc", "ABC", true, -1, 0}, {"abX", "ABy", true, 2, 0},
                  {"abX", "ABy", true, 3, -1},   {"a", "b", false, 0, 0},     {"a", "b", true, 0, 0}};
    for (const auto& c : kCases) {
        SCOPED_TRACE(std::string(c.a) + "|" + c.b);
        const TypeParam a = this->M(c.a);
        EXPECT_EQ(Sign(a.compare(this->U(c.b).c_str(), c.ignoreCase, c.n)), c.sign);
        EXPECT_EQ(Sign(a.compare(this->M(c.b), c.ignoreCase, c.n)), c.sign);
    }
    const TypeParam null;
    EXPECT_EQ(null.compare(this->M("")), 0);
    EXPECT_EQ(null.compare(this->M("a")), -1);
    EXPECT_EQ(this->M("a").compare(null), 1);
    EXPECT_TRUE(null == this->M(""));
    EXPECT_TRUE(null == static_cast<const UnitOf<TypeParam>*>(nullptr));
    EXPECT_FALSE(this->M("abc") == this->M("abd"));
    EXPECT_TRUE(this->M("abc") != this->U("ab").c_str());
    EXPECT_TRUE(null < this->M("a") && !(this->M("a") < null) && this->M("a") > null && !(null > null));
    EXPECT_TRUE(this->M("a") < this->U("b").c_str() && this->M("b") > this->U("a").c_str());
    TypeParam high = this->M("x");
    high.replace(0, static_cast<UnitOf<TypeParam>>(0xE9));
    EXPECT_TRUE(this->M("z") < high) << "units compare unsigned";
}

TYPED_TEST(StringOps, Find) {
    static constexpr struct {
        const char *text, *s;
        unsigned start;
        bool ignoreCase;
        int found;
    } kCases[] = {{"abc", "b", 0, false, 1},   {"abc", "b", 2, false, -1}, {"abc", "b", 3, false, -1},
                  {"abc", "B", 0, false, -1},  {"abc", "B", 0, true, 1},   {"xaXA", "XA", 1, true, 2},
                  {"abc", "", 2, false, 2},    {"", "", 0, false, -1},     {"aab", "ab", 0, false, 1},
                  {"abc", "abcd", 0, true, -1}};
    for (const auto& c : kCases) {
        SCOPED_TRACE(std::string(c.text) + "|" + c.s);
        EXPECT_EQ(this->M(c.text).find(this->U(c.s).c_str(), c.start, c.ignoreCase), c.found);
    }
    EXPECT_EQ(this->M("abc").findi(this->U("C").c_str()), 2);
    EXPECT_EQ(this->M("abc").find(nullptr), -1);
    EXPECT_EQ(TypeParam().find(this->U("a").c_str()), -1);

    EXPECT_EQ(this->M("abcabc").rfind(this->U("bc").c_str()), 4);
    EXPECT_EQ(this->M("abcABx").rfind(this->U("aB").c_str(), true), 3);
    EXPECT_EQ(this->M("abc").rfind(this->U("abcd").c_str()), -1);
    EXPECT_EQ(this->M("abc").rfind(this->U("").c_str()), 2);
    EXPECT_EQ(this->M("abc").rfind(this->U("x").c_str(), true), -1);
    EXPECT_EQ(TypeParam().rfind(this->U("").c_str()), -1);
}

TEST(StringRfind, IgnoringCaseTakesAsManyCharactersAsThePatternHas) {
    const ORVustring text("x\xC3\x89ZY");
    EXPECT_EQ(text.rfind("\xC3\xA9z", true), 1);
    EXPECT_EQ(ORVustring("\xC3\x89t\xC3\xA9").find("T\xC3\x89", 0, true), 2);
}

TYPED_TEST(StringOps, FindInSets) {
    const TypeParam text = this->M("abcabc");
    using T = UnitOf<TypeParam>;
    EXPECT_EQ(text.find_first_of(T('c'), 0), 2);
    EXPECT_EQ(text.find_first_of(T('c'), 3), 5);
    EXPECT_EQ(text.find_first_of(T('c'), 6), -1);
    EXPECT_EQ(text.find_first_of(T(0), 6), 6) << "the terminator";
    EXPECT_EQ(text.find_first_of(T('c'), 7), -1);
    EXPECT_EQ(text.find_first_of(this->U("cb").c_str(), 3), 4);
    EXPECT_EQ(text.find_first_of(this->U("a").c_str(), 6), -1);
    EXPECT_EQ(text.find_last_of(this->U("ab").c_str()), 4);
    EXPECT_EQ(text.find_first_not_of(this->U("ab").c_str()), 2);
    EXPECT_EQ(text.find_last_not_of(this->U("bc").c_str()), 3);
    EXPECT_EQ(text.find_first_not_of(this->U("abc").c_str()), -1);
    const T* const none = nullptr;
    EXPECT_EQ(text.find_first_of(none), -1);
    EXPECT_EQ(text.find_last_of(none), -1);
    EXPECT_EQ(text.find_first_not_of(none), -1);
    EXPECT_EQ(text.find_last_not_of(none), -1);
    EXPECT_EQ(TypeParam().find_last_of(this->U("a").c_str()), -1);
}

TYPED_TEST(StringOps, PrefixAndSuffix) {
    const TypeParam text = this->M("Prefix");
    EXPECT_TRUE(text.starts_with(this->U("Pre").c_str()));
    EXPECT_FALSE(text.starts_with(this->U("pre").c_str()));
    EXPECT_TRUE(text.starts_with(this->U("pre").c_str(), true));
    EXPECT_TRUE(text.starts_with(this->M("PRxx"), true, 2));
    EXPECT_FALSE(text.starts_with(this->U("Pr").c_str(), false, 3)) << "the pattern ends before n";
    EXPECT_FALSE(text.starts_with(this->U("Pr").c_str(), true, 3));
    EXPECT_FALSE(text.starts_with(this->U("P").c_str(), false, 0));
    EXPECT_FALSE(text.starts_with(this->U("").c_str()));
    EXPECT_FALSE(text.starts_with(this->U("Prefixes").c_str()));
    EXPECT_FALSE(TypeParam().starts_with(this->M("a")));
    EXPECT_TRUE(text.ends_with(this->M("FIX")));
    EXPECT_TRUE(text.ends_with(TypeParam()));
    EXPECT_TRUE(TypeParam().ends_with(TypeParam()));
    EXPECT_FALSE(text.ends_with(this->M("a prefix")));
    EXPECT_FALSE(text.ends_with(this->M("fit")));
}

TYPED_TEST(StringOps, Pieces) {
    const TypeParam text = this->M("abcdef");
    static constexpr struct {
        int start, n;
        const char *copy, *self;
    } kCases[] = {{0, 3, "abc", "abc"},           {2, -1, "cdef", "cdef"},    {2, 2, "cd", "cd"},
                  {2, 9, "cdef", "abcdef"},       {0, 9, "abcdef", "abcdef"}, {6, -1, "", ""},
                  {7, -1, "", "abcdef"},          {-1, 2, "", "abcdef"},      {0, 0, "", ""},
                  {4, 0x7FFFFFFF, "ef", "abcdef"}};
    for (const auto& c : kCases) {
        SCOPED_TRACE(std::to_string(c.start) + "," + std::to_string(c.n));
        TypeParam self(text);
        EXPECT_EQ(Plain(text.substr(c.start, c.n)), c.copy);
        EXPECT_EQ(Plain(self.substr_self(c.start, c.n)), c.self);
    }
    EXPECT_EQ(Plain(text), "abcdef");
    EXPECT_EQ(Plain(this->M(" \t\r\nx y\n ").strip()), "x y");
    EXPECT_EQ(Plain(this->M(" \t").strip()), "");
    EXPECT_EQ(Plain(this->M("none").strip()), "none");
    EXPECT_EQ(Plain(this->M("abcd").common_starting_substring(this->M("abxd"))), "ab");
    EXPECT_EQ(Plain(this->M("abc").common_starting_substring(this->M("abc"))), "abc");
    EXPECT_NE(Raw(TypeParam().common_starting_substring(this->M("a")), true), nullptr) << "null, not empty";
    EXPECT_EQ(Raw(this->M("b").common_starting_substring(this->M("a")), true), nullptr) << "empty, not null";
}

TEST(StringPieces, CommonPrefixKeepsCharactersWhole) {
    const ORVustring a("x\xC3\xA9y"), b("x\xC3\xA8y");
    EXPECT_STREQ(a.common_starting_substring(b).c_str(false), "x");
    EXPECT_STREQ(ORVustring("x\xC3").common_starting_substring(a).c_str(false), "x");
}

TYPED_TEST(StringOps, ReplacingCharacters) {
    static constexpr struct {
        const char *text, *from, *to;
        int maxCount;
        bool ignoreCase, result;
        const char* after;
    } kCases[] = {{"aaa", "a", "aa", 3, false, true, "aaaaaa"},
                  {"aaa", "a", "b", 2, false, true, "bba"},
                  {"aaa", "a", "", 9, false, true, ""},
                  {"xAbAbx", "ab", "-", 9, true, true, "x--x"},
                  {"abc", "z", "y", 9, false, true, "abc"},
                  {"abc", "a", "y", 0, false, true, "abc"},
                  {"abc", "", "y", 2, false, true, "yyabc"},
                  {"", "", "y", 2, false, true, ""},
                  {"abc", "", "", 2, false, false, "abc"},
                  {"abcabc", "abc", "x", 0x7FFFFFFF, false, true, "xx"},
                  {"abc", "", "y", 0x7FFFFFFF, false, false, "abc"}};
    for (const auto& c : kCases) {
        SCOPED_TRACE(std::string(c.text) + "|" + c.from + "|" + c.to);
        TypeParam text = this->M(c.text);
        EXPECT_EQ(text.replaceallchar(this->U(c.from).c_str(), this->U(c.to).c_str(), c.maxCount, c.ignoreCase),
                  c.result);
        EXPECT_EQ(Plain(text), c.after);
    }
    TypeParam text = this->M("abcabc");
    EXPECT_TRUE(text.replacechar(this->U("C").c_str(), this->U("...").c_str(), 3, true));
    EXPECT_EQ(Plain(text), "abcab...");
    EXPECT_FALSE(text.replacechar(this->U("z").c_str(), this->U("").c_str()));
    EXPECT_FALSE(text.replacechar(nullptr, this->U("").c_str()));
    EXPECT_FALSE(TypeParam().replaceallchar(this->U("a").c_str(), this->U("").c_str(), 1));
    TypeParam path = this->M("a/b/c\\d");
    path.makeFileSlashOSCompatible();
    EXPECT_EQ(Plain(path), "a\\b\\c\\d");
}

TYPED_TEST(StringOps, Editing) {
    using T = UnitOf<TypeParam>;
    TypeParam text = this->M("abc");
    EXPECT_TRUE(text.replace(1, T('X')));
    EXPECT_TRUE(text.replace(3, T('!')));
    EXPECT_FALSE(text.replace(4, T('!')));
    EXPECT_FALSE(text.replace(-1, T('!')));
    EXPECT_FALSE(TypeParam().replace(0, T('!')));
    EXPECT_EQ(Plain(text), "aXc");
    EXPECT_TRUE(text.replace(1, 2, this->U("123").c_str()));
    EXPECT_EQ(Plain(text), "a12");
    EXPECT_TRUE(text.replace(3, 9, this->U("4").c_str()));
    EXPECT_FALSE(text.replace(5, 1, this->U("4").c_str()));
    EXPECT_FALSE(text.replace(0, 1, nullptr));
    EXPECT_EQ(Plain(text), "a124");

    EXPECT_EQ(Plain(this->M("ab").insert(5, this->U("x").c_str())), "ab   x");
    EXPECT_EQ(Plain(this->M("ab").insert(1, this->U("xyz").c_str(), 2)), "axyb");
    EXPECT_EQ(Plain(this->M("ab").insert(2, this->M("cd"))), "abcd");
    EXPECT_EQ(Plain(this->M("ab").insert(-1, this->U("x").c_str())), "ab");
    EXPECT_EQ(Plain(TypeParam().insert(1, this->U("x").c_str())), " x");

    TypeParam one = this->M("a"), two = this->M("ab");
    EXPECT_FALSE(one.deleteAt(0));
    EXPECT_FALSE(one.deleteLast());
    EXPECT_EQ(Plain(one), "a");
    EXPECT_FALSE(two.deleteAt(2));
    EXPECT_FALSE(two.deleteAt(-1));
    EXPECT_TRUE(two.deleteAt(0));
    EXPECT_EQ(Plain(two), "b");
    EXPECT_FALSE(TypeParam().deleteLast());

    EXPECT_EQ(Plain(this->M("a").appendSlash()), "a\\");
    EXPECT_EQ(Plain(this->M("a/").appendSlash()), "a/");
    EXPECT_EQ(Plain(this->M("a\\").appendSlash_ret()), "a\\");
    EXPECT_EQ(Plain(this->M("").appendSlash()), "");
    TypeParam sum = this->M("a");
    EXPECT_TRUE(sum.append(TypeParam()));
    EXPECT_FALSE(sum.append(static_cast<const T*>(nullptr)));
    EXPECT_TRUE(sum.append(this->M("bcd"), 2));
    EXPECT_EQ(Plain(sum += T('e')), "abce");
}

TYPED_TEST(StringOps, CaseAndContent) {
    TypeParam text = this->M("Some WORDS here");
    EXPECT_EQ(Plain(text.to_lower_ret()), "some words here");
    EXPECT_EQ(Plain(text.to_upper_ret()), "SOME WORDS HERE");
    EXPECT_EQ(Plain(text.cap_all_words_ret()), "Some Words Here");
    text.to_lower();
    text += UnitOf<TypeParam>('X');
    text.to_lower();
    EXPECT_EQ(Plain(text), "some words herex") << "an append forgets that the case is known";
    TypeParam null;
    null.to_lower();
    null.cap_all_words();
    EXPECT_TRUE(null.empty());

    EXPECT_TRUE(this->M("~").IsAscii7() && TypeParam().IsAscii7() && !this->M("\x7F").IsAscii7());
    static constexpr struct {
        const char* text;
        bool numeric, hex;
        int lines;
    } kCases[] = {{"", false, true, 1},    {"-", false, false, 1},     {"+12", true, false, 1},
                  {"12", true, true, 1},   {"0x1F", false, true, 1},   {"0x", false, false, 1},
                  {"1g", false, false, 1}, {"a\nb\n", false, false, 3}};
    for (const auto& c : kCases) {
        SCOPED_TRACE(c.text);
        EXPECT_EQ(this->M(c.text).IsNumeric(), c.numeric);
        EXPECT_EQ(this->M(c.text).IsHex(), c.hex);
        EXPECT_EQ(this->M(c.text).num_lines(), c.lines);
    }
    EXPECT_FALSE(TypeParam().IsHex());
    EXPECT_EQ(TypeParam().num_lines(), 1);
}

TEST(StringCase, LettersBeyondAscii) {
    EXPECT_STREQ(ORVustring("\xC3\x89T\xC3\x89").to_lower_ret().c_str(false), "\xC3\xA9t\xC3\xA9");
    EXPECT_TRUE(ORVwstring(u"\u00E9t").to_upper_ret() == u"\u00C9T");
    EXPECT_STREQ(ORVustring("\xC3\xA9T\xC3\x89 \xC3\xA9").cap_all_words_ret().c_str(false),
                 "\xC3\x89t\xC3\xA9 \xC3\x89");
    EXPECT_STREQ(ORVustring("\xFF"
                            "aB Cd")
                     .cap_all_words_ret()
                     .c_str(false),
                 "\xFF"
                 "ab Cd")
        << "byte out of place";
    const ORVustring text("\xC3\xA9");
    text.wString();
    ORVustring upper(text);
    upper.to_upper();
    EXPECT_TRUE(upper.wString() == u"\u00C9" && text.wString() == u"\u00E9");
}

// Long sequences of edits on strings that share blocks, against std::string.
TYPED_TEST(StringOps, RandomEditsMatchTheModel) {
    const auto seed = static_cast<unsigned>(testing::UnitTest::GetInstance()->random_seed()) + 1;
    SCOPED_TRACE("seed " + std::to_string(seed));
    std::mt19937 random(seed);
    const auto below = [&random](std::size_t n) { return n == 0 ? 0 : random() % n; };
    TypeParam texts[3];
    std::string models[3];
    for (int step = 0; step < 20000; ++step) {
        const std::size_t i = below(3), j = below(3);
        TypeParam& text = texts[i];
        std::string& model = models[i];
        const std::string piece(below(20), static_cast<char>('a' + below(4)));
        const std::size_t pos = below(model.size() + 1);
        const auto at = static_cast<int>(pos);
        switch (below(9)) {
            case 0:
                text = texts[j], model = std::string(models[j]);
                break;
            case 1:
                text = this->U(piece).c_str(), model = piece;
                break;
            case 2:
                text += this->U(piece).c_str(), model += piece;
                break;
            case 3:
                text.insert(at, this->U(piece).c_str()), model.insert(pos, piece);
                break;
            case 4:
                if (text.deleteAt(at)) model.erase(pos, 1);
                break;
            case 5:
                text.substr_self(0, at), model.resize(std::min(model.size(), pos));
                break;
            case 6:
                text.append(texts[j]), model += std::string(models[j]);
                break;
            case 7:
                text.resize(static_cast<unsigned>(pos)), model.resize(pos);
                break;
            default: {
                text.replaceallchar(this->U("ab").c_str(), this->U(piece).c_str(), 1);
                const std::size_t found = model.find("ab");
                if (found != std::string::npos) model.replace(found, 2, piece);
            }
        }
        if (model.size() > 300) text.resize(100), model.resize(100);
        ASSERT_EQ(Plain(text), model) << "step " << step;
        ASSERT_EQ(text.find(this->U("ba").c_str()), static_cast<int>(model.find("ba")));
        ASSERT_EQ(text == texts[j], model == models[j]);
    }
}

}  // namespace
}  // namespace dorvutil
