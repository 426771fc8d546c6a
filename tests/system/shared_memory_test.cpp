#include "dorvutil/system/shared_memory.h"

#include <gtest/gtest.h>
#include <signal.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cstring>
#include <optional>
#include <set>
#include <string>
#include <vector>

#include "dorvutil/concurrency/event.h"
#include "dorvutil/system/system_info.h"

namespace dorvutil {
namespace {

constexpr std::uint32_t kPatience = 20'000;  // milliseconds a lost signal may cost a test
constexpr std::uint32_t kSize = 0x40000;     // large enough for two processes to meet inside one write

std::string NameOf(const char* topic) { return "dorvutil test " + std::to_string(::getpid()) + topic; }

struct Block : SharedMemory {
    explicit Block(const std::string& name, MemoryMap_Protection protection = eMemoryMapReadWrite)
        : SharedMemory(name.c_str(), (name + " lock").c_str(), kSize, protection) {}
};

// Runs `work` in a process of its own, and kills it once it has signalled `reached`.
template <class F>
void RunAndKill(const event& reached, F work) {
    const pid_t child = ::fork();
    if (child == 0) {
        work();
        ::_exit(0);
    }
    EXPECT_EQ(reached.WaitForEvent(kPatience), 1);
    ::kill(child, SIGKILL);
    ::waitpid(child, nullptr, 0);
}

// Writes rows of one letter, which no reader may see mixed, until it is killed.
[[noreturn]] void WriteForEver(const std::string& name, const event& reached) {
    Block block(name);
    std::vector<char> row(kSize - 4);
    for (std::uint32_t i = 0;; ++i) {
        std::memset(row.data(), 'a' + static_cast<char>(i % 26), row.size());
        block.WriteData(row.data(), static_cast<std::uint32_t>(row.size()));
        if (i == 100) reached.SignalEvent();
    }
}

TEST(SharedMemory, KilledWriterLeavesTheLockAndItsOnlyOpenerNothing) {
    const std::string name = NameOf("killed");
    const event reached(false, (name + " reached").c_str());
    std::optional<Block> block(name);
    std::vector<char> row(kSize - 4);
    for (int round = 0; round < 5; ++round) {
        RunAndKill(reached, [&] { WriteForEver(name, event(false, (name + " reached").c_str())); });
        EXPECT_EQ(block->ReadDataSize(), kSize - 4) << "what it wrote stays";
        ASSERT_TRUE(block->WriteData("mine", 5)) << "the lock is free again";
        ASSERT_TRUE(block->ReadData(row.data(), 5));
        EXPECT_STREQ(row.data(), "mine");
    }
    block.reset();
    RunAndKill(reached, [&] { WriteForEver(name, event(false, (name + " reached").c_str())); });
    EXPECT_EQ(Block(name).ReadDataSize(), 0u);
}

TEST(SharedMemory, ReadersSeeWholeWritesOfAnotherProcess) {
    const std::string name = NameOf("whole");
    const event reached(false, (name + " reached").c_str());
    Block block(name);
    const pid_t child = ::fork();
    if (child == 0) WriteForEver(name, event(false, (name + " reached").c_str()));
    EXPECT_EQ(reached.WaitForEvent(kPatience), 1);
    std::vector<char> row(kSize - 4);
    int mixed = 0;
    std::set<char> seen;
    for (int i = 0; i < 1000 || (seen.size() < 3 && i < 100'000); ++i) {
        ASSERT_TRUE(block.ReadData(row.data(), kSize - 4));
        mixed += row.front() != row.back();
        seen.insert(row.front());
    }
    ::kill(child, SIGKILL);
    ::waitpid(child, nullptr, 0);
    EXPECT_EQ(mixed, 0);
    EXPECT_GE(seen.size(), 3u) << "the other process went on writing";
}

TEST(SharedMemory, HoldsNoMoreThanItsRoom) {
    const std::string name = NameOf("room");
    Block block(name);
    std::vector<char> data(kSize, 'x');
    EXPECT_TRUE(block.WriteData(data.data(), kSize - 4));
    EXPECT_FALSE(block.WriteData(data.data(), kSize - 3));
    EXPECT_EQ(block.ReadDataSize(), kSize - 4);
    EXPECT_FALSE(block.ReadData(data.data(), kSize - 3) || block.ReadData(data.data(), 0xFFFFFFFF));
    EXPECT_TRUE(block.ReadData(data.data(), kSize - 4));
    EXPECT_FALSE(block.ReadData(nullptr, 1) || block.WriteData(nullptr, 1));
    Block reader(name, eMemoryMapReadOnly);
    EXPECT_FALSE(reader.WriteData("y", 1));
    EXPECT_EQ(reader.ReadDataSize(), kSize - 4);
}

TEST(SharedMemory, RefusesWhatCannotBeABlock) {
    const std::string name = NameOf("refused");
    Block block(name);
    const SharedMemory other(name.c_str(), nullptr, 2 * kSize, eMemoryMapReadWrite);
    EXPECT_FALSE(static_cast<bool>(other)) << "the name exists in another size";
    for (const char* none : {static_cast<const char*>(nullptr), ""}) {
        EXPECT_FALSE(static_cast<bool>(SharedMemory(none, none, kSize, eMemoryMapReadWrite)));
    }
    EXPECT_FALSE(block.AllocateMemory(name.c_str(), 3, eMemoryMapReadWrite)) << "no room for the size";
    EXPECT_FALSE(static_cast<bool>(block));
    EXPECT_EQ(block.ReadDataSize(), 0u);
    EXPECT_FALSE(block.WriteData("x", 1));
    EXPECT_TRUE(block.AllocateMemory(name.c_str(), 4, eMemoryMapReadWrite));
    EXPECT_TRUE(block.WriteData(nullptr, 0));
    EXPECT_FALSE(block.WriteData("x", 1));
}

TEST(SharedMemory, ViewsOutliveTheirHandle) {
    const std::string name = NameOf("views");
    MemoryMapHandle const mapping = System_CreateSharedMemMapping(name.c_str(), 100, eMemoryMapReadWrite);
    auto* const first = static_cast<char*>(System_MapMemView(mapping));
    auto* const second = static_cast<char*>(System_MapMemView(mapping));
    ASSERT_NE(first, nullptr);
    ASSERT_NE(second, nullptr);
    first[99] = 'x';
    System_CloseSharedMemMapping(mapping);
    EXPECT_TRUE(System_MemoryUnMapFile(first));
    EXPECT_EQ(second[99], 'x');
    EXPECT_TRUE(System_MemoryUnMapFile(second));
    EXPECT_FALSE(System_MemoryUnMapFile(second));
    EXPECT_EQ(System_MapMemView(nullptr), nullptr);
    System_CloseSharedMemMapping(nullptr);
    const Block fresh(name);
    EXPECT_TRUE(static_cast<bool>(fresh)) << "the name went with the last view";
}

}  // namespace
}  // namespace dorvutil
