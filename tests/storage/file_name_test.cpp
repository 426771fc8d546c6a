#include "dorvutil/storage/file_name.h"

#include <gtest/gtest.h>

#include <string>

#include "dorvutil/storage/path_text.h"

namespace dorvutil {
namespace {

// Everything that is asked of a name, on one line.
std::string Anatomy(const OrvFileName& name) {
    std::string line;
    for (const ORVustring& part : {name.GetFullPath(false), name.GetFileName(true), name.GetFileName(false),
                                   name.GetExtension(), name.GetFolderName(), name.GetParentDirectory(false),
                                   name.GetParentDirectory(true), name.GetParentDirectoryPath()}) {
        line += std::string(part.c_str()) + "|";
    }
    return line;
}

TEST(FileName, SplitsAFullPath) {
    static constexpr struct {
        const char *full, *anatomy;
    } kCases[] = {
        {"C:/maps/eu.map", "C:\\maps\\|eu.map|eu|map|maps|maps|C:|C:\\|"},
        {"C:\\maps\\eu\\", "C:\\maps\\|eu|eu||maps|maps|C:|C:\\|"},
        {"a/b\\c\\d.tar.gz", "a\\b\\c\\|d.tar.gz|d.tar|gz|c|c|b|a\\b\\|"},
        {"readme", "|readme|readme||||||"},
        {"maps\\", "maps\\||||maps|maps|||"},
        {"\\eu", "\\|eu|eu||||||"},
        {"\\", "\\||||||||"},
        {"", "||||||||"},
        {"a\\.hidden", "a\\|.hidden||hidden|a|a|||"},
    };
    for (const auto& c : kCases) {
        const OrvFileName name{ORVustring(c.full)};
        EXPECT_EQ(Anatomy(name), c.anatomy) << c.full;
        EXPECT_EQ(name.IsDirectory(), name.GetFileName(true).empty());
        EXPECT_TRUE(OrvFileName(name) == name);
    }
}

TEST(FileName, ChangesItsParts) {
    OrvFileName name("C:/maps", "a.b.map");
    EXPECT_STREQ(name.GetFullPath(true).c_str(), "C:/maps\\a.b.map");
    name.NormalizeSlashes();
    static constexpr struct {
        const char *extension, *result;
    } kExtensions[] = {{"txt", "a.b.txt"}, {".TXT", "a.b.TXT"}, {"", "a.b"}, {"", "a"}, {"x", "a.x"}};
    for (const auto& c : kExtensions) {
        name.SetExtension(c.extension);
        EXPECT_STREQ(name.GetFileName(true).c_str(), c.result);
    }
    ListMgr<ORVustring> parts;
    name.GetPath(parts, true);
    ASSERT_EQ(parts.Count(), 3u);
    const OrvFileName joined(parts, "n");
    EXPECT_STREQ(joined.GetFullPath(true).c_str(), "C:\\maps\\a.x\\n");
    OrvFileName parent("old", "n");
    EXPECT_TRUE(joined.GetParentDirectory(parent, true));
    EXPECT_STREQ(parent.GetFullPath(true).c_str(), "maps\\");
    EXPECT_FALSE(OrvFileName(ORVustring("bare")).GetParentDirectory(parent, false));
    EXPECT_STREQ(parent.GetFullPath(true).c_str(), "maps\\");
    name.AppendFolder("EU");
    name.ToLower();
    EXPECT_STREQ(name.GetFullPath(true).c_str(), "c:\\maps\\eu\\");
    EXPECT_NE(name.HashValue(), parent.HashValue());
    name.Clear();
    EXPECT_EQ(name.HashValue(), 0u);
    EXPECT_TRUE(name == OrvFileName());
}

TEST(FileName, OrdersByRootThenFullPathDescending) {
    static constexpr const char* kOrdered[] = {"z\\", "y\\a.bin", "x\\a.txt", "x\\b.txt"};
    for (int i = 0; i < 4; ++i) {
        for (int j = 0; j < 4; ++j) {
            const OrvFileName names[] = {OrvFileName(ORVustring(kOrdered[i])), OrvFileName(ORVustring(kOrdered[j]))};
            const OrvFileName* const pointers[] = {&names[0], &names[1]};
            const int order = CompareOrvFileNamesByRoot(&pointers[0], &pointers[1]);
            EXPECT_EQ((order > 0) - (order < 0), (i > j) - (i < j)) << kOrdered[i] << " " << kOrdered[j];
        }
    }
}

TEST(PathText, AppendsASlashWhereThereIsRoom) {
    static constexpr struct {
        const char *path, *result;
        std::int32_t size;
    } kCases[] = {{"C:\\data  ", "C:\\data\\", 20},
                  {"C:\\data/", "C:\\data/", 20},
                  {"C:\\data", "C:\\data", 8},
                  {"C:\\data", "C:\\data\\", 9},
                  {"", "\\", -1},
                  {"C:\\data ", "C:\\data", 0}};
    for (const auto& c : kCases) {
        char path[20];
        std::snprintf(path, sizeof path, "%s", c.path);
        FileAppendSlash(path, c.size);
        EXPECT_STREQ(path, c.result);
    }
    FileAppendSlash(nullptr, 5);
}

TEST(PathText, CleansStripsAndMeasures) {
    static constexpr struct {
        const char *name, *result;
        std::uint32_t most;
    } kNames[] = {
        {"my file-1.txt", "my_file1txt", 99}, {"a b'\\/:*?\"<>|&.-c", "a_bc", 99}, {"abcdef", "abc", 3}, {"", "", 3}};
    for (const auto& c : kNames) {
        std::string name = c.name;
        FileNameCleanup(name.data(), c.most);
        EXPECT_STREQ(name.c_str(), c.result);
    }
    char text[] = " \t a b \r\n";
    EXPECT_EQ(FileStripName(text), 3);
    EXPECT_STREQ(text, "a b");
    char blank[] = " \n ";
    EXPECT_EQ(FileStripName(blank), 0);
    static constexpr struct {
        std::uint32_t bytes;
        const char* text;
    } kSizes[] = {{0, ""},
                  {1, "0.0 KB"},
                  {1536, "1.5 KB"},
                  {1048576, "1024.0 KB"},
                  {1048577, "1.0 MB"},
                  {1073741824, "1024.0 MB"},
                  {1073741825, "1.0 GB"},
                  {0xFFFFFFFFu, "4.0 GB"}};
    for (const auto& c : kSizes) EXPECT_STREQ(GetFileSizeStr(c.bytes).c_str(), c.text);
    char16_t path[] = u"a\\b/c";
    TruncatePathToLastSlash(path, 5);
    EXPECT_EQ(path, std::u16string(u"a\\b/"));
    TruncatePathToLastSlash(path, 2);
    EXPECT_EQ(path, std::u16string(u"a\\"));
    TruncatePathToLastSlash(path, 0);
    EXPECT_EQ(path, std::u16string());
}

}  // namespace
}  // namespace dorvutil
