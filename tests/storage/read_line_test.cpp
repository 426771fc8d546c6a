#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "dorvutil/storage/file_buffer.h"
#include "dorvutil/storage/memory_handle.h"

namespace dorvutil {
namespace {

constexpr COrvFileOptions kBlocksOf16{16, 16};

// A handle over `text` whose line block holds 16 characters.
COrvReadBuffer SmallBlocks(const std::string& text) {
    auto* const memory =
        new COrvFileHandleMemory(text.data(), static_cast<std::uint32_t>(text.size()), true, eAccessRead);
    memory->Open();
    return COrvReadBuffer(memory, "", eAccessRead, eBinary, 0, &kBlocksOf16);
}

std::vector<std::string> Lines(COrvFileHandleBase& handle, std::uint32_t size) {
    std::vector<std::string> lines;
    std::string buffer(size, '#');
    while (handle.ReadLine(buffer.data(), size)) lines.emplace_back(buffer.c_str());
    return lines;
}

TEST(ReadLine, EndsLinesAndKeepsTheirTexts) {
    static const struct {
        const char* name;
        std::string text;
        std::uint32_t size;
        std::vector<std::string> lines;
    } kCases[] = {
        {"nothing", "", 20, {}},
        {"line feeds, carriage returns, no final feed", "one\r\ntwo\nthree", 20, {"one", "two", "three"}},
        {"empty lines", "\n\r\nx\n", 20, {"", "", "x"}},
        {"a carriage return inside stays", "a\rb\n", 20, {"a\rb"}},
        {"what does not fit is skipped", "abcdefghij\nnext\n", 8, {"abcdefg", "next"}},
        {"exactly fitting", "abcdefg\nnext\n", 8, {"abcdefg", "next"}},
        {"a final line that does not fit", "ab\ncdefghijklm", 4, {"ab", "cde"}},
        {"0xFF ends a line where no feed is unread",
         "ab\xFF"
         "cd",
         20,
         {"ab", "cd"}},
        {"but not before an unread feed",
         "ab\xFF"
         "cd\nef",
         20,
         {"ab\xFF"
          "cd",
          "ef"}},
        {"over many blocks", "0123456789\n0123456789\n0123456789\n", 20, {"0123456789", "0123456789", "0123456789"}},
        {"longer than a block: in pieces", "0123456789abcdefXYZ\nn\n", 40, {"0123456789abcdef", "XYZ", "n"}},
    };
    for (const auto& c : kCases) {
        SCOPED_TRACE(c.name);
        auto handle = SmallBlocks(c.text);
        EXPECT_EQ(Lines(handle, c.size), c.lines);
    }
}

TEST(ReadLine, ReadsUnitsOfSixteenBits) {
    const char16_t text[] =
        u"Zürich\r\nŁódź\n\xFFFF"
        u"x";
    COrvFileHandleMemory handle(text, sizeof text - 2, true, eAccessRead);
    char16_t line[16];
    EXPECT_EQ(handle.ReadLine(line, 16), nullptr) << "not open";
    handle.Open();
    EXPECT_EQ(handle.ReadLine(line, 16), std::u16string(u"Zürich"));
    EXPECT_EQ(handle.ReadLine(line, 3), std::u16string(u"Łó"));
    EXPECT_EQ(handle.ReadLine(line, 16), std::u16string());
    EXPECT_EQ(handle.ReadLine(line, 16), std::u16string(u"x"));
    EXPECT_EQ(handle.ReadLine(line, 16), nullptr);
}

TEST(ReadLine, StartsAfreshAfterAReset) {
    auto handle = SmallBlocks("first\nsecond\n");
    char line[16];
    EXPECT_STREQ(handle.ReadLine(line, 16), "first");
    EXPECT_EQ(handle.ReadLine(line, 0), nullptr);
    handle.Seek(0, eSeekSet);
    handle.ResetReadLineBuffer();
    EXPECT_STREQ(handle.ReadLine(line, 16), "first");
    EXPECT_STREQ(handle.ReadLine(line, 16), "second");
}

}  // namespace
}  // namespace dorvutil
