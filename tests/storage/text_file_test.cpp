#include "dorvutil/storage/text_file.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "dorvutil/storage/file_api.h"
#include "storage/temp_folder.h"

namespace dorvutil {
namespace {

using namespace std::string_literals;

class TextFile : public TempFolder {};

std::string UtfBytes(const std::u16string& text) {
    return {reinterpret_cast<const char*>(text.data()), 2 * text.size()};
}

TEST(TextMarks, DecideTheTypeAndAreSkipped) {
    static const struct {
        const char* name;
        std::string bytes;
        eFileType type;
        std::int32_t position;
    } kCases[] = {{"UTF-8", "\xEF\xBB\xBFx", eFileTypeUTF8, 3},
                  {"UTF-16", "\xFF\xFEx"s, eFileTypeUTF16, 2},
                  {"plain", "abc", eFileTypePlain, 0},
                  {"half a mark", "\xEF\xBB", eFileTypePlain, 0},
                  {"empty", "", eFileTypePlain, 0}};
    for (const auto& c : kCases) {
        SCOPED_TRACE(c.name);
        COrvFileHandleBase* file =
            FileOpenMemory(c.bytes.data(), static_cast<std::uint32_t>(c.bytes.size()), eAccessRead);
        EXPECT_EQ(StripFileStart(file), c.type);
        EXPECT_EQ(FileTell(file), c.position);
        EXPECT_TRUE(FileClose(file));
    }
    EXPECT_EQ(StripFileStart(nullptr), eFileTypeNone);
}

TEST(TextMarks, LinesOfEitherWidthBecomeUtf8) {
    const std::string wide = UtfBytes(u"Zürich\r\n12345678\n\xD800\n");
    COrvFileHandleBase* file = FileOpenMemory(wide.data(), static_cast<std::uint32_t>(wide.size()), eAccessRead);
    char line[8];
    EXPECT_TRUE(ReadStringFromFile(file, eFileTypeUTF16, line, sizeof line));
    EXPECT_STREQ(line, "Zürich");
    EXPECT_FALSE(ReadStringFromFile(file, eFileTypeUTF16, line, sizeof line)) << "no room for the terminator";
    EXPECT_STREQ(line, "1234567");
    EXPECT_FALSE(ReadStringFromFile(file, eFileTypeUTF16, line, sizeof line)) << "not well-formed";
    EXPECT_FALSE(ReadStringFromFile(file, eFileTypeUTF16, line, sizeof line)) << "the end";
    FileSeek(file, 0, eSeekSet);
    FileResetReadLineBuffer(file);
    EXPECT_TRUE(ReadStringFromFile(file, eFileTypeUTF16, line, sizeof line)) << "from the start again";
    EXPECT_FALSE(ReadStringFromFile(file, eFileTypePlain, nullptr, 8));
    EXPECT_FALSE(ReadStringFromFile(file, eFileTypePlain, line, 0));
    FileClose(file);
    EXPECT_FALSE(ReadStringFromFile(nullptr, eFileTypePlain, line, 8));
    EXPECT_STREQ(line, "");
}

TEST_F(TextFile, NarrowTextBecomesUtf16WhateverTheChunksCut) {
    const std::string filler(32766, 'x');
    const std::u16string wideFiller(32766, u'x');
    const struct {
        const char* name;
        std::string narrow;
        std::u16string wide;
    } cases[] = {{"empty", "", u""},
                 {"a character over the chunk's end", filler + "\xE2\x82\xAC!", wideFiller + u"\u20AC!"},
                 {"a byte that only looks like one", filler + "a\xE9?", wideFiller + u"a\u00E9?"},
                 {"cut off by the end", "ab\xE2\x82", u"ab\u00E2\u0082"},
                 {"zero bytes among Latin-1", "\xE9\0z\xFF"s, u"\u00E9\0z\u00FF"s}};
    for (const auto& c : cases) {
        SCOPED_TRACE(c.name);
        Put("in", c.narrow);
        EXPECT_TRUE(FileANSI2UniCode(Path("in"), Path("out")));
        EXPECT_EQ(Bytes("out"), "\xFF\xFE" + UtfBytes(c.wide));
    }
    EXPECT_FALSE(FileANSI2UniCode(Path("out"), Path("again"))) << "has the mark already";
    EXPECT_FALSE(FileANSI2UniCode(Path("none"), Path("again")));
    EXPECT_FALSE(Has("again"));
    EXPECT_FALSE(FileANSI2UniCode(Path("in"), Path("in")));
    EXPECT_FALSE(FileANSI2UniCode(Path("in"), "\\dev\\full"));
    EXPECT_EQ(Bytes("in").size(), 4u);
}

TEST_F(TextFile, WritesTheMarkOfUtf8AndLoadsWhole) {
    COrvFileHandleBase* file = FileOpenUTF8(Path("t"));
    EXPECT_EQ(FileWrite(file, "text", 4), 4u);
    EXPECT_EQ(FileFlush(file), 0);
    EXPECT_TRUE(FileClose(file));
    EXPECT_EQ(Bytes("t"), "\xEF\xBB\xBFtext");
    EXPECT_EQ(LoadFile(Path("t"), nullptr), 7u);
    void* data = this;
    EXPECT_EQ(LoadFile(Path("none"), &data), 0u);
    EXPECT_EQ(data, nullptr);
    file = FileOpenForRead(Path(""), "t");
    char line[16];
    EXPECT_STREQ(FileReadNextLine(file, line, sizeof line), "\xEF\xBB\xBFtext");
    EXPECT_EQ(FileReadNextLine(file, line, sizeof line), nullptr);
    EXPECT_EQ(FileWrite(file, "x", 1), 0u) << "opened for reading";
    EXPECT_TRUE(FileClose(file));
    EXPECT_FALSE(FileClose(file));
    EXPECT_EQ(FileLength(file), -1);
}

}  // namespace
}  // namespace dorvutil
