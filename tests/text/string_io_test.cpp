#include <gtest/gtest.h>

#include <string>

#include "dorvutil/storage/memory_handle.h"
#include "text/string_support.h"

namespace dorvutil {
namespace {

COrvFileHandleMemory& Opened(COrvFileHandleMemory& handle) {
    handle.Open();
    return handle;
}

std::string Bytes(COrvFileHandleMemory& handle) {
    return std::string(handle.ByteArray().Data(), handle.ByteArray().Count());
}

template <class S>
std::string Flat(const S& text) {
    COrvFileHandleMemory file(eAccessReadWrite);
    EXPECT_TRUE(text.FlattenMe(&Opened(file)));
    return Bytes(file);
}

TEST(StringFlatten, WritesLengthAndCharacters) {
    EXPECT_EQ(Flat(ORVustring("hi")), std::string("\x02\x00hi", 4));
    EXPECT_EQ(Flat(ORVwstring(u"h\u20AC")), std::string("\x02\x00h\x00\xAC\x20", 6));
    EXPECT_EQ(Flat(ORVustring()), std::string("\0\0", 2));
    EXPECT_EQ(Flat(ORVustring(std::string(300, 'x').c_str())).substr(0, 2), "\x2C\x01");
    EXPECT_FALSE(ORVustring("x").FlattenMe(nullptr));
}

template <class S>
class StringUnflatten : public testing::Test {};
TYPED_TEST_SUITE(StringUnflatten, BothWidths);

TYPED_TEST(StringUnflatten, ReadsBackAndSurvivesEveryTruncation) {
    const std::string whole = Flat(Make<TypeParam>("some text"));
    for (std::uint32_t cut = 0; cut <= whole.size(); ++cut) {
        SCOPED_TRACE(cut);
        COrvFileHandleMemory file(whole.data(), cut, true, eAccessRead);
        TypeParam text = Make<TypeParam>("the text before this one");
        const TypeParam sharer(text);
        EXPECT_EQ(text.UnflattenMe(&Opened(file)), cut == whole.size());
        const std::size_t read = cut < 2 ? 0 : (cut - 2) / sizeof(UnitOf<TypeParam>);
        EXPECT_EQ(Plain(text), cut < 2 ? "the text before this one" : std::string("some text").substr(0, read));
        EXPECT_EQ(Plain(sharer), "the text before this one");
    }
}

TYPED_TEST(StringUnflatten, LengthsOutOfBounds) {
    for (const char* const header : {"\xFF\xFF", "\xF9\xFF", "\xF8\xFF", "\0\0"}) {
        const auto low = static_cast<unsigned char>(header[0]);
        COrvFileHandleMemory file(header, 2, true, eAccessRead);
        TypeParam text = Make<TypeParam>("kept");
        EXPECT_EQ(text.UnflattenMe(&Opened(file)), low == 0);
        EXPECT_EQ(Plain(text), low == 0xF8 ? "" : "kept") << low;
    }
    TypeParam text = Make<TypeParam>("kept");
    EXPECT_FALSE(text.UnflattenMe(nullptr));
    EXPECT_EQ(Plain(text), "kept");
}

template <class S>
std::string FileOf(const std::string& ascii) {
    const auto units = Units<UnitOf<S>>(ascii);
    return std::string(reinterpret_cast<const char*>(units.data()), units.size() * sizeof(UnitOf<S>));
}

TYPED_TEST(StringUnflatten, LinesAndTexts) {
    const std::string bytes = FileOf<TypeParam>("first\r\n\nth\rird\nlast") + "\x01";
    COrvFileHandleMemory file(bytes.data(), static_cast<std::uint32_t>(bytes.size() - 1), true, eAccessRead);
    Opened(file);
    EXPECT_EQ(Plain(TypeParam::ReadNextLine(&file)), "first");
    EXPECT_EQ(Plain(TypeParam::ReadNextLine(&file)), "");
    EXPECT_EQ(Plain(TypeParam::ReadNextLine(&file)), "third");
    EXPECT_EQ(Plain(TypeParam::ReadNextLine(&file)), "last");
    EXPECT_EQ(Raw(TypeParam::ReadNextLine(&file), true), nullptr) << "empty, not null";
    file.Seek(0, eSeekSet);
    EXPECT_EQ(Plain(TypeParam::ReadStringFromFile(&file, 8)), "first\r\n\n");
    EXPECT_EQ(Plain(TypeParam::ReadStringFromFile(&file, 0)), "");
    EXPECT_EQ(Plain(TypeParam::ReadStringFromFile(&file, 0x7FFFFFFF)), "th\rird\nlast");
    EXPECT_EQ(Plain(TypeParam::ReadStringFromFile(nullptr, 5)), "");
    EXPECT_EQ(Plain(TypeParam::ReadNextLine(nullptr)), "");
}

TYPED_TEST(StringUnflatten, LongLinesAndManyCarriageReturns) {
    const std::string bytes = FileOf<TypeParam>(std::string(70000, 'x') + "\n" + std::string(103, '\r') + "end\n");
    COrvFileHandleMemory file(bytes.data(), static_cast<std::uint32_t>(bytes.size()), true, eAccessRead);
    Opened(file);
    EXPECT_EQ(TypeParam::ReadNextLine(&file).length(), 65528u);
    EXPECT_EQ(Plain(TypeParam::ReadNextLine(&file)), "\r\r\rend");
}

TEST(StringWrite, PrintsToFiles) {
    COrvFileHandleMemory file(eAccessReadWrite);
    EXPECT_TRUE(ORVustring::printf(&Opened(file), "%d-%s", 5, "x"));
    EXPECT_TRUE(ORVustring("!").printf(&file));
    EXPECT_TRUE(ORVwstring::printf(&file, u"%s", "w"));
    EXPECT_TRUE(ORVwstring(u"z").printf(&file));
    EXPECT_EQ(Bytes(file), std::string("5-x!w\0z\0", 8));
    EXPECT_FALSE(ORVustring("").printf(&file));
    EXPECT_FALSE(ORVustring("x").printf(static_cast<COrvFileHandleBase*>(nullptr)));
    COrvFileHandleMemory closed(eAccessReadWrite);
    EXPECT_FALSE(ORVustring("x").printf(&closed));
    EXPECT_FALSE(ORVustring::printf(&closed, "x"));
}

}  // namespace
}  // namespace dorvutil
