#include "dorvutil/platform/descriptor.h"

#include <gtest/gtest.h>

#include <cstdio>
#include <cstring>
#include <filesystem>
#include <random>
#include <string>

#include "dorvutil/platform/posix/path.h"

namespace dorvutil::platform {
namespace {

std::u16string FromNative(const std::string& bytes) {
    std::u16string text(bytes.size(), u'\0');
    text.resize(FromNativePath(bytes.data(), bytes.size(), text.data()));
    return text;
}

std::string NarrowOf(const std::string& bytes) {
    std::string text(3 * bytes.size(), '\0');
    text.resize(FromNativePath(bytes.data(), bytes.size(), text.data()));
    return text;
}

class DescriptorFiles : public testing::Test {
protected:
    void SetUp() override {
        std::string name = (std::filesystem::temp_directory_path() / "dorvutil-descriptor-XXXXXX").string();
        ASSERT_NE(::mkdtemp(name.data()), nullptr);
        m_folder = NarrowOf(name) + "\\";
        m_native = name + "/";
    }
    void TearDown() override { std::filesystem::remove_all(m_native); }

    Descriptor Open(const std::string& name, OpenMode mode) {
        return OpenDescriptor((m_folder + name).c_str(), mode, false);
    }
    void Write(const std::string& name, const char* text) {
        const Descriptor file = Open(name, OpenMode::kWrite);
        ASSERT_NE(file, kNoDescriptor);
        EXPECT_EQ(WriteDescriptor(file, text, std::strlen(text)), static_cast<std::int64_t>(std::strlen(text)));
        EXPECT_TRUE(CommitDescriptor(file));
        EXPECT_TRUE(CloseDescriptor(file));
    }

