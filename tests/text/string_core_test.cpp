#include <gtest/gtest.h>

#include <cstring>
#include <memory>
#include <thread>
#include <utility>
#include <vector>

#include "dorvutil/memory/list.h"
#include "dorvutil/text/const_string.h"
#include "dorvutil/text/string_allocator.h"
#include "memory/failing_heap.h"
#include "messaging/registry_down.h"
#include "text/string_support.h"

namespace dorvutil {
namespace {

constexpr std::uint32_t kLongest = 65528;

// The storage under a string, as a derived class sees it.
template <class T>
struct Opened : TOrvString<T> {
    using TOrvString<T>::m_guts;
    static const StringGuts<T>* Of(const TOrvString<T>& text) { return static_cast<const Opened&>(text).m_guts; }
};

template <class T>
const StringGuts<T>* GutsOf(const TOrvString<T>& text) {
    return Opened<T>::Of(text);
}

template <class S>
class StringCore : public StringTest<S> {
public:
    // Everything behind the text is zero, and the capacity is a multiple of 8.
    static void ExpectSound(const S& text, std::uint32_t capacity) {
        const StringGuts<UnitOf<S>>* const guts = GutsOf(text);
        EXPECT_EQ(guts->Capacity(), capacity);
        for (std::uint32_t i = guts->Length(); i <= capacity; ++i) ASSERT_EQ(guts->Data()[i], UnitOf<S>{}) << i;
    }
};
TYPED_TEST_SUITE(StringCore, BothWidths);

TYPED_TEST(StringCore, CapacityIsTheLengthRoundedUpToEight) {
    static constexpr std::uint32_t kLengths[] = {1, 5, 8, 9, 48, 49, 1000, 1001, kLongest};
    for (const std::uint32_t length : kLengths) {
        SCOPED_TRACE(length);
        const TypeParam text = this->M(std::string(length, 'x'));
        EXPECT_EQ(text.length(), length);
        this->ExpectSound(text, (length + 7) / 8 * 8);
    }
    TypeParam grown = this->M("fives");
    this->ExpectSound(grown, 8);
    this->ExpectSound(grown += this->U("four"), 16);
}

TYPED_TEST(StringCore, TooLongLeavesTheContent) {
    const auto* const longest = this->U(std::string(kLongest, 'x'));
    TypeParam text = this->M("old");
    text = this->U(std::string(kLongest + 1, 'x'));
    EXPECT_FALSE(text.append(longest) || text.append(longest, 0x7FFF'FFFF));
    EXPECT_FALSE(text.resize(kLongest + 1) || text.resize(0xFFFF'FFFFu));
    text.insert(60000, longest);
    EXPECT_EQ(Plain(text), "old");
    text = longest;
    EXPECT_FALSE(text.append(UnitOf<TypeParam>('y')));
    EXPECT_EQ(text.length(), kLongest);
}

TYPED_TEST(StringCore, NullAndEmptyAreToldApartOnlyByTheFlag) {
    using T = UnitOf<TypeParam>;
    const TypeParam null, empty(&TypeParam::m_NULL), fromNull(static_cast<const T*>(nullptr)), zero(T{});
    for (const TypeParam* const text : {&null, &empty, &fromNull, &zero}) {
        EXPECT_TRUE(text->empty() && text->is_null() && text->length() == 0);
        ASSERT_NE(Raw(*text, false), nullptr);
        EXPECT_EQ(*Raw(*text, false), T{});
        EXPECT_EQ(Raw(*text, true) != nullptr, text == &null);
    }
    EXPECT_EQ(GutsOf<T>(empty), GetStringAllocator()->EmptyGuts<T>());
    EXPECT_EQ(GutsOf<T>(zero), GetStringAllocator()->EmptyGuts<T>());
}

TYPED_TEST(StringCore, CopiesShareUntilWrittenAndAllocateNothing) {
    TypeParam text = this->M("shared");
    const FailingHeap counted(0);
    TypeParam copy(text), assigned;
    assigned = copy;
    const TypeParam moved(std::move(assigned));
    EXPECT_EQ(FailingHeap::Calls(), 0);
    EXPECT_EQ(GutsOf(moved), GutsOf(text));
    EXPECT_EQ(GutsOf(text)->References(), 3u);
    copy += UnitOf<TypeParam>('!');
    EXPECT_EQ(Plain(copy) + Plain(text), "shared!shared");
    EXPECT_EQ(GutsOf(text)->References(), 2u);
    EXPECT_TRUE(text.ThreadReady());
    EXPECT_EQ(GutsOf(text)->References() + GutsOf(moved)->References(), 2u);
    EXPECT_EQ(Plain(moved), "shared");
}

TYPED_TEST(StringCore, The256thSharerGetsItsOwnBlock) {
    const TypeParam text = this->M("crowd");
    const std::vector<TypeParam> sharers(254, text);
    const TypeParam last(text);
    EXPECT_EQ(GutsOf(text)->References(), 255u);
    EXPECT_NE(GutsOf(last), GutsOf(text));
    EXPECT_EQ(Plain(last), "crowd");
}

TYPED_TEST(StringCore, ResizeAddsZerosAndCuts) {
    TypeParam text = this->M("abc");
    const TypeParam other(text);
    static constexpr std::string_view kCases[] = {{"abc\0\0\0\0\0\0\0", 10}, {"ab"}, {"ab\0\0\0\0\0\0", 8}, {""}};
    for (const std::string_view expected : kCases) {
        EXPECT_TRUE(text.resize(static_cast<std::uint32_t>(expected.size())));
        EXPECT_EQ(Plain(text), expected);
        this->ExpectSound(text, GutsOf(text)->Capacity());
    }
    EXPECT_EQ(Plain(other), "abc");
}

TYPED_TEST(StringCore, SourcesInsideTheStringItself) {
    TypeParam text = this->M("0123456789");
    text = Raw(text);
    text.append(Raw(text), 10);
    EXPECT_EQ(Plain(text), "01234567890123456789");
    text = Raw(text) + 15;
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
    this->ExpectSound(text, GutsOf(text)->Capacity());
}

// Each operation has a string that shares its block, so that it must allocate. The n-th allocation and all behind it
// fail, for every n until the operation gets through.
TYPED_TEST(StringCore, FailingAllocationsLeaveTheContent) {
    using T = UnitOf<TypeParam>;
    static const auto more = this->Units(std::string(100, 'm'));
    static const TypeParam object = this->M(std::string(100, 'o'));
    static constexpr struct {
        const char* name;
        void (*edit)(TypeParam&);
    } kEdits[] = {
        {"assign", [](TypeParam& s) { s = more.c_str(); }},
        {"append", [](TypeParam& s) { s.append(more.c_str()); }},
        {"append a unit", [](TypeParam& s) { s += T('x'); }},
        {"grow", [](TypeParam& s) { s.resize(200); }},
        {"cut", [](TypeParam& s) { s.resize(55); }},
        {"insert", [](TypeParam& s) { s.insert(70, object); }},
        {"replace a unit", [](TypeParam& s) { s.replace(1, T('x')); }},
        {"replace a part", [](TypeParam& s) { s.replace(50, 8, more.c_str()); }},
        {"replace all", [](TypeParam& s) { s.replaceallchar(more.c_str() + 99, more.c_str(), 2); }},
        {"delete", [](TypeParam& s) { s.deleteAt(3); }},
        {"to a part", [](TypeParam& s) { s.substr_self(1, -1); }},
        {"to upper", [](TypeParam& s) { s.to_upper(); }},
        {"capitals", [](TypeParam& s) { s.cap_all_words(); }},
        {"take for oneself", [](TypeParam& s) { s.ThreadReady(); }},
    };
    const std::string before = " " + std::string(60, 'm');
    for (const auto& c : kEdits) {
        bool through = false;
        for (int n = 1; !through; ++n) {
            SCOPED_TRACE(std::string(c.name) + ", failing from " + std::to_string(n));
            TypeParam text = this->M(before);
            const TypeParam sharer(text);
            {
                const FailingHeap failing(n);
                c.edit(text);
                through = FailingHeap::Calls() < n;
            }
            ASSERT_TRUE(n > 1 || !through) << "allocates nothing";
            EXPECT_TRUE(through || Plain(text) == before);
            EXPECT_EQ(Plain(sharer), before);
            EXPECT_NE(GutsOf(text) == GutsOf(sharer), through);
        }
    }
}

TYPED_TEST(StringCore, FailedOtherWidthIsEmptyAndTriedAgain) {
    const TypeParam text = this->M(std::string(100, 'x'));
    const auto otherLength = [&text] {
        if constexpr (std::is_same_v<TypeParam, ORVustring>)
            return text.wString().length();
        else
            return text.uString().length();
    };
    std::uint32_t length = 0;
    for (int n = 1; length == 0; ++n) {
        const FailingHeap failing(n);
        length = otherLength();
        EXPECT_EQ(length, FailingHeap::Calls() < n ? 100u : 0u) << n;
    }
}

TYPED_TEST(StringCore, AWholeLifeWithoutTheRegistry) {
    const auto live = [this] {
        TypeParam text = this->M("made");
        TypeParam copy(text);
        for (int i = 0; i < 20; ++i) copy += this->U(" more");
        EXPECT_EQ(copy.length(), 104u);
        EXPECT_EQ(copy.find(this->U("re more"), 90), 92);
        EXPECT_EQ(Plain(text), "made");
        return std::make_unique<TypeParam>(copy.substr(0, 9));
    };
    const auto before = live();
    std::unique_ptr<TypeParam> without;
    {
        const testing_support::RegistryDown registry;
        ASSERT_EQ(GetStringAllocator(), nullptr);
        without = live();
        *before += this->U("!");
        EXPECT_EQ(Plain(*before) + Plain(*without), "made more!made more");
    }
    *without += this->U("?");
    EXPECT_EQ(Plain(*live()) + Plain(*without), "made moremade more?");
}

TEST(OtherWidth, FollowsEveryChange) {
    ORVustring text("abc");
    EXPECT_TRUE(text.wString() == u"abc");
    {
        const FailingHeap counted(0);
        EXPECT_TRUE(text.wString() == u"abc");
        EXPECT_EQ(FailingHeap::Calls(), 0) << "converted twice";
    }
    text += "d";
    const ORVustring sharer(text);
    EXPECT_TRUE(sharer.wString() == u"abcd" && text.wString() == u"abcd") << "the sharer converts first";
    text.to_upper();
    EXPECT_STREQ(text.wString().uString().c_str(false), "ABCD");
    text += "e";
    const TOrvString<char> sliced(text);
    const ORVustring back(sliced);
    EXPECT_TRUE(back.wString() == u"ABCDe" && text.wString() == u"ABCDe");
    const TOrvString<char> taken(std::move(text));
    EXPECT_EQ(text.wString().length(), 0u);
    text = "";
    EXPECT_TRUE(text.wc_str(true) == nullptr && *text.wc_str(false) == 0);
}

TEST(OtherWidth, ConvertsExactly) {
    static constexpr struct {
        const char* narrow;
        const char16_t* wide;
    } kCases[] = {{"plain", u"plain"}, {"été", u"été"}, {"€", u"€"}, {"a😀z", u"a😀z"}, {"😀😁", u"😀😁"}};
    for (const auto& c : kCases) {
        SCOPED_TRACE(c.narrow);
        EXPECT_TRUE(ORVwstring(ORVustring(c.narrow)) == c.wide && ORVwstring(c.narrow, -1) == c.wide);
        EXPECT_TRUE(ORVustring(ORVwstring(c.wide)) == c.narrow && ORVustring(c.wide, -1) == c.narrow);
    }
    EXPECT_TRUE(ORVustring("\xE9t\xE9").wString() == u"été") << "not UTF-8: Latin-1";
    EXPECT_STREQ(ORVustring(u"a€\xD800"
                            "b",
                            -1)
                     .c_str(false),
                 "a€")
        << "prefix of an unpaired surrogate";
    EXPECT_TRUE(ORVustring(u'é') == "é" && ORVwstring('x') == u"x");
    EXPECT_TRUE(ORVustring("ÿ").IsLatin1() && ORVustring().IsLatin1() && ORVwstring().IsLatin1());
    EXPECT_FALSE(ORVustring("€").IsLatin1());
    const ORVwstring tooLong(std::u16string(30000, u'€').c_str());
    EXPECT_EQ(tooLong.uString().length(), 0u) << "90000 bytes do not fit";
}

TEST(LiteralString, ReadsInPlaceAndCopiesOnWrite) {
    static const char kLiteral[] = "literal";
    ORVustring plain, taken;
    {
        ORVcustring text(kLiteral), other("other");
        const ORVcustring copy(text);
        EXPECT_TRUE(text.c_str(false) == kLiteral && copy.c_str(false) == kLiteral);
        plain = text;
        taken = std::move(static_cast<ORVustring&>(other));
        text += "!";
        other = text;
        EXPECT_TRUE(other == "literal!" && text.wString() == u"literal!");
        other = copy;
        EXPECT_TRUE(other.c_str(false) == kLiteral && other.wString() == u"literal");
    }
    EXPECT_EQ(Plain(plain) + Plain(taken), "literalother") << "plain copies outlive it";
    EXPECT_TRUE(ORVcustring("").c_str(true) == nullptr && ORVcwstring(u"w").uString().length() == 1);
}

TEST(StringPools, ServeSmallBlocksAndTakeThemBack) {
    CORVStringAllocator* const allocator = GetStringAllocator();
    ASSERT_NE(allocator, nullptr);
    EXPECT_TRUE(allocator->BlockPool<char>(0) == nullptr && allocator->BlockPool<char>(7) == nullptr);
    EXPECT_EQ(GutsOf(ORVustring(std::string(49, 'n').c_str()))->Source(), GutsSource::kHeap);
    for (std::uint32_t k = 1; k < 7; ++k) {
        SCOPED_TRACE(k);
        Allocator* const narrow = allocator->BlockPool<char>(k);
        Allocator* const wide = allocator->BlockPool<char16_t>(k);
        const std::uint32_t before = narrow->LiveCount() + wide->LiveCount();
        {
            const ORVustring n(std::string(8 * k, 'n').c_str());
            const ORVwstring w(std::u16string(8 * k, u'w').c_str());
            EXPECT_TRUE(narrow->Contains(GutsOf(n)) && wide->Contains(GutsOf(w)));
            EXPECT_EQ(narrow->LiveCount() + wide->LiveCount(), before + 2);
        }
        EXPECT_EQ(narrow->LiveCount() + wide->LiveCount(), before);
    }
}

TEST(StringPools, ObjectsComeFromTheObjectPool) {
    Allocator& pool = GetStringAllocator()->ObjectPool();
    const std::uint32_t before = pool.LiveCount();
    auto text = std::make_unique<ORVustring>("object");
    const auto literal = std::make_unique<ORVcustring>("larger than an element");
    EXPECT_TRUE(pool.Contains(text.get()) && !pool.Contains(literal.get()));
    text->wString();
    EXPECT_EQ(pool.LiveCount(), before + 2);
    text.reset();
    EXPECT_EQ(pool.LiveCount(), before);
    const FailingHeap failing(1);
    EXPECT_EQ(new ORVcustring("none"), nullptr);
}

TEST(StringGutsOperators, DocumentedNewAndDelete) {
    using Guts = StringGuts<char>;
    auto* const empty = new (0) Guts(std::uint16_t{0});
    EXPECT_EQ(empty, Guts::Empty());
    EXPECT_EQ(empty->share(), empty);
    empty->release();
    for (const std::int32_t capacity : {8, 48, 56}) {
        auto* const block = new (capacity) Guts(static_cast<std::uint16_t>(capacity));
        EXPECT_EQ(block->Capacity(), static_cast<std::uint32_t>(capacity));
        Guts* const own = block->share()->takeback();
        EXPECT_TRUE(own != block && block->References() == 1);
        EXPECT_EQ(own->re_alloc(static_cast<std::uint32_t>(capacity)), own);
        EXPECT_EQ(own->re_alloc(65529), nullptr);
        own->release();
        block->release();
    }
}

TEST(StringList, CopiesWhatIsAdded) {
    ListMgr<ORVustring> list;
    ORVustring item("copied");
    EXPECT_EQ(list.Add(&item), 1);
    item = "changed";
    EXPECT_STREQ(list[0]->c_str(false), "copied");
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
