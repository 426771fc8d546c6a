#include <gtest/gtest.h>

#include <random>
#include <string>

#include "text/string_support.h"

namespace dorvutil {
namespace {

template <class S>
class StringOps : public StringTest<S> {};
TYPED_TEST_SUITE(StringOps, BothWidths);

TYPED_TEST(StringOps, Compare) {
    static constexpr struct {
        const char *a, *b;  // null: a null string and a null pointer
        bool ignoreCase;
        int n, sign;
    } kCases[] = {{"", "", false, -1, 0},        {"", "a", false, -1, -1},      {"a", "", false, -1, 1},
                  {"abc", "abd", false, -1, -1}, {"abc", "abd", false, 2, 0},   {"abc", "ab", false, -1, 1},
                  {"abc", "ABC", false, -1, 1},  {"abc", "ABC", true, -1, 0},   {"abX", "ABy", true, 2, 0},
                  {"abX", "ABy", true, 3, -1},   {"a", "b", false, 0, 0},       {"a", "b", true, 0, 0},
                  {nullptr, "", false, -1, 0},   {nullptr, "a", false, -1, -1}, {"a", nullptr, false, -1, 1}};
    for (const auto& c : kCases) {
        SCOPED_TRACE(testing::PrintToString(c.a) + "|" + testing::PrintToString(c.b));
        const TypeParam a = this->M(c.a), b = this->M(c.b);
        const auto* const text = this->U(c.b);
        EXPECT_EQ(Sign(a.compare(text, c.ignoreCase, c.n)), c.sign);
        EXPECT_EQ(Sign(a.compare(b, c.ignoreCase, c.n)), c.sign);
        if (c.ignoreCase || c.n >= 0) continue;
        EXPECT_TRUE((a == b) == (c.sign == 0) && (a == text) == (c.sign == 0) && (a != text) == (c.sign != 0));
        EXPECT_TRUE((a < b) == (c.sign < 0) && (a < text) == (c.sign < 0));
        EXPECT_TRUE((a > b) == (c.sign > 0) && (a > text) == (c.sign > 0));
    }
    TypeParam high = this->M("x");
    high.replace(0, static_cast<UnitOf<TypeParam>>(0xE9));
    EXPECT_TRUE(this->M("z") < high) << "units compare unsigned";
}

TYPED_TEST(StringOps, FindAndStart) {
    static constexpr struct {
        const char *text, *s;
        bool noCase;
        int find, rfind;
        bool starts;
    } kCases[] = {{"abc", "b", false, 1, 1, false},       {"abc", "B", false, -1, -1, false},
                  {"abc", "B", true, 1, 1, false},        {"aab", "ab", false, 1, 1, false},
                  {"abc", "abcd", true, -1, -1, false},   {"abc", "", false, 0, 2, false},
                  {"", "", false, -1, -1, false},         {nullptr, "a", false, -1, -1, false},
                  {"abc", nullptr, false, -1, -1, false}, {"abcabc", "bc", false, 1, 4, false},
                  {"abcABx", "aB", true, 0, 3, true},     {"abc", "x", true, -1, -1, false},
                  {"abc", "ab", false, 0, 0, true},       {"abc", "aB", false, -1, -1, false}};
    for (const auto& c : kCases) {
        SCOPED_TRACE(testing::PrintToString(c.text) + "|" + testing::PrintToString(c.s));
        const TypeParam text = this->M(c.text), part = this->M(c.s);
        EXPECT_EQ(text.find(this->U(c.s), 0, c.noCase), c.find);
        EXPECT_EQ(text.rfind(this->U(c.s), c.noCase), c.rfind);
        EXPECT_EQ(text.starts_with(this->U(c.s), c.noCase), c.starts);
        EXPECT_EQ(text.starts_with(part, c.noCase), c.starts);
    }
    const TypeParam text = this->M("Prefix"), null;
    EXPECT_TRUE(text.find(this->U("r"), 2) == -1 && text.find(this->U("r"), 6) == -1 && text.find(this->U(""), 2) == 2);
    EXPECT_TRUE(text.find(this->U("RE"), 1, true) == 1 && text.findi(this->U("X")) == 5);
    EXPECT_TRUE(text.starts_with(this->M("PRxx"), true, 2) && !text.starts_with(this->U("P"), false, 0));
    EXPECT_FALSE(text.starts_with(this->U("Pr"), false, 3) || text.starts_with(this->U("Pr"), true, 3)) << "too short";
    EXPECT_TRUE(text.ends_with(this->M("FIX")) && text.ends_with(null) && null.ends_with(null));
    EXPECT_FALSE(text.ends_with(this->M("a prefix")) || text.ends_with(this->M("fit")));
}

TYPED_TEST(StringOps, FindInSets) {
    static constexpr struct {
        const char *text, *set;
        int first, last, firstNot, lastNot;
    } kCases[] = {{"abcabc", "c", 2, 5, 0, 4},        {"abcabc", "ab", 0, 4, 2, 5},  {"abcabc", "bc", 1, 5, 0, 3},
                  {"abcabc", "abc", 0, 5, -1, -1},    {"abcabc", "x", -1, -1, 0, 5}, {nullptr, "a", -1, -1, -1, -1},
                  {"abcabc", nullptr, -1, -1, -1, -1}};
    for (const auto& c : kCases) {
        SCOPED_TRACE(testing::PrintToString(c.set));
        const TypeParam text = this->M(c.text);
        const auto* const set = this->U(c.set);
        EXPECT_EQ(text.find_first_of(set), c.first);
        EXPECT_EQ(text.find_last_of(set), c.last);
        EXPECT_EQ(text.find_first_not_of(set), c.firstNot);
        EXPECT_EQ(text.find_last_not_of(set), c.lastNot);
    }
    const TypeParam text = this->M("abcabc");
    EXPECT_EQ(text.find_first_of(this->U("cb"), 3), 4);
    EXPECT_EQ(text.find_first_of(this->U("a"), 6), -1);
    static constexpr int kPlaces[] = {2, 2, 2, 5, 5, 5, -1, -1};
    for (std::uint32_t start = 0; start < 8; ++start) {
        EXPECT_EQ(text.find_first_of(UnitOf<TypeParam>('c'), start), kPlaces[start]) << start;
    }
    EXPECT_EQ(text.find_first_of(UnitOf<TypeParam>(0), 6), 6) << "the terminator";
}

TYPED_TEST(StringOps, Pieces) {
    const TypeParam text = this->M("abcdef");
    static constexpr struct {
        int start, n;
        const char *copy, *self;
    } kCases[] = {{0, 3, "abc", "abc"},  {2, -1, "cdef", "cdef"},        {2, 2, "cd", "cd"}, {2, 9, "cdef", "abcdef"},
                  {6, -1, "", ""},       {0, 9, "abcdef", "abcdef"},     {0, 0, "", ""},     {7, -1, "", "abcdef"},
                  {-1, 2, "", "abcdef"}, {4, 0x7FFFFFFF, "ef", "abcdef"}};
    for (const auto& c : kCases) {
        SCOPED_TRACE(std::to_string(c.start) + "," + std::to_string(c.n));
        TypeParam self(text);
        EXPECT_EQ(Plain(text.substr(c.start, c.n)), c.copy);
        EXPECT_EQ(Plain(self.substr_self(c.start, c.n)), c.self);
    }
    EXPECT_EQ(Plain(text), "abcdef");
    EXPECT_EQ(Plain(this->M(" \t\r\nx y\n ").strip()) + Plain(this->M(" \t").strip()), "x y");
    EXPECT_EQ(Plain(this->M("abcd").common_starting_substring(this->M("abxd"))), "ab");
    EXPECT_EQ(Plain(text.common_starting_substring(text)), "abcdef");
    EXPECT_NE(Raw(TypeParam().common_starting_substring(this->M("a")), true), nullptr) << "null, not empty";
    EXPECT_EQ(Raw(this->M("b").common_starting_substring(this->M("a")), true), nullptr) << "empty, not null";
}

TYPED_TEST(StringOps, ReplacingCharacters) {
    static constexpr struct {
        const char *text, *from, *to;
        int maxCount;
        bool ignoreCase, result;
        const char* after;
    } kCases[] = {{"aaa", "a", "aa", 3, false, true, "aaaaaa"}, {"aaa", "a", "b", 2, false, true, "bba"},
                  {"aaa", "a", "", 9, false, true, ""},         {"xAbAbx", "ab", "-", 9, true, true, "x--x"},
                  {"abc", "z", "y", 9, false, true, "abc"},     {"abc", "a", "y", 0, false, true, "abc"},
                  {"abc", "", "y", 2, false, true, "yyabc"},    {"", "", "y", 2, false, true, ""},
                  {"abc", "", "", 2, false, false, "abc"},      {"abcabc", "abc", "x", 0x7FFFFFFF, false, true, "xx"},
                  {nullptr, "a", "", 1, false, false, ""},      {"abc", "", "y", 0x7FFFFFFF, false, false, "abc"}};
    for (const auto& c : kCases) {
        SCOPED_TRACE(testing::PrintToString(c.text) + "|" + c.from + "|" + c.to);
        TypeParam text = this->M(c.text);
        EXPECT_EQ(text.replaceallchar(this->U(c.from), this->U(c.to), c.maxCount, c.ignoreCase), c.result);
        EXPECT_EQ(Plain(text), c.after);
    }
    TypeParam text = this->M("abcabc");
    EXPECT_TRUE(text.replacechar(this->U("C"), this->U("..."), 3, true));
    EXPECT_EQ(Plain(text), "abcab...");
    EXPECT_FALSE(text.replacechar(this->U("z"), this->U("")));
    EXPECT_FALSE(text.replacechar(nullptr, this->U("")));
    TypeParam path = this->M("a/b/c\\d");
    path.makeFileSlashOSCompatible();
    EXPECT_EQ(Plain(path), "a\\b\\c\\d");
}

TYPED_TEST(StringOps, EditingByPosition) {
    using T = UnitOf<TypeParam>;
    TypeParam null, text = this->M("abc"), one = this->M("a"), two = this->M("ab");
    EXPECT_TRUE(text.replace(1, T('X')) && text.replace(3, T('!')));
    EXPECT_FALSE(text.replace(4, T('!')) || text.replace(-1, T('!')) || null.replace(0, T('!')));
    EXPECT_EQ(Plain(text), "aXc");
    EXPECT_TRUE(text.replace(1, 2, this->U("123")));
    EXPECT_EQ(Plain(text), "a12");
    EXPECT_TRUE(text.replace(3, 9, this->U("4")));
    EXPECT_FALSE(text.replace(5, 1, this->U("4")) || text.replace(0, 1, nullptr));
    EXPECT_EQ(Plain(text), "a124");
    EXPECT_EQ(Plain(this->M("ab").insert(5, this->U("x"))) + Plain(null.insert(-1, this->U("x"))), "ab   x");
    EXPECT_EQ(Plain(this->M("ab").insert(1, this->U("xyz"), 2)), "axyb");
    EXPECT_EQ(Plain(this->M("ab").insert(2, this->M("cd"))) + Plain(TypeParam().insert(1, this->U("x"))), "abcd x");
    EXPECT_FALSE(one.deleteAt(0) || one.deleteLast() || null.deleteLast() || two.deleteAt(2) || two.deleteAt(-1));
    EXPECT_EQ(Plain(one) + Plain(two), "aab");
    EXPECT_TRUE(two.deleteAt(0));
    EXPECT_EQ(Plain(two), "b");
    for (const char* const path : {"a\\", "a/", ""}) EXPECT_EQ(Plain(this->M(path).appendSlash()), path);
    EXPECT_EQ(Plain(one.appendSlash_ret()), "a\\");
    EXPECT_TRUE(one.append(null));
    EXPECT_FALSE(one.append(static_cast<const T*>(nullptr)));
    EXPECT_TRUE(one.append(this->M("bcd"), 2));
    EXPECT_EQ(Plain(one += T('e')), "abce");
}

TYPED_TEST(StringOps, CaseAndContent) {
    TypeParam text = this->M("Some WORDS here");
    EXPECT_EQ(Plain(text.to_upper_ret()), "SOME WORDS HERE");
    EXPECT_EQ(Plain(text.cap_all_words_ret()), "Some Words Here");
    text.to_lower();
    text += UnitOf<TypeParam>('X');
    EXPECT_EQ(Plain(text.to_lower_ret()), "some words herex") << "an append forgets that the case is known";
    TypeParam null;
    null.to_lower();
    null.cap_all_words();
    EXPECT_TRUE(null.empty());
    EXPECT_TRUE(this->M("~").IsAscii7() && TypeParam().IsAscii7() && !this->M("\x7F").IsAscii7());
    static constexpr struct {
        const char* text;
        bool numeric, hex;
        int lines;
    } kCases[] = {{"", false, true, 1},    {"-", false, false, 1},      {"+12", true, false, 1},
                  {"12", true, true, 1},   {"0x1F", false, true, 1},    {"0x", false, false, 1},
                  {"1g", false, false, 1}, {"a\nb\n", false, false, 3}, {nullptr, false, false, 1}};
    for (const auto& c : kCases) {
        SCOPED_TRACE(testing::PrintToString(c.text));
        EXPECT_EQ(this->M(c.text).IsNumeric(), c.numeric);
        EXPECT_EQ(this->M(c.text).IsHex(), c.hex);
        EXPECT_EQ(this->M(c.text).num_lines(), c.lines);
    }
}

TEST(StringOps, LettersBeyondAscii) {
    EXPECT_EQ(ORVustring("xÉZY").rfind("éz", true), 1);
    EXPECT_EQ(ORVustring("Été").find("TÉ", 0, true), 2);
    EXPECT_STREQ(ORVustring("xéy").common_starting_substring(ORVustring("xèy")).c_str(), "x") << "whole characters";
    EXPECT_STREQ(ORVustring("x\xC3").common_starting_substring(ORVustring("xéy")).c_str(), "x");
    EXPECT_STREQ(ORVustring("ÉTÉ").to_lower_ret().c_str(), "été");
    EXPECT_TRUE(ORVwstring(u"ét").to_upper_ret() == u"ÉT");
    EXPECT_STREQ(ORVustring("éTÉ é").cap_all_words_ret().c_str(), "Été É");
    EXPECT_STREQ(ORVustring("\xFF"
                            "aB Cd")
                     .cap_all_words_ret()
                     .c_str(),
                 "\xFF"
                 "ab Cd")
        << "byte out of place";
    const ORVustring text("é");
    text.wString();
    ORVustring upper(text);
    upper.to_upper();
    EXPECT_TRUE(upper.wString() == u"É" && text.wString() == u"é");
}

// Long sequences of edits on strings that share blocks, against std::string.
TYPED_TEST(StringOps, RandomEditsMatchTheModel) {
    struct Step {
        TypeParam &text, &otherText;
        std::string &model, &otherModel;
        std::string piece;
        std::size_t pos;
        std::basic_string<UnitOf<TypeParam>> units = StringOps<TypeParam>::Units(piece);
        int at = static_cast<int>(pos);
    };
    static constexpr void (*kEdits[])(Step&) = {
        [](Step& s) { s.text = s.otherText, s.model = std::string(s.otherModel); },
        [](Step& s) { s.text = s.units.c_str(), s.model = s.piece; },
        [](Step& s) { s.text += s.units.c_str(), s.model += s.piece; },
        [](Step& s) { s.text.insert(s.at, s.units.c_str()), s.model.insert(s.pos, s.piece); },
        [](Step& s) { s.model.erase(s.pos, s.text.deleteAt(s.at) ? 1 : 0); },
        [](Step& s) { s.text.substr_self(0, s.at), s.model.resize(s.pos); },
        [](Step& s) { s.text.append(s.otherText), s.model += std::string(s.otherModel); },
        [](Step& s) { s.text.resize(static_cast<unsigned>(s.pos)), s.model.resize(s.pos); },
        [](Step& s) {
            s.text.replaceallchar(StringOps<TypeParam>::Units("ab").c_str(), s.units.c_str(), 1);
            const std::size_t found = s.model.find("ab");
            if (found != std::string::npos) s.model.replace(found, 2, s.piece);
        }};
    const auto seed = static_cast<unsigned>(testing::UnitTest::GetInstance()->random_seed()) + 1;
    SCOPED_TRACE("seed " + std::to_string(seed));
    std::mt19937 random(seed);
    TypeParam texts[3];
    std::string models[3];
    for (int step = 0; step < 20000; ++step) {
        const std::size_t i = random() % 3, j = random() % 3;
        const std::string piece(random() % 20, static_cast<char>('a' + random() % 4));
        Step edit{texts[i], texts[j], models[i], models[j], piece, random() % (models[i].size() + 1)};
        kEdits[random() % std::size(kEdits)](edit);
        if (models[i].size() > 300) texts[i].resize(100), models[i].resize(100);
        ASSERT_EQ(Plain(texts[i]), models[i]) << "step " << step;
        ASSERT_EQ(texts[i].find(this->Units("ba").c_str()), static_cast<int>(models[i].find("ba")));
        ASSERT_EQ(texts[i] == texts[j], models[i] == models[j]);
    }
}

}  // namespace
}  // namespace dorvutil
