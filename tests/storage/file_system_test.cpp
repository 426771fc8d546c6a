#include "dorvutil/storage/file_system.h"

#include <fcntl.h>
#include <gtest/gtest.h>
#include <sys/stat.h>

#include <algorithm>
#include <string>
#include <vector>

#include "dorvutil/messaging/progress.h"
#include "dorvutil/storage/file_api.h"
#include "dorvutil/storage/file_copy.h"
#include "dorvutil/storage/file_list.h"
#include "dorvutil/storage/file_name.h"
#include "dorvutil/storage/folders.h"
#include "storage/temp_folder.h"

namespace dorvutil {
namespace {

class FileSystem : public TempFolder {
protected:
    // Sorted, with the test's folder cut off.
    std::vector<std::string> Names(const ListMgr<ORVustring>& list) const {
        const std::string folder = Path("").c_str();
        std::vector<std::string> names;
        for (std::uint32_t i = 0; i < list.Count(); ++i) {
            std::string name = list[i]->c_str();
            names.push_back(name.starts_with(folder) ? name.substr(folder.size()) : name);
        }
        std::sort(names.begin(), names.end());
        return names;
    }
    std::vector<std::string> Listed(const char* pattern, const char* exclude, std::uint32_t flags) const {
        ListMgr<ORVustring> out;
        const bool found = FileList(out, Path(""), pattern, exclude, nullptr, flags, nullptr);
        EXPECT_EQ(found, out.Count() != 0);
        return Names(out);
    }
};
using NameList = std::vector<std::string>;

TEST_F(FileSystem, CreatesFindsMovesAndRemoves) {
    EXPECT_TRUE(FileEnsureExistence(Path("x/y/z.log")));
    EXPECT_TRUE(Has("x/y/z.log"));
    EXPECT_TRUE(FileExists(Path("x/y/z.log")));
    EXPECT_TRUE(OrvFileName(Path("x/y/z.log")).Exists());
    EXPECT_FALSE(FileExists(Path("x/y")));
    EXPECT_TRUE(FileDoesDirExist(Path("x/y/")));
    EXPECT_FALSE(FileDoesDirExist(""));
    EXPECT_FALSE(FileErase(Path("x/y")));
    EXPECT_TRUE(FileCreateDir(ORVustring(" ") += Path("x/new/deep \t")));
    EXPECT_TRUE(Has("x/new/deep"));
    EXPECT_FALSE(FileCreateDir(Path("x/y/z.log/sub"))) << "below a file";
    EXPECT_EQ(FileOpen(Path("x/y/z.log/sub/f"), eAccessWrite, eBinary), nullptr);
    EXPECT_EQ(FileOpen(Path("x/y"), eAccessAppend, eBinary), nullptr) << "a folder";
    Put("full", "12345");
    EXPECT_EQ(FileLength(Path("full")), 5);
    EXPECT_EQ(FileLength(Path("none")), 0);
    EXPECT_EQ(FileMove(Path("full"), Path("x/y/z.log")), 0) << "nothing is replaced";
    EXPECT_NE(FileMove(Path("full"), Path("x/moved")), 0);
    EXPECT_EQ(Bytes("x/moved"), "12345");
    EXPECT_FALSE(Has("full"));
    EXPECT_FALSE(FileRemoveDir(Path("x"), false, false));
    EXPECT_FALSE(FileRemoveDir(Path("x"), true, false));
    EXPECT_FALSE(Has("x/moved"));
    EXPECT_TRUE(FileRemoveDir(Path("x"), true, true));
    EXPECT_FALSE(Has("x"));
    EXPECT_EQ(FileAttributes(Path("x")), -1);
}

TEST_F(FileSystem, DeletesWhatMatchesAndNeverThroughLinks) {
    static const struct {
        const char* pattern;
        bool recurse, result;
        NameList left;
    } kCases[] = {
        {"*.tmp", false, true, {"a.txt", "d.tmp/c.tmp", "d.tmp/k", "noext"}},
        {"*.tmp", true, true, {"a.txt", "d.tmp/k", "noext"}},
        {"*", true, true, {}},
        {"*.*", false, true, {"d.tmp/c.tmp", "d.tmp/k"}},
        {"?.t*", false, true, {"d.tmp/c.tmp", "d.tmp/k", "noext"}},
        {"*.png", true, false, {"a.txt", "b.tmp", "d.tmp/c.tmp", "d.tmp/k", "noext"}},
    };
    for (const auto& c : kCases) {
        SCOPED_TRACE(c.pattern);
        for (const char* name : {"in/a.txt", "in/b.tmp", "in/noext", "in/d.tmp/c.tmp", "in/d.tmp/k", "outside/c.tmp"})
            Put(name, "1");
        chmod((m_native + "in/b.tmp").c_str(), 0444);
        std::filesystem::create_directory_symlink(m_native + "outside", m_native + "in/link.t");
        EXPECT_EQ(FileDeleteMultipleFiles(Path("in"), c.pattern, c.recurse), c.result);
        EXPECT_TRUE(Has("outside/c.tmp"));
        NameList left;
        for (const auto& entry : std::filesystem::recursive_directory_iterator(m_native + "in")) {
            if (entry.is_regular_file()) left.push_back(entry.path().lexically_relative(m_native + "in"));
        }
        std::sort(left.begin(), left.end());
        EXPECT_EQ(left, c.left);
        std::filesystem::remove_all(m_native + "in");
    }
    EXPECT_FALSE(FileDeleteMultipleFiles("", "*", false));
    EXPECT_FALSE(FileDeleteMultipleFiles(Path("none"), "*", true));
}

TEST_F(FileSystem, ListsByFlagsPatternAndExclusion) {
    for (const char* name : {"a.txt", "b.txt", "c.bin", "sub/d.txt"}) Put(name, "1");
    Put("empty.txt", "");
    Put("sub/empty", "");
    std::filesystem::create_directory_symlink(m_native, m_native + "sub/loop");
    EXPECT_EQ(Listed("", "", 1), (NameList{"a.txt", "b.txt", "c.bin"}));
    EXPECT_EQ(Listed(".txt", "b.txt", 8), (NameList{"a.txt", "empty.txt"}));
    EXPECT_EQ(Listed("", "", 9), (NameList{"a.txt", "b.txt", "c.bin"}));
    EXPECT_EQ(Listed("", "", 2 | 4), (NameList{"sub"}));
    EXPECT_EQ(Listed(".none", "", 1), NameList{});
    ListMgr<ORVustring> all;
    EXPECT_TRUE(FileListRecursive(all, Path(""), 8));
    EXPECT_EQ(Names(all), (NameList{"a.txt", "b.txt", "c.bin", "empty.txt", "sub\\d.txt"}));
    EXPECT_FALSE(AreFilesInDir(Path(""), all)) << "full paths";
    ListMgr<ORVustring> some;
    FileList(some, Path(""), ".txt");
    EXPECT_TRUE(AreFilesInDir(Path(""), some));
    some.Flush();
    EXPECT_FALSE(FileListRecursive(some, Path("none"), 8));
}

TEST_F(FileSystem, DatesAreThoseOfTheLastChange) {
    Put("old", "1");
    const timespec times[2] = {{0, 0}, {951'827'696, 0}};  // 29 February 2000, 12:34:56
    utimensat(AT_FDCWD, (m_native + "old").c_str(), times, 0);
    for (bool withTime : {false, true}) {
        ListMgr<ORVustring> names, dates;
        EXPECT_TRUE(FileList(names, Path(""), "", "", &dates, eListFiles, &withTime));
        ASSERT_EQ(dates.Count(), 1u);
        EXPECT_STREQ(dates[0]->c_str(), withTime ? "2000/2/29-12:34:56" : "2/29/2000");
    }
}

TEST_F(FileSystem, NamesOfAnyBytesComeBackAndOpen) {
    const NameList names = {"Z\xC3\xBCrich",   "latin\xE9",    "\xFF\xFE", "back\\slash",
                            "esc\xED\xB1\x9C", "\xED\xB3\xAD", "a b"};
    for (const std::string& name : names) Put(name, name);
    ListMgr<ORVustring> listed;
    FileList(listed, Path(""));
    ASSERT_EQ(listed.Count(), names.size());
    for (std::uint32_t i = 0; i < listed.Count(); ++i) {
        void* data = nullptr;
        ORVustring path = Path("");
        path += *listed[i];
        const std::uint32_t size = LoadFile(path, &data);
        const std::string bytes(static_cast<char*>(data), size);
        free(data);
        EXPECT_NE(std::find(names.begin(), names.end(), bytes), names.end());
        if (bytes.find('\\') == bytes.npos && bytes.find('\xED') == bytes.npos) {
            EXPECT_STREQ(listed[i]->c_str(), bytes.c_str());
        }
        EXPECT_TRUE(FileErase(path));
    }
    EXPECT_TRUE(std::filesystem::is_empty(m_native));
}

int g_steps = 0;
int g_cancelAfter = 0;  // questions
std::int32_t Watch(int code, int, const char*) {
    if (code == kProgressStep) ++g_steps;
    return code == kProgressAskCancelled && --g_cancelAfter == 0 ? 1 : 0;
}

TEST_F(FileSystem, CopiesWithProgressOnlyWhatIsNeeded) {
    static constexpr struct {
        const char *name, *from, *to;
        bool force;
        std::uint32_t block;  // 0: FileCopy
        int cancelAfter, result, steps;
        const char* target;  // first letter and whether it is there
    } kCases[] = {
        {"same size, no force", "big", "same", false, 0, 0, 1, 2, "s"},
        {"same size, forced", "big", "same", true, 0, 0, 1, 2, "b"},
        {"other size", "big", "small", false, 0, 0, 1, 2, "b"},
        {"by blocks of the caller's", "big", "small", false, 200'000, 0, 1, 6, "b"},
        {"cancelled", "big", "new", false, 0, 3, 2, 0, "b"},
        {"missing source", "none", "small", true, 0, 0, 0, 0, "t"},
        {"onto itself", "big", "big", true, 0, 0, 1, 2, "b"},
        {"onto a folder", "big", "dir/", true, 0, 0, 0, 0, ""},
    };
    for (const auto& c : kCases) {
        SCOPED_TRACE(c.name);
        Put("big", std::string(1'000'000, 'b'));
        Put("same", std::string(1'000'000, 's'));
        Put("small", "t");
        Put("dir/x", "x");
        g_steps = 0;
        g_cancelAfter = c.cancelAfter;
        CB_Dialog dialog(Watch);
        dialog.SetNumSteps(100);
        const ORVustring to = Path(c.to);
        EXPECT_EQ(c.block == 0 ? FileCopy(Path(c.from), to, c.force, &dialog)
                               : FileCopySetBufSize(Path(c.from), to, c.force, c.block, &dialog),
                  c.result);
        EXPECT_EQ(g_steps, c.steps);
        if (*c.target) {
            EXPECT_EQ(Bytes(c.to).substr(0, 1), c.target);
        }
        if (c.result == 2) {
            EXPECT_EQ(FileLength(to), 3 * 8192);
        }
    }
    EXPECT_EQ(FileCopySetBufSize(Path("big"), "\\dev\\full", true, 5000, nullptr), 0) << "disk full";
}

TEST_F(FileSystem, CopiesTrees) {
    for (const char* name : {"from/a", "from/s/b", "from/s/t/c"}) Put(name, name);
    Put("from/s/empty", "");
    EXPECT_TRUE(FileCopyDir(Path("from"), Path("to"), true, true));
    EXPECT_EQ(Bytes("to/s/t/c"), "from/s/t/c");
    EXPECT_FALSE(Has("to/s/empty"));
    EXPECT_FALSE(FileCopyDir(Path("none"), Path("to"), true, true));
    EXPECT_FALSE(FileCopyDir(Path("from"), Path("from/s/inner"), true, true));
    EXPECT_FALSE(Has("from/s/inner/s/inner/s"));
    std::filesystem::remove_all(m_native + "from/s/inner");
    EXPECT_EQ(FileCopyRecursive(Path("from"), Path("other")), 1);
    EXPECT_EQ(Bytes("other/s/t/c"), "from/s/t/c");
    EXPECT_EQ(Bytes("other/a"), "from/a");
    EXPECT_EQ(FileCopyRecursive(Path("none"), Path("other")), 0);
}

TEST(Folders, AreTextOfThisProgramsPlace) {
    char path[300] = "";
    GetThisDirectory(path, sizeof path);
    const std::string here = path;
    EXPECT_TRUE(here.ends_with("\\")) << here;
    GetRuntimeDirectory(reinterpret_cast<const void*>(&GetThisDirectory), path, sizeof path);
    EXPECT_EQ(here, path) << "linked into this program";
    GetLoggingDirectory(path, sizeof path);
    EXPECT_EQ(here, path);
    GetThisDirectory(path, 4);
    EXPECT_EQ(path, here.substr(0, 3));
    GetDataRootDirectory(path, sizeof path);
    EXPECT_STREQ(path, "roadlyn");
    EXPECT_FALSE(GetStoragePath(nullptr, 9));
}

}  // namespace
}  // namespace dorvutil
