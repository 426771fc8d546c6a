#include "dorvutil/platform/stream.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <random>
#include <sstream>
#include <string>
#include <vector>

#include "dorvutil/platform/posix/path.h"

namespace dorvutil::platform {
namespace {

std::u16string FromNative(const std::string& bytes) {
    std::u16string text(bytes.size(), u'\0');
    text.resize(FromNativePath(bytes.data(), bytes.size(), text.data()));
    return text;
}

class StreamFiles : public testing::Test {
protected:
    void SetUp() override {
        std::string name = (std::filesystem::temp_directory_path() / "dorvutil-stream-XXXXXX").string();
        ASSERT_NE(::mkdtemp(name.data()), nullptr);
        m_folder = FromNative(name) + u"\\";
        m_native = name + "/";
    }
    void TearDown() override { std::filesystem::remove_all(m_native); }

    std::FILE* Open(const std::u16string& name, StreamMode mode) {
        return OpenStream((m_folder + name).c_str(), mode, false);
    }
    // Whether the file could be opened; what it refuses to take is not written.
    bool Write(const std::u16string& name, StreamMode mode, const char* text) {
        std::FILE* const stream = Open(name, mode);
        if (!stream) return false;
        const bool taken = std::fputs(text, stream) >= 0;
        EXPECT_EQ(CommitStream(stream), 0) << taken;
        return std::fclose(stream) == 0;
    }

