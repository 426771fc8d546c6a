#include <gtest/gtest.h>

#include <string>

#include "dorvutil/storage/memory_handle.h"
#include "text/string_support.h"

namespace dorvutil {
namespace {

// A file in memory, open at its start.
struct File : COrvFileHandleMemory {
    explicit File(const std::string& bytes = "")
        : COrvFileHandleMemory(bytes.data(), static_cast<std::uint32_t>(bytes.size()), true, eAccessReadWrite) {
        Open();
    }
    std::string Bytes() { return std::string(ByteArray().Data(), ByteArray().Count()); }
};

template <class S>
std::string Flat(const S& text) {
    File file;
    EXPECT_TRUE(text.FlattenMe(&file));
    return file.Bytes();
}

TEST(StringFlatten, WritesLengthAndCharacters) {
    EXPECT_EQ(Flat(ORVustring("hi")), std::string("\x02\x00hi", 4));
    EXPECT_EQ(Flat(ORVwstring(u"h€")), std::string("\x02\x00h\x00\xAC\x20", 6));
    EXPECT_EQ(Flat(ORVustring()), std::string("\0\0", 2));
    EXPECT_EQ(Flat(ORVustring(std::string(300, 'x').c_str())).substr(0, 2), "\x2C\x01");
    EXPECT_FALSE(ORVustring("x").FlattenMe(nullptr));
}

template <class S>
class StringUnflatten : public StringTest<S> {
public:
    static std::string FileOf(const std::string& ascii) {
        const auto units = StringTest<S>::Units(ascii);
        return std::string(reinterpret_cast<const char*>(units.data()), units.size() * sizeof(UnitOf<S>));
    }
};
TYPED_TEST_SUITE(StringUnflatten, BothWidths);

TYPED_TEST(StringUnflatten, ReadsBackAndSurvivesEveryTruncation) {
    const std::string whole = Flat(this->M("some text"));
    for (std::uint32_t cut = 0; cut <= whole.size(); ++cut) {
        SCOPED_TRACE(cut);
        File file(whole.substr(0, cut));
        TypeParam text = this->M("the text before this one");
        const TypeParam sharer(text);
        EXPECT_EQ(text.UnflattenMe(&file), cut == whole.size());
        const std::size_t read = cut < 2 ? 0 : (cut - 2) / sizeof(UnitOf<TypeParam>);
        EXPECT_EQ(Plain(text), cut < 2 ? "the text before this one" : std::string("some text").substr(0, read));
        EXPECT_EQ(Plain(sharer), "the text before this one");
    }
}

TYPED_TEST(StringUnflatten, LengthsOutOfBounds) {
    for (const int low : {0xFF, 0xF9, 0xF8, 0}) {
        File file({static_cast<char>(low), static_cast<char>(low == 0 ? 0 : 0xFF)});
        TypeParam text = this->M("kept");
        EXPECT_EQ(text.UnflattenMe(&file), low == 0);
        EXPECT_EQ(Plain(text), low == 0xF8 ? "" : "kept") << low;
        EXPECT_FALSE(text.UnflattenMe(nullptr));
    }
}

TYPED_TEST(StringUnflatten, LinesAndTexts) {
    File file(this->FileOf("first\r\n\nth\rird\nlast"));
    for (const char* const line : {"first", "", "third", "last"})
        EXPECT_EQ(Plain(TypeParam::ReadNextLine(&file)), line);
    EXPECT_EQ(Raw(TypeParam::ReadNextLine(&file), true), nullptr) << "empty, not null";
    file.Seek(0, eSeekSet);
    EXPECT_EQ(Plain(TypeParam::ReadStringFromFile(&file, 8)), "first\r\n\n");
    EXPECT_EQ(Plain(TypeParam::ReadStringFromFile(&file, 0)), "");
    EXPECT_EQ(Plain(TypeParam::ReadStringFromFile(&file, 0x7FFFFFFF)), "th\rird\nlast");
    EXPECT_EQ(Plain(TypeParam::ReadStringFromFile(nullptr, 5)) + Plain(TypeParam::ReadNextLine(nullptr)), "");
    File longLines(this->FileOf(std::string(70000, 'x') + "\n" + std::string(103, '\r') + "end\n"));
    EXPECT_EQ(TypeParam::ReadNextLine(&longLines).length(), 65528u);
    EXPECT_EQ(Plain(TypeParam::ReadNextLine(&longLines)), "\r\r\rend") << "a hundred carriage returns are dropped";
}

TEST(StringWrite, PrintsToFiles) {
    File file;
    EXPECT_TRUE(ORVustring::printf(&file, "%d-%s", 5, "x") && ORVustring("!").printf(&file));
    EXPECT_TRUE(ORVwstring::printf(&file, u"%s", "w") && ORVwstring(u"z").printf(&file));
    EXPECT_EQ(file.Bytes(), std::string("5-x!w\0z\0", 8));
    COrvFileHandleMemory closed(eAccessReadWrite);
    EXPECT_FALSE(ORVustring("").printf(&file) || ORVustring("x").printf(static_cast<COrvFileHandleBase*>(nullptr)));
    EXPECT_FALSE(ORVustring("x").printf(&closed) || ORVustring::printf(&closed, "x"));
}

}  // namespace
}  // namespace dorvutil
