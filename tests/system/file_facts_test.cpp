#include <gtest/gtest.h>

#include <cstdio>
#include <cstring>
#include <fstream>
#include <random>
#include <string>

#include "dorvutil/frame/accessors.h"
#include "dorvutil/platform/host.h"
#include "dorvutil/platform/posix/kernel_files.h"
#include "dorvutil/platform/posix/mounts.h"
#include "dorvutil/system/system_info.h"
#include "system/scratch.h"

// The version this test binary carries.
asm(".pushsection .note.package, \"a\", %note\n"
    ".balign 4\n"
    ".long 4, 2f - 1f, 0xcafe1a7e\n"
    ".asciz \"FDO\"\n"
    "1: .asciz \"{\\\"name\\\":\\\"version\\\", \\\"version\\\" : \\\"7.12.3-4.fc9\\\"}\"\n"
    "2: .balign 4\n"
    ".popsection\n");

namespace dorvutil {
namespace {

using testing_support::Scratch;

std::string VersionOf(const std::string& path) {
    char16_t text[32] = u"not emptied";
    const bool found = System_GetFileVersion(ORVwstring(path.c_str(), -1).T_str(), text, 32);
    EXPECT_EQ(found, text[0] != u'\0');
    return ORVustring(text, -1).c_str();
}

// A Windows program of headers, two sections and a version resource. The places are those of PE32 or PE32+.
std::string WindowsProgram(bool wide) {
    std::string bytes(1024, '\0');
    const auto put = [&](std::size_t at, std::uint32_t value) { std::memcpy(&bytes[at], &value, sizeof(value)); };
    const std::size_t optional = 0x40 + 24, folders = optional + (wide ? 112 : 96), section = optional + 280;
    bytes.replace(0, 2, "MZ");
    put(0x3C, 0x40);
    bytes.replace(0x40, 2, "PE");
    put(0x40 + 6, 2);  // sections, the first of 512 bytes at 0x1000
    put(section - 40 + 12, 0x1000);
    put(section - 40 + 16, 512);
    put(0x40 + 20, 240);  // size of the optional header
    put(optional, wide ? 0x20B : 0x10B);
    put(folders - 4, 16);
    put(folders + 16, 0x2000);  // address of the resources
    put(section + 12, 0x2000);
    put(section + 16, 512);
    put(section + 20, 512);
    for (const std::uint32_t level : {0u, 1u, 2u}) {  // folders of one entry each, the first behind another kind
        const std::size_t folder = 512 + level * 32;
        put(folder + 12, level == 0 ? 2u << 16 : 1u << 16);
        const std::size_t entry = folder + (level == 0 ? 24 : 16);
        put(entry, level == 0 ? 16 : 7);
        put(entry + 4, level == 2 ? 96 : 0x80000000u + (level + 1) * 32);
    }
    put(512 + 96, 0x2080);
    put(512 + 128 + 40, 0xFEEF04BD);
    put(512 + 128 + 48, 0x00040003);
    put(512 + 128 + 52, 0xFFFF0001);
    return bytes;
}

TEST(FileVersion, IsTheOneTheFileCarries) {
    EXPECT_EQ(VersionOf(ORVustring(platform::ModulePath().c_str(), -1).c_str()), "7.12.3.4");
    EXPECT_STREQ(GetSystemMgr()->GetAppVersion().c_str(), "7.12.3.4");
    const Scratch scratch;
    EXPECT_EQ(VersionOf(scratch.Write("narrow.exe", WindowsProgram(false))), "4.3.65535.1");
    EXPECT_EQ(VersionOf(scratch.Write("wide.exe", WindowsProgram(true))), "4.3.65535.1");
    EXPECT_EQ(VersionOf(scratch.Write("libx.so.1.22.333", "")), "1.22.333.0");
    EXPECT_EQ(VersionOf(scratch.Write("libx.so.99999", "")), "65535.0.0.0");
    EXPECT_EQ(VersionOf(scratch.Write("libx.so", "\177ELF")), "");
    EXPECT_EQ(VersionOf(scratch.Write("libx.so.x", "text")), "");
    EXPECT_EQ(VersionOf("/tmp"), "");
    EXPECT_EQ(VersionOf("\\no such file"), "");
    char16_t text[4];
    EXPECT_FALSE(System_GetFileVersion(nullptr, text, 4));
    EXPECT_FALSE(System_GetFileVersion(u"x", nullptr, 0));
}

// Whole files with a few bytes damaged, or cut: no answer is wrong, a crash is.
TEST(FileVersion, SurvivesDamagedFiles) {
    std::ifstream self("/proc/self/exe", std::ios::binary);
    std::string elf(4096, '\0');
    self.read(elf.data(), static_cast<std::streamsize>(elf.size()));
    const std::uint32_t seed = std::random_device{}();
    SCOPED_TRACE(seed);
    std::mt19937 random(seed);
    const Scratch scratch;
    for (const std::string& bytes : {elf, WindowsProgram(false), WindowsProgram(true)}) {
        int whole = 0;
        for (int round = 0; round < 400; ++round) {
            std::string damaged = bytes.substr(0, round % 8 == 0 ? random() % bytes.size() : bytes.size());
            for (int i = 0; i < round % 5 && !damaged.empty(); ++i) {
                damaged[random() % std::min<std::size_t>(damaged.size(), 1024)] = static_cast<char>(random());
            }
            whole += !VersionOf(scratch.Write("damaged", damaged)).empty();
        }
        EXPECT_GT(whole, 0) << "the version lies in what was damaged";
    }
}

TEST(Display, IsTheFirstThatIsConnectedAndMayBeTouched) {
    const Scratch scratch;
    const std::string folder = scratch.Path("drm"), depth = scratch.Write("depth", "24\n");
    platform::DisplayFacts display{-1, -1, -1};
    EXPECT_FALSE(platform::DisplayIn(folder.c_str(), depth.c_str(), display));
    scratch.Write("drm/card0-DP-1/status", "disconnected\n");
    scratch.Write("drm/card0-DP-1/modes", "640x480\n");
    scratch.Write("drm/card0-DP-2/status", "connected\n");
    for (const char* wrong : {"", "\n", "1920\n", "1920x\n", "x1080\n", "99999x1\n", "99999999999999999999x1\n"}) {
        scratch.Write("drm/card0-DP-2/modes", wrong);
        EXPECT_FALSE(platform::DisplayIn(folder.c_str(), depth.c_str(), display)) << wrong;
    }
    EXPECT_EQ(display.width, -1);
    scratch.Write("drm/card0-DP-2/modes", "1920x1080\n1024x768\n");
    EXPECT_TRUE(platform::DisplayIn(folder.c_str(), depth.c_str(), display));
    EXPECT_EQ(display.width * 10000 + display.height, 19201080);
    EXPECT_EQ(display.bitsPerPixel, 24);
    EXPECT_TRUE(platform::DisplayIn(folder.c_str(), "/no such file", display));
    EXPECT_EQ(display.bitsPerPixel, 0);

    const std::string mouse = "N: Name=\"Mouse\"\nB: PROP=1\nB: PROP=\nB: PROP=x\n";
    EXPECT_FALSE(platform::HasTouchscreenIn(scratch.Write("mouse", mouse).c_str()));
    EXPECT_TRUE(platform::HasTouchscreenIn(scratch.Write("both", mouse + "B: PROP=2\n").c_str()));
}

TEST(NetworkPath, IsThatOfTheInnermostMount) {
    static constexpr char kMounts[] =
        "20 1 8:1 / / rw - ext4 /dev/sda1 rw\n"
        "22 21 8:2 / /mnt/maps/local rw - ext4 /dev/sdb1 rw\n"
        "21 20 0:40 / /mnt/maps rw,relatime shared:7 - cifs //server/map\\040data rw\n"
        "23 20 0:41 /sub /mnt/nfs rw master:1 shared:2 - nfs4 host:/export/a rw\n"
        "24 20 0:42 / /mnt/odd rw - nfs nocolon rw\n"
        "damaged\n"
        "25 20 0:43 / /mnt/cut\n";
    static constexpr struct {
        const char* path;
        const char* expected;  // empty: not on the network
    } cases[] = {
        {"/mnt/maps/eu/a.dat", "//server/map data/eu/a.dat"},
        {"/mnt/maps", "//server/map data"},
        {"/mnt/maps2/a", ""},
        {"/mnt/maps/local/a", ""},
        {"/mnt/nfs/x", "//host/export/a/sub/x"},
        {"/mnt/odd/x", ""},
        {"/mnt/cut/x", ""},
        {"/home/x", ""},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.path);
        char text[64];
        const auto ask = [&](std::size_t size) {
            std::FILE* const mounts = ::fmemopen(const_cast<char*>(kMounts), sizeof(kMounts) - 1, "r");
            return platform::NetworkFormOf(c.path, mounts, text, size);
        };
        EXPECT_FALSE(ask(std::strlen(c.expected))) << "no room for the end mark";
        ASSERT_EQ(ask(sizeof(text)), *c.expected != 0);
        if (*c.expected) {
            EXPECT_STREQ(text, c.expected);
        }
    }
    char16_t text[64];
    EXPECT_FALSE(System_GetUNCPath(u"\\proc\\self", text, 64));
    EXPECT_FALSE(System_GetUNCPath(nullptr, text, 64));
}

TEST(MemoryMap, ShowsTheFileUntilItIsUnmapped) {
    const Scratch scratch;
    std::uint64_t size = 0;
    std::string path = scratch.Write("mapped", "some bytes");
    for (char& c : path) c = c == '/' ? '\\' : c;
    void* const view = System_MemoryMapFile(path.c_str(), &size);
    ASSERT_NE(view, nullptr);
    EXPECT_EQ(std::string(static_cast<const char*>(view), size), "some bytes");
    void* const second = System_MemoryMapFile(path.c_str());
    EXPECT_TRUE(System_MemoryUnMapFile(second));
    EXPECT_EQ(*static_cast<const char*>(view), 's');
    EXPECT_TRUE(System_MemoryUnMapFile(view));
    EXPECT_FALSE(System_MemoryUnMapFile(view)) << "it is gone";
    EXPECT_FALSE(System_MemoryUnMapFile(nullptr));
    for (const std::string& refused : {scratch.Write("empty", ""), std::string("/tmp"), std::string("/no/such")}) {
        EXPECT_EQ(System_MemoryMapFile(refused.c_str(), &size), nullptr) << refused;
    }
    EXPECT_EQ(System_MemoryMapFile(nullptr), nullptr);
    EXPECT_EQ(size, 10u) << "a failed call leaves it alone";
}

}  // namespace
}  // namespace dorvutil