    std::string m_folder;
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
        {"lone low surrogate",
         u"\xDFFF"
         u"b",
         "\xED\xBF\xBF"
         "b"},
        {"single byte", u"\xDCFF\xDC80", "\xFF\x80"},
        {"backslash in a name", u"\xDC5C", "\\"},
        {"longest", std::u16string(4092, u'a'), std::string(4092, 'a')},
        {"too long", std::u16string(4096, u'a'), ""},
        {"too long in bytes", std::u16string(2000, u'\u20AC'), ""},
    };
    for (const auto& c : kCases) EXPECT_EQ(c.native, NativePath(c.path.c_str()).c_str()) << c.name;
    EXPECT_STREQ(NativePath(static_cast<const char16_t*>(nullptr)).c_str(), "");
}

TEST(NativePath, LoneSurrogatesComeBack) {
    for (const std::u16string text :
         {u"\xD800", u"\xDBFF\xD800x", u"\xDC00", u"\xDC7F\xDD00", u"x\xD800\u00E9", u"\xDC80y", u"\xD800\U00010000"}) {
        EXPECT_EQ(FromNative(NativePath(text.c_str()).c_str()), text);
    }
}

// Names made of pieces that are valid, cut short, overlong or surrogates in every neighbourhood.
TEST(NativePath, AnyBytesOfADirectoryComeBack) {
    static const std::string kPieces[] = {"a",
                                          "\\",
                                          "\x80",
                                          "\xC3",
                                          "\xC3\xA9",
                                          "\xE2",
                                          "\xE2\x82",
                                          "\xED\xA0\x80",
                                          "\xED\xAF\xBF",
                                          "\xED\xB0\x80",
                                          "\xED",
                                          "\xED\xB2\x80",
                                          "\xED\xB1\x9C",
                                          "\xED\xB3\xAD",
                                          "\xC0\x80",
                                          "\xF0\x90\x80\x80",
                                          "\xF4\x90\x80\x80",
                                          "\xE0\x80\x80",
                                          "\xFF",
                                          "\xA0\x80",
                                          "/"};
    const auto seed = std::random_device{}();
    SCOPED_TRACE(seed);
    std::mt19937 random(seed);
    for (int i = 0; i < 50'000; ++i) {
        std::string bytes = "/";
        for (auto pieces = 1 + random() % 6; pieces > 0; --pieces) bytes += kPieces[random() % std::size(kPieces)];
        const std::u16string text = FromNative(bytes);
        ASSERT_EQ(text.find(u'/'), std::u16string::npos);
        ASSERT_EQ(bytes, NativePath(text.c_str()).c_str());
        const std::string narrow = NarrowOf(bytes);
        ASSERT_EQ(narrow.find('/'), std::string::npos);
        ASSERT_EQ(bytes, NativePath(narrow.c_str()).c_str());
    }
}

TEST_F(DescriptorFiles, NamesReadFromTheDirectoryOpenTheFile) {
    for (const char* name : {"plain", "back\\slash", "latin\xE9", "wide\xE2\x82\xAC", "sur\xED\xA0\x80"}) {
        SCOPED_TRACE(name);
        std::FILE* const made = std::fopen((m_native + name).c_str(), "w");
        if (!made) continue;  // the file system insists on UTF-8
        std::fclose(made);
        const Descriptor file = Open(NarrowOf(name), OpenMode::kRead);
        ASSERT_NE(file, kNoDescriptor);
        CloseDescriptor(file);
    }
}

TEST_F(DescriptorFiles, ModesTreatOldAndMissingFiles) {
    static const struct {
        const char* name;
        OpenMode mode;
        bool opensMissing;
        bool writes;
        const char* after;  // of "old" when "new" is written at once
    } kCases[] = {
        {"read", OpenMode::kRead, false, false, "old"},
        {"write", OpenMode::kWrite, true, true, "new"},
        {"append", OpenMode::kAppend, true, true, "oldnew"},
        {"read and write", OpenMode::kReadWrite, false, true, "new"},
    };
    for (const auto& c : kCases) {
        SCOPED_TRACE(c.name);
        Descriptor file = Open("missing", c.mode);
        EXPECT_EQ(file != kNoDescriptor, c.opensMissing);
        if (file != kNoDescriptor) CloseDescriptor(file);
        std::filesystem::remove(m_native + "missing");
        Write("file", "old");
        file = Open("file", c.mode);
        ASSERT_NE(file, kNoDescriptor);
        EXPECT_EQ(WriteDescriptor(file, "new", 3) == 3, c.writes);
        CloseDescriptor(file);
        file = Open("file", OpenMode::kRead);
        char text[16] = {};
        ReadDescriptor(file, text, sizeof(text) - 1);
        EXPECT_STREQ(text, c.after);
        CloseDescriptor(file);
    }
}

TEST_F(DescriptorFiles, FoldersAndBadPathsAreRefused) {
    for (const OpenMode mode : {OpenMode::kRead, OpenMode::kWrite, OpenMode::kAppend, OpenMode::kReadWrite}) {
        EXPECT_EQ(OpenDescriptor(m_folder.c_str(), mode, false), kNoDescriptor);
        EXPECT_EQ(OpenDescriptor(m_folder.substr(0, m_folder.size() - 1).c_str(), mode, true), kNoDescriptor);
        EXPECT_EQ(OpenDescriptor("", mode, false), kNoDescriptor);
        EXPECT_EQ(OpenDescriptor(nullptr, mode, false), kNoDescriptor);
        EXPECT_EQ(Open("none\\file", mode), kNoDescriptor);
    }
}

TEST_F(DescriptorFiles, PositionsGoBeyondFourGigabytes) {
    const Descriptor file = Open("large", OpenMode::kWrite);
    ASSERT_NE(file, kNoDescriptor);
    constexpr std::int64_t kFar = std::int64_t{5} << 32;
    EXPECT_EQ(SeekDescriptor(file, kFar, SeekOrigin::kStart), kFar);
    EXPECT_EQ(SeekDescriptor(file, -1, SeekOrigin::kCurrent), kFar - 1);
    EXPECT_EQ(SeekDescriptor(file, -1, SeekOrigin::kStart), -1);
    EXPECT_EQ(SeekDescriptor(file, 0, SeekOrigin::kCurrent), kFar - 1);
    EXPECT_EQ(WriteDescriptor(file, "x", 1), 1);
    EXPECT_EQ(DescriptorLength(file), kFar);
    CloseDescriptor(file);
}

TEST_F(DescriptorFiles, ByteLocksExcludeOtherDescriptorsFromTheirRangeOnly) {
    Write("file", "0123456789");
    const Descriptor first = Open("file", OpenMode::kReadWrite);
    const Descriptor second = Open("file", OpenMode::kReadWrite);
    EXPECT_FALSE(LockDescriptorBytes(first, 2, 0, true, false));
    EXPECT_FALSE(LockDescriptorBytes(first, -1, 1, true, false));
    EXPECT_TRUE(LockDescriptorBytes(first, 2, 3, true, true));
    static constexpr struct {
        std::int64_t position;
        std::uint32_t count;
        bool free;
    } kRanges[] = {{0, 2, true}, {0, 3, false}, {2, 1, false}, {4, 9, false}, {5, 0xFFFFFFFFu, true}};
    for (const auto& range : kRanges) {
        EXPECT_EQ(LockDescriptorBytes(second, range.position, range.count, true, false), range.free) << range.position;
        if (range.free) {
            EXPECT_TRUE(LockDescriptorBytes(second, range.position, range.count, false, false));
        }
    }
    EXPECT_TRUE(LockDescriptorBytes(first, 2, 3, false, false));
    EXPECT_TRUE(LockDescriptorBytes(second, 2, 1, true, true));
    CloseDescriptor(first);
    CloseDescriptor(second);
}

}  // namespace
}  // namespace dorvutil::platform