    std::u16string m_folder;
    std::string m_native;
};

TEST(NativePath, MapsSeparatorsDrivesAndCharacters) {
    static const struct {
        const char* name;
        std::u16string path;
        std::string native;
    } kCases[] = {
        {"separators", u"\\a/b\\c", "/a/b/c"},
        {"drive", u"C:\\maps\\a.map", "/maps/a.map"},
        {"drive of a relative path", u"z:a", "a"},
        {"drive alone", u"C:", ""},
        {"no drive", u"1:\\a", "1:/a"},
        {"colon inside", u"\\a:b", "/a:b"},
        {"empty", u"", ""},
        {"every length of UTF-8", u"\u007F\u0080\u07FF\u0800\uFFFF\U00010000\U0010FFFF",
         "\x7F\xC2\x80\xDF\xBF\xE0\xA0\x80\xEF\xBF\xBF\xF0\x90\x80\x80\xF4\x8F\xBF\xBF"},
        {"lone high surrogate", u"a\xD800", "a\xED\xA0\x80"},
        {"lone low surrogate", u"\xDFFFz", "\xED\xBF\xBFz"},
        {"single byte", u"\xDCFF\xDC80", "\xFF\x80"},
        {"backslash in a name", u"\xDC5C", "\\"},
        {"longest", std::u16string(4092, u'a'), std::string(4092, 'a')},
        {"too long", std::u16string(4096, u'a'), ""},
        {"too long in bytes", std::u16string(2000, u'\u20AC'), ""},
    };
    for (const auto& c : kCases) EXPECT_EQ(c.native, NativePath(c.path.c_str()).c_str()) << c.name;
    EXPECT_STREQ(NativePath(nullptr).c_str(), "");
}

// Names made of pieces that are valid, cut short, overlong or surrogates in every neighbourhood.
TEST(NativePath, AnyBytesOfADirectoryAndAnyCharactersOfANameComeBack) {
    std::vector<std::string> pieces;
    std::istringstream list(
        "/ a \\ \x80 \xC3 \xC3\xA9 \xE2 \xE2\x82 \xED\xA0\x80 \xED\xAF\xBF \xED\xB0\x80 \xED \xED\xB2\x80 \xED\xB1\x9C "
        "\xC0\x80 \xF0\x90\x80\x80 \xF4\x90\x80\x80 \xE0\x80\x80 \xFF \xA0\x80");
    for (std::string piece; list >> piece;) pieces.push_back(piece);
    const auto seed = std::random_device{}();
    SCOPED_TRACE(seed);
    std::mt19937 random(seed);
    for (int i = 0; i < 50'000; ++i) {
        std::string bytes = "/";
        for (auto count = 1 + random() % 6; count > 0; --count) bytes += pieces[random() % pieces.size()];
        const std::u16string text = FromNative(bytes);
        ASSERT_EQ(text.find(u'/'), std::u16string::npos);
        ASSERT_EQ(bytes, NativePath(text.c_str()).c_str());
    }
    for (const std::u16string text :
         {u"\xD800", u"\xDBFF\xD800x", u"\xDC00", u"\xDC7F\xDD00", u"x\xD800\u00E9", u"\xDC80y", u"\xD800\U00010000"}) {
        EXPECT_EQ(FromNative(NativePath(text.c_str()).c_str()), text);
    }
}

TEST_F(StreamFiles, NamesReadFromTheDirectoryOpenTheFile) {
    for (const char* name : {"plain", "back\\slash", "latin\xE9", "wide\xE2\x82\xAC", "sur\xED\xA0\x80"}) {
        SCOPED_TRACE(name);
        if (!std::ofstream(m_native + name)) continue;  // the file system insists on UTF-8
        std::FILE* const stream = Open(FromNative(name), StreamMode::kRead);
        ASSERT_NE(stream, nullptr);
        std::fclose(stream);
    }
}

TEST_F(StreamFiles, ModesTreatOldAndMissingFiles) {
    static constexpr struct {
        const char* name;
        StreamMode mode;
        bool opensMissing;
        const char* after;  // of "old" when "new" is written at once
    } kCases[] = {
        {"read", StreamMode::kRead, false, "old"},
        {"write", StreamMode::kWrite, true, "new"},
        {"append", StreamMode::kAppend, true, "oldnew"},
        {"read and write", StreamMode::kReadWrite, false, "new"},
    };
    for (const auto& c : kCases) {
        SCOPED_TRACE(c.name);
        EXPECT_EQ(Write(u"missing", c.mode, ""), c.opensMissing);
        std::filesystem::remove(m_native + "missing");
        EXPECT_TRUE(Write(u"file", StreamMode::kWrite, "old"));
        EXPECT_TRUE(Write(u"file", c.mode, "new"));
        std::string text;
        std::getline(std::ifstream(m_native + "file"), text);
        EXPECT_EQ(text, c.after);
    }
}

TEST_F(StreamFiles, FoldersAndBadPathsAreRefused) {
    for (const StreamMode mode : {StreamMode::kRead, StreamMode::kWrite, StreamMode::kAppend, StreamMode::kReadWrite}) {
        EXPECT_EQ(OpenStream(m_folder.c_str(), mode, false), nullptr);
        EXPECT_EQ(OpenStream(m_folder.substr(0, m_folder.size() - 1).c_str(), mode, true), nullptr);
        EXPECT_EQ(OpenStream(u"", mode, false), nullptr);
        EXPECT_EQ(OpenStream(nullptr, mode, false), nullptr);
        EXPECT_EQ(Open(u"none\\file", mode), nullptr);
    }
}

TEST_F(StreamFiles, PositionsGoBeyondFourGigabytes) {
    std::FILE* const stream = Open(u"large", StreamMode::kWrite);
    ASSERT_NE(stream, nullptr);
    constexpr std::int64_t kFar = std::int64_t{5} << 32;
    EXPECT_EQ(SeekStream(stream, kFar, SEEK_SET), 0);
    EXPECT_EQ(SeekStream(stream, -1, SEEK_CUR), 0);
    EXPECT_EQ(StreamPosition(stream), kFar - 1);
    EXPECT_NE(SeekStream(stream, -1, SEEK_SET), 0);
    std::fclose(stream);
}

TEST_F(StreamFiles, ByteLocksExcludeOtherStreamsFromTheirRangeOnly) {
    Write(u"file", StreamMode::kWrite, "0123456789");
    std::FILE* const first = Open(u"file", StreamMode::kReadWrite);
    std::FILE* const second = Open(u"file", StreamMode::kReadWrite);
    ASSERT_TRUE(first && second);
    SeekStream(first, 2, SEEK_SET);
    EXPECT_FALSE(LockStreamBytes(first, 0, true, false));
    EXPECT_TRUE(LockStreamBytes(first, 3, true, true));
    static constexpr struct {
        std::int64_t position;
        std::uint32_t count;
        bool free;
    } kRanges[] = {{0, 2, true}, {0, 3, false}, {2, 1, false}, {4, 9, false}, {5, 0xFFFFFFFFu, true}};
    for (const auto& range : kRanges) {
        SeekStream(second, range.position, SEEK_SET);
        EXPECT_EQ(LockStreamBytes(second, range.count, true, false), range.free) << range.position;
        EXPECT_EQ(range.free && LockStreamBytes(second, range.count, false, false), range.free);
    }
    EXPECT_TRUE(LockStreamBytes(first, 3, false, false));
    SeekStream(second, 2, SEEK_SET);
    EXPECT_TRUE(LockStreamBytes(second, 1, true, true));
    std::fclose(first);
    std::fclose(second);
}

TEST_F(StreamFiles, CommitReportsAFailedFlush) {
    std::FILE* const full = OpenStream(u"\\dev\\full", StreamMode::kWrite, false);
    if (!full) GTEST_SKIP() << "no device that is always full";
    std::fputs("x", full);
    EXPECT_EQ(CommitStream(full), -1);
    std::fclose(full);
}

}  // namespace
}  // namespace dorvutil::platform
