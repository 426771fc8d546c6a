#include <gtest/gtest.h>

#include <cstring>
#include <memory>
#include <random>
#include <thread>
#include <utility>
#include <vector>

#include "dorvutil/frame/accessors.h"
#include "dorvutil/memory/list.h"
#include "dorvutil/text/const_string.h"
#include "dorvutil/text/string_allocator.h"
#include "memory/failing_heap.h"
#include "text/string_support.h"

namespace dorvutil {
namespace {

constexpr std::uint32_t kLongest = 65528;

// The storage under a string, as a derived class sees it.
template <class T>
struct Opened : TOrvString<T> {
    using TOrvString<T>::TOrvString;
    using TOrvString<T>::m_guts;
    using TOrvString<T>::share;
    using TOrvString<T>::re_alloc;
    static const StringGuts<T>* Of(const TOrvString<T>& text) { return static_cast<const Opened&>(text).m_guts; }
};

template <class T>
const StringGuts<T>* GutsOf(const TOrvString<T>& text) {
    return Opened<T>::Of(text);
}

template <class S>
class StringCore : public testing::Test {
public:
    using T = UnitOf<S>;
    void SetUp() override { GetStringAllocator(); }

    // Everything behind the text is zero, and the capacity is a multiple of 8.
    static void ExpectSound(const TOrvString<T>& text) {
        const StringGuts<T>* const guts = GutsOf(text);
        if (guts == nullptr) return;
        EXPECT_EQ(guts->Capacity() % 8, 0u);
        ASSERT_LE(guts->Length(), guts->Capacity());
        for (std::uint32_t i = guts->Length(); i <= guts->Capacity(); ++i) ASSERT_EQ(guts->Data()[i], T{}) << i;
    }
};
TYPED_TEST_SUITE(StringCore, BothWidths);

TYPED_TEST(StringCore, CapacityIsTheLengthRoundedUpToEight) {
    static constexpr struct {
        std::uint32_t length, capacity;
    } kCases[] = {
        {1, 8}, {5, 8}, {8, 8}, {9, 16}, {48, 48}, {49, 56}, {1000, 1000}, {1001, 1008}, {kLongest, kLongest}};
    for (const auto& c : kCases) {
        SCOPED_TRACE(c.length);
        const auto text = Make<TypeParam>(std::string(c.length, 'x'));
        EXPECT_EQ(text.length(), c.length);
        EXPECT_EQ(GutsOf(text)->Capacity(), c.capacity);
        TestFixture::ExpectSound(text);
    }
    auto grown = Make<TypeParam>("fives");
    grown += Units<UnitOf<TypeParam>>("four").c_str();
    EXPECT_EQ(GutsOf(grown)->Capacity(), 16u);
    TestFixture::ExpectSound(grown);
}

TYPED_TEST(StringCore, TooLongLeavesTheContent) {
    const auto longest = Units<UnitOf<TypeParam>>(std::string(kLongest, 'x'));
    const auto tooLong = longest + UnitOf<TypeParam>('y');
    TypeParam text = Make<TypeParam>("old");
    text = tooLong.c_str();
    EXPECT_EQ(Plain(text), "old");
    EXPECT_FALSE(text.append(longest.c_str()));
    EXPECT_FALSE(text.resize(kLongest + 1));
    EXPECT_FALSE(text.resize(0xFFFF'FFFFu));
    EXPECT_FALSE(text.append(longest.c_str(), 0x7FFF'FFFF));
    text.insert(60000, longest.c_str());
    EXPECT_EQ(Plain(text), "old");
    text = longest.c_str();
    EXPECT_EQ(text.length(), kLongest);
    EXPECT_FALSE(text.append(UnitOf<TypeParam>('y')));
    EXPECT_EQ(text.length(), kLongest);
}

TYPED_TEST(StringCore, NullAndEmptyAreToldApartOnlyByTheFlag) {
    using Unit = UnitOf<TypeParam>;
    const TypeParam null;
    const TypeParam empty(&TypeParam::m_NULL);
    const TypeParam fromNull(static_cast<const Unit*>(nullptr));
    for (const TypeParam* text : {&null, &empty, &fromNull}) {
        EXPECT_TRUE(text->empty());
        EXPECT_TRUE(text->is_null());
        EXPECT_EQ(text->length(), 0u);
        ASSERT_NE(Raw(*text, false), nullptr);
    }
    EXPECT_NE(Raw(null, true), nullptr);
    EXPECT_EQ(Raw(Make<TypeParam>(""), true), nullptr);
    EXPECT_EQ(Raw(empty, true), nullptr);
    EXPECT_EQ(Raw(fromNull, true), nullptr);
    EXPECT_EQ(GutsOf<Unit>(empty), GetStringAllocator()->EmptyGuts<Unit>());
    EXPECT_EQ(GutsOf<Unit>(TypeParam(Unit{})), GetStringAllocator()->EmptyGuts<Unit>());
}

TYPED_TEST(StringCore, CopiesShareUntilWrittenAndAllocateNothing) {
    auto text = Make<TypeParam>("shared");
    const FailingHeap counted(0);
    TypeParam copy(text);
    TypeParam assigned;
    assigned = copy;
    const TypeParam moved(std::move(assigned));
    EXPECT_EQ(FailingHeap::Calls(), 0);
    EXPECT_EQ(GutsOf(moved), GutsOf(text));
    EXPECT_EQ(GutsOf(text)->References(), 3u);
    copy += UnitOf<TypeParam>('!');
    EXPECT_EQ(Plain(copy), "shared!");
    EXPECT_EQ(Plain(text), "shared");
    EXPECT_EQ(GutsOf(text)->References(), 2u);
    EXPECT_TRUE(text.ThreadReady());
    EXPECT_EQ(GutsOf(text)->References(), 1u);
    EXPECT_EQ(GutsOf(moved)->References(), 1u);
    EXPECT_EQ(Plain(moved), "shared");
}

TYPED_TEST(StringCore, The256thSharerGetsItsOwnBlock) {
    const auto text = Make<TypeParam>("crowd");
    std::vector<TypeParam> sharers(254, text);
    EXPECT_EQ(GutsOf(text)->References(), 255u);
    const TypeParam last(text);
    EXPECT_NE(GutsOf(last), GutsOf(text));
    EXPECT_EQ(GutsOf(text)->References(), 255u);
    EXPECT_EQ(Plain(last), "crowd");
    sharers.clear();
    EXPECT_EQ(GutsOf(text)->References(), 1u);
}

TYPED_TEST(StringCore, ResizeAddsZerosAndCuts) {
    auto text = Make<TypeParam>("abc");
    const TypeParam other(text);
    EXPECT_TRUE(text.resize(10));
    EXPECT_EQ(Plain(text), std::string("abc\0\0\0\0\0\0\0", 10));
    EXPECT_TRUE(text.resize(2));
    EXPECT_EQ(Plain(text), "ab");
    TestFixture::ExpectSound(text);
    EXPECT_TRUE(text.resize(8));
    EXPECT_EQ(Plain(text), std::string("ab\0\0\0\0\0\0", 8));
    EXPECT_TRUE(text.resize(0));
    EXPECT_TRUE(text.empty());
    EXPECT_EQ(Plain(other), "abc");
}

TYPED_TEST(StringCore, SourcesInsideTheStringItself) {
    auto text = Make<TypeParam>("0123456789");
    text = Raw(text);
    EXPECT_EQ(Plain(text), "0123456789");
    text.append(Raw(text), 10);
    EXPECT_EQ(Plain(text), "01234567890123456789");
    text = Raw(text) + 15;
    EXPECT_EQ(Plain(text), "56789");
    text += text;
    EXPECT_EQ(Plain(text), "5678956789");
    text.insert(1, Raw(text) + 2, 3);
    EXPECT_EQ(Plain(text), "5789678956789");
    text.insert(20, Raw(text), 2);
    EXPECT_EQ(Plain(text), "5789678956789       57");
    EXPECT_TRUE(text.replace(2, 3, Raw(text) + 1));
    EXPECT_EQ(Plain(text), "57789");
    EXPECT_TRUE(text.replacechar(Raw(text) + 3, Raw(text)));
    EXPECT_EQ(Plain(text), "57757789");
    TestFixture::ExpectSound(text);
}

TYPED_TEST(StringCore, FailingAllocationLeavesTheContent) {
    const auto more = Units<UnitOf<TypeParam>>(std::string(100, 'm'));
    auto text = Make<TypeParam>(std::string(60, 't'));
    TypeParam shared(text);
    const FailingHeap failing(1);
    EXPECT_FALSE(text.append(more.c_str()));
    EXPECT_FALSE(text.resize(200));
    EXPECT_FALSE(text.replaceallchar(Units<UnitOf<TypeParam>>("t").c_str(), more.c_str(), 1));
    EXPECT_FALSE(shared.deleteLast());
    EXPECT_FALSE(shared.ThreadReady());
    shared.to_upper();
    shared.strip_self().insert(70, more.c_str());
    EXPECT_EQ(Plain(text), std::string(60, 't'));
    EXPECT_EQ(Plain(shared), std::string(60, 't'));
}

TYPED_TEST(StringCore, FailedOtherWidthIsEmptyAndTriedAgain) {
    const auto text = Make<TypeParam>(std::string(100, 'x'));
    const auto otherLength = [&text] {
        if constexpr (std::is_same_v<TypeParam, ORVustring>)
            return text.wString().length();
        else
            return text.uString().length();
    };
    {
        const FailingHeap failing(1);
        EXPECT_EQ(otherLength(), 0u);
    }
    EXPECT_EQ(otherLength(), 100u);
}

TEST(OtherWidth, FollowsEveryChange) {
    ORVustring text("abc");
    EXPECT_TRUE(text.wString() == u"abc");
    const FailingHeap counted(0);
    EXPECT_TRUE(text.wString() == u"abc");
    EXPECT_EQ(FailingHeap::Calls(), 0) << "converted twice";
    text += "d";
    EXPECT_TRUE(text.wString() == u"abcd");
    text = text.c_str(false);
    EXPECT_TRUE(text.wString() == u"abcd");
    text.to_upper();
    EXPECT_STREQ(text.wString().uString().c_str(false), "ABCD");
    text = "";
    EXPECT_EQ(text.wc_str(true), nullptr);
    EXPECT_EQ(*text.wc_str(false), 0);
}

// Sharer and source have one changed mark between them.
TEST(OtherWidth, IsNotStaleWhenASharerConvertsFirst) {
    ORVustring text("abc");
    text.wString();
    text += "d";
    const ORVustring sharer(text);
    EXPECT_TRUE(sharer.wString() == u"abcd");
    EXPECT_TRUE(text.wString() == u"abcd");
    text += "e";
    const TOrvString<char> sliced(text);
    const ORVustring back(sliced);
    EXPECT_TRUE(back.wString() == u"abcde");
    EXPECT_TRUE(text.wString() == u"abcde");
    const TOrvString<char> taken(std::move(text));
    EXPECT_EQ(text.wString().length(), 0u);
}

TEST(OtherWidth, ConvertsExactly) {
    static constexpr struct {
        const char* name;
        const char* narrow;
        const char16_t* wide;
    } kCases[] = {{"ascii", "plain", u"plain"},
                  {"two bytes", "\xC3\xA9t\xC3\xA9", u"\u00E9t\u00E9"},
                  {"three bytes", "\xE2\x82\xAC", u"\u20AC"},
                  {"a pair counts two units", "a\xF0\x9F\x98\x80z", u"a\U0001F600z"},
                  {"pairs only", "\xF0\x9F\x98\x80\xF0\x9F\x98\x81", u"\U0001F600\U0001F601"}};
    for (const auto& c : kCases) {
        SCOPED_TRACE(c.name);
        EXPECT_TRUE(ORVwstring(ORVustring(c.narrow)) == c.wide);
        EXPECT_STREQ(ORVustring(ORVwstring(c.wide)).c_str(false), c.narrow);
        EXPECT_TRUE(ORVwstring(c.narrow, -1) == c.wide);
        EXPECT_STREQ(ORVustring(c.wide, -1).c_str(false), c.narrow);
    }
    EXPECT_TRUE(ORVustring("\xE9t\xE9").wString() == u"\u00E9t\u00E9") << "not UTF-8: Latin-1";
    const char16_t broken[] = {'a', 0x20AC, 0xD800, 'b', 0};
    EXPECT_STREQ(ORVustring(broken, -1).c_str(false), "a\xE2\x82\xAC") << "prefix of an unpaired surrogate";
    EXPECT_STREQ(ORVustring(u'\u00E9').c_str(false), "\xC3\xA9");
    EXPECT_TRUE(ORVwstring('x') == u"x");
    EXPECT_TRUE(ORVustring("\xC3\xBF").IsLatin1());
    EXPECT_FALSE(ORVustring("\xE2\x82\xAC").IsLatin1());
    EXPECT_TRUE(ORVustring().IsLatin1() && ORVwstring().IsLatin1());
    const ORVwstring tooLong(std::u16string(30000, u'\u20AC').c_str());
    EXPECT_EQ(tooLong.uString().length(), 0u) << "90000 bytes do not fit";
}

TEST(LiteralString, ReadsInPlaceAndCopiesOnWrite) {
    static const char kLiteral[] = "literal";
    ORVcustring text(kLiteral);
    const ORVcustring copy(text);
    EXPECT_EQ(text.c_str(false), kLiteral);
    EXPECT_EQ(copy.c_str(false), kLiteral);
    EXPECT_TRUE(text.wString() == u"literal");
    text += "!";
    EXPECT_STREQ(text.c_str(false), "literal!");
    EXPECT_STREQ(kLiteral, "literal");
    ORVcustring other("other");
    other = text;
    EXPECT_STREQ(other.c_str(false), "literal!");
    other = copy;
    EXPECT_EQ(other.c_str(false), kLiteral);
    EXPECT_TRUE(other.wString() == u"literal");
    EXPECT_EQ(ORVcustring("").c_str(true), nullptr);
    EXPECT_EQ(ORVcwstring(u"w").uString().length(), 1u);
}

TEST(LiteralString, PlainCopiesOutliveIt) {
    auto literal = std::make_unique<ORVcustring>("gone soon");
    const ORVustring copy(*literal);
    ORVustring assigned;
    assigned = *literal;
    const ORVustring moved(std::move(static_cast<ORVustring&>(*literal)));
    literal.reset();
    EXPECT_STREQ(copy.c_str(false), "gone soon");
    EXPECT_STREQ(assigned.c_str(false), "gone soon");
    EXPECT_STREQ(moved.c_str(false), "gone soon");
}

TEST(StringPools, ServeSmallBlocksAndTakeThemBack) {
    CORVStringAllocator* const allocator = GetStringAllocator();
    ASSERT_NE(allocator, nullptr);
    EXPECT_EQ(allocator->BlockPool<char>(0), nullptr);
    EXPECT_EQ(allocator->BlockPool<char>(7), nullptr);
    for (std::uint32_t k = 1; k <= 7; ++k) {
        SCOPED_TRACE(k);
        Allocator* const narrow = allocator->BlockPool<char>(k);
        Allocator* const wide = allocator->BlockPool<char16_t>(k);
        const std::uint32_t before = k < 7 ? narrow->LiveCount() + wide->LiveCount() : 0;
        {
            const ORVustring n(std::string(8 * k, 'n').c_str());
            const ORVwstring w(std::u16string(8 * k, u'w').c_str());
            EXPECT_EQ(GutsOf(n)->Source(), k < 7 ? GutsSource::kPool : GutsSource::kHeap);
            if (k < 7) {
                EXPECT_TRUE(narrow->Contains(GutsOf(n)) && wide->Contains(GutsOf(w)));
                EXPECT_EQ(narrow->LiveCount() + wide->LiveCount(), before + 2);
            }
        }
        if (k < 7) {
            EXPECT_EQ(narrow->LiveCount() + wide->LiveCount(), before);
        }
    }
}

TEST(StringPools, ObjectsComeFromTheObjectPool) {
    Allocator& pool = GetStringAllocator()->ObjectPool();
    const std::uint32_t before = pool.LiveCount();
    auto* const text = new ORVustring("object");
    auto* const literal = new ORVcustring("larger than an element");
    EXPECT_TRUE(pool.Contains(text));
    EXPECT_FALSE(pool.Contains(literal));
    text->wString();
    EXPECT_EQ(pool.LiveCount(), before + 2);
    delete text;
    delete literal;
    EXPECT_EQ(pool.LiveCount(), before);
    const FailingHeap failing(1);
    EXPECT_EQ(new ORVcustring("none"), nullptr);
}

TEST(StringPools, StringsOutliveTheirAllocator) {
    auto allocator = std::make_unique<CORVStringAllocator>();
    static void* element;  // stays reachable: the pool leaves its block behind for good
    element = allocator->BlockPool<char>(1)->Alloc();
    std::memset(element, 7, allocator->BlockPool<char>(1)->ElemSize());
    allocator.reset();
    EXPECT_EQ(static_cast<unsigned char*>(element)[8], 7);
}

TEST(StringGutsOperators, DocumentedNewAndDelete) {
    using Guts = StringGuts<char>;
    EXPECT_EQ(Guts::operator new(sizeof(Guts), 0), Guts::Empty());
    auto* const empty = new (0) Guts(std::uint16_t{0});
    EXPECT_EQ(empty->share(), empty);
    empty->release();
    EXPECT_EQ(ORVustring("").c_str(true), nullptr);
    for (const std::int32_t capacity : {8, 48, 56}) {
        auto* const block = new (capacity) Guts(static_cast<std::uint16_t>(capacity));
        EXPECT_EQ(block->Capacity(), static_cast<std::uint32_t>(capacity));
        EXPECT_EQ(block->Length(), 0u);
        EXPECT_EQ(block->share(), block);
        Guts* const own = block->takeback();
        EXPECT_NE(own, block);
        EXPECT_EQ(block->References(), 1u);
        EXPECT_EQ(own->re_alloc(static_cast<std::uint32_t>(capacity)), own);
        EXPECT_EQ(own->re_alloc(65529), nullptr);
        own->release();
        block->release();
    }
}

TEST(StringList, CopiesWhatIsAddedAndSorts) {
    ListMgr<ORVustring> list;
    ORVustring item("copied");
    EXPECT_EQ(list.Add(&item), 1);
    EXPECT_NE(list[0], &item);
    item = "changed";
    EXPECT_STREQ(list[0]->c_str(false), "copied");
    ORVustring first("a"), second("b");
    ORVustring* a = &first;
    ORVustring* b = &second;
    EXPECT_LT(DefaultListOrder<ORVustring>::Compare(&a, &b), 0);
}

TEST(StringThreads, SharedEmptiesAndPoolsFromTwoThreads) {
    const auto work = [] {
        for (int i = 0; i < 2000; ++i) {
            ORVustring empty("");
            ORVustring copy(empty);
            copy.resize(0);
            copy.wString();
            copy += "text";
            copy.wString();
        }
    };
    std::thread other(work);
    work();
    other.join();
}

}  // namespace
}  // namespace dorvutil
